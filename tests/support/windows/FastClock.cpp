// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FastClock.h"

#include <QTest>

void passTime(int milliseconds, int)
{
    QTest::qWait(milliseconds);
}
