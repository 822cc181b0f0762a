// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

/// A home directory of the test program's own, gone with it. Has to exist before the application
/// object, so that nothing ever sees the user's.
class TestHome {
public:
    TestHome()
    {
        const QByteArray path = m_directory.path().toLocal8Bit();
        qputenv("HOME", path);
        qputenv("USERPROFILE", path);
        qunsetenv("XDG_CONFIG_HOME");
#ifndef Q_OS_WIN
        // In a place with another date than Greenwich, and whose midnight is far.
        qputenv("TZ", QDateTime::currentDateTimeUtc().time().hour() < 11 ? "TST12" : "TST-13");
#endif
    }

private:
    QTemporaryDir m_directory;
};

/// main() of a test program: a home of its own, the program's identity, and an application object
/// of the given class. A warning that a test does not expect fails the program; see CMakeLists.txt.
#define TESSAPORT_TEST_MAIN(TestClass, ApplicationClass)                                           \
    int main(int argc, char* argv[])                                                               \
    {                                                                                              \
        TestHome home;                                                                             \
        /* Qt asks for a window's place in a frame that the window manager may have taken away. */ \
        QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.xcb.warning=false"));              \
        ApplicationClass application(argc, argv);                                                  \
        QCoreApplication::setOrganizationName(QStringLiteral("TessaPort"));                        \
        QCoreApplication::setOrganizationDomain(QStringLiteral("TessaPort"));                      \
        QCoreApplication::setApplicationName(QStringLiteral("TessaPort Team Monitor"));            \
        QCoreApplication::setApplicationVersion(QStringLiteral("1.1.0"));                          \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
