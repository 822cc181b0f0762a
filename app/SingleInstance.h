// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Takes the lock that a user's first copy of the program holds until its process ends. True when
/// this call took it; false when somebody holds it, this process included.
bool isSingleInstance();
