// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QWidget>

#include <windows.h>

/// What Windows asks each window at the end of a session, and what becomes of the program then.
class SessionEndTest : public QObject {
    Q_OBJECT

private slots:
    void windowsOutliveASessionThatGoesOn()
    {
        QWidget window;
        window.show();
        const HWND handle = reinterpret_cast<HWND>(window.winId());
        QSignalSpy atEnd(qApp, &QCoreApplication::aboutToQuit);
        QVERIFY(SendMessageW(handle, WM_QUERYENDSESSION, 0, 0));
        SendMessageW(handle, WM_ENDSESSION, FALSE, 0);
        QVERIFY(window.isVisible());
        QVERIFY(atEnd.isEmpty());

        QVERIFY(SendMessageW(handle, WM_QUERYENDSESSION, 0, 0));
        SendMessageW(handle, WM_ENDSESSION, TRUE, 0);
        QCOMPARE(atEnd.count(), 1);
    }
};

TESSAPORT_TEST_MAIN(SessionEndTest, Application)
#include "tst_sessionend.moc"
