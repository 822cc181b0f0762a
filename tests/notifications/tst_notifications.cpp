// SPDX-License-Identifier: GPL-3.0-or-later
#include "NoticeFixture.h"

#include "notifications/NotificationType.h"
#include "res/Resources.h"
#include "session/DataDirectory.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <QDesktopServices>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>

class TestNotifications : public QObject, private DataDirectory {
    Q_OBJECT

public slots:
    void openedPage(const QUrl& url) { m_openedPages.append(url.toString()); }

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void tellsByType_data();
    void tellsByType();
    void showsTextAsItIs_data();
    void showsTextAsItIs();
    void clickLeadsToTask_data();
    void clickLeadsToTask();
    void updateButtons_data();
    void updateButtons();
    void stacksAboveMainForm();
    void keepsWhatDoesNotFit();
    void togglesInOrder();
    void showsOneUpdateNotice();
    void closesByTimeOrOnEscape();

private:
    static void show(const QString& message, int type = TeamAdded)
    {
        NotificationManager::instance()->show(message, type, QString());
    }
    static QPoint place(int slot, int heightBelow);

    QStringList m_openedPages;
    std::unique_ptr<CountingMainForm> m_mainForm;
};

QPoint TestNotifications::place(int slot, int heightBelow)
{
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    return {available.right() - 250, available.bottom() - (slot + 1) * 100 - heightBelow};
}

void TestNotifications::initTestCase()
{
    initResources();
    installFonts();
    enterDataDirectory();
    UpdateState::instance()->init(this);
    setTestServiceUrl(QStringLiteral("https://service.test"));
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openedPage");
}

void TestNotifications::init()
{
    m_openedPages.clear();
    m_mainForm = std::make_unique<CountingMainForm>();
    NotificationManager::instance()->setMainForm(m_mainForm.get());
}

void TestNotifications::cleanup()
{
    removeAllNotices();
    m_mainForm.reset();
}

void TestNotifications::cleanupTestCase()
{
    // With no main window to clean up, these are still there when the application object goes.
    show(QStringLiteral("waits"));
    NotificationManager::instance()->hideShown();
    show(QStringLiteral("shown"));
}

void TestNotifications::tellsByType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("leads");

    const auto row = [](int type, const QString& text, bool closes, bool leads) {
        QTest::addRow("%d", type) << type << text << closes << leads;
    };
    row(-1, QStringLiteral("%1 \"Я\""), true, false);
    row(0, QStringLiteral("%1 \"Я\""), true, false);
    row(1, QStringLiteral("Добавлена новая команда \"%1 \"Я\"\""), false, false);
    row(2, QStringLiteral("Вы больше не являетесь членом команды \"%1 \"Я\"\""), true, false);
    row(3, QStringLiteral("Добавлена новая задача \"%1 \"Я\"\""), false, true);
    row(4, QStringLiteral("Задача \"%1 \"Я\"\" более недоступна"), true, false);
    row(5, QStringLiteral("К задаче \"%1 \"Я\"\" добавлен новый комментарий"), false, true);
    row(6, QStringLiteral("Доступно новое обновление Tessaport Team %1 \"Я\""), false, false);
    row(7, QStringLiteral("Дедлайн задачи \"%1 \"Я\"\" был изменён"), true, false);
    row(8, QStringLiteral("Задача \"%1 \"Я\"\" помечена как блокирующая"), false, true);
    row(9, QStringLiteral("Задача \"%1 \"Я\"\" более не является блокирующей"), false, true);
    row(10, QStringLiteral("Добавлена новая блокируюшая задача \"%1 \"Я\"\""), false, true);
    row(11, QStringLiteral("%1 \"Я\""), true, false);
}

void TestNotifications::tellsByType()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    QFETCH(bool, closes);
    QFETCH(bool, leads);
    show(QStringLiteral("%1 \"Я\""), type);
    QCOMPARE(shownTexts(), QStringList(text));
    QCOMPARE(closesByItself(type), closes);
    QCOMPARE(leadsToTask(type), leads);
}

void TestNotifications::showsTextAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("scrolls");
    QTest::newRow("one line") << QStringLiteral("Переход в онлайн-режим.") << false;
    QTest::newRow("markup") << QStringLiteral("<b>1</b>\n<br>&amp;") << false;
    QTest::newRow("endless word") << QString(10000, QLatin1Char('W')) << true;
}

void TestNotifications::showsTextAsItIs()
{
    QFETCH(QString, text);
    QFETCH(bool, scrolls);
    show(text, PlainNotification);
    const NotificationForm* notice = shownNotices().constFirst();
    QTextEdit* message = messageOf(notice);
    QCOMPARE(message->toPlainText(), text);
    QCOMPARE(message->horizontalScrollBar()->maximum(), 0);
    QCOMPARE(message->verticalScrollBar()->maximum() > 0, scrolls);
    if (scrolls)
        return;

    QRect lines = message->cursorRect();
    QTextCursor cursor = message->textCursor();
    cursor.movePosition(QTextCursor::EndOfLine);
    message->setTextCursor(cursor);
    lines |= message->cursorRect();
    QVERIFY(qAbs(lines.center().x() - message->width() / 2) <= 1);
    cursor.movePosition(QTextCursor::End);
    message->setTextCursor(cursor);
    lines |= message->cursorRect();
    QVERIFY(qAbs(lines.center().y() - message->height() / 2) <= 1);
}

void TestNotifications::clickLeadsToTask_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("taskId");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("opens");

    const QString task = QStringLiteral("42");
    QTest::newRow("new task") << 3 << int(Qt::LeftButton) << task << true << true;
    QTest::newRow("new task, right") << 3 << int(Qt::RightButton) << task << true << false;
    QTest::newRow("comment, no task") << 5 << int(Qt::LeftButton) << QString() << true << false;
    QTest::newRow("removed task") << 4 << int(Qt::LeftButton) << task << true << false;
    QTest::newRow("update") << 6 << int(Qt::LeftButton) << task << false << false;
}

void TestNotifications::clickLeadsToTask()
{
    QFETCH(int, type);
    QFETCH(int, button);
    QFETCH(QString, taskId);
    QFETCH(bool, closes);
    QFETCH(bool, opens);
    NotificationManager::instance()->show(QString(), type, taskId);
    NotificationForm* notice = shownNotices().constFirst();
    QTest::mouseClick(notice, Qt::MouseButton(button), Qt::NoModifier, {220, 50});
    QTest::mouseClick(notice, Qt::MouseButton(button), Qt::NoModifier, {220, 50});
    QCOMPARE(notice->isClosing(), closes);
    QCOMPARE(m_openedPages,
             opens ? QStringList{QStringLiteral("https://service.test/task?id=42")}
                   : QStringList());
}

void TestNotifications::updateButtons_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QByteArray>("versionFile");
    QTest::addColumn<QByteArray>("warning");
    QTest::addColumn<QByteArray>("debugLine");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("opens");

    const QString update = QStringLiteral("Обновить");
    QTest::newRow("later") << QStringLiteral("Позже") << QByteArray(R"([{"version":"2"}])")
                           << QByteArray() << QByteArray() << true << false;
    QTest::newRow("version only") << update << QByteArray(R"([{"version":"2"}])") << QByteArray()
                                  << QByteArray() << true << true;
    QTest::newRow("for the update program, which is not there")
        << update << QByteArray(R"([{"version":"2"},{"file":"a"}])")
        << QByteArray(R"(Eror runWinAppAsAdmin "TPMC-update.exe" 2)") << QByteArray() << true
        << true;
    QTest::newRow("nothing") << update << QByteArray("[]") << QByteArray()
                             << QByteArray("Error! There is no update info ()") << false << false;
}

void TestNotifications::updateButtons()
{
    QFETCH(QString, button);
    QFETCH(QByteArray, versionFile);
    QFETCH(QByteArray, warning);
    QFETCH(QByteArray, debugLine);
    QFETCH(bool, closes);
    QFETCH(bool, opens);
    UpdateState::instance()->setUpdateInfo(versionFile);
    show(QStringLiteral("2"), UpdateAvailable);
    NotificationForm* notice = shownNotices().constFirst();
    const auto buttons = notice->findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
    QCOMPARE(buttons.size(), 2);
    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, warning.constData());
    if (!debugLine.isEmpty())
        QTest::ignoreMessage(QtDebugMsg, debugLine.constData());
    for (QPushButton* candidate : buttons) {
        if (candidate->text() == button)
            candidate->click();
    }
    QCOMPARE(notice->isClosing(), closes);
    QCOMPARE(m_openedPages,
             opens ? QStringList{QStringLiteral("https://service.test/monitor/")} : QStringList());
}

void TestNotifications::stacksAboveMainForm()
{
    for (const QString& name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
        show(name, PlainNotification);
    QCOMPARE(m_mainForm->attentionUpdates, 3);
    const auto verifyPlaces = [](int heightBelow) {
        const QList<NotificationForm*> notices = shownNotices();
        for (int slot = 0; slot < notices.size(); ++slot)
            QTRY_COMPARE(notices[slot]->pos(), place(slot, heightBelow));
    };
    verifyPlaces(0);

    // The notices learn of the main window when they paint.
    m_mainForm->setFixedSize(392, 73);
    m_mainForm->show();
    NotificationManager::instance()->raiseAll();
    verifyPlaces(73);

    shownNotices().constFirst()->fadeOut();
    QTRY_COMPARE(shownTexts(), QStringList({QStringLiteral("b"), QStringLiteral("c")}));
    verifyPlaces(73);
}

void TestNotifications::keepsWhatDoesNotFit()
{
    const int room = QGuiApplication::primaryScreen()->availableGeometry().bottom() / 100;
    QStringList texts;
    for (int i = 0; i < room + 2; ++i) {
        texts.append(QString::number(i));
        show(texts.constLast(), PlainNotification);
    }
    QCOMPARE(shownTexts(), QStringList(texts.mid(0, room)));
    QCOMPARE(m_mainForm->attentionUpdates, room);

    // The lowest goes, the others close the gap, the oldest that waits comes on top.
    shownNotices().constFirst()->fadeOut();
    QTRY_COMPARE(shownTexts(), QStringList(texts.mid(1, room)));
    QCOMPARE(shownNotices().constLast()->pos(), place(room - 1, 0));

    NotificationManager::instance()->showPending();
    QCOMPARE(shownTexts(), QStringList(texts.mid(1)));
}

void TestNotifications::togglesInOrder()
{
    NotificationManager* manager = NotificationManager::instance();
    QVERIFY(!manager->hasNotifications());
    for (const QString& name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
        show(name);
    const QStringList texts = shownTexts();
    manager->toggle();
    QCOMPARE(shownNotices().size(), 0);
    QVERIFY(manager->hasNotifications());
    manager->toggle();
    QCOMPARE(shownTexts(), texts);

    NotificationForm* fading = shownNotices().constFirst();
    fading->fadeOut();

    manager->toggle();
    QCOMPARE(shownNotices(), QList<NotificationForm*>{fading});
    QVERIFY(manager->hasNotifications());
    // Its end makes room for the first one.
    QTRY_COMPARE(shownTexts(), QStringList(texts[1]));
    manager->toggle();
    QCOMPARE(shownNotices().size(), 0);
    manager->toggle();
    QCOMPARE(shownTexts(), QStringList({texts[2], texts[1]}));
    manager->closeAll();
    QVERIFY(!manager->hasNotifications());
}

void TestNotifications::showsOneUpdateNotice()
{
    show(QStringLiteral("1.2"), UpdateAvailable);
    show(QStringLiteral("a"));
    show(QStringLiteral("1.3"), UpdateAvailable);
    QTRY_COMPARE(shownNotices().size(), 2);
    QCOMPARE(shownNotices().constFirst()->type(), int(TeamAdded));
    QVERIFY(shownTexts().constLast().endsWith(QLatin1String("1.3")));
}

void TestNotifications::closesByTimeOrOnEscape()
{
    show(QStringLiteral("goes"), PlainNotification);
    show(QStringLiteral("stays"), UpdateAvailable);
    show(QStringLiteral("goes, too"), DeadlineChanged);
    QElapsedTimer time;
    time.start();
    QTRY_COMPARE_WITH_TIMEOUT(shownNotices().size(), 1, 20000);
    QCOMPARE(shownNotices().constFirst()->type(), int(UpdateAvailable));
    QVERIFY(time.elapsed() >= 5000);

    QTest::keyClick(shownNotices().constFirst(), Qt::Key_Escape);
    QTRY_VERIFY(!NotificationManager::instance()->hasNotifications());
}

TESSAPORT_TEST_MAIN(TestNotifications, QApplication)

#include "tst_notifications.moc"
