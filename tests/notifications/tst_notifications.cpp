// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"
#include "mainwindow/AbstractMainForm.h"
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
#include <QWindow>

#include <algorithm>

namespace {

NotificationManager* manager()
{
    return NotificationManager::instance();
}

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

NotificationForm* show(const QString& message, int type = PlainNotification,
                       const QString& taskId = QString())
{
    manager()->show(message, type, taskId);
    return shownNotices().constLast();
}

/// How many notices have room one above the other.
int room()
{
    return (QGuiApplication::primaryScreen()->availableGeometry().height() - 1) / 100;
}

/// So many notices that stay; returns their texts.
QStringList showMany(int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i);
        manager()->show(number, TaskAdded, QString());
        texts.append(notificationText(number, TaskAdded));
    }
    return texts;
}

/// Whether they stand one above the other, the lowest on a window of this height.
bool standAbove(int height)
{
    QPoint place = QGuiApplication::primaryScreen()->availableGeometry().bottomRight();
    place -= QPoint(250, height);
    const QList<NotificationForm*> notices = shownNotices();
    return std::all_of(notices.begin(), notices.end(), [&place](const NotificationForm* notice) {
        return notice->pos() == (place -= QPoint(0, 100));
    });
}

/// Keeps what its attention marks were told to be.
class MainForm : public AbstractMainForm {
public:
    explicit MainForm(int height)
    {
        setFixedSize(392, height);
        manager()->setMainForm(this);
    }
    TessaPort* service() const override { return nullptr; }
    QIcon taskIcon(const Task&) const override { return {}; }
    void updateAttention() override { marks.append(manager()->hasNotifications()); }

    QVector<bool> marks;
};

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
        for (; manager()->hasNotifications(); manager()->showPending())
            manager()->closeAll();
        m_openedPages.clear();
    }

    void tellsByType()
    {
        const char* const texts[] = {
            "%1 \"Я\"",
            "Добавлена новая команда \"%1 \"Я\"\"",
            "Вы больше не являетесь членом команды \"%1 \"Я\"\"",
            "Добавлена новая задача \"%1 \"Я\"\"",
            "Задача \"%1 \"Я\"\" более недоступна",
            "К задаче \"%1 \"Я\"\" добавлен новый комментарий",
            "Доступно новое обновление Tessaport Team %1 \"Я\"",
            "Дедлайн задачи \"%1 \"Я\"\" был изменён",
            "Задача \"%1 \"Я\"\" помечена как блокирующая",
            "Задача \"%1 \"Я\"\" более не является блокирующей",
            "Добавлена новая блокируюшая задача \"%1 \"Я\"\"",
            "%1 \"Я\"",
        };
        const QVector<int> closing{0, 2, 4, 7, 11}, leading{3, 5, 8, 9, 10};
        for (int type = 0; type <= 11; ++type) {
            const QString taskId = QString::number(40 + type);
            NotificationForm* const notice = show(QStringLiteral("%1 \"Я\""), type, taskId);
            QCOMPARE(notice->accessibleName(), QString::fromUtf8(texts[type]));
            QCOMPARE(notice->findChild<QTextEdit*>()->toPlainText(), notice->accessibleName());
            QCOMPARE(closesByItself(type), closing.contains(type));
            QTest::mouseClick(notice, Qt::LeftButton);
            QCOMPARE(m_openedPages,
                     leading.contains(type) ? QStringLiteral("https://a.test/task?id=") + taskId
                                            : QString());
            cleanup();
        }
    }

    void showsTextAsItIs()
    {
        const QString endlessWord(10000, QLatin1Char('W'));
        for (const QString& text : {QStringLiteral("<b>1</b>\n<br>&amp;"), endlessWord}) {
            const auto* message = show(text)->findChild<QTextEdit*>();
            QCOMPARE(message->toPlainText(), text);
            QCOMPARE(message->horizontalScrollBar()->maximum(), 0);
            QCOMPARE(message->verticalScrollBar()->maximum() > 0, text == endlessWord);
        }
    }

    void answersClicks()
    {
        const QPoint text(90, 30), update(50, 78), later(130, 78);
        const char* const page = "https://a.test/monitor/";
        const struct {
            int type;
            const char* taskId;
            const char* versionFile;
            QPoint place;
            Qt::MouseButton button;
            bool closes;
            const char* opened;
        } rows[] = {
            {TaskAdded, "42", "[]", text, Qt::RightButton, true, ""},
            {NewComment, "", "[]", text, Qt::LeftButton, true, ""},
            {UpdateAvailable, "42", "[{}]", text, Qt::LeftButton, false, ""},
            {UpdateAvailable, "", "[{}]", later, Qt::LeftButton, true, ""},
            {UpdateAvailable, "", "[]", update, Qt::LeftButton, false, ""},
            {UpdateAvailable, "", "[{}]", update, Qt::LeftButton, true, page},
            {UpdateAvailable, "", "[{},{}]", update, Qt::LeftButton, true, page},
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
            QCOMPARE(m_openedPages, QLatin1String(row.opened));
            cleanup();
        }
    }

    /// Typing goes on beside a notice, and clicks on it beside a window that has to be answered.
    void leavesKeyboardToItsUser()
    {
        QDialog dialog;
        dialog.setModal(true);
        dialog.setGeometry(300, 300, 400, 60);
        QLineEdit editor(&dialog);
        NotificationForm* const before = show(QString(), TaskAdded);
        QVERIFY(QTest::qWaitForWindowExposed(before));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        NotificationForm* const after = show(QString(), UpdateAvailable);
        QVERIFY(QTest::qWaitForWindowExposed(after));
        RealInput::pressKeys(QKeySequence(Qt::Key_X));
        QTRY_COMPARE(editor.text(), QStringLiteral("x"));

        QVERIFY(before->windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
        QTest::mouseClick(before->windowHandle(), Qt::LeftButton, {}, {90, 30});
        QTest::mouseClick(after->windowHandle(), Qt::LeftButton, {}, {130, 78});
        QVERIFY(before->isClosing() && after->isClosing());
    }

    void keepsWhatDoesNotFit()
    {
        const int count = room();
        const QStringList texts = showMany(2 * count + 1);
        QCOMPARE(shownTexts(), QStringList(texts.mid(0, count)));

        // The lowest goes, the others close the gap, the oldest that waits comes on top.
        shownNotices().constFirst()->fadeOut();
        QTRY_COMPARE(shownTexts(), QStringList(texts.mid(1, count)));
        QVERIFY(standAbove(0));

        // The bell lets a fading one be, whose end makes room for the first that waits.
        shownNotices().constFirst()->fadeOut();
        manager()->toggle();
        QCOMPARE(shownTexts(), QStringList(texts.mid(1, 1)));
        QTRY_COMPARE(shownTexts(), QStringList(texts.mid(count + 1, 1)));
        // What it hid came last, and now this one; it brings back as many as there is room.
        manager()->toggle();
        QVERIFY(shownNotices().isEmpty());
        manager()->toggle();
        QCOMPARE(shownTexts(), QStringList(texts.mid(count + 2) + texts.mid(2, 1)));
        shownNotices().constFirst()->fadeOut();
        QTRY_COMPARE(shownTexts().constLast(), texts[3]);
    }

    void standsAboveMainForm()
    {
        // So high that it takes the place of one notice.
        const int height = 100;
        const QStringList texts = showMany(room());
        MainForm mainForm(height);
        for (const bool visible : {true, false}) {
            mainForm.setVisible(visible);
            QCOMPARE(shownTexts(), QStringList(texts.mid(0, room() - visible)));
            QVERIFY(standAbove(visible ? height : 0));
        }
    }

    void marksFollowWhatIsThere()
    {
        MainForm mainForm(73);
        QLineEdit editor;
        editor.show();
        NotificationForm* const notice = show(QString(), TaskAdded);
        QCOMPARE(mainForm.marks, QVector<bool>{true});
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        QVERIFY(QTest::qWaitForWindowExposed(notice));

        // Each comes to the front, in its place.
        const QPoint place = notice->pos();
        notice->move(0, 0);
        manager()->raiseAll();
        QCOMPARE(notice->pos(), place);
        QTRY_VERIFY(notice->isActiveWindow());

        manager()->toggle();
        QVERIFY(mainForm.marks.constLast());
        manager()->toggle();
        shownNotices().constFirst()->fadeOut();
        QTRY_VERIFY(!mainForm.marks.constLast());
    }

    void tellsOfOneUpdate()
    {
        show(QStringLiteral("1.2"), UpdateAvailable);
        const QStringList others = showMany(room());
        const QStringList newest{notificationText(QStringLiteral("1.4"), UpdateAvailable)};
        for (const char* version : {"1.3", "1.4"})
            show(QLatin1String(version), UpdateAvailable);
        QTRY_COMPARE(shownTexts(), others);
        manager()->closeAll();
        manager()->showPending();
        QCOMPARE(shownTexts(), newest);
    }

    void closesByTimeOrOnEscape()
    {
        // What the bell has hidden keeps its time for later.
        show(QStringLiteral("hidden"));
        manager()->toggle();
        for (const int type : {PlainNotification, TaskRemoved, TeamRemoved})
            show(QString(), type);
        NotificationForm* const staying = show(QStringLiteral("1.3"), UpdateAvailable);
        QElapsedTimer time;
        time.start();
        const QStringList left{staying->accessibleName(), QStringLiteral("hidden")};
        QTRY_COMPARE_WITH_TIMEOUT(shownTexts(), left, 20000);
        QVERIFY(time.elapsed() > 4000 && time.elapsed() < 12000);
        QTest::keyClick(staying, Qt::Key_Escape);
        QTRY_COMPARE(shownTexts(), QStringList(left.mid(1)));
    }

private:
    QString m_openedPages;
};

TESSAPORT_TEST_MAIN(NotificationsTest, QApplication)

#include "tst_notifications.moc"
