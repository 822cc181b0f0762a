// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"
#include "mainwindow/AbstractMainForm.h"
#include "notifications/NotificationForm.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "session/DataDirectory.h"
#include "support/FastClock.h"
#include "support/Files.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/ElevatedStart.h"
#include "update/UpdateState.h"

#include <QDesktopServices>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <QTextFrame>
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

NotificationForm* show(const QString& message, int type, const QString& taskId = QString())
{
    manager()->show(message, type, taskId);
    return shownNotices().constLast();
}

/// How many notices have room one above the other, the lowest on a window of this height.
int room(int height = 0)
{
    return (QGuiApplication::primaryScreen()->availableGeometry().height() - 1 - height) / 100;
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
struct MainForm : AbstractMainForm {
    MainForm() { manager()->setMainForm(this); }
    ~MainForm() override { manager()->setMainForm(nullptr); }
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
            "%1 <b>Я</b>",
            "Добавлена новая команда \"%1 <b>Я</b>\"",
            "Вы больше не являетесь членом команды \"%1 <b>Я</b>\"",
            "Добавлена новая задача \"%1 <b>Я</b>\"",
            "Задача \"%1 <b>Я</b>\" более недоступна",
            "К задаче \"%1 <b>Я</b>\" добавлен новый комментарий",
            "Доступно новое обновление Tessaport Team %1 <b>Я</b>",
            "Дедлайн задачи \"%1 <b>Я</b>\" был изменён",
            "Задача \"%1 <b>Я</b>\" помечена как блокирующая",
            "Задача \"%1 <b>Я</b>\" более не является блокирующей",
            "Добавлена новая блокируюшая задача \"%1 <b>Я</b>\"",
        };
        const QVector<int> closing{0, 2, 4, 7, 11}, leading{3, 5, 8, 9, 10};
        for (int type = 0; type <= 11; ++type) {
            const QString taskId = QString::number(40 + type);
            NotificationForm* const notice = show(QStringLiteral("%1 <b>Я</b>"), type, taskId);
            QCOMPARE(notice->accessibleName(), QString::fromUtf8(texts[type % 11]));
            const QTextEdit* const text = notice->findChild<QTextEdit*>();
            QCOMPARE(text->toPlainText(), notice->accessibleName());
            QCOMPARE(text->document()->defaultTextOption().alignment(), Qt::AlignHCenter);
            QVERIFY(type != 0 || text->document()->rootFrame()->frameFormat().topMargin() > 10);
            for (const QPushButton* button : notice->findChildren<QPushButton*>()) {
                QCOMPARE(button->isVisible(), type == UpdateAvailable);
                // The style sheet goes by it.
                QCOMPARE(button->objectName(), QStringLiteral("pbTessaport"));
            }
            QCOMPARE(closesByItself(type), closing.contains(type));
            // The second click finds it fading.
            for (int click = 0; click < 2; ++click)
                QTest::mouseClick(notice, Qt::LeftButton);
            QCOMPARE(m_openedPages,
                     leading.contains(type) ? QStringLiteral("https://a.test/task?id=") + taskId
                                            : QString());
            cleanup();
        }
    }

    void scrollsOnlyDown()
    {
        const auto* text = show(QString(10000, QLatin1Char('W')), 0)->findChild<QTextEdit*>();
        QCOMPARE(text->horizontalScrollBar()->maximum(), 0);
        QVERIFY(text->verticalScrollBar()->maximum() > 0);
    }

    void answersClicks()
    {
        // Clicks twice, for some of them fade then; tells what became of the notice and which page
        // was opened.
        const auto click = [this](int type, const QPoint& place, const char* versionFile = "[]",
                                  Qt::MouseButton button = Qt::LeftButton) {
            UpdateState::instance()->setUpdateInfo(versionFile);
            NotificationForm* const notice = show(QString(), type, QStringLiteral("42"));
            QWidget* const part = notice->childAt(place);
            for (int i = 0; i < 2; ++i)
                QTest::mouseClick(part ? part : notice, button);
            m_openedPages.prepend(QLatin1String(notice->isClosing() ? "goes " : "stays "));
            const QString outcome = m_openedPages;
            cleanup();
            return outcome;
        };
        const QPoint text(90, 30), update(50, 78), later(130, 78);
        const QString goes = QStringLiteral("goes "), stays = QStringLiteral("stays ");
        QCOMPARE(click(TaskAdded, text, "[]", Qt::RightButton), goes);
        QCOMPARE(click(UpdateAvailable, text, "[{}]"), stays);
        QCOMPARE(click(UpdateAvailable, later, "[{}]"), goes);
        QCOMPARE(click(UpdateAvailable, update), stays);
        QTest::ignoreMessage(QtWarningMsg, R"(Eror runWinAppAsAdmin "TPMC-update.exe" 2)");
        for (const char* versionFile : {"[{}]", "[{},{}]"})
            QCOMPARE(click(UpdateAvailable, update, versionFile),
                     goes + QStringLiteral("https://a.test/monitor/"));

        // Unlike at the start, the update program is told nothing.
        if (QSysInfo::kernelType() == QLatin1String("winnt"))
            return;
        QVERIFY(QDir::setCurrent(QDir::homePath()));
        writeFile(updateProgram, "#!/bin/sh\necho $# >told\n");
        QFile::setPermissions(updateProgram, QFile::ReadOwner | QFile::ExeOwner);
        QCOMPARE(click(UpdateAvailable, update, "[{},{}]"), goes);
        QTRY_COMPARE(contentOf(QStringLiteral("told")), QByteArray("0\n"));
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

        const QWindow* const window = before->windowHandle();
        QVERIFY(window->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
        QTest::mouseClick(before->windowHandle(), Qt::LeftButton, {}, {90, 30});
        QTest::mouseClick(after->windowHandle(), Qt::LeftButton, {}, {130, 78});
        QVERIFY(before->isClosing() && after->isClosing());
        dialog.hide();
        QVERIFY(!window->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
    }

    void keepsWhatDoesNotFit()
    {
        const int count = room();
        const QStringList texts = showMany(2 * count + 1);
        QCOMPARE(shownTexts(), QStringList(texts.mid(0, count)));

        // The lowest goes, the others close the gap, the oldest that waits comes on top.
        shownNotices().constFirst()->fadeOut();
        QTRY_COMPARE(shownTexts(), QStringList(texts.mid(1, count)));
        QTRY_VERIFY(standAbove(0));

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

    void followsMainForm()
    {
        // The notices are there first; it takes the place of some.
        const QStringList texts = showMany(room());
        MainForm mainForm;
        mainForm.setFixedHeight(250);
        for (const bool visible : {true, false}) {
            const int height = visible ? 250 : 0;
            mainForm.setVisible(visible);
            QCOMPARE(shownTexts(), QStringList(texts.mid(0, room(height))));
            QTRY_VERIFY(standAbove(height));
        }
        // A new one knows the window, too.
        cleanup();
        mainForm.show();
        show(QString(), TaskAdded);
        QVERIFY(standAbove(250));
    }

    void marksFollowNotices()
    {
        MainForm mainForm;
        NotificationForm* const notice = show(QString(), TaskAdded);
        QVERIFY(QTest::qWaitForWindowExposed(notice));
        notice->move(0, 0);
        manager()->raiseAll();
        QTRY_VERIFY(standAbove(0));
        QTRY_VERIFY(notice->isActiveWindow());

        manager()->toggle();
        QVERIFY(manager()->hasNotifications());
        manager()->toggle();
        QCOMPARE(mainForm.marks, QVector<bool>(2, true));
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
        // What the bell has hidden keeps its time for later, and what is hidden has none.
        show(QStringLiteral("hidden"), PlainNotification);
        manager()->toggle();
        NotificationForm unseen(QString(), PlainNotification, QString(), nullptr);
        unseen.show();
        unseen.hide();
        for (const int type : {PlainNotification, TaskRemoved, TeamRemoved})
            show(QString(), type);
        NotificationForm* const staying = show(QStringLiteral("1.3"), UpdateAvailable);
        passTime(4500, 50);
        QCOMPARE(shownTexts().size(), 4);
        passTime(2000, 50);
        const QStringList left{staying->accessibleName(), QStringLiteral("hidden")};
        QCOMPARE(shownTexts(), left);
        QVERIFY(!unseen.isClosing());
        QTest::keyClick(staying, Qt::Key_Escape);
        passTime(500, 50);
        QCOMPARE(shownTexts(), QStringList(left.mid(1)));
    }

private:
    QString m_openedPages;
};

TESSAPORT_TEST_MAIN(NotificationsTest, QApplication)

#include "tst_notifications.moc"
