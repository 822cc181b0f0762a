// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Memory.h"

// A heap of this system never keeps blocks of half a megabyte and more.
void platform::giveBackLargeBlocks() { }
