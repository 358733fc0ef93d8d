// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JournalGenerator.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <cstdio>

using namespace nimbgen;

namespace
{
int fail(const QString &message)
{
    QTextStream(stderr) << "nimb-gen-journal: " << message << '\n';
    return 1;
}

bool readCount(const QCommandLineParser &parser, const QString &name, qint64 minimum, qint64 &value)
{
    if (!parser.isSet(name))
        return true;
    bool ok = false;
    value = parser.value(name).toLongLong(&ok);
    return ok && value >= minimum;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("nimb-gen-journal"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Writes a synthetic security-events journal, one JSON object per line, for demonstrations,\n"
        "tests and benchmarks. Output is deterministic for the same seed, options and --now."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("out"), QStringLiteral("Write to <file> (\"-\" or absent: standard output)."), QStringLiteral("file")},
        {QStringLiteral("lines"), QStringLiteral("Number of lines to write (default 10000)."), QStringLiteral("n")},
        {QStringLiteral("size"), QStringLiteral("Approximate size to write instead of a line count; suffixes K, M, G."), QStringLiteral("bytes")},
        {QStringLiteral("seed"), QStringLiteral("Seed of the pseudo-random sequence (default: taken from the clock)."), QStringLiteral("n")},
        {QStringLiteral("days"), QStringLiteral("Spread the times over the last <n> days (default 10)."), QStringLiteral("n"), QStringLiteral("10")},
        {QStringLiteral("malformed-permille"), QStringLiteral("Share of broken lines, per thousand (default 5)."), QStringLiteral("n"), QStringLiteral("5")},
        {QStringLiteral("append"), QStringLiteral("Append to the file given by --out; times continue from now, a few seconds apart.")},
        {QStringLiteral("now"), QStringLiteral("Take <time> (ISO 8601 or seconds since the epoch) as the current time."), QStringLiteral("time")},
        {QStringLiteral("catalogue"), QStringLiteral("Take events, sources and custom parameters from the system tree <dir> "
                                                     "instead of the built-in demo tree."), QStringLiteral("dir")},
    });
    parser.process(app);

    GeneratorOptions options;
    qint64 days = 10;
    qint64 permille = 5;
    qint64 seed = QDateTime::currentMSecsSinceEpoch();
    if (!readCount(parser, QStringLiteral("lines"), 0, options.lines))
        return fail(QStringLiteral("--lines needs a number of lines"));
    if (!readCount(parser, QStringLiteral("days"), 0, days) || days > 36500)
        return fail(QStringLiteral("--days needs a number of days"));
    if (!readCount(parser, QStringLiteral("malformed-permille"), 0, permille) || permille > 1000)
        return fail(QStringLiteral("--malformed-permille needs a number from 0 to 1000"));
    if (parser.isSet(QStringLiteral("seed"))) {
        bool ok = false;
        seed = qint64(parser.value(QStringLiteral("seed")).toULongLong(&ok));
        if (!ok)
            return fail(QStringLiteral("--seed needs a number"));
    }
    if (parser.isSet(QStringLiteral("size"))) {
        if (parser.isSet(QStringLiteral("lines")))
            return fail(QStringLiteral("give either --lines or --size"));
        options.bytes = parseByteSize(parser.value(QStringLiteral("size")));
        if (options.bytes < 0)
            return fail(QStringLiteral("--size needs a size such as 4096, 200K, 500M or 1G"));
    } else if (!parser.isSet(QStringLiteral("lines"))) {
        options.lines = 10000;
    }
    options.seed = quint64(seed);
    options.days = int(days);
    options.malformedPermille = int(permille);

    options.end = QDateTime::currentSecsSinceEpoch();
    if (parser.isSet(QStringLiteral("now"))) {
        const QString text = parser.value(QStringLiteral("now"));
        bool isNumber = false;
        const qint64 seconds = text.toLongLong(&isNumber);
        const QDateTime time = QDateTime::fromString(text, Qt::ISODate);
        if (!isNumber && !time.isValid())
            return fail(QStringLiteral("--now needs an ISO 8601 time or seconds since the epoch"));
        options.end = isNumber ? seconds : time.toSecsSinceEpoch();
    }

    Catalogue catalogue = parser.isSet(QStringLiteral("catalogue"))
        ? Catalogue::load(parser.value(QStringLiteral("catalogue")))
        : Catalogue::builtIn();
    if (catalogue.isEmpty())
        return fail(QStringLiteral("no event descriptions found"));

    const QString path = parser.value(QStringLiteral("out"));
    const bool toStdout = path.isEmpty() || path == QLatin1String("-");
    const bool append = parser.isSet(QStringLiteral("append"));
    QFile out;
    bool opened;
    if (toStdout) {
        if (append)
            return fail(QStringLiteral("--append needs --out <file>"));
        opened = out.open(stdout, QIODevice::WriteOnly);
    } else {
        if (append) {
            // New lines must not go back in time behind what the file already holds.
            options.live = true;
            options.end = qMax(options.end, lastJournalTime(path));
        }
        out.setFileName(path);
        opened = out.open(append ? QIODevice::Append : QIODevice::WriteOnly | QIODevice::Truncate);
    }
    if (!opened)
        return fail(QStringLiteral("cannot open %1: %2").arg(toStdout ? QStringLiteral("standard output") : path, out.errorString()));

    JournalGenerator generator(std::move(catalogue), options);
    if (!generator.write(&out) || !out.flush())
        return fail(QStringLiteral("writing failed: %1").arg(out.errorString()));
    out.close();
    if (!toStdout)
        QTextStream(stderr) << generator.linesWritten() << " lines, " << generator.bytesWritten() << " bytes written to " << path << '\n';
    return 0;
}
