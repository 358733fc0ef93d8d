// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
//
// What going to a time and the timeline cost: full counts of a journal without time
// marks, with them (the default) and with the timeline too, all and filtered; then how
// long going to a time takes once counted, over times spread across the journal.
//
//   nimb-bench-time JOURNAL [RUNS] [GOTO_TIMES]
#include "FilteringLogParser.h"
#include "LogParser.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

namespace
{
// Processor time of all threads: other work on a shared machine shows in wall times only.
double cpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

enum class Times { None, Marks, Timeline };

std::unique_ptr<AbstractLogParser> makeParser(const QString &path, bool filtered, Times times)
{
    std::unique_ptr<AbstractLogParser> parser;
    if (filtered) {
        auto filtering = std::make_unique<FilteringLogParser>(path);
        FilterPack severe;
        severe.checkPriorities = true;
        severe.priorities = {Event::Emergency, Event::Alert, Event::Critical, Event::Error, Event::Warning, Event::Notice};
        filtering->setFilter(severe);
        parser = std::move(filtering);
    } else {
        parser = std::make_unique<LogParser>(path);
    }
    parser->setTimeMarksEnabled(times != Times::None);
    parser->setTimelineEnabled(times == Times::Timeline);
    return parser;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: nimb-bench-time JOURNAL [RUNS] [GOTO_TIMES]\n");
        return 2;
    }
    const QString path = arguments.at(1);
    const int runs = arguments.size() > 2 ? std::max(1, arguments.at(2).toInt()) : 3;
    const int gotoTimes = arguments.size() > 3 ? std::max(1, arguments.at(3).toInt()) : 200;

    std::printf("Medians of %d runs, wall time and processor time (all threads) in ms.\n\n", runs);
    std::printf("| count | no time marks | time marks | marks + timeline | marks (cpu) | timeline (cpu) |\n");
    std::printf("|---|---|---|---|---|---|\n");
    for (const bool filtered : {false, true}) {
        std::vector<double> ms[3];
        std::vector<double> cpu[3];
        int events = 0;
        // Alternating the three kinds spreads the machine's other work over all of them.
        for (int run = 0; run < runs; ++run) {
            for (const Times times : {Times::Timeline, Times::Marks, Times::None}) {
                auto parser = makeParser(path, filtered, times);
                QElapsedTimer clock;
                const double cpuBefore = cpuMs();
                clock.start();
                events = parser->count();
                ms[int(times)].push_back(clock.nsecsElapsed() / 1e6);
                cpu[int(times)].push_back(cpuMs() - cpuBefore);
            }
        }
        const double plain = median(cpu[0]);
        std::printf("| %s, %d events | %.0f (cpu %.0f) | %.0f (cpu %.0f) | %.0f (cpu %.0f) | %+.1f %% | %+.1f %% |\n",
                    filtered ? "filtered" : "all", events, median(ms[0]), plain, median(ms[1]), median(cpu[1]),
                    median(ms[2]), median(cpu[2]), (median(cpu[1]) / plain - 1) * 100,
                    (median(cpu[2]) / plain - 1) * 100);
    }

    for (const bool filtered : {false, true}) {
        auto parser = makeParser(path, filtered, Times::Timeline);
        parser->count();
        QElapsedTimer clock;
        clock.start();
        const auto hours = parser->timeline(AbstractLogParser::TimelineBucket::Hour);
        const double timelineMs = clock.nsecsElapsed() / 1e6;
        if (hours.empty())
            continue;
        const qint64 from = hours.front().startMsecs;
        const qint64 to = hours.back().startMsecs + 3600000;
        std::vector<double> ms;
        int found = 0;
        for (int i = 0; i < gotoTimes; ++i) {
            const qint64 target = from + qint64(QRandomGenerator::global()->bounded(double(to - from)));
            clock.restart();
            found += parser->rowAtTime(QDateTime::fromMSecsSinceEpoch(target, Qt::UTC)) >= 0;
            ms.push_back(clock.nsecsElapsed() / 1e6);
        }
        std::printf("\n%s: going to a time: median %.2f ms, longest %.2f ms over %d times (%d found); "
                    "hourly timeline of %zu hours: %.2f ms\n",
                    filtered ? "filtered" : "all", median(ms), *std::max_element(ms.begin(), ms.end()), gotoTimes,
                    found, hours.size(), timelineMs);
    }
    return 0;
}
