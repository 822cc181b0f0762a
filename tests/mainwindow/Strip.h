// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "capture/UserActivityWatcher.h"
#include "dialogs/PanelFixture.h"
#include "mainwindow/MainForm.h"
#include "notifications/NotificationManager.h"
#include "support/Files.h"
#include "support/Notices.h"
#include "update/UpdateState.h"

#include <QAction>
#include <QJsonDocument>
#include <QPushButton>

inline const QString teamId = QStringLiteral("17");

inline Task task(const char* id, int importance = 0, const char* block = "")
{
    Task task = makeTask(id, QByteArray("Задача ").append(id).constData());
    task.importance = importance;
    task.block = QLatin1String(block);
    return task;
}

/// The name of the picture that the icon shows; empty when it is another one.
inline QString nameOf(const QIcon& icon)
{
    for (const char* name :
         {"images/pbTask", "images/pbTaskUrgentGrey", "images/pbTaskBlocked", "icons/trayActive",
          "icons/trayNotActive", "icons/trayActive_attention", "icons/trayNotactive_attention"}) {
        const QIcon known(QStringLiteral(":/%1.png").arg(QLatin1String(name)));
        if (icon.pixmap(16).toImage() == known.pixmap(16).toImage())
            return QString::fromLatin1(name).section(QLatin1Char('/'), 1);
    }
    return {};
}

/// A strip over a signed-in session with a chosen task, and no service to be reached: every report
/// stays on disk.
struct Strip {
    explicit Strip(bool active = false, const QString& taskId = QStringLiteral("1"))
    {
        NotificationManager::instance()->closeAll();
        QDir(QDir::homePath() + QStringLiteral("/.tessaport")).removeRecursively();
        service = std::make_unique<TessaPort>();
        UpdateState::instance()->init(service.get());
        session = service->session();
        session->load(QStringLiteral("a@b"), QStringLiteral("p"));
        session->setIsOnline(false);
        session->setWorktimeDate(QDate::currentDate());
        session->setTeams({{teamId, QStringLiteral("Команда")}});
        session->setTeamID(teamId);
        session->setTasks({task("1"), task("2"), unassignedTask()}, teamId);
        session->setTaskID(taskId);
        session->setActive(active);
        form = std::make_unique<MainForm>(service.get(), nullptr);
        action = form->findChild<QAction*>(QStringLiteral("actionStartStop"));
        play = form->findChild<QPushButton*>(QStringLiteral("pbPlay"));
        tray = form->findChild<QSystemTrayIcon*>();
    }

    void invoke(const char* slot, int count = 1)
    {
        for (int i = 0; i < count; ++i)
            QVERIFY(QMetaObject::invokeMethod(form.get(), slot));
    }

    /// So many slots, with input in those of the given numbers.
    void slotsPass(int count, const QList<int>& withInput = {})
    {
        for (int i = 0; i < count; ++i) {
            if (withInput.contains(i))
                emit UserActivityWatcher::instance()->wasActivity();
            invoke("sendActivity");
        }
    }

    QWidget* part(const char* name) const { return form->findChild<QWidget*>(QLatin1String(name)); }
    void press(const char* name) { QTest::mousePress(part(name), Qt::LeftButton); }
    /// Of a part that shows any; "-" when it is hidden.
    QString text(const char* name) const
    {
        return part(name)->isHidden() ? QStringLiteral("-") : labelText(*form, name);
    }
    QString clock() const { return text("lbActivity") + text("lbClock"); }

    /// The picture of a button at rest; empty when those of its other states are not of a kind.
    QString picture(const char* name) const
    {
        const QRegularExpression sheet(QStringLiteral(
            R"(^[^:]+: url\((:/[\w/]+/)(pbPlay_Disabled|(\w+?)(_normal)?)\.png)"
            R"((?(3).*:hover.*\1\3_[Hh]overedl?\.png.*:pressed.*\1\3_(\w*clicked|Pressed)\.))"));
        return sheet.match(part(name)->styleSheet()).captured(2);
    }

    /// The pictures of the play button, the bell, the tray and the task, and what the menu offers.
    QString look() const
    {
        const auto icon = static_cast<QPushButton*>(part("pbTask"))->icon();
        return QStringList({picture("pbPlay"), picture("pbNotice"), nameOf(tray->icon()),
                            nameOf(icon), action->text()})
            .join(QLatin1Char(' '));
    }

    /// The records on disk, those of minutes by their count of active slots, pictures as -1.
    QList<int> reports() const
    {
        const QDir dir(service->dataDir().filePath(QStringLiteral("a@b/activity")));
        QList<int> result;
        for (const QString& name : dir.entryList({QStringLiteral("json*")}, QDir::Files)) {
            const QJsonValue body =
                QJsonDocument::fromJson(contentOf(dir.filePath(name)))[QLatin1String("body")];
            result.append(body[QLatin1String("active")].toString(QStringLiteral("-1")).toInt());
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    std::unique_ptr<TessaPort> service;
    Session* session = nullptr;
    std::unique_ptr<MainForm> form;
    QAction* action = nullptr;
    QPushButton* play = nullptr;
    QSystemTrayIcon* tray = nullptr;
};
