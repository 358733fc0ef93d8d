// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// The journal as the real logging service writes and the real rotation tool rotates
// it, followed by the main log tab while both are at work. At the end every event
// sent is found exactly once, in order, across the journal and its rotations.

#include "AuxParRegistry.h"
#include "BurstWriter.h"
#include "CompressedLogFile.h"
#include "ConfigStore.h"
#include "EventsModel.h"
#include "JournalGenerator.h"
#include "LogParser.h"
#include "MainLogWidget.h"
#include "TsanDefaults.h"

#include <KCompressionDevice>

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <functional>
#include <map>
#include <tuple>

#include <sys/stat.h>

namespace
{
constexpr int kEvents = 30000;
constexpr int kBursts = 24;
// Every wait of the test together; the usual run needs a fraction of it.
constexpr qint64 kBudgetMs = 100000;

enum class Rotation { None, Create, CopyTruncate };

// Rotation before burst b. Renaming happens while the burst is being written;
// copytruncate loses whatever the logger writes between the copy and the truncation,
// so it runs only while nothing is written, as an administrator would schedule it.
Rotation rotationBefore(int burst)
{
    switch (burst) {
    case 2:
    case 10:
    case 18:
        return Rotation::Create;
    case 6:
    case 14:
    case 21:
        return Rotation::CopyTruncate;
    default:
        return Rotation::None;
    }
}

QString findTool(const QString &name)
{
    QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty())
        path = QStandardPaths::findExecutable(name, {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin"),
                                                     QStringLiteral("/usr/bin"), QStringLiteral("/bin")});
    return path;
}

QStringList missingTools()
{
    QStringList missing;
    for (const char *tool : {"syslog-ng", "syslog-ng-ctl", "logrotate"})
        if (findTool(QLatin1String(tool)).isEmpty())
            missing.append(QLatin1String(tool));
    return missing;
}

// Writes a configuration template of tests/e2e with its @NAME@ fields filled in.
bool writeConfig(const QString &templateName, const QString &target, const QHash<QString, QString> &fields)
{
    QFile in(QStringLiteral(NIMB_E2E_DIR "/") + templateName);
    if (!in.open(QIODevice::ReadOnly))
        return false;
    QString text = QString::fromUtf8(in.readAll());
    for (auto it = fields.begin(); it != fields.end(); ++it)
        text.replace(QLatin1Char('@') + it.key() + QLatin1Char('@'), it.value());
    QFile out(target);
    // The rotation tool ignores configurations that others may write.
    return out.open(QIODevice::WriteOnly | QIODevice::Truncate) && out.write(text.toUtf8()) >= 0
        && out.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup
                              | QFileDevice::ReadOther);
}

qint64 countLines(QIODevice &device)
{
    qint64 lines = 0;
    QByteArray block(1 << 20, Qt::Uninitialized);
    for (;;) {
        const qint64 got = device.read(block.data(), block.size());
        if (got <= 0)
            break;
        lines += std::count(block.constData(), block.constData() + got, '\n');
    }
    return lines;
}

qint64 plainLines(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? countLines(file) : 0;
}

// Compressed rotations only ever move, so their counts are kept by file identity.
class LinesOnDisk
{
public:
    explicit LinesOnDisk(QString journal)
        : m_journal(std::move(journal))
    {
    }

    // The rotations, oldest first: journal.N.gz ... journal.2.gz, then journal.1.
    QStringList rotations() const
    {
        const QFileInfo info(m_journal);
        const QRegularExpression pattern(QRegularExpression::anchoredPattern(
            QRegularExpression::escape(info.fileName()) + QStringLiteral("\\.(\\d+)(\\.gz)?")));
        std::map<int, QString, std::greater<int>> byAge;
        const QStringList names = info.dir().entryList(QDir::Files);
        for (const QString &name : names) {
            const QRegularExpressionMatch match = pattern.match(name);
            if (match.hasMatch())
                byAge[match.captured(1).toInt()] = info.dir().filePath(name);
        }
        QStringList result;
        for (const auto &entry : byAge)
            result.append(entry.second);
        return result;
    }

    qint64 total()
    {
        qint64 lines = plainLines(m_journal);
        for (const QString &path : rotations())
            lines += path.endsWith(QLatin1String(".gz")) ? compressedLines(path) : plainLines(path);
        return lines;
    }

private:
    qint64 compressedLines(const QString &path)
    {
        struct stat status {};
        if (::stat(QFile::encodeName(path).constData(), &status) != 0)
            return 0;
        const auto key = std::make_tuple(quint64(status.st_dev), quint64(status.st_ino), qint64(status.st_size));
        const auto known = m_compressed.find(key);
        if (known != m_compressed.end())
            return known->second;
        KCompressionDevice device(path, KCompressionDevice::GZip);
        const qint64 lines = device.open(QIODevice::ReadOnly) ? countLines(device) : 0;
        m_compressed[key] = lines;
        return lines;
    }

    QString m_journal;
    std::map<std::tuple<quint64, quint64, qint64>, qint64> m_compressed;
};

int syslogSeverity(const QString &word)
{
    static const QHash<QString, int> severities{
        {QStringLiteral("emergency"), 0}, {QStringLiteral("emerg"), 0}, {QStringLiteral("alert"), 1},
        {QStringLiteral("critical"), 2},  {QStringLiteral("crit"), 2},  {QStringLiteral("error"), 3},
        {QStringLiteral("err"), 3},       {QStringLiteral("warning"), 4}, {QStringLiteral("notice"), 5},
        {QStringLiteral("info"), 6},      {QStringLiteral("informational"), 6}, {QStringLiteral("debug"), 7}};
    return severities.value(word, 6);
}

int syslogFacility(const QString &word)
{
    static const QStringList facilities{QStringLiteral("kern"),     QStringLiteral("user"),   QStringLiteral("mail"),
                                        QStringLiteral("daemon"),   QStringLiteral("auth"),   QStringLiteral("syslog"),
                                        QStringLiteral("lpr"),      QStringLiteral("news"),   QStringLiteral("uucp"),
                                        QStringLiteral("cron"),     QStringLiteral("authpriv"), QStringLiteral("ftp")};
    // The logger drops what a program sends as the kernel, so such events go as "user".
    const int index = facilities.indexOf(word);
    return index > 0 ? index : 1;
}

// What the logger has taken in from the socket and written to the journal so far.
struct LoggerCounts {
    qint64 received = -1;
    qint64 written = -1;
    qint64 queued = -1;
};

LoggerCounts loggerCounts(const QString &control)
{
    QProcess stats;
    stats.start(findTool(QStringLiteral("syslog-ng-ctl")), {QStringLiteral("stats"), QStringLiteral("-c"), control});
    LoggerCounts counts;
    if (!stats.waitForFinished(10000))
        return counts;
    // "source;s_local;;a;processed;300", "dst.file;d_journal#0;/path;a;written;234"
    const QList<QByteArray> lines = stats.readAllStandardOutput().split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> fields = line.split(';');
        if (fields.size() != 6)
            continue;
        const qint64 value = fields.at(5).toLongLong();
        if (fields.at(0) == "source" && fields.at(1) == "s_local" && fields.at(4) == "processed")
            counts.received = value;
        else if (fields.at(0) == "dst.file" && fields.at(1).startsWith("d_journal") && fields.at(4) == "written")
            counts.written = std::max<qint64>(counts.written, 0) + value;
        else if (fields.at(0) == "dst.file" && fields.at(1).startsWith("d_journal") && fields.at(4) == "queued")
            counts.queued = std::max<qint64>(counts.queued, 0) + value;
    }
    return counts;
}

struct SentEvent {
    QString uniqueId;
    QString messageId;
};

// Events as the generator makes them, each tagged with a record ID of its own and
// sent the way a local program logs: "<PRI>tag: " followed by the JSON message.
std::vector<QByteArray> makeBursts(std::vector<SentEvent> *sent)
{
    QBuffer generated;
    generated.open(QIODevice::WriteOnly);
    nimbgen::GeneratorOptions options;
    options.seed = 14;
    options.lines = kEvents;
    options.malformedPermille = 0;
    options.days = 1;
    options.end = 1709276400;
    nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&generated);

    std::vector<QByteArray> bursts(kBursts);
    const QList<QByteArray> lines = generated.data().split('\n');
    int index = 0;
    for (const QByteArray &line : lines) {
        if (line.isEmpty())
            continue;
        const QJsonObject root = QJsonDocument::fromJson(line).object();
        QJsonObject msg = root.value(QStringLiteral("MSG")).toObject();
        if (msg.size() != 1)
            continue;
        const QString source = msg.constBegin().key();
        QJsonObject body = msg.constBegin().value().toObject();
        const QString uniqueId = QStringLiteral("e2e-%1").arg(index, 6, 10, QLatin1Char('0'));
        body.insert(QStringLiteral("unique_id"), uniqueId);
        msg.insert(source, body);
        const int pri = syslogFacility(root.value(QStringLiteral("FACILITY")).toString()) * 8
            + syslogSeverity(root.value(QStringLiteral("PRIORITY")).toString());
        QByteArray &burst = bursts[size_t(index * kBursts / kEvents)];
        burst += '<' + QByteArray::number(pri) + ">velmo-e2e: ";
        burst += QJsonDocument(QJsonObject{{QStringLiteral("MSG"), msg}}).toJson(QJsonDocument::Compact);
        burst += '\n';
        sent->push_back({uniqueId, body.value(QStringLiteral("message_id")).toString()});
        ++index;
    }
    return bursts;
}

QString uniqueIdOf(const Event &event)
{
    static const int type = AuxParRegistry::instance().typeOf(QStringLiteral("unique_id"));
    const AuxPar *parameter = event.parameters.value(type);
    return parameter ? parameter->toString() : QString();
}

// Waits for the condition with the event loop running (the tab follows meanwhile),
// testing it once per turn; false when the time runs out first.
bool poll(const std::function<bool()> &condition, int timeoutMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.elapsed() > timeoutMs)
            return false;
        QTest::qWait(20);
    }
    return true;
}

struct FileTally {
    QString name;
    int counted = 0;
    qint64 lines = 0;
};
}

class TestJournalE2E : public QObject
{
    Q_OBJECT

private slots:
    void journalFollowedAcrossRotations();
};

void TestJournalE2E::journalFollowedAcrossRotations()
{
    QElapsedTimer clock;
    clock.start();
    auto remaining = [&clock]() { return int(std::max<qint64>(1000, kBudgetMs - clock.elapsed())); };

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    std::vector<SentEvent> sent;
    std::vector<QByteArray> bursts = makeBursts(&sent);
    QCOMPARE(int(sent.size()), kEvents);
    // For a look afterwards: the directory stays, with what was sent.
    if (qEnvironmentVariableIsSet("NIMB_E2E_KEEP")) {
        dir.setAutoRemove(false);
        std::printf("e2e: working in %s\n", qPrintable(dir.path()));
        QFile input(dir.filePath(QStringLiteral("sent.txt")));
        if (input.open(QIODevice::WriteOnly))
            for (const QByteArray &burst : bursts)
                input.write(burst);
    }
    BurstWriter writer(std::move(bursts));
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("log")));
    const QString journal = dir.filePath(QStringLiteral("log/events"));
    const QString socket = dir.filePath(QStringLiteral("in.sock"));
    const QString control = dir.filePath(QStringLiteral("ctl"));
    const QHash<QString, QString> fields{{QStringLiteral("SOCKET"), socket},
                                         {QStringLiteral("JOURNAL"), journal},
                                         {QStringLiteral("CONTROL"), control},
                                         {QStringLiteral("SYSLOG_NG_CTL"), findTool(QStringLiteral("syslog-ng-ctl"))}};
    const QString loggerConfig = dir.filePath(QStringLiteral("syslog-ng.conf"));
    QVERIFY(writeConfig(QStringLiteral("syslog-ng.conf.in"), loggerConfig, fields));
    const QString createConfig = dir.filePath(QStringLiteral("logrotate-create.conf"));
    QVERIFY(writeConfig(QStringLiteral("logrotate-create.conf.in"), createConfig, fields));
    const QString truncateConfig = dir.filePath(QStringLiteral("logrotate-copytruncate.conf"));
    QVERIFY(writeConfig(QStringLiteral("logrotate-copytruncate.conf.in"), truncateConfig, fields));

    // An unprivileged instance of its own, everything in the temporary directory.
    QProcess logger;
    logger.setProcessChannelMode(QProcess::MergedChannels);
    logger.start(findTool(QStringLiteral("syslog-ng")),
                 {QStringLiteral("-F"), QStringLiteral("--no-caps"), QStringLiteral("-f"), loggerConfig,
                  QStringLiteral("-R"), dir.filePath(QStringLiteral("persist")), QStringLiteral("-p"),
                  dir.filePath(QStringLiteral("pid")), QStringLiteral("-c"), control});
    QVERIFY2(logger.waitForStarted(10000), qPrintable(logger.errorString()));
    auto stopLogger = qScopeGuard([&] {
        writer.finish();
        logger.terminate();
        if (!logger.waitForFinished(10000))
            logger.kill();
        logger.waitForFinished(5000);
    });
    auto loggerOutput = [&logger]() { return QString::fromLocal8Bit(logger.readAll()); };
    QVERIFY2(poll([&] { return writer.connectTo(socket) || logger.state() == QProcess::NotRunning; }, 10000),
             "the logger does not listen");
    QVERIFY2(logger.state() == QProcess::Running, qPrintable(loggerOutput()));

    ConfigStore::instance().messagesPerPage() = 1000;
    // The tab starts before the logger has created the journal, as after a fresh install.
    MainLogWidget tab(journal, {});
    tab.startFollowing();

    LinesOnDisk disk(journal);
    auto waitWritten = [&](int bursts) {
        QVERIFY2(poll([&] { return writer.sent() >= bursts || writer.failed(); }, remaining()), "bursts not sent");
        QVERIFY2(!writer.failed(), qPrintable(writer.error()));
    };
    // Usually the files simply catch up. When they do not, the logger's own counts tell
    // a line still on its way from one that is gone, so a loss fails at once.
    auto waitOnDisk = [&](qint64 lines) {
        LoggerCounts counts;
        QVERIFY(poll([&] { return disk.total() >= lines || ((counts = loggerCounts(control)).received >= lines
                                                            && counts.queued == 0); },
                     remaining()));
        QVERIFY(poll([&] { return (counts = loggerCounts(control)).written >= lines; }, 5000));
        QCOMPARE(counts.received, lines);
        QCOMPARE(counts.written, lines);
        QCOMPARE(disk.total(), lines);
    };
    // The tab has counted every line of the journal it follows.
    auto waitFollowed = [&]() {
        const bool followed = poll([&] { return !tab.isLoading() && tab.eventCount() == plainLines(journal); },
                                   remaining());
        QVERIFY2(followed, qPrintable(QStringLiteral("tab counts %1, journal has %2 lines")
                                          .arg(tab.eventCount())
                                          .arg(plainLines(journal))));
    };

    int creates = 0;
    int truncations = 0;
    auto rotate = [&](Rotation kind) {
        QProcess rotation;
        rotation.setProcessChannelMode(QProcess::MergedChannels);
        rotation.start(findTool(QStringLiteral("logrotate")),
                       {QStringLiteral("-f"), QStringLiteral("-s"), dir.filePath(QStringLiteral("logrotate.state")),
                        kind == Rotation::Create ? createConfig : truncateConfig});
        QVERIFY(rotation.waitForStarted(10000));
        // The tab keeps following while the rotation runs.
        QVERIFY(poll([&] { return rotation.state() == QProcess::NotRunning; }, remaining()));
        const QString output = QString::fromLocal8Bit(rotation.readAll());
        QVERIFY2(rotation.exitStatus() == QProcess::NormalExit && rotation.exitCode() == 0, qPrintable(output));
        ++(kind == Rotation::Create ? creates : truncations);
    };

    const int perBurst = kEvents / kBursts;
    for (int burst = 0; burst < kBursts; ++burst) {
        const Rotation rotation = rotationBefore(burst);
        if (rotation == Rotation::CopyTruncate) {
            waitWritten(burst);
            waitOnDisk(qint64(burst) * perBurst);
            waitFollowed();
            rotate(rotation);
            if (QTest::currentTestFailed())
                return;
            writer.release(burst + 1);
        } else if (rotation == Rotation::Create) {
            // Spread over about a second, so that the journal is renamed in the middle of it.
            writer.pace(burst, 2);
            writer.release(burst + 1);
            rotate(rotation);
            if (QTest::currentTestFailed())
                return;
        } else {
            writer.release(burst + 1);
        }
        waitWritten(burst + 1);
        if (QTest::currentTestFailed())
            return;
        // A pause after every fourth burst lets the tab catch up, as between bursts of activity.
        if (burst % 4 == 3) {
            waitOnDisk(qint64(burst + 1) * perBurst);
            waitFollowed();
            if (QTest::currentTestFailed())
                return;
        }
    }
    waitWritten(kBursts);
    if (!QTest::currentTestFailed())
        waitOnDisk(kEvents);
    if (!QTest::currentTestFailed())
        waitFollowed();
    if (QTest::currentTestFailed())
        return;
    QVERIFY2(logger.state() == QProcess::Running, qPrintable(loggerOutput()));

    // Everything the engine counts, oldest rotation first, the followed journal last.
    QStringList files = disk.rotations();
    QCOMPARE(files.size(), creates + truncations);
    files.append(journal);
    QStringList uniqueIds;
    QStringList messageIds;
    std::vector<FileTally> tallies;
    int counted = 0;
    int compressed = 0;
    for (const QString &path : files) {
        CompressedLogFile file(path);
        QVERIFY2(file.unpack(), qPrintable(path));
        compressed += file.isTemporary() ? 1 : 0;
        LogParser parser(file.readablePath());
        FileTally tally{QFileInfo(path).fileName(), parser.count(), plainLines(file.readablePath())};
        // Every line the logger wrote is one the viewer reads.
        QCOMPARE(qint64(tally.counted), tally.lines);
        auto [opened, events] = parser.loadAll();
        QVERIFY(opened);
        QCOMPARE(int(events.size()), tally.counted);
        for (Event *event : events) {
            uniqueIds.append(uniqueIdOf(*event));
            messageIds.append(event->messageId);
            delete event;
        }
        if (path == journal)
            QCOMPARE(tab.eventCount(), tally.counted);
        counted += tally.counted;
        tallies.push_back(tally);
    }

    QStringList perFile;
    for (const FileTally &tally : tallies)
        perFile.append(QStringLiteral("%1 %2").arg(tally.name).arg(tally.counted));
    const QString figures =
        QStringLiteral("e2e: sent %1 events in %2 bursts; counted %3 in %4 files (%5); "
                       "rotations %6 (%7 create, %8 copytruncate), %9 of them compressed; %10 ms\n")
            .arg(kEvents)
            .arg(kBursts)
            .arg(counted)
            .arg(files.size())
            .arg(perFile.join(QStringLiteral(", ")))
            .arg(creates + truncations)
            .arg(creates)
            .arg(truncations)
            .arg(compressed)
            .arg(clock.elapsed());
    std::fputs(qPrintable(figures), stdout);
    const QByteArray report = qgetenv("NIMB_E2E_REPORT");
    if (!report.isEmpty()) {
        QFile out(QFile::decodeName(report));
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            out.write(figures.toUtf8());
    }

    // None lost, none twice, none invented, and in the order sent.
    QCOMPARE(counted, kEvents);
    for (int i = 0; i < kEvents; ++i) {
        if (uniqueIds.at(i) != sent[size_t(i)].uniqueId) {
            QFAIL(qPrintable(QStringLiteral("event %1 expected, %2 found at place %3")
                                 .arg(sent[size_t(i)].uniqueId, uniqueIds.at(i))
                                 .arg(i)));
        }
        QCOMPARE(messageIds.at(i), sent[size_t(i)].messageId);
    }
    QVERIFY(creates >= 3 && truncations >= 3 && compressed >= 4);

    // The followed tab shows the newest events on its last page.
    QVERIFY(!tab.model()->events().empty());
    QCOMPARE(uniqueIdOf(*tab.model()->events().back()), sent.back().uniqueId);
}

int main(int argc, char **argv)
{
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QByteArray(NIMB_TEST_DATA_DIR "/model/sysroot"));
    QApplication app(argc, argv);
    const QStringList missing = missingTools();
    if (!missing.isEmpty()) {
        std::printf("SKIP: not installed: %s\n", qPrintable(missing.join(QStringLiteral(", "))));
        return 77;
    }
    TestJournalE2E test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_journal_e2e.moc"
