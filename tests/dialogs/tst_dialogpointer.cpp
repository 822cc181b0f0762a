// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/LoginForm.h"
#include "dialogs/TaskForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QProcess>

/// Windows follow a real pointer, and only where they should.
class DialogPointerTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void signInFollowsItsTopStrip_data();
    void signInFollowsItsTopStrip();
    void pickerFollowsItsPanel();

private:
    /// Shows the window and waits until the window manager is done with it.
    static void show(QWidget& window);
    /// Presses the button over a point of the widget, moves in steps and lets go.
    static void drag(const QWidget& widget, const QPoint& from, const QPoint& by, int button);
    static constexpr QPoint distance{60, -40};

    SignedInService m_service;
};

void DialogPointerTest::initTestCase()
{
    initResources();
    m_service.setNoSave(true);
}

void DialogPointerTest::show(QWidget& window)
{
    const QPoint place = window.pos();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_COMPARE(window.pos(), place);
}

void DialogPointerTest::drag(const QWidget& widget, const QPoint& from, const QPoint& by,
                             int button)
{
    const QPoint start = widget.mapToGlobal(from);
    const auto number = [](int value) { return QString::number(value); };
    QStringList arguments{QStringLiteral("mousemove"), number(start.x()), number(start.y()),
                          QStringLiteral("mousedown"), number(button)};
    for (int step = 1; step <= 4; ++step) {
        const QPoint point = start + by * step / 4;
        arguments << QStringLiteral("sleep") << QStringLiteral("0.02")
                  << QStringLiteral("mousemove") << number(point.x()) << number(point.y());
    }
    arguments << QStringLiteral("mouseup") << number(button);
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"), arguments);
    QTRY_COMPARE(xdotool.state(), QProcess::NotRunning);
    QCOMPARE(xdotool.exitCode(), 0);
}

void DialogPointerTest::signInFollowsItsTopStrip_data()
{
    QTest::addColumn<QByteArray>("part");
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("follows");

    QTest::newRow("top strip") << QByteArray("wTop") << QPoint(250, 15) << 1 << true;
    QTest::newRow("title in it") << QByteArray("lAutorization") << QPoint(5, 10) << 1 << true;
    QTest::newRow("with the right button") << QByteArray("wTop") << QPoint(250, 15) << 3 << false;
    QTest::newRow("button in it") << QByteArray("pbClose") << QPoint(5, 5) << 1 << false;
    QTest::newRow("pane") << QByteArray("wLoginPane") << QPoint(20, 120) << 1 << false;
}

void DialogPointerTest::signInFollowsItsTopStrip()
{
    QFETCH(QByteArray, part);
    QFETCH(QPoint, from);
    QFETCH(int, button);
    QFETCH(bool, follows);
    LoginForm form(&m_service);
    show(form);
    const QPoint before = form.pos();
    drag(*form.findChild<QWidget*>(QLatin1String(part)), from, distance, button);
    // What follows by itself shows that the first drag has been seen to its end.
    drag(*form.findChild<QWidget*>(QStringLiteral("wTop")), {250, 15}, -distance, 1);
    QTRY_COMPARE(form.pos(), follows ? before : before - distance);
}

void DialogPointerTest::pickerFollowsItsPanel()
{
    QuietMainForm mainForm(&m_service);
    TaskForm form(&mainForm);
    show(form);
    const QPoint before = form.pos();
    const QPoint margin(3, form.height() / 2);
    drag(form, margin, distance, 1);
    QTRY_COMPARE(form.pos(), before + distance);
    drag(*form.findChild<QLabel*>(QStringLiteral("lbTeam")), QPoint(5, 5), distance, 1);
    QTRY_COMPARE(form.pos(), before + 2 * distance);
    drag(*form.findChild<QWidget*>(QStringLiteral("pbTessaport")), QPoint(5, 5), distance, 1);
    drag(form, margin, -distance, 1);
    QTRY_COMPARE(form.pos(), before + distance);
}

TESSAPORT_TEST_MAIN(DialogPointerTest, QApplication)

#include "tst_dialogpointer.moc"
