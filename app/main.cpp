// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/Log.h"
#include "app/SingleInstance.h"
#include "capture/UserActivityWatcher.h"
#include "dialogs/LoginForm.h"
#include "mainwindow/MainForm.h"
#include "notifications/NotificationManager.h"
#include "platform/Console.h"
#include "platform/DirectoryLock.h"
#include "platform/Memory.h"
#include "platform/Termination.h"
#include "service/TessaPort.h"
#include "update/ElevatedStart.h"
#include "update/UpdateState.h"

#include <QDebug>
#include <QFile>
#include <QMessageBox>

namespace {

void setIdentity()
{
    const QString organisation = QStringLiteral("TessaPort");
    QCoreApplication::setOrganizationName(organisation);
    QCoreApplication::setOrganizationDomain(organisation);
    QCoreApplication::setApplicationName(QStringLiteral("TessaPort Team Monitor"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TESSAPORT_VERSION));
}

void applyStyleSheet(QFile& file)
{
    file.open(QIODevice::ReadOnly);
    // As far as the first NUL byte.
    qApp->setStyleSheet(QString::fromUtf8(file.readAll().constData()));
    // The sheet comes with a style of its own, which brings the system's fonts back for menus,
    // lists and tool tips.
    QApplication::setFont(QApplication::font());
}

void tellOfOtherInstance()
{
    QMessageBox message(
        QMessageBox::Critical, QCoreApplication::applicationName(),
        QStringLiteral("Только одна копия программы может быть одновременно запущена."));
    // Above the windows of the other copy, which stay on top as well.
    message.setWindowFlag(Qt::WindowStaysOnTopHint);
    message.exec();
}

bool continuesWithoutActivity()
{
    const QString text = QStringLiteral(
        "Не удалось начать обработку вашей активности.\n"
        "Для устранения проблемы переустановите приложение или обратитесь к вашему системному "
        "администратору.\n"
        "Желаете продолжить работу с программой(информация об активности не будет собранна)?");
    const int answer =
        QMessageBox::question(nullptr, QStringLiteral("Ошибка"), text, QStringLiteral("Да"),
                              QStringLiteral("Нет"), QString(), 0, -1);
    qDebug() << answer;
    return answer == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    CommandLine commandLine(argc, argv);
    if (const auto answer = commandLine.answer()) {
        platform::writeToConsole(*answer);
        return 0;
    }
    platform::giveBackLargeBlocks();
    Application application(commandLine.count(), commandLine.values());
    setIdentity();
    platform::watchTermination(&application, [] { QCoreApplication::quit(); });

    TessaPort tessaPort;
    // At the end of the desktop session the system may not leave time for more than this.
    QObject::connect(&application, &QCoreApplication::aboutToQuit, tessaPort.session(),
                     &Session::save);
    UpdateState::instance()->init(&tessaPort);
    if (UpdateState::instance()->updateAtStartup()
        && tessaPort.runWinAppAsAdmin(updateProgram, QStringLiteral("--install-only")) > 32)
        return 0;
    UpdateState::instance()->installUpdate();
    tessaPort.removeDirectory(tessaPort.dataDir().filePath(QStringLiteral("cached")));

    openLog(tessaPort.dataDir().filePath(QStringLiteral("log.log")));
    previousMessageHandler = qInstallMessageHandler(logMessageHandler);
    qDebug() << QStringLiteral("%1 %2 started. Build date: %3, %4")
                    .arg(QCoreApplication::applicationName(),
                         QCoreApplication::applicationVersion(), QStringLiteral(__DATE__),
                         QStringLiteral(__TIME__));
    QFile styleSheet(QStringLiteral(":/qss/main.qss"));
    applyStyleSheet(styleSheet);

    if (commandLine.cleans()) {
        logFile.close();
        // The directory may be a link to where the data are.
        tessaPort.removeDirectory(tessaPort.dataDir().canonicalPath());
        tessaPort.removeDirectory(tessaPort.dataDir().absolutePath());
        tessaPort.setNoSave(true);
        return 0;
    }
    // The shared memory is lost sight of when temporary files are cleared, after days; two copies
    // in one directory would report each minute twice.
    if (!isSingleInstance() || !platform::takeDirectory(tessaPort.dataDir().path())) {
        tellOfOtherInstance();
        return 1;
    }
    if (!UserActivityWatcher::instance()->start() && !continuesWithoutActivity())
        return 0;

    QGuiApplication::setQuitOnLastWindowClosed(false);
    if (!tessaPort.session()->logged()) {
        LoginForm loginForm(&tessaPort, nullptr);
        if (loginForm.exec() != QDialog::Accepted)
            return 0;
    }

    MainForm mainForm(&tessaPort, nullptr);
    application.setMainForm(&mainForm);
    mainForm.show();
    if (tessaPort.session()->active())
        NotificationManager::instance()->showPlain(QStringLiteral("Запись активности включена"));
    return QApplication::exec();
}
