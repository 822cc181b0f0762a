// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace platform {

/// Has the memory of each picture and other large block go back to the system as soon as it is
/// freed, for the whole process from now on. Where the system does so by itself nothing changes.
void giveBackLargeBlocks();

} // namespace platform
