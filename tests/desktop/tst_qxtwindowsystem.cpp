// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtWindowSystem.h"

#include "support/TestMain.h"

#include <QGuiApplication>
#include <QRasterWindow>

class QxtWindowSystemTest : public QObject {
    Q_OBJECT

private slots:
    void findsWindows();
    void windowThatIsGone();
};

void QxtWindowSystemTest::findsWindows()
{
    const QString title = QString::fromUtf8("Окно снизу");
    QRasterWindow lower;
    lower.setTitle(title);
    lower.setGeometry(100, 120, 300, 200);
    lower.show();
    QVERIFY(QTest::qWaitForWindowExposed(&lower));
    QRasterWindow upper;
    upper.setTitle(QStringLiteral("upper"));
    upper.setGeometry(150, 150, 200, 100);
    upper.show();
    upper.requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(&upper));

    QTRY_COMPARE(QxtWindowSystem::activeWindow(), upper.winId());
    QTRY_COMPARE(QxtWindowSystem::findWindow(title), lower.winId());
    QCOMPARE(QxtWindowSystem::findWindow(QStringLiteral("no such title")), WId(0));
    QCOMPARE(QxtWindowSystem::windowTitle(lower.winId()), title);
    const QStringList titles = QxtWindowSystem::windowTitles();
    QVERIFY(titles.indexOf(title) >= 0);
    QVERIFY(titles.indexOf(title) < titles.indexOf(QStringLiteral("upper")));

    QCOMPARE(QxtWindowSystem::windowGeometry(lower.winId()), lower.frameGeometry());
    QCOMPARE(QxtWindowSystem::windowAt(upper.geometry().center()), upper.winId());
    QCOMPARE(QxtWindowSystem::windowAt(lower.geometry().bottomRight()), lower.winId());
    QCOMPARE(QxtWindowSystem::windowAt(QPoint(-50, -50)), WId(0));
}

void QxtWindowSystemTest::windowThatIsGone()
{
    WId gone = 0;
    {
        QRasterWindow window;
        gone = window.winId();
    }
    QTRY_VERIFY(QxtWindowSystem::windowGeometry(gone).isNull());
    QCOMPARE(QxtWindowSystem::windowTitle(gone), QString());
}

TESSAPORT_TEST_MAIN(QxtWindowSystemTest, QGuiApplication)
#include "tst_qxtwindowsystem.moc"
