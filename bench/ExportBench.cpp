// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// Exports every event of a journal the way the main window's job does: the journal is
// counted by a parser on a loader thread, then a worker thread takes the parser's
// positions and streams the rows into the file. Only the export is timed, and the
// memory it adds on top of the counted tab is read from the kernel's peak counter.

#include "AsyncLoader.h"
#include "EventsDataCopier.h"
#include "EventsSelection.h"
#include "LogParser.h"
#include "OutputProgress.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cstdio>

#include <sys/resource.h>

namespace
{
int fail(const QString &message)
{
    std::fprintf(stderr, "nimb-bench-export: %s\n", qUtf8Printable(message));
    return 1;
}

// A line of /proc/self/status in kilobytes, e.g. VmRSS or VmHWM.
qint64 statusKilobytes(const char *key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// From here on the peak counter measures what comes after.
bool resetPeak()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "Exports all events of a journal as JSON, CSV or raw lines through the export job. "
        "Prints key=value lines."));
    options.addHelpOption();
    options.addPositionalArgument(QStringLiteral("journal"), QStringLiteral("The journal file."));
    options.addPositionalArgument(QStringLiteral("target"), QStringLiteral("The export file: .json, .csv or .log."));
    options.process(app);
    const QStringList arguments = options.positionalArguments();
    if (arguments.size() != 2)
        return fail(QStringLiteral("expected a journal and a target"));
    EventsDataCopier::Format format;
    if (!EventsDataCopier::formatOfFile(arguments[1], &format))
        return fail(QStringLiteral("the target must end in .json, .csv or .log"));

    LogParser parser(arguments[0]);
    AsyncLoader loader(&parser);
    QThread loaderThread;
    loader.moveToThread(&loaderThread);
    loaderThread.start();
    QElapsedTimer timer;
    timer.start();
    int count = -1;
    QMetaObject::invokeMethod(&loader, [&] { count = parser.count(); }, Qt::BlockingQueuedConnection);
    const double countMs = double(timer.nsecsElapsed()) / 1e6;
    if (count < 0) {
        loaderThread.quit();
        loaderThread.wait();
        return fail(QStringLiteral("cannot read %1").arg(arguments[0]));
    }

    const bool peakReset = resetPeak();
    const qint64 baseKb = statusKilobytes("VmRSS");
    EventsDataCopier copier;
    OutputProgress progress;
    EventsSelection selection = EventsSelection::wholeJournal(&loader);
    const QString target = arguments[1];
    const double cpuBefore = cpuSeconds();
    timer.restart();
    std::unique_ptr<QThread> job(QThread::create(
        [&copier, &progress, selection = std::move(selection), format, target] {
            copier.write(selection, format, target, &progress);
        }));
    job->start();
    job->wait();
    const double exportMs = double(timer.nsecsElapsed()) / 1e6;
    const double exportCpu = cpuSeconds() - cpuBefore;
    const qint64 peakKb = statusKilobytes("VmHWM");
    loaderThread.quit();
    loaderThread.wait();

    const qint64 journalBytes = QFileInfo(arguments[0]).size();
    std::printf("events=%d\njournal_bytes=%lld\ntarget_bytes=%lld\ncount_ms=%.0f\nexport_ms=%.0f\nexport_cpu_s=%.2f\n"
                "export_mb_per_s=%.1f\nbase_rss_kb=%lld\npeak_rss_kb=%lld\npeak_growth_kb=%lld\npeak_reset=%d\n",
                count, journalBytes, QFileInfo(target).size(), countMs, exportMs, exportCpu,
                double(journalBytes) / 1e6 / (exportMs / 1000.0), baseKb, peakKb, peakKb - baseKb, int(peakReset));
    return progress.percent() == 100 ? 0 : 1;
}
