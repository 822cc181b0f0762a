// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Memory.h"

#include <malloc.h>

// By itself the C library takes the first large block that is freed as a sign that more will come:
// blocks up to that size then stay in the heap, 6 MiB behind each picture of the desktop.
void platform::giveBackLargeBlocks()
{
    constexpr int defaultThreshold = 128 * 1024; // bytes; that it is set keeps it from rising
    mallopt(M_MMAP_THRESHOLD, defaultThreshold);
}
