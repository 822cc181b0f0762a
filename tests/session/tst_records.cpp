// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/Records.h"

#include <QBuffer>
#include <QDataStream>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

/// The records by themselves: their streams against files that another program wrote, and what
/// they do with damaged ones.
class RecordsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { registerRecords(); }
    void blocking_data();
    void blocking();
    void tasksAreEqualById();
    void namesAreRegistered_data();
    void namesAreRegistered();
    void fixtureIsReadAndWrittenBack_data();
    void fixtureIsReadAndWrittenBack();
    void unreadDatesAreLikeMissingOnes();
    void cutStreamGivesNoHalfList();
    void impossibleCountIsSurvived();
};

namespace {

QString fixture(const QString& name)
{
    return QStringLiteral(TEST_SOURCE_DIR "/fixtures/anna@example.com/") + name;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return "no file";
    return file.readAll();
}

template <typename Value> Value readFrom(const QByteArray& content)
{
    Value value;
    QDataStream stream(content);
    stream >> value;
    return value;
}

} // namespace

void RecordsTest::blocking_data()
{
    QTest::addColumn<QString>("block");
    QTest::addColumn<bool>("expected");
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("0") << QStringLiteral("0") << false;
    QTest::newRow("1") << QStringLiteral("1") << true;
    QTest::newRow("00") << QStringLiteral("00") << true;
    QTest::newRow("blank") << QStringLiteral(" ") << true;
}

void RecordsTest::blocking()
{
    QFETCH(QString, block);
    Task task;
    task.block = block;
    QTEST(task.isBlocking(), "expected");
}

void RecordsTest::tasksAreEqualById()
{
    Task task = unassignedTask();
    QVERIFY(task.isUnassigned());
    Task other = task;
    other.title = QStringLiteral("other");
    other.id = QStringLiteral("5");
    QVERIFY(!(task == other));
    task.id = other.id;
    QVERIFY(task == other);
    QVERIFY(!task.hasSameContent(other));
    QList<Task> tasks{task, unassignedTask(), other};
    QCOMPARE(tasks.removeAll(task), 2);
}

void RecordsTest::namesAreRegistered_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"Task", "QList<Task>", "Attachment", "Keyword", "QList<Keyword>",
                             "TextTask", "QList<Attachment>", "QList<TextTask>", "TaskInfo"})
        QTest::newRow(name) << QByteArray(name);
}

void RecordsTest::namesAreRegistered()
{
    QFETCH(QByteArray, name);
    const int type = QMetaType::type(name);
    QVERIFY(type != QMetaType::UnknownType);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    QDataStream stream(&buffer);
    QVERIFY(QMetaType::save(stream, type, QVariant(type, nullptr).constData()));
}

void RecordsTest::fixtureIsReadAndWrittenBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("type");
    QTest::newRow("tasks") << QStringLiteral("tasks.ini") << qMetaTypeId<QList<Task>>();
    QTest::newRow("details") << QStringLiteral("taskInfo.ini") << qMetaTypeId<TaskInfo>();
}

void RecordsTest::fixtureIsReadAndWrittenBack()
{
    QFETCH(QString, name);
    QTemporaryDir directory;
    const QString path = directory.filePath(name);
    {
        const QSettings original(fixture(name), QSettings::IniFormat);
        QSettings copy(path, QSettings::IniFormat);
        const QStringList keys = original.allKeys();
        QVERIFY(!keys.isEmpty());
        for (const QString& key : keys) {
            QTEST(original.value(key).userType(), "type");
            copy.setValue(key, original.value(key));
        }
    }
    QCOMPARE(contentOf(path), contentOf(fixture(name)));
}

void RecordsTest::unreadDatesAreLikeMissingOnes()
{
    const QSettings settings(fixture(QStringLiteral("tasks.ini")), QSettings::IniFormat);
    const auto tasks = settings.value(QStringLiteral("17")).value<QList<Task>>();
    QCOMPARE(tasks.size(), 4);
    QVERIFY(!tasks.at(1).deadline.isValid());
    // Otherwise each start of the program would tell of deadlines that never changed.
    QVERIFY(tasks.at(1).deadline == QDateTime());
    QVERIFY(tasks.at(1).deadline
            == QDateTime::fromString(QStringLiteral("x"), QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    QVERIFY(tasks.at(0).lastComment < tasks.at(1).lastComment);
    QCOMPARE(tasks.at(0).deadline, QDateTime(QDate(2025, 5, 12), QTime(12, 0)));
    QVERIFY(tasks.last().hasSameContent(unassignedTask()));
}

void RecordsTest::cutStreamGivesNoHalfList()
{
    QByteArray content;
    QDataStream writer(&content, QIODevice::WriteOnly);
    writer << QList<Task>{unassignedTask(), Task()};
    for (int length = 0; length < content.size(); ++length) {
        QList<Task> tasks{Task()};
        QDataStream stream(content.left(length));
        stream >> tasks;
        QVERIFY2(tasks.isEmpty(), qPrintable(QString::number(length)));
        QVERIFY(stream.status() != QDataStream::Ok);
    }
}

void RecordsTest::impossibleCountIsSurvived()
{
    QByteArray content;
    QDataStream writer(&content, QIODevice::WriteOnly);
    writer << quint32(0x7FFFFFFF) << QStringLiteral("1");
    QVERIFY(readFrom<QList<Task>>(content).isEmpty());
    QVERIFY(readFrom<QList<Attachment>>(content).isEmpty());
    QVERIFY(readFrom<QList<Keyword>>(content).isEmpty());
    QVERIFY(readFrom<QList<TextTask>>(content).isEmpty());
    // By way of the meta-type system, as the ini files are read.
    QVariant list(qMetaTypeId<QList<Task>>(), nullptr);
    QDataStream stream(content);
    QMetaType::load(stream, list.userType(), list.data());
    QVERIFY(list.value<QList<Task>>().isEmpty());
}

QTEST_APPLESS_MAIN(RecordsTest)

#include "tst_records.moc"
