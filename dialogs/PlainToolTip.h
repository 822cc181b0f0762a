// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What to set as a tool tip so that a text from outside is read as it stands. The text itself,
/// unless Qt would take it for markup or it is too long for one line: then it is escaped, wraps,
/// within words if need be, and loses what no screen could show.
QString plainToolTip(const QString& text);
