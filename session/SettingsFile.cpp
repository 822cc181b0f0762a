// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/SettingsFile.h"

#include "session/DataDirectory.h"

#include <QDataStream>
#include <QDebug>
#include <QFile>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSettings>
#include <QVariant>
#include <QVector>

#include <algorithm>
#include <iterator>

namespace {

// How deep lists and maps can be nested, and how long the name of a type can be, without an end of
// the stack in Qt's readers.
constexpr int maximumDepth = 600;
constexpr int maximumNameLength = 100;

int digitOf(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = char(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

// The end of the escape sequence that begins with this backslash. Qt knows no end of its digits,
// and keeps the low 16 bits.
int endOfEscape(const QByteArray& content, int backslash, bool& isAt)
{
    const bool isHex = backslash + 1 < content.size() && content.at(backslash + 1) == 'x';
    const int base = isHex ? 16 : 8;
    const int digits = backslash + (isHex ? 2 : 1);
    quint16 code = 0;
    int end = digits;
    for (; end < content.size() && digitOf(content.at(end)) < base; ++end)
        code = quint16(code * base + digitOf(content.at(end)));
    isAt = code == '@';
    return end > digits ? end : std::min(backslash + 2, content.size());
}

/// QSettings takes a value for more than a text only if it begins with '@'. So a file is looked at
/// in a copy in which a guard, "_NUMBER_", stands before every '@', and where all values are texts.
struct GuardedContent {
    explicit GuardedContent(const QByteArray& content);

    QByteArray text;
    QVector<int> places; ///< of each '@', however it is spelled, in the content without guards
};

GuardedContent::GuardedContent(const QByteArray& content)
{
    text.reserve(content.size() + content.size() / 8);
    for (int i = 0, end = 0; i < content.size(); i = end) {
        bool isAt = content.at(i) == '@';
        end = content.at(i) == '\\' ? endOfEscape(content, i, isAt) : i + 1;
        if (isAt) {
            text += '_' + QByteArray::number(places.size()) + '_';
            places.append(i);
        }
        text.append(content.constData() + i, end - i);
    }
}

QString withoutGuards(QString text)
{
    static const QRegularExpression guard(QStringLiteral("_[0-9]+_(?=@)"));
    return text.remove(guard);
}

bool isPlainType(quint32 type)
{
    constexpr quint32 plain[] = {QMetaType::Bool,     QMetaType::Int,        QMetaType::UInt,
                                 QMetaType::LongLong, QMetaType::ULongLong,  QMetaType::Double,
                                 QMetaType::QString,  QMetaType::QByteArray, QMetaType::QDate,
                                 QMetaType::QTime,    QMetaType::QDateTime};
    return std::find(std::begin(plain), std::end(plain), type) != std::end(plain);
}

bool canLoad(QDataStream& stream, int type)
{
    QVariant value(type, nullptr);
    return QMetaType::load(stream, type, value.data());
}

// Goes through a value as Qt will, but stops where it ends, and at every type that is neither plain
// nor the program's own: those read damaged content without harm.
bool isSound(QDataStream& stream, int depth)
{
    constexpr quint32 namedType = 127;
    quint32 type = 0;
    stream >> type;
    if (type == namedType) {
        QByteArray name;
        stream >> name;
        const int id = name.size() > maximumNameLength ? 0 : QMetaType::type(name.constData());
        return id >= QMetaType::User && canLoad(stream, id);
    }
    if (type == QMetaType::UnknownType) {
        QString filler;
        stream >> filler;
        return true;
    }
    if (isPlainType(type))
        return canLoad(stream, int(type));
    const bool isMap = type == QMetaType::QVariantMap;
    if (depth == maximumDepth || !(isMap || type == QMetaType::QVariantList))
        return false;

    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count; ++i) {
        QString key;
        if (isMap)
            stream >> key;
        if (!isSound(stream, depth + 1) || stream.status() != QDataStream::Ok)
            return false;
    }
    return true;
}

bool isSound(const QString& text)
{
    const QLatin1String variant("@Variant(");
    if (!text.endsWith(QLatin1Char(')')))
        return true;
    // Another mark with as much behind it, and nothing of ours is stored with it.
    if (text.startsWith(QLatin1String("@DateTime(")))
        return false;
    if (!text.startsWith(variant))
        return true;
    QDataStream stream(text.midRef(variant.size()).chopped(1).toLatin1());
    stream.setVersion(QDataStream::Qt_4_0);
    return isSound(stream, 0) && stream.status() == QDataStream::Ok && stream.atEnd();
}

} // namespace

QStringList disarmDamagedValues(const QString& path)
{
    QFile file(path);
    const GuardedContent guarded(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    file.close();
    if (guarded.places.isEmpty())
        return {};
    // Beside the file, since it may hold a password, and under one name, so that what a kill leaves
    // goes with the next look. On a full disk there is no copy; what the file holds is then taken
    // as it is, rather than lost.
    QFile copyFile(path + QStringLiteral(".check"));
    const auto removal = qScopeGuard([&copyFile] { copyFile.remove(); });
    copyFile.remove();
    if (!copyFile.open(QIODevice::WriteOnly)
        || !copyFile.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        || copyFile.write(guarded.text) != guarded.text.size() || !copyFile.flush())
        return {};

    const QSettings copy(copyFile.fileName(), QSettings::IniFormat);
    QStringList damagedKeys;
    const QStringList keys = copy.allKeys();
    for (const QString& key : keys) {
        const QStringList texts = copy.value(key).toStringList();
        for (const QString& text : texts) {
            if (isSound(withoutGuards(text)))
                continue;
            damagedKeys.append(withoutGuards(key));
            qWarning() << "A damaged value is left out:" << damagedKeys.constLast() << "in" << path;
            if (file.isOpen() || file.open(QIODevice::ReadWrite)) {
                // The first sign of '@' is its first byte, also when it is an escape sequence.
                file.seek(guarded.places.at(text.section(QLatin1Char('_'), 1, 1).toInt()));
                file.putChar('_');
            }
        }
    }
    return damagedKeys;
}

void removeUnfinishedSettings(const QString& directory)
{
    // With the random part that Qt gives to what a file is written anew in.
    const QFileInfoList copies = leftovers(
        directory, {QStringLiteral("*.ini.??????"), QStringLiteral("update.json.??????")});
    for (const QFileInfo& copy : copies)
        QFile::remove(copy.filePath());
}
