// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// Measures a journal tab the way a user feels it: how long the interface thread is
// ever blocked while the tab counts a whole journal, and how long a page change takes
// until the table holds the new rows.
//
//   nimb-bench-tab JOURNAL [PER_PAGE]
#include "ConfigStore.h"
#include "EventsModel.h"
#include "LogWidget.h"
#include "PageWidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace
{
// Ticks as often as the event loop lets it and remembers the longest gap between ticks.
class StallProbe : public QObject
{
public:
    StallProbe()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(1);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            if (now - m_last > m_longest)
                m_longestAt = now;
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
        });
    }
    void start()
    {
        m_clock.start();
        m_last = 0;
        m_longest = 0;
        m_timer.start();
    }
    double longestMs() const { return m_longest / 1e6; }
    // When the longest stall ended, from the start of the probe.
    double longestAtMs() const { return m_longestAt / 1e6; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    qint64 m_longest = 0;
    qint64 m_longestAt = 0;
};

void waitUntilIdle(LogWidget &tab)
{
    if (!tab.isLoading())
        return;
    QEventLoop loop;
    QObject::connect(&tab, &LogWidget::loadingFinished, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Figures {
    double min, median, max;
};

Figures figures(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return {values.front(), values[values.size() / 2], values.back()};
}
}

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    if (argc < 2) {
        QTextStream(stderr) << "usage: nimb-bench-tab JOURNAL [PER_PAGE]\n";
        return 2;
    }
    ConfigStore::instance().messagesPerPage() = argc > 2 ? QString::fromLocal8Bit(argv[2]).toInt() : 1000;

    LogWidget tab(QString::fromLocal8Bit(argv[1]), {});
    tab.resize(1400, 900);
    tab.show();
    // The window's first layout and paint are not part of the count.
    {
        QEventLoop settle;
        QTimer::singleShot(300, &settle, &QEventLoop::quit);
        settle.exec();
    }
    StallProbe probe;
    probe.start();
    QElapsedTimer clock;
    clock.start();
    tab.refresh();
    const double refreshMs = clock.nsecsElapsed() / 1e6;
    waitUntilIdle(tab);
    const double countSeconds = clock.elapsed() / 1e3;
    const double countStall = probe.longestMs();
    const double countStallAt = probe.longestAtMs() / 1e3;
    if (!tab.isReadable()) {
        // A file that is no journal: how long the tab took to say so, and whether the
        // interface waited for it.
        out << "| file refused | " << tab.feedbackText() << " after " << QString::number(countSeconds, 'f', 2)
            << " s |\n| refresh call (interface thread) | " << QString::number(refreshMs, 'f', 1)
            << " ms |\n| longest interface stall while testing | " << QString::number(countStall, 'f', 1) << " ms |\n";
        return 0;
    }
    if (tab.eventCount() <= 0) {
        QTextStream(stderr) << "nothing counted: " << tab.feedbackText() << '\n';
        return 1;
    }
    const int pages = tab.pageWidget()->pagesCount();

    // Each page change is timed from the request to the model holding the new rows.
    auto turnTo = [&](int page) {
        QEventLoop loop;
        const auto connection = QObject::connect(tab.model(), &QAbstractItemModel::modelReset, &loop, &QEventLoop::quit);
        clock.restart();
        tab.pageWidget()->setPage(page);
        loop.exec();
        QObject::disconnect(connection);
        const double ms = clock.nsecsElapsed() / 1e6;
        waitUntilIdle(tab);
        return ms;
    };
    struct Depth {
        const char *name;
        std::vector<int> pages;
    };
    QRandomGenerator random(42);
    std::vector<int> anywhere;
    for (int i = 0; i < 30; ++i)
        anywhere.push_back(1 + int(random.bounded(pages)));
    const Depth depths[] = {
        {"first", {1, 2, 1, 2, 1, 2}},
        {"middle", {pages / 2, pages / 2 + 1, pages / 2, pages / 2 + 1, pages / 2, pages / 2 + 1}},
        {"last", {pages - 1, pages, pages - 1, pages, pages - 1, pages}},
        {"random", anywhere},
    };
    probe.start();
    out << "| measurement | figure |\n|---|---|\n";
    out << "| events counted | " << tab.eventCount() << " in " << pages << " pages of "
        << ConfigStore::instance().messagesPerPage() << " |\n";
    out << "| count, request to first page shown | " << QString::number(countSeconds, 'f', 2) << " s |\n";
    out << "| refresh call (interface thread) | " << QString::number(refreshMs, 'f', 1) << " ms |\n";
    out << "| longest interface stall while counting | " << QString::number(countStall, 'f', 1) << " ms (ending "
        << QString::number(countStallAt, 'f', 2) << " s after the request) |\n";
    double worst = 0;
    for (const Depth &depth : depths) {
        std::vector<double> times;
        for (int page : depth.pages) {
            if (page == tab.pageWidget()->page())
                continue;
            times.push_back(turnTo(page));
        }
        if (times.empty())
            continue;
        const Figures f = figures(times);
        worst = std::max(worst, f.max);
        out << "| page change, " << depth.name << " pages (min / median / max) | " << QString::number(f.min, 'f', 1)
            << " / " << QString::number(f.median, 'f', 1) << " / " << QString::number(f.max, 'f', 1) << " ms |\n";
    }
    out << "| longest interface stall while paging | " << QString::number(probe.longestMs(), 'f', 1) << " ms |\n";
    out.flush();
    tab.stopLoader();
    return 0;
}
