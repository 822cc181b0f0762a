// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/ByTurns.h"
#include "bench/PeakMemory.h"
#include "service/ReportFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstring>

namespace {

/// From a waiting report to the form data that is posted; the floor copies the picture's bytes
/// three times. The argument is their number in KiB. Counts the most memory that is held meanwhile
/// in sizes of the picture's file.
void reportBody(benchmark::State& state)
{
    const QTemporaryDir directory;
    // What is compressed looks like chance.
    QByteArray picture(int(state.range(0)) * 1024, Qt::Uninitialized);
    QRandomGenerator random(1);
    std::generate(picture.begin(), picture.end(), [&random] { return char(random.generate()); });
    QFile file(directory.filePath(QStringLiteral("picture.jpg")));
    if (!file.open(QIODevice::WriteOnly) || file.write(picture) != picture.size()) {
        state.SkipWithError("no disk");
        return;
    }
    file.close();

    const QDateTime now = QDateTime::currentDateTime();
    const QVariantMap body{{QStringLiteral("email"), QStringLiteral("anna@example.com")},
                           {QStringLiteral("fileName"), file.fileName()},
                           {QStringLiteral("past"), QStringLiteral("0")}};
    const QVariantMap report = ReportFile::report(QStringLiteral("https://localhost"), body, now);
    const auto makeBody = [&report, &now] {
        const QVariantMap rebuilt = ReportFile::rebuildReport(report, now);
        benchmark::DoNotOptimize(ReportFile::payload(rebuilt[QStringLiteral("body")]));
    };
    const double files = double(peakBytes(makeBody)) / picture.size();
    compareByTurns(state, makeBody, [&picture] {
        for (int i = 0; i < 3; ++i)
            benchmark::DoNotOptimize(QByteArray(picture.constData(), picture.size()));
    });
    state.counters["files"] = files;
}
BENCHMARK(reportBody)->Arg(256)->Arg(1024)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[])
{
    benchmark::Initialize(&argc, argv);
    QCoreApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
