// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Whether this process is the only one of the program. True from the first call on in the
/// process that holds the lock, until that process ends.
bool isSingleInstance();
