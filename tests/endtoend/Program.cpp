// SPDX-License-Identifier: GPL-3.0-or-later
#include "Program.h"

#include <QTest>

#include <algorithm>

namespace {

const QString strip = QStringLiteral("Tessaport");

} // namespace

Program::Program(const Home& home)
    : m_home(home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    // The lock against a second instance is made there.
    environment.insert(QStringLiteral("TMPDIR"), home.path());
    environment.insert(QStringLiteral("PATH"),
                       home.path() + QLatin1Char(':') + qEnvironmentVariable("PATH"));
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(PRELOADED));
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(home.path());
    m_process.setStandardOutputFile(outputFile());
    m_process.setStandardErrorFile(errorFile());
}

Program::~Program()
{
    if (QTest::currentTestFailed())
        tellOfFailure();
    if (isRunning())
        kill();
}

void Program::setVariable(const char* name, const char* value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.remove(QString::fromLatin1(name));
    if (value)
        environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
    m_process.setProcessEnvironment(environment);
}

void Program::start(const QStringList& arguments)
{
    setVariable("FAKETIME", m_home.fakeTime().toLatin1().constData());
    m_process.start(QStringLiteral(MONITOR_EXECUTABLE), arguments);
    m_process.waitForStarted(patience);
}

void Program::kill()
{
    m_process.kill();
    m_process.waitForFinished(patience);
}

int Program::waitForExit()
{
    const bool ends = waitUntil([this] { return !isRunning(); });
    return ends && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void Program::tellOfFailure() const
{
    const QString name = QString::fromLatin1(QTest::currentTestFunction()) + QStringLiteral(".png");
    Desktop::picture(Desktop::wholeArea()).save(name);
    const QList<QByteArray> lines = content(errorFile()).split('\n');
    for (const QByteArray& line : lines.mid(std::max(0, lines.size() - 30)))
        qDebug().noquote() << line.left(160);
    qDebug() << "The desktop at that moment:" << QFileInfo(name).absoluteFilePath();
}

QVector<DesktopWindow> Program::windows() const
{
    QVector<DesktopWindow> result = Desktop::windows();
    const auto others = std::remove_if(result.begin(), result.end(), [this](const auto& window) {
        return window.pid != m_process.processId();
    });
    result.erase(others, result.end());
    return result;
}

std::optional<DesktopWindow> Program::window(const QString& title) const
{
    for (const DesktopWindow& window : windows()) {
        if (window.title == title)
            return window;
    }
    return std::nullopt;
}

bool Program::waitFor(const QString& title) const
{
    return waitUntil([&] { return window(title).has_value(); });
}

bool Program::waitForGone(const QString& title) const
{
    return waitUntil([&] { return !window(title); });
}

bool Program::waitForActive(const QString& title) const
{
    return waitUntil([&] {
        const auto found = window(title);
        return found && found->id == Desktop::activeWindow();
    });
}

bool Program::click(const QString& title, const QPoint& place) const
{
    std::optional<DesktopWindow> last;
    const bool isStill = waitUntil([&] {
        const auto now = window(title);
        const bool isSame = now && last && now->geometry == last->geometry;
        last = now;
        return isSame;
    });
    if (isStill)
        Desktop::click(last->geometry.topLeft() + place);
    return isStill;
}

QImage Program::picture(const QString& title, const QRect& part) const
{
    const auto found = window(title);
    return found ? Desktop::picture(part.translated(found->geometry.topLeft())) : QImage();
}

bool Program::clickToChange(const QString& title, const QPoint& place, const QRect& part) const
{
    if (!waitFor(title))
        return false;
    const QImage before = picture(title, part);
    return click(title, place) && waitUntil([&] { return picture(title, part) != before; });
}

bool Program::waitForNotices(int count) const
{
    return waitUntil([&] {
        const QVector<DesktopWindow> all = windows();
        return std::count_if(all.begin(), all.end(),
                             [](const DesktopWindow& window) {
                                 return window.geometry.size() == QSize(250, 100);
                             })
            == count;
    });
}

bool Program::openTaskPicker() const
{
    const QByteArray filled("Teams and tasks data: ");
    const int before = m_home.logged(filled);
    return click(strip, {80, 40}) && waitForActive(QStringLiteral("Задачи"))
        && m_home.waitForLog(filled, before + 1);
}

bool Program::chooseFromMenu(const char* keys) const
{
    // The menu opens where notices stand.
    if (!waitForNotices(0) || !clickToChange(strip, {348, 10}, {230, -130, 150, 120}))
        return false;
    Desktop::press(keys);
    return true;
}
