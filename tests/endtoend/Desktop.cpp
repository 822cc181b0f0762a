// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPixmap>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

#include <algorithm>

namespace {

QString output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput());
}

void xdotool(const QStringList& arguments)
{
    if (QProcess::execute(QStringLiteral("xdotool"), arguments) != 0)
        qWarning() << "xdotool failed:" << arguments;
}

QStringList moveTo(const QPoint& place)
{
    return {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())};
}

} // namespace

QVector<DesktopWindow> Desktop::windows()
{
    static const QRegularExpression form(
        QStringLiteral("^0x(\\w+) +\\S+ +(\\d+) +(\\S+) +(\\S+) +(\\d+) +(\\d+) +\\S+ (.*)$"),
        QRegularExpression::MultilineOption);
    QVector<DesktopWindow> result;
    auto match = form.globalMatch(
        output(QStringLiteral("wmctrl"), {QStringLiteral("-u"), QStringLiteral("-lGp")}));
    while (match.hasNext()) {
        const QStringList part = match.next().capturedTexts();
        result.append({QString::number(part[1].toUInt(nullptr, 16)),
                       part[2].toLongLong(),
                       part[7],
                       {part[3].toInt(), part[4].toInt(), part[5].toInt(), part[6].toInt()}});
    }
    return result;
}

QString Desktop::activeWindow()
{
    return output(QStringLiteral("xdotool"), {QStringLiteral("getactivewindow")}).trimmed();
}

QImage Desktop::picture(const QRect& part)
{
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, part.x(), part.y(), part.width(), part.height())
        .toImage();
}

QRect Desktop::wholeArea()
{
    return QGuiApplication::primaryScreen()->geometry();
}

void Desktop::movePointer(const QPoint& place)
{
    xdotool(moveTo(place));
}

void Desktop::click(const QPoint& place)
{
    static QElapsedTimer sinceLast;
    // Sooner, it would make a double click of two.
    if (sinceLast.isValid())
        QTest::qWait(int(std::max<qint64>(0, 500 - sinceLast.elapsed())));
    xdotool(moveTo(place) + QStringList{QStringLiteral("click"), QStringLiteral("1")});
    sinceLast.start();
}

void Desktop::type(const char* text)
{
    xdotool({QStringLiteral("type"), QString::fromUtf8(text)});
}

void Desktop::press(const char* keys)
{
    xdotool(QStringList{QStringLiteral("key")} + QString::fromLatin1(keys).split(QLatin1Char(' ')));
}
