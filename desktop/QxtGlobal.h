// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// The version of the interface that the exported Qxt classes have; never null.
Q_DECL_EXPORT const char* qxtVersion();
