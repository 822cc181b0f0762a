// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Termination.h"

// A program with windows learns of the end of the session through them, that is through Qt.
void platform::watchTermination(QObject*, std::function<void()>) { }
