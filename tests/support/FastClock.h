// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Lets time pass for the test program that links this, for its timers and its dates alike, in
/// steps of so many milliseconds: no timer of a shorter interval keeps up. On Linux as fast as the
/// program handles what is due, and no time of the machine's own counts; on Windows it takes its
/// time.
void passTime(int milliseconds, int step);
