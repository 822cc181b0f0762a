// SPDX-License-Identifier: GPL-3.0-or-later

// Reading and writing of the two largest texts on the wire, a reply with all teams and tasks and a
// report with a picture, beside QJsonDocument with its QVariant conversion, which does the same
// work, and nlohmann::json, which keeps UTF-8 and a tree of its own.

#include "service/JsonCodec.h"

#include <QJsonDocument>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

namespace {

QVariantMap task(int number)
{
    return {
        {QStringLiteral("id"), QString::number(100000 + number)},
        {QStringLiteral("title"),
         QStringLiteral("Подготовить раздел «Отчёты» %1: \"черновик\" и правки").arg(number)},
        {QStringLiteral("deadline"), QStringLiteral("2020-05-12 18:30:00")},
        {QStringLiteral("block"), QString::number(number % 7 == 0)},
        {QStringLiteral("last_comment"), QStringLiteral("2020-05-11 09:15:42")},
        {QStringLiteral("importance"), number % 5},
    };
}

/// 1,000 tasks in ten teams.
QVariant teamsAndTasks()
{
    QVariantList teams;
    for (int team = 0; team < 10; ++team) {
        QVariantList tasks;
        for (int i = 0; i < 100; ++i)
            tasks.append(task(team * 100 + i));
        teams.append(QVariantMap{
            {QStringLiteral("id"), QString::number(2100 + team)},
            {QStringLiteral("name"), QStringLiteral("Команда разработки %1").arg(team)},
            {QStringLiteral("tasks"), tasks},
        });
    }
    return QVariantMap{{QStringLiteral("status"), QStringLiteral("ok")},
                       {QStringLiteral("message"), teams}};
}

/// A report with a picture of 1 MB in base64.
QVariant pictureReport()
{
    QByteArray picture(768 * 1024, '\0');
    for (int i = 0; i < picture.size(); ++i)
        picture[i] = char(i * 31 + i / 251);
    return QVariantMap{
        {QStringLiteral("url"), QStringLiteral("https://localhost:8443/api_screenshot")},
        {QStringLiteral("timestamp"), QStringLiteral("12-05-2020-08-24-59")},
        {QStringLiteral("body"),
         QVariantMap{
             {QStringLiteral("login"), QStringLiteral("ivan@example.org")},
             {QStringLiteral("task_id"), QStringLiteral("100042")},
             {QStringLiteral("past"), QStringLiteral("0")},
             {QStringLiteral("file"), QString::fromLatin1(picture.toBase64())},
         }},
    };
}

using Sample = QVariant (*)();

QByteArray text(Sample sample)
{
    return QJsonDocument::fromVariant(sample()).toJson(QJsonDocument::Compact);
}

void readCodec(benchmark::State& state, Sample sample)
{
    const QByteArray json = text(sample);
    for (auto _ : state)
        benchmark::DoNotOptimize(JsonCodec::parse(QString::fromUtf8(json)));
    state.SetBytesProcessed(state.iterations() * json.size());
}

void readQJsonDocument(benchmark::State& state, Sample sample)
{
    const QByteArray json = text(sample);
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(json).toVariant());
    state.SetBytesProcessed(state.iterations() * json.size());
}

void readNlohmann(benchmark::State& state, Sample sample)
{
    const QByteArray json = text(sample);
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::parse(json.cbegin(), json.cend()));
    state.SetBytesProcessed(state.iterations() * json.size());
}

void writeCodec(benchmark::State& state, Sample sample)
{
    const QVariant data = sample();
    for (auto _ : state)
        benchmark::DoNotOptimize(JsonCodec::serialize(data));
}

void writeQJsonDocument(benchmark::State& state, Sample sample)
{
    const QVariant data = sample();
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromVariant(data).toJson(QJsonDocument::Compact));
}

void writeNlohmann(benchmark::State& state, Sample sample)
{
    const QByteArray json = text(sample);
    const auto data = nlohmann::json::parse(json.cbegin(), json.cend());
    for (auto _ : state)
        benchmark::DoNotOptimize(data.dump());
}

BENCHMARK_CAPTURE(readCodec, tasks, teamsAndTasks);
BENCHMARK_CAPTURE(readQJsonDocument, tasks, teamsAndTasks);
BENCHMARK_CAPTURE(readNlohmann, tasks, teamsAndTasks);
BENCHMARK_CAPTURE(writeCodec, tasks, teamsAndTasks);
BENCHMARK_CAPTURE(writeQJsonDocument, tasks, teamsAndTasks);
BENCHMARK_CAPTURE(writeNlohmann, tasks, teamsAndTasks);
BENCHMARK_CAPTURE(readCodec, picture, pictureReport);
BENCHMARK_CAPTURE(readQJsonDocument, picture, pictureReport);
BENCHMARK_CAPTURE(readNlohmann, picture, pictureReport);
BENCHMARK_CAPTURE(writeCodec, picture, pictureReport);
BENCHMARK_CAPTURE(writeQJsonDocument, picture, pictureReport);
BENCHMARK_CAPTURE(writeNlohmann, picture, pictureReport);

} // namespace

BENCHMARK_MAIN();
