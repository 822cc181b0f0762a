// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTime>
#include <QTimer>

/// The least that a window of the strip's kind can cost with Qt: it is there, it is woken ten times
/// a second, as for a look at the last input, and once a second a label shows another time. With
/// any argument Qt is as it comes: it loads OpenGL, which nobody here draws with.
int main(int argc, char* argv[])
{
    if (argc == 1)
        QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
    QApplication application(argc, argv);
    QDialog strip;
    strip.setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint
                         | Qt::WindowStaysOnTopHint);
    strip.setFixedSize(392, 73);
    QLabel clock(QStringLiteral("00:00:00"), &strip);
    clock.setGeometry(258, 26, 74, 26);

    QTime time(0, 0);
    int polls = 0;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &clock, [&] {
        if (++polls % 10 != 0)
            return;
        time = time.addSecs(1);
        clock.setText(time.toString(QStringLiteral("hh:mm:ss")));
    });
    poll.start(100);
    strip.show();
    return QApplication::exec();
}
