// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsCli.h"

#include "Dictionary.h"
#include "FilterOptions.h"
#include "FilteringLogParser.h"
#include "JournalHistory.h"
#include "CompressedLogFile.h"
#include "RegularFile.h"
#include "LogParser.h"
#include "SummaryParser.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <climits>
#include <memory>

namespace EventsCli
{
namespace
{
const QString kPage = QStringLiteral("page");
const QString kPerPage = QStringLiteral("per-page");
const QString kRaw = QStringLiteral("raw");
const QString kWorkers = QStringLiteral("workers");
const QString kTime = QStringLiteral("time");
const QString kBucket = QStringLiteral("bucket");
const QString kHistory = QStringLiteral("history");

// Rows are read from the parser in slices of this size, so that a huge --per-page
// never holds more than a slice of events in memory.
constexpr int kLoadSlice = 1000;

// The journal as the parsers can read it: the file itself, or an unpacked private
// copy of a compressed rotation that is removed with this object.
class JournalSource
{
public:
    explicit JournalSource(const QString &path) : m_path(path) {}

    bool prepare(QString *failure)
    {
        QFile probe;
        if (!RegularFile::open(probe, m_path)) {
            *failure = QStringLiteral("cannot open %1").arg(m_path);
            return false;
        }
        probe.close();
        const CompressedLogFile::Compression compression = CompressedLogFile::detect(m_path);
        if (compression != CompressedLogFile::Compression::None && !CompressedLogFile::supports(compression)) {
            *failure = QStringLiteral("cannot open %1: this build cannot unpack its compression").arg(m_path);
            return false;
        }
        m_file = std::make_unique<CompressedLogFile>(m_path);
        if (m_file->unpack())
            return true;
        const CompressedLogFile::Limits limits = m_file->limits();
        switch (m_file->state()) {
        case CompressedLogFile::State::TooLarge:
            *failure = QStringLiteral("cannot unpack %1: it unpacks to more than %2 bytes")
                           .arg(m_path)
                           .arg(limits.maxBytes);
            break;
        case CompressedLogFile::State::DiskFull:
            *failure = QStringLiteral("cannot unpack %1: it would leave less than %2 bytes free in %3")
                           .arg(m_path)
                           .arg(limits.keepFree)
                           .arg(QDir::tempPath());
            break;
        default:
            *failure = QStringLiteral("cannot unpack %1: damaged or truncated").arg(m_path);
            break;
        }
        return false;
    }

    QString readablePath() const { return m_file->readablePath(); }
    // A journal just rotated away is empty: that is zero events, not a broken file.
    bool isEmpty() const { return QFileInfo(readablePath()).size() == 0; }

private:
    QString m_path;
    std::unique_ptr<CompressedLogFile> m_file;
};

class Cli
{
public:
    Cli(std::FILE *out, std::FILE *err) : m_out(out), m_err(err) {}

    int run(const QStringList &arguments);

private:
    int usageError(const QString &message);
    int fileError(const QString &message);
    void write(const QByteArray &bytes) { std::fwrite(bytes.constData(), 1, size_t(bytes.size()), m_out); }

    bool readPositive(const QString &option, qint64 *value, int *exitCode);
    // Over one parser, or over a JournalHistory of parsers.
    template<typename Reader>
    int count(Reader &reader);
    int summary(const QString &path);
    int historySummary();
    void writeSummary(const MapForCounts &counts);
    template<typename Reader>
    int page(Reader &reader, qint64 page, qint64 perPage);
    template<typename Reader>
    int goTo(Reader &reader, const QDateTime &time);
    template<typename Reader>
    int timeline(Reader &reader, AbstractLogParser::TimelineBucket bucket);
    int runOnHistory(const QString &command, qint64 pageNumber, qint64 perPage, const QDateTime &gotoTime,
                     AbstractLogParser::TimelineBucket bucket);

    std::unique_ptr<AbstractLogParser> makeParser(const QString &path) const;

    std::FILE *m_out;
    std::FILE *m_err;
    QCommandLineParser m_parser;
    FilterPack m_filter;
    bool m_filtered = false;
    unsigned m_workers = 0;
    QString m_displayPath;
};

int Cli::usageError(const QString &message)
{
    std::fprintf(m_err, "nimb-events: %s\nTry 'nimb-events --help' for more information.\n",
                 qUtf8Printable(message));
    return UsageError;
}

int Cli::fileError(const QString &message)
{
    std::fprintf(m_err, "nimb-events: %s\n", qUtf8Printable(message));
    return FileError;
}

bool Cli::readPositive(const QString &option, qint64 *value, int *exitCode)
{
    bool ok = false;
    *value = m_parser.value(option).toLongLong(&ok);
    if (ok && *value >= 1 && *value <= INT_MAX)
        return true;
    *exitCode = usageError(QStringLiteral("--%1 needs a whole number from 1 to %2, not '%3'")
                               .arg(option)
                               .arg(INT_MAX)
                               .arg(m_parser.value(option)));
    return false;
}

std::unique_ptr<AbstractLogParser> Cli::makeParser(const QString &path) const
{
    std::unique_ptr<AbstractLogParser> parser;
    if (m_filtered) {
        auto filtering = std::make_unique<FilteringLogParser>(path);
        filtering->setFilter(m_filter);
        parser = std::move(filtering);
    } else {
        parser = std::make_unique<LogParser>(path);
    }
    parser->setWorkerCount(m_workers);
    return parser;
}

int Cli::run(const QStringList &arguments)
{
    m_parser.setApplicationDescription(QStringLiteral(
        "Reads a security-events journal (plain or a compressed rotation) for scripts.\n"
        "\n"
        "Commands:\n"
        "  count FILE [filter options]     number of events, all or those passing the filter\n"
        "  summary FILE                    events by priority and source in the last hour, day and week (JSON)\n"
        "  page FILE --page P --per-page N [filter options] [--raw]\n"
        "                                  one JSON object per event of page P (1-based), or the raw lines\n"
        "  goto FILE --time T [filter options]\n"
        "                                  row number (1-based) of the first event in file order at or after\n"
        "                                  the ISO 8601 date-time T; nothing and status 1 when there is none\n"
        "  timeline FILE [--bucket hour|day] [filter options]\n"
        "                                  per UTC hour or day: its start, the number of events, then the\n"
        "                                  numbers of priorities 1 to 8 and unknown, tab-separated\n"
        "\n"
        "With --history every command reads FILE's rotations (FILE.N[.gz|.bz2|.xz|.zst], highest N\n"
        "first, then FILE-YYYYMMDD[.ext] by date) and FILE itself as one journal.\n"
        "\n"
        "Exit status: 0 success, 1 file errors, 2 usage errors."));
    m_parser.addHelpOption();
    m_parser.addVersionOption();
    m_parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("count, summary, page, goto or timeline"));
    m_parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("The journal file."));
    m_parser.addOptions({
        {kPage, QStringLiteral("Page number, from 1 (page)."), QStringLiteral("P")},
        {kPerPage, QStringLiteral("Events per page (page)."), QStringLiteral("N")},
        {kRaw, QStringLiteral("Print the journal lines as they stand (page).")},
        {kTime, QStringLiteral("The ISO 8601 date-time to go to (goto)."), QStringLiteral("T")},
        {kBucket, QStringLiteral("Bucket of the timeline: hour (default) or day (timeline)."),
         QStringLiteral("hour|day")},
        {kHistory, QStringLiteral("Read the journal's rotations, oldest first, and the journal as one.")},
        {kWorkers, QStringLiteral("Threads for filtered counts and the summary; default one per processor."),
         QStringLiteral("N")},
    });
    FilterOptions::addTo(m_parser);

    if (!m_parser.parse(arguments))
        return usageError(m_parser.errorText());
    if (m_parser.isSet(QStringLiteral("help"))) {
        write(m_parser.helpText().toUtf8());
        return Success;
    }
    if (m_parser.isSet(QStringLiteral("version"))) {
        write(QStringLiteral("nimb-events %1\n").arg(QCoreApplication::applicationVersion()).toUtf8());
        return Success;
    }

    const QStringList positional = m_parser.positionalArguments();
    if (positional.isEmpty())
        return usageError(QStringLiteral("no command given (count, summary, page, goto or timeline)"));
    const QString command = positional.first();
    const QStringList commands{QStringLiteral("count"), QStringLiteral("summary"), QStringLiteral("page"),
                               QStringLiteral("goto"), QStringLiteral("timeline")};
    if (!commands.contains(command))
        return usageError(
            QStringLiteral("unknown command '%1' (expected count, summary, page, goto or timeline)").arg(command));
    if (positional.size() < 2)
        return usageError(QStringLiteral("%1: no journal file given").arg(command));
    if (positional.size() > 2)
        return usageError(QStringLiteral("%1: unexpected argument '%2'").arg(command, positional.at(2)));

    const bool isPage = command == QLatin1String("page");
    for (const QString &pageOption : {kPage, kPerPage, kRaw}) {
        if (!isPage && m_parser.isSet(pageOption))
            return usageError(QStringLiteral("--%1 applies to the page command only").arg(pageOption));
    }
    const std::pair<QString, QString> ownOptions[] = {{kTime, QStringLiteral("goto")},
                                                      {kBucket, QStringLiteral("timeline")}};
    for (const auto &own : ownOptions) {
        if (command != own.second && m_parser.isSet(own.first))
            return usageError(QStringLiteral("--%1 applies to the %2 command only").arg(own.first, own.second));
    }
    QDateTime gotoTime;
    if (command == QLatin1String("goto")) {
        if (!m_parser.isSet(kTime))
            return usageError(QStringLiteral("goto needs --time"));
        gotoTime = QDateTime::fromString(m_parser.value(kTime), Qt::ISODate);
        if (!gotoTime.isValid())
            return usageError(QStringLiteral("--time: '%1' is not an ISO 8601 date-time (e.g. 2024-03-01T10:15:00)")
                                  .arg(m_parser.value(kTime)));
    }
    auto bucket = AbstractLogParser::TimelineBucket::Hour;
    if (m_parser.isSet(kBucket)) {
        const QString value = m_parser.value(kBucket);
        if (value == QLatin1String("day"))
            bucket = AbstractLogParser::TimelineBucket::Day;
        else if (value != QLatin1String("hour"))
            return usageError(QStringLiteral("--bucket needs hour or day, not '%1'").arg(value));
    }
    m_filtered = FilterOptions::anyGiven(m_parser);
    if (command == QLatin1String("summary") && m_filtered)
        return usageError(QStringLiteral("summary takes no filter options"));

    if (m_parser.isSet(kWorkers)) {
        bool ok = false;
        const int workers = m_parser.value(kWorkers).toInt(&ok);
        if (!ok || workers < 1 || workers > 1024)
            return usageError(QStringLiteral("--workers needs a number of threads from 1 to 1024, not '%1'")
                                  .arg(m_parser.value(kWorkers)));
        m_workers = unsigned(workers);
    }
    qint64 pageNumber = 0;
    qint64 perPage = 0;
    if (isPage) {
        if (!m_parser.isSet(kPage) || !m_parser.isSet(kPerPage))
            return usageError(QStringLiteral("page needs --page and --per-page"));
        int exitCode = Success;
        if (!readPositive(kPage, &pageNumber, &exitCode) || !readPositive(kPerPage, &perPage, &exitCode))
            return exitCode;
    }
    if (m_filtered) {
        QString error;
        if (!FilterOptions::build(m_parser, &m_filter, &error))
            return usageError(error);
    }

    m_displayPath = positional.at(1);
    if (m_parser.isSet(kHistory))
        return runOnHistory(command, pageNumber, perPage, gotoTime, bucket);
    QString failure;
    JournalSource source(m_displayPath);
    if (!source.prepare(&failure))
        return fileError(failure);
    if (!source.isEmpty() && !LogParser(source.readablePath()).isJournal())
        return fileError(QStringLiteral("%1 is not an events journal").arg(m_displayPath));

    if (command == QLatin1String("summary"))
        return summary(source.readablePath());
    const std::unique_ptr<AbstractLogParser> parser = makeParser(source.readablePath());
    if (command == QLatin1String("count"))
        return count(*parser);
    if (command == QLatin1String("goto"))
        return goTo(*parser, gotoTime);
    if (command == QLatin1String("timeline"))
        return timeline(*parser, bucket);
    return page(*parser, pageNumber, perPage);
}

int Cli::runOnHistory(const QString &command, qint64 pageNumber, qint64 perPage, const QDateTime &gotoTime,
                      AbstractLogParser::TimelineBucket bucket)
{
    if (JournalHistory::files(m_displayPath).isEmpty())
        return fileError(QStringLiteral("cannot open %1").arg(m_displayPath));
    if (command == QLatin1String("summary"))
        return historySummary();
    JournalHistory history(m_displayPath, [this](const QString &path) { return makeParser(path); });
    int status = Success;
    if (command == QLatin1String("count"))
        status = count(history);
    else if (command == QLatin1String("goto"))
        status = goTo(history, gotoTime);
    else if (command == QLatin1String("timeline"))
        status = timeline(history, bucket);
    else
        status = page(history, pageNumber, perPage);
    // What could not be unpacked is left out, and said so.
    for (const QString &failed : history.failures())
        std::fprintf(m_err, "nimb-events: left out %s: cannot unpack it\n", qUtf8Printable(failed));
    return status;
}

template<typename Reader>
int Cli::count(Reader &reader)
{
    const int events = reader.count();
    if (events < 0)
        return fileError(QStringLiteral("cannot open %1").arg(m_displayPath));
    write(QByteArray::number(events) + '\n');
    return Success;
}

int Cli::summary(const QString &path)
{
    SummaryParser parser(path);
    parser.setWorkerCount(m_workers);
    writeSummary(parser.countForSummary());
    return Success;
}

void Cli::writeSummary(const MapForCounts &counts)
{
    const Dictionary &dictionary = Dictionary::instance();
    QJsonObject root;
    for (auto priority = counts.cbegin(); priority != counts.cend(); ++priority) {
        QJsonObject sources;
        for (auto source = priority.value().cbegin(); source != priority.value().cend(); ++source) {
            const WindowCounts &windows = source.value();
            sources.insert(source.key(), QJsonObject{{QStringLiteral("hour"), qint64(windows.hour)},
                                                     {QStringLiteral("day"), qint64(windows.day)},
                                                     {QStringLiteral("week"), qint64(windows.week)}});
        }
        root.insert(dictionary.priorityText(priority.key()), sources);
    }
    write(QJsonDocument(root).toJson(QJsonDocument::Indented));
}

int Cli::historySummary()
{
    JournalHistory history(m_displayPath, [this](const QString &path) {
        auto parser = std::make_unique<SummaryParser>(path);
        parser->setWorkerCount(m_workers);
        return std::unique_ptr<AbstractLogParser>(std::move(parser));
    });
    history.count();
    MapForCounts counts;
    for (AbstractLogParser *parser : history.parsers()) {
        const MapForCounts part = static_cast<SummaryParser *>(parser)->countForSummary();
        for (auto priority = part.cbegin(); priority != part.cend(); ++priority) {
            for (auto source = priority.value().cbegin(); source != priority.value().cend(); ++source) {
                WindowCounts &into = counts[priority.key()][source.key()];
                into.hour += source.value().hour;
                into.day += source.value().day;
                into.week += source.value().week;
            }
        }
    }
    writeSummary(counts);
    return Success;
}

template<typename Reader>
int Cli::goTo(Reader &reader, const QDateTime &time)
{
    if (reader.count() < 0)
        return fileError(QStringLiteral("cannot open %1").arg(m_displayPath));
    const int row = reader.rowAtTime(time);
    if (row < 0)
        return FileError;
    write(QByteArray::number(row + 1) + '\n');
    return Success;
}

template<typename Reader>
int Cli::timeline(Reader &reader, AbstractLogParser::TimelineBucket bucket)
{
    reader.setTimelineEnabled(true);
    if (reader.count() < 0)
        return fileError(QStringLiteral("cannot open %1").arg(m_displayPath));
    for (const AbstractLogParser::TimelineEntry &entry : reader.timeline(bucket)) {
        QByteArray line = QDateTime::fromMSecsSinceEpoch(entry.startMsecs, Qt::UTC).toString(Qt::ISODate).toLatin1();
        line += '\t' + QByteArray::number(entry.total);
        for (const qint64 n : entry.byPriority)
            line += '\t' + QByteArray::number(n);
        write(line + '\n');
    }
    return Success;
}

template<typename Reader>
int Cli::page(Reader &reader, qint64 pageNumber, qint64 perPage)
{
    Reader *parser = &reader;
    const int total = parser->count();
    if (total < 0)
        return fileError(QStringLiteral("cannot open %1").arg(m_displayPath));
    const qint64 first = (pageNumber - 1) * perPage;
    if (first >= total)
        return Success;
    const int last = int(std::min<qint64>(first + perPage, total));

    const bool raw = m_parser.isSet(kRaw);
    for (int row = int(first); row < last; row += kLoadSlice) {
        const int rows = std::min(kLoadSlice, last - row);
        if (raw) {
            for (int k = 0; k < rows; ++k) {
                const std::string line = parser->loadSingleString(row + k);
                std::fwrite(line.data(), 1, line.size(), m_out);
                if (line.empty() || line.back() != '\n')
                    std::fputc('\n', m_out);
            }
            continue;
        }
        auto [opened, events] = parser->load(row, rows);
        if (!opened)
            return fileError(QStringLiteral("cannot open %1").arg(m_displayPath));
        for (Event *event : events) {
            QJsonArray parameters;
            const QVector<Event::Row> list = event->parameterList();
            for (const Event::Row &entry : list)
                parameters.append(QJsonArray{entry.first, entry.second});
            const QJsonObject object{{QStringLiteral("number"), qint64(event->number)},
                                     {QStringLiteral("parameters"), parameters}};
            write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
            delete event;
        }
    }
    return Success;
}
}

int run(const QStringList &arguments, std::FILE *out, std::FILE *err)
{
    Cli cli(out, err);
    const int status = cli.run(arguments);
    std::fflush(out);
    return status;
}
}
