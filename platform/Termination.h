// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class QObject;

namespace platform {

/// Has the system's wish that the program end, at logoff or by a signal, call back inside the event
/// loop, as long as the context lives; may be asked for once. Where the system has no such wish but
/// Qt's own end of the session, it is never called.
void watchTermination(QObject* context, std::function<void()> callback);

} // namespace platform
