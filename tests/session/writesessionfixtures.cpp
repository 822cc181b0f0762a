// SPDX-License-Identifier: GPL-3.0-or-later

// write_session_fixtures FOLDER
//
// Writes a config.ini and the four ini files of a user into the folder, with nothing but Qt: the
// structures, their streams and the order of saving are this program's own.

#include <QCoreApplication>
#include <QDataStream>
#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QMetaType>
#include <QSettings>
#include <QUrl>

struct Task {
    QString id, title;
    QDateTime deadline;
    QString block;
    QDateTime lastComment;
    int importance = 0;
};

struct Attachment {
    QString id, filename, filenameOrig, size;
};

struct Keyword {
    QString id, keyword, count, count2;
};

struct TextTask {
    QString id, text, title, minCount;
    QUrl page;
    QString task;
    QList<Keyword> keywords;
};

struct TaskInfo {
    QString id, title;
    QDateTime deadline;
    QString text, executorName, creatorName, auditorName;
    QList<Attachment> files;
    QList<TextTask> texts;
};

Q_DECLARE_METATYPE(Task)
Q_DECLARE_METATYPE(TaskInfo)

QDataStream& operator<<(QDataStream& s, const Task& t)
{
    return s << t.id << t.title << t.deadline << t.block << t.lastComment << t.importance;
}
QDataStream& operator>>(QDataStream& s, Task& t)
{
    return s >> t.id >> t.title >> t.deadline >> t.block >> t.lastComment >> t.importance;
}
QDataStream& operator<<(QDataStream& s, const Attachment& a)
{
    return s << a.id << a.filename << a.filenameOrig << a.size;
}
QDataStream& operator>>(QDataStream& s, Attachment& a)
{
    return s >> a.id >> a.filename >> a.filenameOrig >> a.size;
}
QDataStream& operator<<(QDataStream& s, const Keyword& k)
{
    return s << k.id << k.keyword << k.count << k.count2;
}
QDataStream& operator>>(QDataStream& s, Keyword& k)
{
    return s >> k.id >> k.keyword >> k.count >> k.count2;
}
QDataStream& operator<<(QDataStream& s, const TextTask& t)
{
    return s << t.id << t.text << t.title << t.minCount << t.page << t.task << t.keywords;
}
QDataStream& operator>>(QDataStream& s, TextTask& t)
{
    return s >> t.id >> t.text >> t.title >> t.minCount >> t.page >> t.task >> t.keywords;
}
QDataStream& operator<<(QDataStream& s, const TaskInfo& i)
{
    return s << i.id << i.title << i.deadline << i.text << i.executorName << i.creatorName
             << i.auditorName << i.files << i.texts;
}
QDataStream& operator>>(QDataStream& s, TaskInfo& i)
{
    return s >> i.id >> i.title >> i.deadline >> i.text >> i.executorName >> i.creatorName
        >> i.auditorName >> i.files >> i.texts;
}

namespace {

void writeSession(const QString& path)
{
    QSettings session(path, QSettings::IniFormat);
    session.setValue(QStringLiteral("password"), QStringLiteral("@Пароль, \"x\"; = \\n%"));
    session.setValue(QStringLiteral("logged"), true);
    session.setValue(QStringLiteral("active"), true);
    session.setValue(QStringLiteral("teamID"), QStringLiteral("17"));
    session.setValue(QStringLiteral("taskID"), QStringLiteral("101"));
    session.setValue(QStringLiteral("isOnline"), false);
    session.setValue(QStringLiteral("worktimeDate"), QDate(2025, 5, 12).toString(Qt::TextDate));
    session.setValue(QStringLiteral("todayWorktime"), QTime(1, 2, 59).toString(Qt::TextDate));
    session.setValue(QStringLiteral("todayActivetime"), QTime(0, 47, 1).toString(Qt::TextDate));
    session.setValue(QStringLiteral("task2activeTimeMap"),
                     QVariantMap{{QString(), QTime(0, 30)}, {QStringLiteral("101"), QTime(0, 47)}});
}

void writeTeams(const QString& path)
{
    QSettings teams(path, QSettings::IniFormat);
    teams.setValue(QStringLiteral("17"), QStringLiteral("Контент, новости"));
    teams.setValue(QStringLiteral("205"), QStringLiteral("@Дизайн \"А\""));
    teams.setValue(QStringLiteral("2192"), QString());
    teams.setValue(QStringLiteral("9/Отдел 1%"), QStringLiteral("Ключ с чертой"));
}

void writeTasks(const QString& path)
{
    const QDateTime noon(QDate(2025, 5, 12), QTime(12, 0));
    const Task unassigned{
        QStringLiteral("0"), QStringLiteral("Прочие непоставленные задачи"), {}, {}, {}, 0};
    const QList<Task> content{
        {QStringLiteral("101"), QStringLiteral("Обзор «ноутбуков»"), noon, QString(), {}, 2},
        {QStringLiteral("102"), QStringLiteral("Blocked"), {}, QStringLiteral("1"), noon, -1},
        {QStringLiteral("103"), QString(), noon, QStringLiteral("0"), noon.addSecs(1), 0},
        unassigned,
    };
    QSettings tasks(path, QSettings::IniFormat);
    tasks.setValue(QStringLiteral("17"), QVariant::fromValue(content));
    tasks.setValue(QStringLiteral("205"), QVariant::fromValue(QList<Task>{unassigned}));
    tasks.setValue(QStringLiteral("400"), QVariant::fromValue(QList<Task>()));
    tasks.setValue(QStringLiteral("9/Отдел 1%"), QVariant::fromValue(QList<Task>{unassigned}));
}

void writeTaskInfos(const QString& path)
{
    TaskInfo full;
    full.id = QStringLiteral("101");
    full.title = QStringLiteral("Обзор «ноутбуков»");
    full.deadline = QDateTime(QDate(2025, 5, 12), QTime(12, 0));
    full.text = QStringLiteral("Первая строка\nвторая\tстрока; <b>разметка</b>");
    full.executorName = QStringLiteral("Анна");
    full.creatorName = QStringLiteral("O'Neil");
    full.files = {{QStringLiteral("1"), QStringLiteral("a1.png"), QStringLiteral("Снимок.png"),
                   QStringLiteral("12 kB?")},
                  {QStringLiteral("2"), QString(), QString(), QStringLiteral("0")}};
    full.texts = {{QStringLiteral("7"),
                   QStringLiteral("Текст"),
                   QStringLiteral("Заголовок"),
                   QStringLiteral("1500"),
                   QUrl(QStringLiteral("https://example.com/стр?q=1&b=%20#x")),
                   QStringLiteral("Задание"),
                   {{QStringLiteral("71"), QStringLiteral("купить ноутбук"), QStringLiteral("3"),
                     QStringLiteral("много")},
                    {QStringLiteral("72"), QString(), QString(), QString()}}},
                  {QStringLiteral("8"), QString(), QString(), QString(), QUrl(), QString(), {}}};
    TaskInfo bare;
    bare.id = QStringLiteral("102");
    QSettings infos(path, QSettings::IniFormat);
    infos.setValue(QStringLiteral("0"), QVariant::fromValue(TaskInfo()));
    infos.setValue(QStringLiteral("101"), QVariant::fromValue(full));
    infos.setValue(QStringLiteral("102"), QVariant::fromValue(bare));
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QLocale::setDefault(QLocale::c());
    qRegisterMetaTypeStreamOperators<QList<Task>>("QList<Task>");
    qRegisterMetaTypeStreamOperators<TaskInfo>("TaskInfo");

    const QString login = QStringLiteral("anna@example.com");
    const QDir folder(application.arguments().value(1));
    folder.mkpath(login);
    QSettings(folder.filePath(QStringLiteral("config.ini")), QSettings::IniFormat)
        .setValue(QStringLiteral("lastLogin"), login);
    writeSession(folder.filePath(login + QStringLiteral("/session.ini")));
    writeTeams(folder.filePath(login + QStringLiteral("/teams.ini")));
    writeTasks(folder.filePath(login + QStringLiteral("/tasks.ini")));
    writeTaskInfos(folder.filePath(login + QStringLiteral("/taskInfo.ini")));
    return 0;
}
