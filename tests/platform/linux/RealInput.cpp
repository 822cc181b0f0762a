// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"

#include <QProcess>

namespace {

void xdotool(const QStringList& arguments)
{
    if (QProcess::execute(QStringLiteral("xdotool"), arguments) != 0)
        qFatal("xdotool failed");
}

} // namespace

void RealInput::movePointer()
{
    // To and fro, since a pointer at the edge of the screen would not move at all.
    static bool forth = false;
    forth = !forth;
    const QString place = forth ? QStringLiteral("300") : QStringLiteral("200");
    xdotool({QStringLiteral("mousemove"), place, place});
}

void RealInput::pressKeys(const QKeySequence& combination)
{
    QStringList keys = combination.toString(QKeySequence::PortableText).split(QLatin1Char('+'));
    for (QString& key : keys) {
        if (key == QLatin1String("Meta"))
            key = QStringLiteral("super");
        else if (key.size() == 1)
            key = key.toLower();
    }
    xdotool({QStringLiteral("key"), keys.join(QLatin1Char('+'))});
}

void RealInput::pressCapsLock()
{
    xdotool({QStringLiteral("key"), QStringLiteral("Caps_Lock")});
}

void RealInput::pressNumLock()
{
    xdotool({QStringLiteral("key"), QStringLiteral("Num_Lock")});
}
