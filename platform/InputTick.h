// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <optional>

namespace platform {

/// Makes a tick of the last input that stands still while nobody touches anything out of readings
/// that don't quite: "now" minus "idle for", which can't be read at one and the same instant.
/// Milliseconds of a 32-bit clock that wraps.
class InputTick {
public:
    /// Takes a reading, which may be too early but never too late. Whether the tick has moved.
    bool update(quint32 reading);

    /// 0 before the first reading.
    quint32 value() const { return m_value.value_or(0); }

private:
    std::optional<quint32> m_value;
};

} // namespace platform
