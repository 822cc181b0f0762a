// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

/// A picture of the whole desktop as it is now, all monitors at their own pixels and in their
/// places; what no monitor shows is black. A null image when the system gives no picture.
QImage grabDesktop();
