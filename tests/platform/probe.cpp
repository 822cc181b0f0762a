// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtGlobalShortcut.h"

#include <QGuiApplication>

#include <cstdio>

/// Another program: asks for a key combination, says whether it got it, and lives until its
/// standard input is closed.
int main(int argc, char* argv[])
{
    QGuiApplication application(argc, argv);
    const QKeySequence keys(application.arguments().value(1));
    QxtGlobalShortcut shortcut;
    std::puts(shortcut.setShortcut(keys) ? "held" : "refused");
    std::fflush(stdout);
    while (std::getchar() != EOF) { }
    return 0;
}
