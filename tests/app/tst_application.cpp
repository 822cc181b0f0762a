// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/Log.h"
#include "platform/WindowSystem.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QScreen>

#include <iostream>
#include <sstream>

namespace {

constexpr QRect panel(10, 10, 80, 60);
constexpr QRect shadow(10, 70, 80, 5);

class PanelWindow : public QWidget {
public:
    PanelWindow()
    {
        setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
        setAttribute(Qt::WA_TranslucentBackground);
        resize(30, 30);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(panel, Qt::white);
        painter.fillRect(shadow, QColor(0, 0, 0, 40));
    }
};

/// The application on a desktop that has a font of its own, and a theme that brings another one.
class ThemedApplication : public Application {
public:
    ThemedApplication(int& argc, char** argv)
        : Application(themed(argc, argv).count(), themed(argc, argv).values())
    {
    }

private:
    static CommandLine& themed(int argc, char** argv)
    {
        qputenv("XDG_CURRENT_DESKTOP", "GNOME");
        qputenv("QT_QPA_PLATFORMTHEME", "qt5ct");
        static CommandLine commandLine(argc, argv);
        return commandLine;
    }
};

} // namespace

/// What the application does about its log and its windows.
class ApplicationTest : public QObject {
    Q_OBJECT

private slots:
    void logLines()
    {
        openLog(m_directory.filePath(QStringLiteral("log.log")));
        std::ostringstream told;
        std::streambuf* const standardOutput = std::cout.rdbuf(told.rdbuf());
        logMessageHandler(QtDebugMsg, m_context, QStringLiteral("Monitor started"));
        std::cout.rdbuf(standardOutput);
        QVERIFY(QByteArray::fromStdString(told.str()).endsWith("Z: Monitor started\n\r"));
        static QString previous;
        previousMessageHandler = [](QtMsgType, const QMessageLogContext&, const QString& message) {
            previous += message;
        };
        logMessageHandler(QtInfoMsg, m_context, QStringLiteral("nowhere"));
        for (const QtMsgType type : {QtWarningMsg, QtFatalMsg})
            logMessageHandler(type, m_context, QStringLiteral("two\nlines"));
        previousMessageHandler = nullptr;
        QCOMPARE(previous, QStringLiteral("two\nlinestwo\nlines"));
        const QString text = QString::fromLocal8Bit(content());
        const QRegularExpression form(
            QStringLiteral(R"(^Message\(0\) at (\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ): )"
                           R"(Monitor started(\nMessage\([13]\) at \S+Z: two\nlines){2}\n$)"));
        const QDateTime written = QDateTime::fromString(form.match(text).captured(1), Qt::ISODate);
        QVERIFY2(form.match(text).hasMatch(), qPrintable(text));
        QVERIFY2(qAbs(written.secsTo(QDateTime::currentDateTimeUtc())) < 60, qPrintable(text));
        QVERIFY(!(logFile.permissions() & (QFile::ReadGroup | QFile::ReadOther))
                || QSysInfo::kernelType() == QLatin1String("winnt"));
        logFile.close();
    }

    // A full disk, for a while: what is lost stays lost, and the log goes on.
    void unwritableLog()
    {
        openLog(m_directory.path());
        QVERIFY(!logFile.isOpen());
        logMessageHandler(QtDebugMsg, m_context, QStringLiteral("to standard output alone"));

        openLog(m_directory.filePath(QStringLiteral("again.log")));
        logStream.setStatus(QTextStream::WriteFailed);
        logMessageHandler(QtDebugMsg, m_context, QStringLiteral("after a failure"));
        QVERIFY(content().endsWith("after a failure\n") && content().count('\n') == 1);
        logFile.close();
    }

    void whateverTheDesktop()
    {
        // That is when a theme gives its font.
        QCoreApplication::processEvents();
        QCOMPARE(QFontInfo(QLineEdit().font()).family(), QStringLiteral("PT Sans"));
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0xF5, 0xF3, 0xEE));
        QCOMPARE(QApplication::palette().color(QPalette::Base), QColor(Qt::white));
        QCOMPARE(QApplication::palette().color(QPalette::Disabled, QPalette::Text),
                 QColor(0x9A, 0x97, 0x91));
        const QList<QSize> iconSizes = QApplication::windowIcon().availableSizes();
        QVERIFY(iconSizes.size() == 5 && iconSizes.contains({16, 16})
                && iconSizes.contains({64, 64}));
        QVERIFY(!QDialog().windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        // The theme that was asked for would tell anything.
        QMessageBox message(QMessageBox::Critical, {}, QStringLiteral("Ошибка"));
        message.show();
        const int interval = QApplication::doubleClickInterval();
        QVERIFY2(interval >= 400 && interval <= 500, qPrintable(QString::number(interval)));
        for (const QLabel* label : message.findChildren<QLabel*>())
            QCOMPARE(QFontInfo(label->font()).family(), QStringLiteral("PT Sans"));
        QLineEdit field;
        const std::unique_ptr<QMenu> menu(field.createStandardContextMenu());
        QVERIFY(menu->actions().constFirst()->text().startsWith(QStringLiteral("&Отменить")));
    }

    // Seen from outside: what is left of a window without mixing shows what is behind it.
    void aPanelKeepsItsShadowOnlyWhereWindowsAreMixed()
    {
        QWidget backdrop;
        backdrop.setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
        backdrop.setPalette(QPalette(Qt::green));
        backdrop.setGeometry(300, 300, 200, 200);
        backdrop.show();
        // Not asked for again: Qt may believe that the window manager moved a window.
        const QPoint place(350, 310), trayPlace(350, 400);
        PanelWindow window, trayIcon;
        window.move(place);
        window.show();
        for (PanelWindow* each : {&window, &trayIcon})
            each->resize(100, 80);
        trayIcon.setWindowFlag(Qt::BypassWindowManagerHint);
        trayIcon.move(trayPlace);
        trayIcon.show();
        const auto onScreen = [](QPoint point) {
            return QGuiApplication::primaryScreen()->grabWindow(0).toImage().pixelColor(
                point * qApp->devicePixelRatio());
        };
        for (const QPoint& each : {place, trayPlace})
            QTRY_COMPARE(onScreen(each + panel.center()), QColor(Qt::white));
        QTRY_VERIFY(onScreen(place + shadow.center()).green() > 200);
        QTRY_COMPARE(onScreen(place + shadow.center()).green() < 255,
                     platform::mixesTranslucentWindows());
        // The tray stands behind its icon, not the desktop.
        QTRY_VERIFY(onScreen(trayPlace + shadow.center()).green() < 255);
    }

private:
    static QByteArray content() { return contentOf(logFile.fileName()); }

    const QMessageLogContext m_context{"file", 1, "function", "category"};
    QTemporaryDir m_directory;
};

TESSAPORT_TEST_MAIN(ApplicationTest, ThemedApplication)

#include "tst_application.moc"
