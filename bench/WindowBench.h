// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "res/Resources.h"
#include "support/TestMain.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>

/// The main() of the benchmarks of windows: these look as in the program, and its files are in a
/// home of the benchmark's own.
inline int runWindowBenchmarks(int argc, char* argv[])
{
    benchmark::Initialize(&argc, argv);
    TestHome home;
    QApplication application(argc, argv);
    initResources();
    installPalette();
    installFonts();
    QFile styleSheet(QStringLiteral(":/qss/main.qss"));
    styleSheet.open(QIODevice::ReadOnly);
    application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
