// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// What sets a name of this user's apart from the same name of another user's, where all users of
/// the machine share such names. Empty where the system keeps them apart by itself.
QString userMark();

} // namespace platform
