// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/LoginForm.h"
#include "dialogs/TaskForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QProcess>

/// Windows follow a real pointer, and only where they should.
class DialogPointerTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }

    void signInFollowsItsTopStrip()
    {
        m_service.setNoSave(true);
        LoginForm form(&m_service);
        const auto top = form.findChild<QWidget*>(QStringLiteral("wTop"));
        const QPoint before = form.pos();
        show(form);
        drag(*form.findChild<QWidget*>(QStringLiteral("wLoginPane")), {20, 120}, "1");
        drag(*form.findChild<QWidget*>(QStringLiteral("pbClose")), {5, 5}, "1");
        drag(*top, {250, 15}, "3");
        // The one that it follows shows that those before have been seen to their end.
        drag(*top, {250, 15}, "1");
        QTRY_COMPARE(form.pos(), before + QPoint(60, -40));
    }

    void pickerFollowsItsPanel()
    {
        QuietMainForm mainForm(&m_service);
        TaskForm form(&mainForm);
        const QPoint before = form.pos();
        show(form);
        drag(*form.findChild<QWidget*>(QStringLiteral("pbTessaport")), {5, 5}, "1");
        drag(form, {3, 72}, "1");
        QTRY_COMPARE(form.pos(), before + QPoint(60, -40));
    }

private:
    static void show(QWidget& window)
    {
        const QPoint place = window.pos();
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTRY_COMPARE(window.pos(), place);
    }
    /// Presses the button over a point of the widget, moves in steps and lets go.
    static void drag(const QWidget& widget, const QPoint& from, const char* button)
    {
        const QPoint start = widget.mapToGlobal(from);
        const QString script =
            QStringLiteral("mousemove %1 %2 mousedown %3 sleep 0.02 mousemove_relative -- 20 -15 "
                           "sleep 0.02 mousemove_relative -- 40 -25 sleep 0.02 mouseup %3")
                .arg(start.x())
                .arg(start.y())
                .arg(QLatin1String(button));
        QProcess xdotool;
        xdotool.start(QStringLiteral("xdotool"), script.split(QLatin1Char(' ')));
        QTRY_COMPARE(xdotool.state(), QProcess::NotRunning);
        QCOMPARE(xdotool.exitCode(), 0);
    }

    SignedInService m_service;
};

TESSAPORT_TEST_MAIN(DialogPointerTest, QApplication)

#include "tst_dialogpointer.moc"
