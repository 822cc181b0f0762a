// SPDX-License-Identifier: GPL-3.0-or-later
#include "Strip.h"

#include "desktop/AutoRun.h"
#include "dialogs/AboutForm.h"
#include "dialogs/CalendarForm.h"
#include "dialogs/LoginForm.h"
#include "dialogs/TaskForm.h"
#include "dialogs/TaskListForm.h"
#include "mainwindow/TimeText.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QScreen>

/// What the strip shows, and what it opens.
class StripTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }

    void showsItsState()
    {
        Strip strip;
        for (const char* network : {"Online", "Offline"}) {
            const bool isOnline = qstrcmp(network, "Online") == 0;
            const auto looks = [&](const char* form) {
                return strip.look() == QString::fromUtf8(form).arg(QLatin1String(network));
            };
            strip.session->setIsOnline(isOnline);
            emit strip.service->onlineChanged(QStringLiteral("Причина. "));
            QCOMPARE(shownNotices().constFirst(),
                     isOnline ? QStringLiteral("0 Причина. Переход в онлайн-режим.")
                              : QStringLiteral("0 Причина. Переход в оффлайн-режим."));
            strip.play->click();
            QVERIFY2(looks("pbPause_%1 pbAttention_Active_normal trayActive_attention pbTask Стоп"),
                     qPrintable(strip.look()));
            strip.play->click();
            QVERIFY2(
                looks("pbPlay_%1 pbAttention_Active_normal trayNotactive_attention pbTask Старт"),
                qPrintable(strip.look()));
            NotificationManager::instance()->closeAll();
            strip.form->updateAttention();
            strip.invoke("onStartTimerShortcut_activated");
            QVERIFY2(looks("pbPause_%1 pbAttention_NoActive_normal trayActive pbTask Стоп"),
                     qPrintable(strip.look()));
            QVERIFY(strip.play->isChecked());
            strip.invoke("onStopTimerShortcut_activated");
            QVERIFY2(looks("pbPlay_%1 pbAttention_NoActive_normal trayNotActive pbTask Старт"),
                     qPrintable(strip.look()));
            QVERIFY(!strip.play->isChecked());
        }
    }

    void clockShowsEitherTime()
    {
        Strip strip;
        strip.session->setTodayActivetime(QTime(1, 31));
        strip.session->syncDisplayActivetime();
        strip.session->setTodayWorktime(QTime(2, 30));
        emit strip.service->timesUpdated();
        const QString today = QStringLiteral("Сегодня: 02:30:00");
        const QString active = QStringLiteral("Активного: 01:31:00");
        QCOMPARE(strip.clock(), today);
        strip.press("lbActivity");
        QCOMPARE(strip.clock(), active);
        strip.press("lbClock");
        QCOMPARE(strip.clock(), today);

        strip.session->setTaskID(QStringLiteral("2"));
        strip.session->setTaskActiveTime(QStringLiteral("2"), QTime(0, 1));
        strip.session->setTodayActivetime(QTime(1, 32)); // not shown yet
        strip.invoke("showActivityMessage");
        QCOMPARE(shownNotices(),
                 QStringList(QStringLiteral(
                     "0 Вы работаете по задаче \"Задача 2\" в команде \"Команда\". Активное время "
                     "за сегодня 1ч. 32мин. Активное время по задаче 1мин.")));
    }

    void overdueLabels()
    {
        Strip strip;
        const auto shown = [&] { return strip.text("lbOverdue") + strip.text("lbOverdueTime"); };
        const QString none = QStringLiteral("--");
        Task late = task("1");
        late.deadline = QDateTime::currentDateTime().addSecs(60);
        strip.session->setTasks({late, unassignedTask()}, teamId);
        QCOMPARE(shown(), none);
        late.deadline = QDateTime::currentDateTime().addSecs(-2 * 3600 - 5);
        strip.session->setTasks({late, unassignedTask()}, teamId);
        const QString overdue = QStringLiteral("Просрочено:2ч. ");
        QCOMPARE(shown(), overdue);
        for (const char* name : {"lbOverdue", "lbOverdueTime"})
            QCOMPARE(strip.part(name)->toolTip(),
                     late.deadline.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        // It moves on with the clock, and with the deadline.
        strip.part("lbOverdueTime")->setProperty("text", QString());
        strip.invoke("clock");
        QCOMPARE(shown(), overdue);
        strip.part("lbOverdueTime")->setProperty("text", QString());
        emit strip.session->overdueTimeChanged();
        QCOMPARE(shown(), overdue);
        for (const char* other : {"2", "0", ""}) {
            strip.session->setTaskID(QStringLiteral("1"));
            QCOMPARE(shown(), overdue);
            strip.session->setTaskID(QLatin1String(other));
            QCOMPARE(shown(), none);
        }
    }

    void trayAndMenu()
    {
        Strip strip;
        strip.form->show();
        QVERIFY(strip.tray->isVisible());
        const auto click = [&](QSystemTrayIcon::ActivationReason reason) {
            emit strip.tray->activated(reason);
            return strip.form->isVisible() && !strip.form->isMinimized();
        };
        QVERIFY(!click(QSystemTrayIcon::Trigger));
        QVERIFY(!click(QSystemTrayIcon::DoubleClick)); // of the same two clicks
        QVERIFY(click(QSystemTrayIcon::DoubleClick));
        QVERIFY(!click(QSystemTrayIcon::Trigger));
        QVERIFY(click(QSystemTrayIcon::Trigger));
        QVERIFY(click(QSystemTrayIcon::Context));

        QMenu* const menu = strip.tray->contextMenu();
        auto* const button = static_cast<QPushButton*>(strip.part("pbMenu"));
        QCOMPARE(button->menu(), menu);
        // The pointer has gone elsewhere when it is closed.
        QCursor::setPos(strip.form->pos() - QPoint(50, 50));
        button->setAttribute(Qt::WA_UnderMouse);
        menu->popup(strip.form->pos());
        menu->close();
        QVERIFY(!button->underMouse());
        QStringList items;
        for (const QAction* item : menu->actions())
            items << item->text();
        QCOMPARE(items.join(QLatin1Char('|')),
                 QStringLiteral("Старт|Спрятать|Сменить учетную запись|Автозапуск||О программе||"
                                "Выход"));
        // What the system has, and has to have.
        QAction* const autostart = menu->actions()[3];
        for (const bool isOn : {true, false}) {
            autostart->trigger();
            QCOMPARE(AutoRun(nullptr).isEnabled(), isOn);
            Strip another;
            QCOMPARE(another.tray->contextMenu()->actions()[3]->isChecked(), isOn);
        }
    }

    /// Runs on a desktop with a tray and on one without.
    void hidesWithAWayBack()
    {
        const bool hasTray = QSystemTrayIcon::isSystemTrayAvailable();
        Strip strip;
        const QAction* const toggle = strip.tray->contextMenu()->actions()[1];
        strip.form->show();
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        QCOMPARE(strip.form->pos(), area.bottomRight() - QPoint(392, 73));
        strip.press("lbComment");
        const auto* list = visibleForm<TaskListForm>();
        QVERIFY(list);
        const std::function<void()> ways[] = {
            [&] { static_cast<QPushButton*>(strip.part("pbMinimize"))->click(); },
            [&] { strip.invoke("on_actionToggleVisible_triggered"); },
            [&] {
                // The key that is on its way to a dialog would close it.
                QKeyEvent key(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                QApplication::sendEvent(strip.form.get(), &key);
                QVERIFY(strip.form->isVisible());
                QApplication::setActiveWindow(strip.form.get());
                QTest::keyClick(strip.form.get(), Qt::Key_Escape);
            }};
        for (const auto& hide : ways) {
            hide();
            QCOMPARE(strip.form->isVisible(), !hasTray);
            QCOMPARE(strip.form->isMinimized(), !hasTray);
            QVERIFY(!list->isVisible());
            QCOMPARE(toggle->text(), hasTray ? QStringLiteral("Показать") : toggle->text());
            // As the tray's menu does it, and the desktop.
            if (hasTray)
                strip.invoke("on_actionToggleVisible_triggered");
            else
                strip.form->showNormal();
            QVERIFY(strip.form->isVisible() && !strip.form->isMinimized() && list->isVisible());
            QCOMPARE(toggle->text(), QStringLiteral("Спрятать"));
        }
        // The tray has ended since it was hidden there.
        strip.form->hide();
        strip.invoke("updateComments");
        QCOMPARE(strip.form->isMinimized(), !hasTray);
    }

    void opensItsWindows()
    {
        Strip strip;
        strip.form->show();
        QVERIFY(!visibleForm<TaskListForm>());
        strip.press("lbComment");
        // The only team's, which no change of an index has built.
        auto* list = visibleForm<TaskListForm>();
        QVERIFY(list);
        QCOMPARE(list->findChild<QListWidget*>()->count(), 2);
        strip.press("lbComment");
        QVERIFY(!list->isVisible());

        // A pick counts when it is confirmed.
        strip.session->setTasks({task("1"), task("2", 1), unassignedTask()}, teamId);
        for (const bool isConfirmed : {false, true}) {
            strip.press("lbTask");
            auto* picker = visibleForm<TaskForm>();
            QVERIFY(picker);
            QCOMPARE(picker->selectedTaskId(), QStringLiteral("1"));
            auto* const tasks = picker->findChild<QComboBox*>(QStringLiteral("cbTask"));
            QCOMPARE(nameOf(tasks->itemIcon(1)), QStringLiteral("pbTaskUrgentGrey"));
            tasks->setCurrentIndex(1);
            QVERIFY(QTest::qWaitForWindowExposed(picker));
            strip.session->setTeamID(QString());
            isConfirmed ? picker->accept() : picker->reject();
            QCOMPARE(strip.session->teamID() + strip.session->taskID(),
                     isConfirmed ? teamId + QLatin1Char('2') : QStringLiteral("1"));
            strip.session->setTeamID(teamId);
        }

        for (int i = 0; i < 2; ++i) {
            strip.invoke("on_actionAbout_triggered");
            auto* about = visibleForm<AboutForm>();
            QVERIFY(about && !about->isMinimized());
            QCOMPARE(labelText(*about, "lbUpdateInfo"), QStringLiteral("Проверка обновления..."));
            about->showMinimized();
        }

        strip.play->click();
        QVERIFY(opens<LoginForm>(strip, "on_actionChangeAccount_triggered"));
        QVERIFY(!strip.session->active());

        // The bell hides what there is to tell, and it goes with the strip.
        NotificationManager::instance()->showPlain(QStringLiteral("весть"));
        for (const int count : {0, 1}) {
            static_cast<QPushButton*>(strip.part("pbNotice"))->click();
            QCOMPARE(shownNotices().size(), count);
        }
        strip.form.reset();
        QVERIFY(shownNotices().isEmpty());
    }

    void asksForALaterDeadline()
    {
        Strip strip;
        QCOMPARE(strip.picture("pbTimeExtend"), QStringLiteral("pbTimeExtend_NoActive_normal"));
        QVERIFY(opens<CalendarForm>(strip, "on_pbTimeExtend_clicked"));
        const QStringList refusal(
            QStringLiteral("0 Для данной задачи невозможно выполнить перенос дедлайна."));
        for (const QString& team : {teamId, QString(teamWithoutDeadlines)}) {
            NotificationManager::instance()->closeAll();
            strip.session->setTeamID(team);
            strip.session->setTaskID(team == teamId ? QString(unassignedTaskId)
                                                    : QStringLiteral("1"));
            QVERIFY(!opens<CalendarForm>(strip, "on_pbTimeExtend_clicked"));
            QCOMPARE(shownNotices(), refusal);
        }
        // The one that was cancelled lives as long as the strip.
        strip.form.reset();
        for (const QWidget* window : QApplication::topLevelWidgets())
            QVERIFY(!qobject_cast<const CalendarForm*>(window));
    }

    void overdueTexts()
    {
        const QPair<QDateTime, const char*> rows[] = {
            {{{2020, 5, 15}, {12, 0}}, ""},         {{{2020, 5, 15}, {11, 59, 30}}, ""},
            {{{2020, 5, 15}, {11, 45}}, "15 мин."}, {{{2020, 5, 14}, {22, 0}}, "14ч. "},
            {{{2020, 5, 14}, {11, 0}}, "1д. 1ч. "}, {{{2020, 5, 13}, {8, 45}}, "2д. 3ч. 15 мин."}};
        for (const auto& [deadline, text] : rows)
            QCOMPARE(overdueText(deadline, QDateTime({2020, 5, 15}, {12, 0})),
                     QString::fromUtf8(text));
        QCOMPARE(durationText({0, 59, 59}), QStringLiteral("59мин"));
        QCOMPARE(durationText({1, 0}), QStringLiteral("1ч. 0мин"));
    }

private:
    /// Whether the slot waits for such a dialog, which is cancelled.
    template <class Form> static bool opens(Strip& strip, const char* slot)
    {
        bool isOpen = false;
        QTimer::singleShot(0, strip.form.get(), [&isOpen] {
            const auto form = visibleForm<Form>();
            isOpen = form;
            if (!form)
                return;
            QVERIFY(QTest::qWaitForWindowExposed(form));
            form->reject();
        });
        strip.invoke(slot);
        QCoreApplication::processEvents();
        return isOpen;
    }
};

TESSAPORT_TEST_MAIN(StripTest, QApplication)

#include "tst_strip.moc"
