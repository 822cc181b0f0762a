// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"

#include <QProcess>

static void xdotool(const QStringList& arguments)
{
    if (QProcess::execute(QStringLiteral("xdotool"), arguments) != 0)
        qFatal("xdotool failed");
}

void RealInput::movePointer()
{
    // To and fro, since a pointer at the edge of the screen would not move at all.
    static int place = 200;
    place = 500 - place;
    xdotool({QStringLiteral("mousemove"), QString::number(place), QString::number(place)});
}

void RealInput::pressKeys(const QKeySequence& combination)
{
    QString keys = combination.toString(QKeySequence::PortableText).toLower();
    keys.replace(QLatin1String("meta"), QLatin1String("super"));
    keys.replace(QLatin1String("capslock"), QLatin1String("Caps_Lock"));
    keys.replace(QLatin1String("numlock"), QLatin1String("Num_Lock"));
    xdotool({QStringLiteral("key"), keys});
}
