// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "CompressedLogFile.h"
#include "FilteringLogParser.h"
#include "LineParser.h"
#include "LineReader.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "SummaryParser.h"

#include <QProcess>
#include <QTemporaryDir>

#include <mutex>

#include <sys/resource.h>
#include <sys/stat.h>

// Files no logger writes but a viewer may be pointed at, or find in place of its
// journal: each must be read in bounded time and memory, without a crash, and must not
// change what the well-formed lines around it amount to.
namespace
{
const qint64 kMiB = 1024 * 1024;

// Streams `size` copies of `fill` between `head` and `tail` into the file, a megabyte
// at a time, so that the test itself never holds a huge line.
void appendLong(QFile &file, const QByteArray &head, char fill, qint64 size, const QByteArray &tail)
{
    file.write(head);
    const QByteArray block(int(kMiB), fill);
    for (qint64 left = size; left > 0; left -= block.size())
        file.write(block.constData(), std::min<qint64>(left, block.size()));
    file.write(tail);
}

// Runs a command as a separate process and waits for it: the second writer.
void run(const QString &program, const QStringList &arguments)
{
    QCOMPARE(QProcess::execute(program, arguments), 0);
}

long peakKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

bool sanitized()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

// What a journal amounts to, read through every parser kind.
struct Reading {
    bool journal = false;
    int count = -1;
    int filtered = -1;
    QStringList ids;
    QStringList page;
    MapForCounts summary;

    bool operator==(const Reading &other) const
    {
        return journal == other.journal && count == other.count && filtered == other.filtered && ids == other.ids &&
               page == other.page && summary == other.summary;
    }
};

Reading readAll(const QString &path)
{
    Reading reading;
    LogParser parser(path);
    reading.journal = parser.isJournal();
    reading.count = parser.count();
    auto all = parser.loadAll();
    reading.ids = fixture::ids(std::move(all.second));
    if (reading.count > 10)
        reading.page = fixture::ids(parser.load(reading.count - 10, 10).second);

    FilteringLogParser filtering(path);
    FilterPack errors;
    errors.checkPriorities = true;
    errors.priorities = {Event::Error};
    filtering.setFilter(errors);
    reading.filtered = filtering.count();

    SummaryParser summary(path);
    reading.summary = summary.countForSummary();
    return reading;
}

QByteArray recentJournal(int lines)
{
    // Within the last hour, so that the summary has something to count.
    const QDateTime now = QDateTime::currentDateTimeUtc().addSecs(-600);
    QByteArray bytes;
    for (int i = 0; i < lines; ++i)
        bytes += fixture::line(QStringLiteral("r%1").arg(i), i % 3 ? "info" : "error",
                               i % 2 ? "velmo-auth" : "velmo-net", now.addSecs(i % 60), (i * 53) % 200) +
                 '\n';
    return bytes;
}
}

class TestHostileFiles : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    // Overlong lines, NULs, deep nesting and broken UTF-8 between good lines are
    // passed over like any malformed line, everywhere the journal is read.
    void hostileLinesChangeNothingAroundThem()
    {
        const QByteArray good = recentJournal(3000);
        const QList<QByteArray> lines = good.split('\n');
        const QString cleanPath = m_dir.filePath("clean");
        fixture::write(cleanPath, good);
        const Reading clean = readAll(cleanPath);
        QCOMPARE(clean.count, 3000);
        QVERIFY(clean.filtered > 0 && !clean.summary.isEmpty());

        QByteArray brokenUtf8 = lines[5];
        brokenUtf8.replace("Event r5", "Event \xff\xfe r5 \xc0\xaf");
        QVERIFY(!LineParser::parseLine(brokenUtf8));

        const QString path = m_dir.filePath("hostile");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        for (int i = 0; i < 3000; ++i) {
            file.write(lines[i]);
            file.write("\n");
            switch (i) {
            case 10: // a well-formed event of 100 MB, far beyond any journal line
                appendLong(file, "{\"MSG\":{\"velmo-auth\":{\"message_id\":\"huge\",\"comment\":\"", 'a', 100 * kMiB,
                           "\"}}}\n");
                break;
            case 700: // a stretch of NUL bytes, long and short
                appendLong(file, QByteArray(), '\0', 20 * kMiB, "\n");
                appendLong(file, QByteArray(), '\0', 1000, "\n");
                break;
            case 1500: // 10 MB of nesting, inside and outside the message
                appendLong(file, "{\"MSG\":", '[', 10 * kMiB, "\n");
                appendLong(file, QByteArray(), '{', 10 * kMiB, "\n");
                break;
            case 2200:
                file.write(brokenUtf8 + '\n');
                break;
            case 2998: // just beyond the line limit, then just within it
                appendLong(file, "{", ' ', LineReader::kMaxLine, "}\n");
                appendLong(file, "{", ' ', LineReader::kMaxLine - 3, "}\n");
                break;
            }
        }
        file.close();

        const long before = peakKiB();
        const Reading hostile = readAll(path);
        const long grownMiB = (peakKiB() - before) / 1024;
        QVERIFY(hostile == clean);
        // The 100 MB line is never held whole (sanitizers keep freed memory around).
        if (!sanitized())
            QVERIFY2(grownMiB < 80, qPrintable(QString::number(grownMiB)));

        // A file of nothing but such lines is no journal, and reads as empty.
        const QString nuls = m_dir.filePath("nuls");
        QFile only(nuls);
        QVERIFY(only.open(QIODevice::WriteOnly));
        appendLong(only, QByteArray(), '\0', 24 * kMiB, QByteArray());
        only.close();
        const Reading nothing = readAll(nuls);
        QVERIFY(!nothing.journal);
        QCOMPARE(nothing.count, 0);
        QVERIFY(nothing.ids.isEmpty() && nothing.summary.isEmpty());
    }

    // A FIFO or a directory where a journal was expected is refused at once: opening a
    // FIFO for reading would otherwise wait for a writer that never comes.
    void fifosAndDirectoriesAreRefusedWithoutBlocking()
    {
        const QString journal = m_dir.filePath("events");
        fixture::write(journal, recentJournal(200));
        QCOMPARE(LogParser(journal).count(), 200);

        const QString fifo = m_dir.filePath("events.fifo");
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        const QString directory = m_dir.filePath("events.d");
        QVERIFY(QDir().mkpath(directory));
        for (const QString &path : {fifo, directory}) {
            LogParser parser(path);
            QVERIFY(!parser.isJournal());
            QCOMPARE(parser.count(), -1);
            QVERIFY(!parser.loadAll().first);
            QVERIFY(SummaryParser(path).countForSummary().isEmpty());
            QVERIFY(CompressedLogFile::detect(path) == CompressedLogFile::Compression::None);
        }
        // Named as a compressed rotation, it is not unpacked either.
        const QString packedFifo = m_dir.filePath("events.2.gz");
        QCOMPARE(::mkfifo(QFile::encodeName(packedFifo).constData(), 0600), 0);
        CompressedLogFile packed(packedFifo);
        QVERIFY(!packed.unpack());
        QVERIFY(packed.state() == CompressedLogFile::State::Damaged);

        // A journal replaced by a FIFO between two counts, and then put back.
        LogParser parser(journal);
        QCOMPARE(parser.count(), 200);
        run("mv", {journal, journal + ".saved"});
        run("mkfifo", {journal});
        QVERIFY(!parser.isJournal());
        QCOMPARE(parser.count(), -1);
        run("rm", {journal});
        run("mv", {journal + ".saved", journal});
        QVERIFY(parser.isJournal());
        QCOMPARE(parser.count(), 200);
    }

    // Another process empties the journal while it is being counted; the count ends,
    // the next one finds the file empty, and what is written next is counted from
    // its start.
    void aJournalTruncatedWhileCountedIsCountedAgain()
    {
        const QString path = m_dir.filePath("shrinking");
        const QByteArray lines = recentJournal(20000);
        fixture::write(path, lines + lines + lines);

        LogParser parser(path);
        std::once_flag truncated;
        // Progress leaves from the scanning thread: the truncation happens mid-scan.
        connect(&parser, &AbstractLogParser::percentRead, &parser,
                [&](int) { std::call_once(truncated, [&] { run("truncate", {"-s", "0", path}); }); },
                Qt::DirectConnection);
        const int during = parser.count();
        QVERIFY2(during >= 0 && during <= 60000, qPrintable(QString::number(during)));
        QCOMPARE(QFileInfo(path).size(), 0);

        QCOMPARE(parser.count(), 0);
        QVERIFY(parser.load(0, 10).second.empty());

        const QByteArray fresh = recentJournal(25);
        fixture::write(m_dir.filePath("fresh"), fresh);
        run("sh", {"-c", "cat \"$1\" >> \"$2\"", "sh", m_dir.filePath("fresh"), path});
        QCOMPARE(parser.count(), 25);
        const QStringList shown = fixture::ids(parser.load(0, 25).second);
        QCOMPARE(shown.first(), QStringLiteral("r0"));
        QCOMPARE(shown.last(), QStringLiteral("r24"));
    }
};

NIMB_PARSING_TEST_MAIN(TestHostileFiles)
#include "test_hostilefiles.moc"
