// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Dictionary.h"
#include "FilterOptions.h"
#include "FilteringLogParser.h"
#include "LineCorpus.h"
#include "LineFilter.h"
#include "LineParser.h"
#include "LogParser.h"
#include "ParsingFixture.h"
#include "SummaryParser.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QJsonObject>
#include <QTemporaryDir>

namespace
{
// Every filter option of nimb-events, alone and combined, with values that the generated
// journals hit and miss: words of both languages, keywords found in texts, in names, in
// rendered numbers, times, labels and words, around word boundaries and in either case.
const QVector<QStringList> kFilters{
    {"--priority", "err,warning"},
    {"--priority", "notice,warning,error,critical,alert,emergency", "--name-contains", "user"},
    {"--from", "2024-02-25T00:00:00+03:00"},
    {"--to", "2024-02-27T12:00:00Z"},
    {"--from", "2024-02-24T00:00:00", "--to", "2024-02-28T00:00:00"},
    {"--id", "auth-login-success"},
    {"--type", "Authentication", "--type", "Network"},
    {"--type", "Аутентификация", "--type", "Сеть"},
    {"--type-excludes", "NET"},
    {"--name-contains", "usb"},
    {"--name-excludes", "log"},
    {"--name-contains", "ПОЛЬЗОВАТЕЛ"},
    {"--search", "root"},
    {"--search", "root", "--whole-word"},
    {"--search", "ROOT", "--case-sensitive"},
    {"--search", "admin", "--whole-word", "--case-sensitive"},
    {"--search", "ivanov", "--whole-word"},
    {"--search", "usb", "--whole-word"},
    {"--search", "k"},
    {"--search", ":5"},
    {"--search", "."},
    {"--search", "docs"},
    {"--search", "Kernel"},
    {"--search", "informational", "--whole-word"},
    {"--search", "T10:"},
    {"--search", "1000", "--whole-word"},
    {"--search", "foo: bar"},
    {"--search", "bash; "},
    {"--search", "SIGKILL"},
    {"--search", "yes"},
    {"--search", "success", "--whole-word"},
    {"--search", "MAC level"},
    {"--search", "пользовател"},
    {"--search", "Аудит", "--whole-word"},
    {"--search", "unrecognized"},
    {"--param", "uid=1000"},
    {"--param", "user=root"},
    {"--param", "result=false"},
    {"--param", "success=true"},
    {"--param", "state=enabled"},
    {"--param", "source=velmo-auth"},
    {"--param", "host=ws-0412"},
    {"--param", "signal=9"},
    {"--param", "obj=0:0:0:0:0"},
    {"--param", "pid=300", "--param", "uid=0"},
    {"--param", "undefined=foo: bar"},
    {"--custom", "workplace=Кабинет 214"},
    {"--custom", "operator_note=Planned maintenance", "--custom", "ticket_id=INC-10000"},
    {"--priority", "info", "--search", "admin", "--whole-word", "--param", "result=true", "--from",
     "2024-02-20T00:00:00Z"},
};

FilterPack packOf(const QStringList &options)
{
    QCommandLineParser parser;
    FilterOptions::addTo(parser);
    FilterPack pack;
    QString error;
    if (!parser.parse(QStringList{QStringLiteral("test")} + options) || !FilterOptions::build(parser, &pack, &error))
        qFatal("bad filter %s: %s", qPrintable(options.join(' ')), qPrintable(error + parser.errorText()));
    return pack;
}

enum Outcome { Unreadable, Failed, Passed };

Outcome outcomeOf(LineFilter::Result result)
{
    return result == LineFilter::Result::Passed ? Passed : result == LineFilter::Result::Failed ? Failed : Unreadable;
}

// The summary as its description reads, with Qt's reader and nothing else.
MapForCounts expectedSummary(const QVector<QByteArray> &lines)
{
    const QDateTime now = QDateTime::currentDateTime();
    const Dictionary &dictionary = Dictionary::instance();
    MapForCounts counts;
    for (const QByteArray &line : lines) {
        const QJsonObject root = QJsonDocument::fromJson(line).object();
        const Event::Priority priority = Event::priorityFromWord(root.value(QLatin1String("PRIORITY")).toString());
        const QJsonObject msg = root.value(QLatin1String("MSG")).toObject();
        const QDateTime time = QDateTime::fromString(root.value(QLatin1String("ISODATE")).toString(), Qt::ISODate);
        if (!dictionary.hasPriority(priority) || msg.size() != 1 || !time.isValid() || now < time)
            continue;
        const QString source = dictionary.hasSource(msg.constBegin().key()) ? msg.constBegin().key()
                                                                             : Dictionary::unrecognizedSource();
        WindowCounts &windows = counts[priority][source];
        if (time >= now.addSecs(-3600))
            ++windows.hour;
        if (time >= now.addDays(-1))
            ++windows.day;
        if (time >= now.addDays(-7))
            ++windows.week;
    }
    // Groups that only counted nothing are not listed.
    for (auto &sources : counts)
        for (auto it = sources.begin(); it != sources.end();)
            it = it.value() == WindowCounts{} ? sources.erase(it) : std::next(it);
    for (auto it = counts.begin(); it != counts.end();)
        it = it.value().isEmpty() ? counts.erase(it) : std::next(it);
    return counts;
}
}

class TestLineFilter : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void filterAgreesWithMatchingParsedEvents()
    {
        // Generated lines, most of them broken somehow, and the hand-made corpus.
        corpus::Mutator mutator(11);
        corpus::Corpus handMade(12);
        QVector<QByteArray> lines;
        const int budget = corpus::lineBudget(6000, 60000);
        for (int slice = 0; lines.size() < budget; ++slice) {
            for (const QByteArray &line : corpus::generated(quint64(300 + slice), std::min(10000, budget - lines.size())))
                lines.append(slice % 2 ? mutator.mutate(line) : line);
        }
        for (int i = 0; i < budget / 6; ++i)
            lines.append(handMade.line());

        std::vector<Outcome> expected;
        std::vector<std::unique_ptr<Event>> events;
        for (const QByteArray &line : lines)
            events.push_back(LineParser::parseLine(line));
        const int accepted = int(std::count_if(events.begin(), events.end(), [](const auto &event) { return bool(event); }));
        QStringList faults;
        int splitting = 0;
        for (const QStringList &options : kFilters) {
            const FilterPack pack = packOf(options);
            LineFilter filter(pack);
            int passed = 0;
            for (int i = 0; i < lines.size(); ++i) {
                const Outcome wanted = !events[size_t(i)] ? Unreadable : pack.match(*events[size_t(i)]) ? Passed : Failed;
                passed += wanted == Passed;
                if (outcomeOf(filter.test(lines[i])) != wanted && faults.size() < 10)
                    faults.append(options.join(' ') + QStringLiteral(": ")
                                  + QString::fromUtf8(lines[i].left(400).toPercentEncoding(" {}\":,[]-_.")));
            }
            splitting += passed > 0 && passed < accepted;
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join('\n')));
        // Filters that pass everything or nothing prove little; some only bite in the
        // other language.
        QVERIFY2(splitting >= kFilters.size() * 3 / 4, qPrintable(QString::number(splitting)));
    }

    void journalsAsWrittenAreFilteredWithoutEvents()
    {
        // The speed comes from not building events: on journals as the logger writes
        // them, broken lines included, hardly a line is parsed in full.
        const QVector<QByteArray> lines = corpus::generated(77, corpus::lineBudget(10000, 10000));
        for (const QStringList &options : kFilters) {
            LineFilter filter(packOf(options));
            for (const QByteArray &line : lines)
                filter.test(line);
            QVERIFY2(filter.linesParsedInFull() <= lines.size() / 200,
                     qPrintable(options.join(' ') + QStringLiteral(": ") + QString::number(filter.linesParsedInFull())));
        }
    }

    void parsersCountAsFullParsingDoes()
    {
        // A journal of the last ten days, so that the summary's windows all fill. The
        // windows move with the clock: no event lies within ten minutes of where their
        // edges are when the test starts, so that none crosses one while it runs.
        const QDateTime start = QDateTime::currentDateTime();
        const nimbgen::GeneratorOptions options{5, corpus::lineBudget(5000, 40000), -1, 10, 20,
                                                start.toSecsSinceEpoch() - 60};
        QBuffer generated;
        QVERIFY(generated.open(QIODevice::WriteOnly));
        QVERIFY(nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&generated));
        QByteArray bytes;
        QVector<QByteArray> lines;
        QVector<qint64> starts;
        for (const QByteArray &line : generated.data().split('\n')) {
            const QDateTime time = QDateTime::fromString(
                QJsonDocument::fromJson(line).object().value(QLatin1String("ISODATE")).toString(), Qt::ISODate);
            static const int windowAges[] = {3600, 86400, 7 * 86400};
            const bool nearEdge = time.isValid() && std::any_of(std::begin(windowAges), std::end(windowAges), [&](int age) {
                const qint64 since = start.addSecs(-age).secsTo(time);
                return since > -10 && since < 600;
            });
            if (nearEdge || line.isEmpty())
                continue;
            starts.append(bytes.size());
            lines.append(line);
            bytes += line + '\n';
        }
        const QString path = m_dir.filePath(QStringLiteral("journal"));
        fixture::write(path, bytes);
        std::vector<std::unique_ptr<Event>> events;
        for (const QByteArray &line : lines)
            events.push_back(LineParser::parseLine(line));

        auto expectedPositions = [&](const FilterPack *pack) {
            std::vector<qint64> result;
            for (int i = 0; i < lines.size(); ++i) {
                if (events[size_t(i)] && (!pack || pack->match(*events[size_t(i)])))
                    result.push_back(starts[i]);
            }
            return result;
        };
        for (unsigned workers : {1u, 2u, 3u}) {
            LogParser all(path);
            all.setWorkerCount(workers);
            QCOMPARE(all.count(), int(expectedPositions(nullptr).size()));
            QVERIFY(all.positions() == expectedPositions(nullptr));
        }
        for (const QStringList &filterOptions : kFilters) {
            const FilterPack pack = packOf(filterOptions);
            FilteringLogParser parser(path);
            parser.setWorkerCount(2);
            parser.setFilter(pack);
            const std::vector<qint64> wanted = expectedPositions(&pack);
            QVERIFY2(parser.count() == int(wanted.size()) && parser.positions() == wanted,
                     qPrintable(filterOptions.join(' ')));
        }

        SummaryParser summary(path);
        summary.setWorkerCount(2);
        const MapForCounts expected = expectedSummary(lines);
        QVERIFY(expected.size() >= 3);
        QCOMPARE(summary.countForSummary(), expected);
    }
};

// The demo tree: the generator writes its sources and custom parameters.
NIMB_TEST_MAIN_WITH(TestLineFilter, QCoreApplication, NIMB_DEMO_DIR "/sysroot")
#include "test_linefilter.moc"
