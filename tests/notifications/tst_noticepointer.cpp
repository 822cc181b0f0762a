// SPDX-License-Identifier: GPL-3.0-or-later
#include "NoticeFixture.h"

#include "notifications/NotificationType.h"
#include "res/Resources.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"

#include <QDesktopServices>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>

class TestNoticePointer : public QObject {
    Q_OBJECT

public slots:
    void openedPage(const QUrl& url) { m_openedPages.append(url.toString()); }

private slots:
    void initTestCase();
    void leavesDesktopToItsUser();
    void closesByClickOnItsText();
    void closesByButton();

private:
    static void xdotool(const QStringList& arguments)
    {
        QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), arguments), 0);
    }
    static void click(const QWidget* widget)
    {
        const QPoint centre = widget->mapToGlobal(widget->rect().center());
        xdotool({QStringLiteral("mousemove"), QString::number(centre.x()),
                 QString::number(centre.y()), QStringLiteral("click"), QStringLiteral("1")});
    }

    QLineEdit m_editor; ///< what the user works in
    QStringList m_openedPages;
};

void TestNoticePointer::initTestCase()
{
    initResources();
    installFonts();
    setTestServiceUrl(QStringLiteral("https://service.test"));
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openedPage");
    m_editor.setGeometry(300, 300, 400, 60);
    m_editor.show();
    QVERIFY(QTest::qWaitForWindowActive(&m_editor));
}

void TestNoticePointer::leavesDesktopToItsUser()
{
    for (int type : {TaskAdded, TeamAdded, UpdateAvailable})
        NotificationManager::instance()->show(QStringLiteral("1"), type, QStringLiteral("42"));
    for (NotificationForm* notice : shownNotices())
        QVERIFY(QTest::qWaitForWindowExposed(notice));
    xdotool({QStringLiteral("type"), QStringLiteral("abc")});
    QTRY_COMPARE(m_editor.text(), QStringLiteral("abc"));
    QVERIFY(m_editor.isActiveWindow());

    // A click elsewhere gets there, and the notices stay.
    click(&m_editor);
    xdotool({QStringLiteral("key"), QStringLiteral("Home"), QStringLiteral("d")});
    QTRY_COMPARE(m_editor.text(), QStringLiteral("dabc"));
    QCOMPARE(shownNotices().size(), 3);
}

void TestNoticePointer::closesByClickOnItsText()
{
    click(messageOf(shownNotices().constFirst()));
    QTRY_COMPARE(shownNotices().size(), 2);
    QCOMPARE(m_openedPages, QStringList{QStringLiteral("https://service.test/task?id=42")});
    QTRY_VERIFY(m_editor.isActiveWindow());
}

void TestNoticePointer::closesByButton()
{
    const NotificationForm* notice = shownNotices().constLast();
    QCOMPARE(notice->type(), int(UpdateAvailable));
    const auto buttons = notice->findChildren<QPushButton*>();
    const auto later = std::find_if(buttons.cbegin(), buttons.cend(), [](QPushButton* button) {
        return button->text() == QStringLiteral("Позже");
    });
    QVERIFY(later != buttons.cend());
    click(messageOf(notice));
    click(*later);
    QTRY_COMPARE(shownNotices().size(), 1);
    QCOMPARE(shownNotices().constFirst()->type(), int(TeamAdded));
}

TESSAPORT_TEST_MAIN(TestNoticePointer, QApplication)

#include "tst_noticepointer.moc"
