// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AbstractLogParser.h"
#include "AsyncLoader.h"
#include "AuxParRegistry.h"
#include "FailingTargets.h"
#include "EventsDataCopier.h"
#include "EventsSelection.h"
#include "FilteringLogParser.h"
#include "JournalRows.h"
#include "Language.h"
#include "LogParser.h"
#include "NimbTestMain.h"
#include "OutputFixture.h"
#include "OutputProgress.h"
#include "TsanDefaults.h"

#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>

namespace
{
QString inLanguage(const char *english, const char *russian)
{
    return QString::fromUtf8(Language::isRussian() ? russian : english);
}

void addParameter(Event &event, int type, const QVariant &value)
{
    auto parameter = AuxParRegistry::instance().create(type);
    parameter->setValue(value);
    event.parameters.insert(std::move(parameter));
}

// Events built by hand hold only the parameters they are given, so the CSV columns
// stay few; the second has another parameter list than the first.
std::vector<std::unique_ptr<Event>> handBuilt()
{
    std::vector<std::unique_ptr<Event>> events;
    auto first = std::make_unique<Event>();
    first->number = 1;
    first->priority = Event::Error;
    first->time = QDateTime(QDate(2024, 3, 1), QTime(10, 0), Qt::UTC);
    first->messageId = QStringLiteral("auth-login");
    first->nameEn = QStringLiteral("Login");
    first->nameRu = QStringLiteral("Вход");
    first->customParameters.insert(QStringLiteral("ticket_id"), QStringLiteral("T-1"));
    first->customParameters.insert(QStringLiteral("workplace"), QStringLiteral("W-9"));
    addParameter(*first, AuxParId::Source, QStringLiteral("velmo-auth"));
    addParameter(*first, 32, 42);
    addParameter(*first, AuxParId::TypeEn, QStringLiteral("Authentication"));
    addParameter(*first, AuxParId::TypeRu, QStringLiteral("Аутентификация"));
    addParameter(*first, 53, QStringLiteral("ann"));
    events.push_back(std::move(first));

    auto second = std::make_unique<Event>();
    second->number = 2;
    second->time = QDateTime(QDate(2024, 3, 1), QTime(11, 0), Qt::UTC);
    addParameter(*second, AuxParId::Source, QStringLiteral("velmo-nosuch"));
    addParameter(*second, 45, QString());
    addParameter(*second, 53, QStringLiteral("say \"hi\", ok"));
    events.push_back(std::move(second));
    return events;
}

std::vector<const Event *> pointers(const std::vector<std::unique_ptr<Event>> &events)
{
    std::vector<const Event *> result;
    for (const auto &event : events)
        result.push_back(event.get());
    return result;
}

// Values that JSON or CSV must escape, and one that needs nothing.
const QStringList kAwkward = {
    QStringLiteral("a \"quoted\" value"), QStringLiteral("back\\slash"), QStringLiteral("comma, separated"),
    QStringLiteral("tab\there"),          QStringLiteral("two\nlines"),  QStringLiteral("crlf\r\nend"),
    QStringLiteral("bell\x01" "char"),    QStringLiteral("Пользователь"), QStringLiteral("plain"),
    QStringLiteral("smile 😀 costs 5 €"),
};

QByteArray awkwardLine(int i)
{
    const QString value = kAwkward[i % kAwkward.size()];
    QJsonObject body{{"message_id", QStringLiteral("id-%1").arg(i)},
                     {"name_en", value},
                     {"name_ru", value},
                     {"user", value},
                     {"uid", i},
                     {"ticket_id", value},
                     {"remark", value}};
    QJsonObject object{{"FACILITY", value},
                       {"PRIORITY", "notice"},
                       {"HOST", value},
                       {"ISODATE", "2024-03-01T10:00:00+03:00"},
                       {"MSG", QJsonObject{{i % 2 ? QStringLiteral("velmo-\"odd\\") : QStringLiteral("velmo-auth"), body}}}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

// Lines of varying length, every seventh one broken; `accepted` gets the others
// (odd ones are errors, even ones info).
QByteArray bigJournal(int lines, QByteArray *accepted, QByteArray *errors = nullptr)
{
    QByteArray bytes;
    for (int i = 0; i < lines; ++i) {
        QByteArray text;
        if (i % 7 == 3) {
            text = "{\"MSG\": broken " + QByteArray::number(i);
        } else {
            const QByteArray padding((i * 131) % 1500, 'p');
            text = output::line("\"message_id\":\"e" + QByteArray::number(i) + "\",\"user\":\"u" + QByteArray::number(i)
                                    + "\",\"path\":\"/" + padding + "\",\"uid\":" + QByteArray::number(i),
                                i % 2 ? "error" : "info", "velmo-auth", i);
            accepted->append(text + '\n');
            if (errors && i % 2)
                errors->append(text + '\n');
        }
        bytes += text + '\n';
    }
    return bytes;
}

JournalRows countedRows(AbstractLogParser &parser)
{
    parser.count();
    return JournalRows(parser.filePath(), parser.positions());
}

// The loader on a thread of its own, as a journal tab runs it.
struct RunningLoader {
    AsyncLoader loader;
    QThread thread;

    explicit RunningLoader(AbstractLogParser *parser) : loader(parser)
    {
        loader.moveToThread(&thread);
        thread.start();
    }
    ~RunningLoader()
    {
        thread.quit();
        thread.wait();
    }
    int count()
    {
        int result = -2;
        QMetaObject::invokeMethod(&loader, [&] { result = loader.parser()->count(); }, Qt::BlockingQueuedConnection);
        return result;
    }
};
}

class TestEventsDataCopier : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    EventsDataCopier m_copier;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void fileEndingsChooseTheWriter_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("known");
        QTest::addColumn<int>("format");
        QTest::newRow("json") << "/tmp/out.json" << true << int(EventsDataCopier::Json);
        QTest::newRow("csv") << "a.b.csv" << true << int(EventsDataCopier::Csv);
        QTest::newRow("log") << "events.log" << true << int(EventsDataCopier::RawLines);
        QTest::newRow("upper case") << "out.JSON" << false << -1;
        QTest::newRow("no ending") << "json" << false << -1;
        QTest::newRow("other") << "out.txt" << false << -1;
    }

    void fileEndingsChooseTheWriter()
    {
        QFETCH(QString, name);
        QFETCH(bool, known);
        QFETCH(int, format);
        EventsDataCopier::Format found = EventsDataCopier::Json;
        QCOMPARE(EventsDataCopier::formatOfFile(name, &found), known);
        if (known)
            QCOMPARE(int(found), format);
    }

    void jsonBytes()
    {
        const output::Parsed parsed = output::parse({
            output::line(R"("message_id":"auth-login","name_en":"User logged in","name_ru":"Вход",)"
                         R"("type_en":"Login","type_ru":"Вход в систему","user":"root","uid":1000,"ticket_id":"T-7")",
                         "critical"),
            // No parameters, no ID, no names, no host, no facility, an unknown priority word.
            R"({"PRIORITY":"Warning","MSG":{"velmo-usb":{}},"ISODATE":"2024-03-01T07:00:00Z"})",
            output::line("\"message_id\":\"x\",\"user\":\"a \\\"q\\\" \\\\ b\\tc\\nd\",\"uid\":5,\"note\":\"x,y\""),
        });
        QCOMPARE(parsed.events.size(), std::size_t(3));
        const QString target = path("bytes.json");
        m_copier.writeJson(parsed.events, target);

        const QByteArray russianName = Language::isRussian() ? QByteArray(R"("name_ru":"Вход",)") : QByteArray();
        const QByteArray expected =
            "[\n"
            R"({"PRIORITY":"crit","MSG":{"velmo-auth":{"message_id":"auth-login","name_en":"User logged in",)"
            + russianName
            + R"("type_en":"Login","type_ru":"Вход в систему","uid":"1000","user":"root","ticket_id":"T-7"}},)"
              R"("ISODATE":"2024-03-01T10:00:00+03:00","HOST":"ws-1","FACILITY":"auth"},)"
              "\n"
              R"({"PRIORITY":"","MSG":{"velmo-usb":{}},"ISODATE":"2024-03-01T07:00:00Z","HOST":"","FACILITY":""},)"
              "\n"
              R"({"PRIORITY":"info","MSG":{"velmo-auth":{"message_id":"x","uid":"5","undefined":"note: x,y",)"
              "\"user\":\"a \\\"q\\\" \\\\ b\\tc\\nd\"}},"
              R"("ISODATE":"2024-03-01T10:00:00+03:00","HOST":"ws-1","FACILITY":"auth"})"
              "\n]\n";
        QCOMPARE(output::read(target), expected);
        QVERIFY(Language::isRussian() || !output::read(target).contains("name_ru"));

        m_copier.writeJson(std::vector<const Event *>(), target);
        QCOMPARE(output::read(target), QByteArray("[\n]\n"));
    }

    void csvBytes()
    {
        const auto events = handBuilt();
        const QString target = path("bytes.csv");
        m_copier.writeCsv(pointers(events), target);
        const QByteArray expected =
            R"("Date and time","Severity","Source","Event name","Process ID","Event type","Event type","User")"
            "\n"
            "\"2024-03-01T10:00:00Z\",\"error\",\""
            + inLanguage("Authentication service", "Служба аутентификации").toUtf8() + "\",\""
            + inLanguage("Login", "Вход").toUtf8() + "\",\"42\",\"Authentication\",\"Аутентификация\",\"ann\""
              "\n"
              // The header follows the first event: this row's fields do not line up with it.
              R"("2024-03-01T11:00:00Z","","unrecognized","","","say ""hi"", ok")"
              "\n";
        QCOMPARE(output::read(target), expected);

        m_copier.writeCsv(std::vector<const Event *>(), target);
        QCOMPARE(output::read(target), QByteArray(R"("Date and time","Severity","Source","Event name")" "\n"));
    }

    void copiedText()
    {
        const auto events = handBuilt();
        const QList<const Event *> list{events[0].get(), events[1].get()};
        const QString expected = QStringLiteral("2024-03-01T10:00:00Z\tauth-login\t")
            + inLanguage("Authentication", "Аутентификация") + QStringLiteral("\terror\t") + inLanguage("Login", "Вход")
            + QStringLiteral("\t42\tann\tT-1\n"
                             // No priority field for an unknown priority.
                             "2024-03-01T11:00:00Z\t\t\t\tsay \"hi\", ok");
        QCOMPARE(EventsDataCopier::copyText(list, {32, 53}, {QStringLiteral("ticket_id")}), expected);
        // Only the requested kinds and custom names.
        QCOMPARE(EventsDataCopier::copyText({events[0].get()}, {}, {}),
                 QStringLiteral("2024-03-01T10:00:00Z\tauth-login\t") + inLanguage("Authentication", "Аутентификация")
                     + QStringLiteral("\terror\t") + inLanguage("Login", "Вход"));
    }

    void awkwardValuesReadBackStrictly()
    {
        QList<QByteArray> lines;
        for (int i = 0; i < 3 * kAwkward.size(); ++i)
            lines << awkwardLine(i);
        const output::Parsed parsed = output::parse(lines);
        QCOMPARE(int(parsed.events.size()), lines.size());

        const QString json = path("awkward.json");
        m_copier.writeJson(parsed.events, json);
        QJsonParseError error;
        const QJsonArray array = QJsonDocument::fromJson(output::read(json), &error).array();
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(array.size(), lines.size());
        QJsonArray users;
        for (int i = 0; i < array.size(); ++i) {
            const QString value = kAwkward[i % kAwkward.size()];
            const QJsonObject object = array[i].toObject();
            const QJsonObject message = object["MSG"].toObject();
            QCOMPARE(message.keys(), QStringList{i % 2 ? QStringLiteral("velmo-\"odd\\") : QStringLiteral("velmo-auth")});
            const QJsonObject body = message.begin().value().toObject();
            QCOMPARE(body["user"].toString(), value);
            QCOMPARE(body["ticket_id"].toString(), value);
            QCOMPARE(body["undefined"].toString(), QStringLiteral("remark: ") + value);
            QCOMPARE(object["HOST"].toString(), value);
            QCOMPARE(object["FACILITY"].toString(), value);
            users.append(value);
        }

        const output::Run length = output::run(QStringLiteral("jq"), {QStringLiteral("-e"), QStringLiteral("length"), json});
        QVERIFY2(length.finished && length.exitCode == 0, length.err.constData());
        QCOMPARE(length.out.trimmed(), QByteArray::number(lines.size()));
        const output::Run names =
            output::run(QStringLiteral("jq"), {QStringLiteral("-c"), QStringLiteral("[.[].MSG[].user]"), json});
        QCOMPARE(QJsonDocument::fromJson(names.out).array(), users);

        const QString csv = path("awkward.csv");
        m_copier.writeCsv(parsed.events, csv);
        const QJsonArray rows = output::strictCsvRows(csv);
        QCOMPARE(rows.size(), lines.size() + 1);
        const QJsonArray header = rows[0].toArray();
        const int userColumn = header.toVariantList().indexOf(QStringLiteral("User"));
        QVERIFY(userColumn > 3);
        for (int i = 1; i < rows.size(); ++i) {
            const QJsonArray row = rows[i].toArray();
            QCOMPARE(row.size(), header.size());
            QCOMPARE(row[userColumn].toString(), users[i - 1].toString());
            QCOMPARE(row[3].toString(), users[i - 1].toString());
        }
    }

    // Several rounds of parallel batches must come out in journal order and with the
    // same bytes as the events written from a list.
    void streamedRowsMatchTheListWriters()
    {
        const QString journal = path("big.log");
        QByteArray accepted;
        output::write(journal, bigJournal(6000, &accepted));
        LogParser parser(journal);
        const JournalRows rows = countedRows(parser);
        QVERIFY(accepted.size() > 4 * 1024 * 1024);

        const QString raw = path("big-raw.log");
        QCOMPARE(m_copier.writeRawLines(rows, raw), int(rows.size()));
        QVERIFY(output::read(raw) == accepted);

        auto loaded = parser.loadAll();
        QVERIFY(loaded.first);
        const std::vector<const Event *> events(loaded.second.begin(), loaded.second.end());
        const QString listJson = path("big-list.json");
        const QString streamJson = path("big-stream.json");
        QCOMPARE(m_copier.writeJson(events, listJson), int(events.size()));
        QCOMPARE(m_copier.writeJson(rows, streamJson), int(events.size()));
        QVERIFY(output::read(streamJson) == output::read(listJson));
        QCOMPARE(QJsonDocument::fromJson(output::read(streamJson)).array().size(), int(events.size()));

        const QString listCsv = path("big-list.csv");
        const QString streamCsv = path("big-stream.csv");
        m_copier.writeCsv(events, listCsv);
        m_copier.writeCsv(rows, streamCsv);
        QVERIFY(output::read(streamCsv) == output::read(listCsv));
        qDeleteAll(loaded.second);

        // Rows whose lines no longer parse fill the whole first round: the head still
        // comes once, from the first event that parses.
        QByteArray rewritten;
        for (int i = 0; i < 3000; ++i)
            rewritten += "{\"MSG\": rotated " + QByteArray(1000, 'r') + "\n";
        const QByteArray tail = accepted.left(accepted.indexOf('\n', 4000) + 1);
        const QByteArray bytes = rewritten + tail;
        output::write(journal, bytes);
        std::vector<qint64> positions;
        for (int at = 0; at < bytes.size(); at = bytes.indexOf('\n', at) + 1)
            positions.push_back(at);
        const JournalRows stale(journal, positions);
        const output::Parsed tailEvents = output::parse(tail.split('\n'));
        // Only what was written is counted.
        QCOMPARE(m_copier.writeCsv(stale, streamCsv), int(tailEvents.events.size()));
        m_copier.writeCsv(tailEvents.events, listCsv);
        QVERIFY(output::read(streamCsv) == output::read(listCsv));
        m_copier.writeJson(stale, streamJson);
        QCOMPARE(QJsonDocument::fromJson(output::read(streamJson)).array().size(), int(tailEvents.events.size()));
    }

    void filteredRowsAreTheAcceptedLines()
    {
        const QString journal = path("filtered.log");
        QByteArray accepted;
        QByteArray errors;
        output::write(journal, bigJournal(3000, &accepted, &errors));
        FilteringLogParser parser(journal);
        parser.setWorkerCount(2);
        FilterPack filter;
        filter.checkPriorities = true;
        filter.priorities = {Event::Error};
        parser.setFilter(filter);
        const QString raw = path("filtered-raw.log");
        m_copier.writeRawLines(countedRows(parser), raw);
        QVERIFY(output::read(raw) == errors);
    }

    // Rows come from the tab's loader thread; the job reads the file on its own.
    void selectionsThroughTheLoader()
    {
        const QString journal = path("tab.log");
        QByteArray accepted;
        output::write(journal, bigJournal(40, &accepted));
        const QList<QByteArray> lines = accepted.split('\n');
        LogParser parser(journal);
        RunningLoader running(&parser);
        QCOMPARE(running.count(), lines.size() - 1);

        const QString raw = path("tab-all.log");
        m_copier.write(EventsSelection::wholeJournal(&running.loader), EventsDataCopier::RawLines, raw);
        QVERIFY(output::read(raw) == accepted);

        // After "Clear table" the shown rows are the appended ones, numbered from 1.
        parser.hideCounted();
        QByteArray appended;
        for (int i = 0; i < 5; ++i)
            appended += output::line("\"message_id\":\"new" + QByteArray::number(i) + "\"") + '\n';
        QFile file(journal);
        QVERIFY(file.open(QIODevice::Append));
        file.write(appended);
        file.close();
        QCOMPARE(running.count(), 5);
        output::Parsed shown = output::parse(appended.split('\n'));
        shown.owned[0]->number = 4;
        shown.owned[1]->number = 2;
        QList<const Event *> picked{shown.events[0], shown.events[1]};
        const EventsSelection selection = EventsSelection::loaded(picked, &running.loader);
        m_copier.write(selection, EventsDataCopier::RawLines, raw);
        const QList<QByteArray> appendedLines = appended.split('\n');
        QCOMPARE(output::read(raw), appendedLines[3] + '\n' + appendedLines[1] + '\n');

        // JSON of loaded events writes the copies, not the journal's rows.
        const QString json = path("tab-selected.json");
        m_copier.write(selection, EventsDataCopier::Json, json);
        const QJsonArray array = QJsonDocument::fromJson(output::read(json)).array();
        QCOMPARE(array.size(), 2);
        QCOMPARE(array[0].toObject()["MSG"].toObject()["velmo-auth"].toObject()["message_id"].toString(),
                 QStringLiteral("new0"));
    }

    void progressAndStop()
    {
        const QString journal = path("progress.log");
        QByteArray accepted;
        output::write(journal, bigJournal(6000, &accepted));
        LogParser parser(journal);
        const JournalRows rows = countedRows(parser);

        OutputProgress progress;
        QSignalSpy spy(&progress, &OutputProgress::percentChanged);
        m_copier.write(EventsSelection::journalRows(rows), EventsDataCopier::Csv, path("progress.csv"), &progress);
        QVERIFY(spy.size() > 1);
        QCOMPARE(spy.last().at(0).toInt(), 100);
        for (int i = 1; i < spy.size(); ++i)
            QVERIFY(spy[i].at(0).toInt() > spy[i - 1].at(0).toInt());

        // An export stopped before its end is no export: the file keeps what it held.
        OutputProgress stopped;
        stopped.requestStop();
        const QString json = path("stopped.json");
        output::write(json, "earlier");
        QCOMPARE(m_copier.writeJson(rows, json, &stopped), -1);
        QCOMPARE(output::read(json), QByteArray("earlier"));
        QCOMPARE(failing::besides(json), QStringList({"stopped.json"}));
    }

    // However a write fails partway, every writer leaves the target as it was and
    // nothing half-written beside it, and the job has the system's reason to tell.
    void failedWritesLeaveTheTargetAsItWas_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<bool>("cutShort");
        const QString folder = path("targets");
        QDir(folder).removeRecursively();
        QVERIFY(QDir().mkpath(folder));
        output::write(folder + "/earlier.json", "earlier export\n");
        QTest::newRow("cut short") << folder + "/earlier.json" << qt_error_string(EFBIG) << true;
        QTest::newRow("full device") << failing::fullDevice(folder, QStringLiteral("full.json")) << qt_error_string(ENOSPC) << false;
    }

    void failedWritesLeaveTheTargetAsItWas()
    {
        QFETCH(QString, target);
        QFETCH(QString, reason);
        QFETCH(bool, cutShort);
        const QString journal = path("failing.log");
        QByteArray accepted;
        output::write(journal, bigJournal(300, &accepted));
        LogParser parser(journal);
        const JournalRows rows = countedRows(parser);
        const auto events = handBuilt();
        const std::vector<const Event *> listed = pointers(events);
        const QByteArray state = failing::stateOf(target);
        const QStringList beside = failing::besides(target);

        const struct {
            const char *name;
            EventsDataCopier::Format format;
            bool journal;
        } writers[] = {{"listed JSON", EventsDataCopier::Json, false},  {"listed CSV", EventsDataCopier::Csv, false},
                       {"streamed JSON", EventsDataCopier::Json, true}, {"streamed CSV", EventsDataCopier::Csv, true},
                       {"raw lines", EventsDataCopier::RawLines, true}};
        for (const auto &writer : writers) {
            OutputProgress progress;
            EventsSelection selection = writer.journal ? EventsSelection::journalRows(rows)
                                                       : EventsSelection::loaded(QList<const Event *>(listed.begin(), listed.end()), nullptr);
            {
                // Less than the smallest export: every writer fails partway.
                std::unique_ptr<failing::FileSizeLimit> limit;
                if (cutShort)
                    limit = std::make_unique<failing::FileSizeLimit>(100);
                m_copier.write(selection, writer.format, target, &progress);
            }
            QVERIFY2(progress.outcome() == -1, writer.name);
            QCOMPARE(progress.failure(), reason);
            QVERIFY2(failing::stateOf(target) == state, writer.name);
            QVERIFY2(failing::besides(target) == beside, writer.name);
        }
    }
};

NIMB_TEST_MAIN_WITH(TestEventsDataCopier, QCoreApplication, NIMB_DEMO_DIR "/sysroot")
#include "test_eventsdatacopier.moc"
