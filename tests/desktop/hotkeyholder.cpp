// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtGlobalShortcut.h"

#include <QGuiApplication>

#include <cstdio>

/// Another program that takes a combination: says whether it got it, and holds it until its
/// standard input is closed.
int main(int argc, char* argv[])
{
    QGuiApplication application(argc, argv);
    QxtGlobalShortcut shortcut;
    const bool held = shortcut.setShortcut(QKeySequence(application.arguments().value(1)));
    std::puts(held ? "held" : "refused");
    std::fflush(stdout);
    while (std::getchar() != EOF) { }
    return 0;
}
