// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/InputTick.h"

namespace platform {

namespace {

// Readings of one and the same input differ by a few milliseconds on a busy machine. 50 is well
// above that and below the interval at which anyone asks, so that what one poll tells apart from
// the poll before doesn't become one.
constexpr quint32 jitter = 50;

// A system that was held up between the two halves of a reading gives one that is too early by as
// long. Anything farther back is no such reading but an input so much later that the clock has
// come round.
constexpr quint32 longestHoldUp = 60 * 60 * 1000;

} // namespace

bool InputTick::update(quint32 reading)
{
    if (m_value) {
        const quint32 ahead = reading - *m_value;
        const quint32 behind = *m_value - reading;
        if (ahead <= jitter || behind <= longestHoldUp)
            return false;
    }
    m_value = reading;
    return true;
}

} // namespace platform
