// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"
#include "notifications/NotificationForm.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "session/DataDirectory.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <QDesktopServices>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>

namespace {

/// The notices on screen, the lowest one first.
QList<NotificationForm*> shownNotices()
{
    QMultiMap<int, NotificationForm*> notices;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* notice = qobject_cast<NotificationForm*>(widget);
        if (notice && notice->isVisible())
            notices.insert(notice->slot(), notice);
    }
    return notices.values();
}

QStringList shownTexts()
{
    QStringList texts;
    for (const NotificationForm* notice : shownNotices())
        texts.append(notice->accessibleName());
    return texts;
}

NotificationForm* show(const QString& message, int type, const QString& taskId = QString())
{
    NotificationManager::instance()->show(message, type, taskId);
    return shownNotices().constLast();
}

} // namespace

class NotificationsTest : public QObject, private DataDirectory {
    Q_OBJECT

public slots:
    void openedPage(const QUrl& url) { m_openedPages += url.toString(); }

private slots:
    void initTestCase()
    {
        initResources();
        installFonts();
        enterDataDirectory();
        UpdateState::instance()->init(this);
        setTestServiceUrl(QStringLiteral("https://a.test"));
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openedPage");
    }

    void cleanup()
    {
        NotificationManager::instance()->showPending();
        NotificationManager::instance()->closeAll();
        m_openedPages.clear();
    }

    void tellsByType()
    {
        const struct {
            int type;
            const char* text;
            bool closes;
            bool leads;
        } rows[] = {
            {-1, "%1 \"Я\"", true, false},
            {0, "%1 \"Я\"", true, false},
            {1, "Добавлена новая команда \"%1 \"Я\"\"", false, false},
            {2, "Вы больше не являетесь членом команды \"%1 \"Я\"\"", true, false},
            {3, "Добавлена новая задача \"%1 \"Я\"\"", false, true},
            {4, "Задача \"%1 \"Я\"\" более недоступна", true, false},
            {5, "К задаче \"%1 \"Я\"\" добавлен новый комментарий", false, true},
            {6, "Доступно новое обновление Tessaport Team %1 \"Я\"", false, false},
            {7, "Дедлайн задачи \"%1 \"Я\"\" был изменён", true, false},
            {8, "Задача \"%1 \"Я\"\" помечена как блокирующая", false, true},
            {9, "Задача \"%1 \"Я\"\" более не является блокирующей", false, true},
            {10, "Добавлена новая блокируюшая задача \"%1 \"Я\"\"", false, true},
        };
        const QString message = QStringLiteral("%1 \"Я\"");
        for (const auto& row : rows) {
            QCOMPARE(notificationText(message, row.type), QString::fromUtf8(row.text));
            QCOMPARE(closesByItself(row.type), row.closes);
            QCOMPARE(leadsToTask(row.type), row.leads);
        }
    }

    void showsTextAsItIs()
    {
        const QString endlessWord(10000, QLatin1Char('W'));
        for (const QString& text : {QStringLiteral("<b>1</b>\n<br>&amp;"), endlessWord}) {
            const auto* message = show(text, PlainNotification)->findChild<QTextEdit*>();
            QCOMPARE(message->toPlainText(), text);
            QCOMPARE(message->horizontalScrollBar()->maximum(), 0);
            QCOMPARE(message->verticalScrollBar()->maximum() > 0, text == endlessWord);
        }
    }

    void leavesKeyboardToItsUser()
    {
        QLineEdit editor;
        editor.setGeometry(300, 300, 400, 60);
        editor.show();
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        QVERIFY(QTest::qWaitForWindowExposed(show(QString(), UpdateAvailable)));
        RealInput::pressKeys(QKeySequence(Qt::Key_X));
        QTRY_COMPARE(editor.text(), QStringLiteral("x"));
    }

    void answersClicks()
    {
        const QPoint text(90, 30), update(50, 78), later(130, 78);
        const struct {
            int type;
            const char* taskId;
            const char* versionFile;
            QPoint place;
            Qt::MouseButton button;
            bool closes;
            const char* page; ///< that it opens
        } rows[] = {
            {TaskAdded, "42", "[]", text, Qt::LeftButton, true, "https://a.test/task?id=42"},
            {TaskAdded, "42", "[]", text, Qt::RightButton, true, ""},
            {NewComment, "", "[]", text, Qt::LeftButton, true, ""},
            {UpdateAvailable, "42", "[{}]", text, Qt::LeftButton, false, ""},
            {UpdateAvailable, "", "[{}]", later, Qt::LeftButton, true, ""},
            {UpdateAvailable, "", "[]", update, Qt::LeftButton, false, ""},
            {UpdateAvailable, "", "[{}]", update, Qt::LeftButton, true, "https://a.test/monitor/"},
            {UpdateAvailable, "", "[{},{}]", update, Qt::LeftButton, true,
             "https://a.test/monitor/"},
        };
        QTest::ignoreMessage(QtWarningMsg, R"(Eror runWinAppAsAdmin "TPMC-update.exe" 2)");
        for (const auto& row : rows) {
            UpdateState::instance()->setUpdateInfo(row.versionFile);
            NotificationForm* const notice = show(QString(), row.type, QLatin1String(row.taskId));
            QWidget* const part = notice->childAt(row.place);
            // The second click finds some of them fading.
            for (int click = 0; click < 2; ++click)
                QTest::mouseClick(part ? part : notice, row.button);
            QCOMPARE(notice->isClosing(), row.closes);
            QCOMPARE(m_openedPages, QLatin1String(row.page));
            cleanup();
        }
    }

    void keepsWhatDoesNotFit()
    {
        const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
        const int room = available.bottom() / 100;
        QStringList texts;
        for (int i = 0; i < room + 2; ++i) {
            texts.append(QString::number(i));
            show(texts.constLast(), PlainNotification);
        }
        QCOMPARE(shownTexts(), QStringList(texts.mid(0, room)));

        // The lowest goes, the others close the gap, the oldest that waits comes on top.
        shownNotices().constFirst()->fadeOut();
        QTRY_COMPARE(shownTexts(), QStringList(texts.mid(1, room)));
        QCOMPARE(shownNotices().constLast()->pos(),
                 available.bottomRight() - QPoint(250, room * 100));

        NotificationManager::instance()->showPending();
        QCOMPARE(shownTexts(), QStringList(texts.mid(1)));
    }

    void togglesAroundFadingOne()
    {
        for (const QString& name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")})
            show(name, PlainNotification);
        shownNotices().constFirst()->fadeOut();
        NotificationManager* const manager = NotificationManager::instance();
        manager->toggle();
        QCOMPARE(shownTexts(), QStringList(QStringLiteral("a")));
        // Its end makes room for the first one.
        QTRY_COMPARE(shownTexts(), QStringList(QStringLiteral("b")));
    }

    void closesByTimeOrOnEscape()
    {
        show(QStringLiteral("1.2"), UpdateAvailable);
        show(QStringLiteral("goes"), PlainNotification);
        // Takes the place of the first one.
        NotificationForm* const staying = show(QStringLiteral("1.3"), UpdateAvailable);
        QElapsedTimer time;
        time.start();
        QTRY_COMPARE_WITH_TIMEOUT(shownNotices(), QList<NotificationForm*>{staying}, 20000);
        QVERIFY(time.elapsed() > 4000);
        QTest::keyClick(staying, Qt::Key_Escape);
        QTRY_VERIFY(!NotificationManager::instance()->hasNotifications());
    }

private:
    QString m_openedPages;
};

TESSAPORT_TEST_MAIN(NotificationsTest, QApplication)

#include "tst_notifications.moc"
