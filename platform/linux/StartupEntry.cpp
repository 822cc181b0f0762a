// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/StartupEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QStandardPaths>

namespace platform {

namespace {

QString entryPath(const QString& name)
{
    QString fileName = name;
    for (QChar& character : fileName) {
        if (!character.isLetterOrNumber() && character != QLatin1Char('.'))
            character = QLatin1Char('-');
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/autostart/") + fileName + QStringLiteral(".desktop");
}

/// A text as the value of a key.
QString escapedValue(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    text.replace(QLatin1Char('\r'), QLatin1String("\\r"));
    text.replace(QLatin1Char('\t'), QLatin1String("\\t"));
    return text;
}

QString unescapedValue(const QString& value)
{
    QString text;
    for (int i = 0; i < value.size(); ++i) {
        if (value.at(i) != QLatin1Char('\\') || i + 1 == value.size()) {
            text += value.at(i);
            continue;
        }
        switch (value.at(++i).unicode()) {
        case 's':
            text += QLatin1Char(' ');
            break;
        case 'n':
            text += QLatin1Char('\n');
            break;
        case 'r':
            text += QLatin1Char('\r');
            break;
        case 't':
            text += QLatin1Char('\t');
            break;
        default:
            text += value.at(i);
        }
    }
    return text;
}

/// A path as the one argument of a command line; quoted, so that a blank is none of its bounds.
QString commandLine(const QString& path)
{
    QString command(QLatin1Char('"'));
    for (const QChar character : path) {
        if (QStringLiteral("\"`$\\").contains(character))
            command += QLatin1Char('\\');
        command += character;
        if (character == QLatin1Char('%'))
            command += character;
    }
    return command + QLatin1Char('"');
}

/// The first argument of a command line, which somebody else may have written.
QString programOf(const QString& command)
{
    QString program;
    bool quoted = false;
    for (int i = 0; i < command.size(); ++i) {
        const QChar character = command.at(i);
        const bool hasNext = i + 1 < command.size();
        if (character == QLatin1Char('"'))
            quoted = !quoted;
        else if (character == QLatin1Char(' ') && !quoted)
            break;
        else if (character == QLatin1Char('\\') && quoted && hasNext)
            program += command.at(++i);
        else if (character == QLatin1Char('%') && hasNext)
            program += command.at(++i);
        else
            program += character;
    }
    return program;
}

/// The keys and the raw values of the file's main group.
QHash<QString, QString> readEntry(const QString& path)
{
    QHash<QString, QString> entry;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return entry;
    bool inMainGroup = false;
    // To the end of the bytes: without their length the text would end at the first NUL.
    const QByteArray content = file.readAll();
    const QStringList lines =
        QString::fromUtf8(content.constData(), content.size()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1Char('[')))
            inMainGroup = line.trimmed() == QLatin1String("[Desktop Entry]");
        const int equals = line.indexOf(QLatin1Char('='));
        if (inMainGroup && equals > 0)
            entry.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return entry;
}

} // namespace

QString startupEntry(const QString& name)
{
    const QHash<QString, QString> entry = readEntry(entryPath(name));
    // Two ways in which session settings switch an entry off without removing it.
    if (entry.value(QStringLiteral("Hidden")) == QLatin1String("true")
        || entry.value(QStringLiteral("X-GNOME-Autostart-enabled")) == QLatin1String("false"))
        return {};
    return programOf(unescapedValue(entry.value(QStringLiteral("Exec"))));
}

void setStartupEntry(const QString& name, const QString& programPath)
{
    const QString path = entryPath(name);
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    const QString entry = QStringLiteral("[Desktop Entry]\n"
                                         "Type=Application\n"
                                         "Name=%1\n"
                                         "TryExec=%2\n"
                                         "Exec=%3\n")
                              .arg(escapedValue(name), escapedValue(programPath),
                                   escapedValue(commandLine(programPath)));
    file.write(entry.toUtf8());
    file.commit();
}

void removeStartupEntry(const QString& name)
{
    QFile::remove(entryPath(name));
}

} // namespace platform
