// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// In-process timings that a separate process per measurement cannot give: the
// incremental count needs the same parser object before and after the journal grows,
// and page loads are timed without process start-up and the first scan.

#include "LogParser.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <cstdio>

namespace
{
double milliseconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

int fail(const QString &message)
{
    std::fprintf(stderr, "nimb-bench: %s\n", qUtf8Printable(message));
    return 1;
}

// Events of one page, freed at once: only load() is timed.
bool timePage(LogParser &parser, int first, int rows, double *elapsed)
{
    QElapsedTimer timer;
    timer.start();
    auto [opened, events] = parser.load(first, rows);
    *elapsed = milliseconds(timer);
    const bool complete = opened && int(events.size()) == rows;
    for (Event *event : events)
        delete event;
    return complete;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "Counts a journal, grows it through the generator and counts again with the same parser, "
        "then times page loads. Prints key=value lines. The journal is cut back to its original "
        "size at the end, so that it can be reused."));
    options.addHelpOption();
    options.addPositionalArgument(QStringLiteral("journal"), QStringLiteral("The journal file."));
    options.addOptions({
        {QStringLiteral("generator"), QStringLiteral("Path of nimb-gen-journal."), QStringLiteral("path")},
        {QStringLiteral("seed"), QStringLiteral("Seed of the appended lines."), QStringLiteral("n"), QStringLiteral("7")},
        {QStringLiteral("grow-percent"), QStringLiteral("Lines to append, in percent of the count."),
         QStringLiteral("p"), QStringLiteral("1")},
        {QStringLiteral("per-page"), QStringLiteral("Rows of a timed page."), QStringLiteral("n"),
         QStringLiteral("1000")},
    });
    options.process(app);
    if (options.positionalArguments().size() != 1 || !options.isSet(QStringLiteral("generator")))
        return fail(QStringLiteral("usage: nimb-bench JOURNAL --generator PATH [--seed N]"));
    const QString journal = options.positionalArguments().first();
    const int perPage = options.value(QStringLiteral("per-page")).toInt();
    const double growPercent = options.value(QStringLiteral("grow-percent")).toDouble();

    QFile file(journal);
    const qint64 originalSize = file.size();
    if (originalSize <= 0)
        return fail(QStringLiteral("cannot read %1").arg(journal));

    LogParser parser(journal);
    QElapsedTimer timer;
    timer.start();
    const int firstCount = parser.count();
    const double firstMs = milliseconds(timer);
    const std::size_t firstIndexBytes = parser.indexBytes();
    if (firstCount < perPage)
        return fail(QStringLiteral("%1 holds fewer events than one page").arg(journal));

    const qint64 grow = qint64(firstCount * growPercent / 100.0) + 1;
    QProcess generator;
    generator.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    generator.start(options.value(QStringLiteral("generator")),
                    {QStringLiteral("--out"), journal, QStringLiteral("--append"), QStringLiteral("--lines"),
                     QString::number(grow), QStringLiteral("--seed"), options.value(QStringLiteral("seed"))});
    if (!generator.waitForFinished(-1) || generator.exitCode() != 0)
        return fail(QStringLiteral("the generator failed"));

    timer.restart();
    const int secondCount = parser.count();
    const double secondMs = milliseconds(timer);

    double firstPageMs = 0;
    double middlePageMs = 0;
    double lastPageMs = 0;
    const bool pagesComplete = timePage(parser, 0, perPage, &firstPageMs)
        && timePage(parser, (secondCount / perPage / 2) * perPage, perPage, &middlePageMs)
        && timePage(parser, secondCount - perPage, perPage, &lastPageMs);

    std::printf("count=%d\ncount_ms=%.1f\n", firstCount, firstMs);
    std::printf("appended_lines=%lld\ngrown_count=%d\ngrown_count_ms=%.1f\n", grow, secondCount, secondMs);
    std::printf("page_first_ms=%.2f\npage_middle_ms=%.2f\npage_last_ms=%.2f\npages_complete=%d\n", firstPageMs,
                middlePageMs, lastPageMs, pagesComplete ? 1 : 0);
    std::printf("index_bytes=%zu\nindex_bytes_per_line=%.2f\ngrown_index_bytes_per_line=%.2f\n", firstIndexBytes,
                double(firstIndexBytes) / firstCount, double(parser.indexBytes()) / secondCount);

    if (!file.resize(originalSize))
        return fail(QStringLiteral("cannot cut %1 back to %2 bytes").arg(journal).arg(originalSize));
    return pagesComplete ? 0 : 1;
}
