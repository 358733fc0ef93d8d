// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"
#include "LineParser.h"
#include "LineCorpus.h"
#include "NimbTestMain.h"

#ifdef NIMB_HAVE_GENERATOR
#include "JournalGenerator.h"
#endif

#include <QBuffer>

#include <algorithm>
#include <ctime>
#include <random>
#include <thread>
#include <tuple>

namespace
{
std::unique_ptr<Event> accepted(const QByteArray &line)
{
    auto event = LineParser::parseLine(line);
    if (!event)
        qFatal("line rejected: %s", line.constData());
    return event;
}

const AuxPar *parameter(const Event &event, const char *key)
{
    return event.parameters.value(AuxParRegistry::instance().typeOf(QString::fromLatin1(key)));
}

}

class TestLineParser : public QObject
{
    Q_OBJECT

private slots:
    // First on purpose: the threads also race to build the process-wide tables.
    void acceptanceAgreesWithParsingOnEveryThread()
    {
        corpus::Corpus lineCorpus(20240301);
        QVector<QByteArray> lines(10000);
        std::generate(lines.begin(), lines.end(), [&lineCorpus] { return lineCorpus.line(); });
#ifdef NIMB_HAVE_GENERATOR
        // Seed, lines, no size, days, malformed lines per mille, newest time.
        const nimbgen::GeneratorOptions options{7, 3000, -1, 10, 100, 1709276400};
        QBuffer journal;
        journal.open(QIODevice::WriteOnly);
        QVERIFY(nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&journal));
        lines += journal.data().split('\n').toVector();
#endif
        // Counting decides by acceptsLine(), pages by parseLine(): a counted line must load.
        auto describe = [&lines](QStringList &descriptions) {
            for (const QByteArray &line : lines) {
                const auto event = LineParser::parseLine(line);
                QString text = event ? event->copyLine() + event->time.toString(Qt::ISODate) + event->facility : QString();
                for (const Event::Row &row : event ? event->parameterList() : QVector<Event::Row>())
                    text += row.first + row.second;
                if (LineParser::acceptsLine(line) != bool(event))
                    text = QStringLiteral("disagreement: ") + QString::fromUtf8(line.toPercentEncoding(" {}\":,[]"));
                descriptions.append(text);
            }
        };
        // The single-threaded pass first: Qt sets up some shared state on first use
        // under locks the thread checker cannot see, and the threads are here for
        // what this project's code shares between them.
        QStringList expected;
        describe(expected);
        std::vector<QStringList> seen(4);
        std::vector<std::thread> threads;
        for (QStringList &descriptions : seen)
            threads.emplace_back(describe, std::ref(descriptions));
        for (auto &thread : threads)
            thread.join();
        for (const QStringList &descriptions : seen)
            QVERIFY(descriptions == expected);
        // The corpus has to exercise both answers for the comparison to mean something.
        const int rejected = expected.count(QString());
        QVERIFY2(rejected > lines.size() / 5 && rejected < lines.size() * 4 / 5, qPrintable(QString::number(rejected)));
        const QStringList disagreements = expected.filter(QRegularExpression(QStringLiteral("^disagreement: ")));
        QVERIFY2(disagreements.isEmpty(), qPrintable(disagreements.mid(0, 5).join('\n')));
    }

    void acceptsOneSourceAndATime()
    {
        const QByteArray iso = R"({"ISODATE":"2024-03-01T10:00:00",)";
        const QByteArray good = iso + R"("MSG":{"kernel":{"message_id":"1"}}})";
        const QVector<QPair<QByteArray, bool>> cases{
            {good, true}, {good.left(good.size() - 3), false}, {"[" + good + "]", false}, {QByteArray(), false},
            {"{}", false}, {iso + R"("msg":{"kernel":{}}})", false}, {iso + R"("MSG":"kernel"})", false},
            {iso + R"("MSG":{}})", false}, {iso + R"("MSG":{"kernel":{"message_id":"1"},"sshd":{}}})", false},
            // No usable time anywhere.
            {R"({"MSG":{"kernel":{"message_id":"1"}}})", false},
            {R"({"ISODATE":"garbage","DATE":"Jan 5 24:00:00","MSG":{"kernel":{"time":"garbage"}}})", false},
            {R"({"MSG":{"kernel":{"start_time":1709276400,"unixtime":4294967295,"end_time":-1,"time":null}}})", false},
            // The first three rules accept without asking whether the date-time is usable.
            {R"({"MSG":{"k":{"unixtime":1e17}}})", true}, {R"({"MSG":{"k":{"end_time":9.2e18}}})", true},
            {R"({"MSG":{"k":{"unixtime":true}}})", true}};
        for (const auto &[line, accepts] : cases) {
            QVERIFY2(bool(LineParser::parseLine(line)) == accepts, line.constData());
            QVERIFY2(LineParser::acceptsLine(line) == accepts, line.constData());
        }
    }

    void readsTheLinesFields()
    {
        const auto event = accepted(R"({"FACILITY":"authpriv","PRIORITY":"err","HOST":"alpha","SOURCEIP":"10.0.0.1",)"
                                    R"("ISODATE":"2024-03-01T10:00:00+03:00","MSG":{"sshd":{"message_id":"1001",)"
                                    R"("name_en":"User logged in","name_ru":"Вход пользователя","pid":42,"user":"root",)"
                                    R"("uid":"1000","type_en":"Login","gid":null,"site code":"A1","shift":null,)"
                                    R"("signal":9,"command":true,"time":"garbage","UID":"7","foo":5}}})" "\n");
        QVERIFY(event->number == 0u && event->priority == Event::Error);
        QCOMPARE(event->time.toString(Qt::ISODate), QStringLiteral("2024-03-01T10:00:00+03:00"));
        QCOMPARE(QStringList({event->facility, event->messageId, event->nameEn, event->nameRu, event->host(),
                              event->source()}),
                 QStringList({"authpriv", "1001", "User logged in", "Вход пользователя", "alpha", "sshd"}));
        // One object per kind, empty or not.
        QCOMPARE(event->parameters.size(), AuxParRegistry::count());
        QCOMPARE(parameter(*event, "pid")->value(), QVariant(42.0));
        QCOMPARE(QStringList({parameter(*event, "pid")->toString(), parameter(*event, "user")->toString(),
                              parameter(*event, "signal")->toString(), parameter(*event, "command")->toString()}),
                 QStringList({"42", "root", "SIGKILL", "true"}));
        for (const char *empty : {"gid", "ppid", "type_ru"})
            QVERIFY2(!parameter(*event, empty)->isValid(), empty);
        // An unreadable time is kept, as an invalid date-time.
        QVERIFY(parameter(*event, "time")->value().type() == QVariant::DateTime && !parameter(*event, "time")->isValid());
        // Known keys, the message's own keys and declared custom names are not undefined.
        QCOMPARE(parameter(*event, "undefined")->value().toString(), QStringLiteral("UID: 7; foo: "));
        QCOMPARE(event->customParameters, (QMap<QString, QString>{{QStringLiteral("site code"), QStringLiteral("A1")}}));

        const auto other = accepted(R"({"FACILITY":5,"HOST":{"name":"alpha"},"ISODATE":"2024-03-01T10:00:00",)"
                                    R"("MSG":{"kernel":{"message_id":1001,"name_en":true,"name_ru":null}}})");
        QCOMPARE(other->facility + other->host() + other->messageId + other->nameEn + other->nameRu, QString());
        // A priority that is no text, or none at all, is unknown; so is a word out of case.
        for (const char *priority : {R"("PRIORITY":["info"],)", R"("PRIORITY":7,)", "", R"("PRIORITY":"Warning",)"})
            QVERIFY2(accepted("{" + QByteArray(priority) + R"("ISODATE":"2024-03-01T10:00:00","MSG":{"k":{}}})")->priority
                         == Event::Unknown, priority);
    }

    void booleansBySubstring()
    {
        const QVariant yes(true), no(false), none;
        const QVector<QPair<QByteArray, QVariant>> cases{
            {"\"failed\"", no}, {"\"unknown\"", no}, {"\"maybe\"", none}, {"1", yes},        {"0", no},
            {"\"10\"", yes},    {"\"not yes\"", yes}, {"true", yes},      {"false", no},     {"\"success\"", yes},
            {"\"no\"", no},     {"\"YES\"", none},    {"\"\"", none},     {"2", none},       {"null", none}};
        for (const auto &[value, expected] : cases)
            for (const char *key : {"onsudo", "result", "state", "success"}) {
                const QByteArray member = '"' + QByteArray(key) + "\":" + value;
                const auto event = accepted(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"k":{)" + member + "}}}");
                const QVariant flag = parameter(*event, key)->isValid() ? parameter(*event, key)->value() : QVariant();
                QVERIFY2(flag == expected && (flag.isNull() || flag.type() == QVariant::Bool), value.constData());
            }
    }

    void timePrecedence()
    {
        const QByteArray iso = R"("ISODATE":"2024-03-01T10:00:00+03:00",)";
        const QByteArray date = R"("DATE":"Jan 5 23:59:59",)";
        const QString dateTime = QString::number(QDate::currentDate().year()) + QStringLiteral("-01-05T23:59:59");
        // Root members, the message body, and the time as text: with its offset, or none for local time,
        // so that the text also tells the kind of date-time.
        const QVector<std::tuple<QByteArray, const char *, QString>> cases{
            {iso + date, R"({"time":"2022-05-06T07:08:09+02:00","unixtime":1577836800})", "2022-05-06T07:08:09+02:00"},
            {iso, R"({"time":"garbage","unixtime":1577836800,"end_time":1325376000})", "2020-01-01T03:00:00+03:00"},
            {"", R"({"time":1600000000,"unixtime":"1577836800"})", "2020-01-01T03:00:00+03:00"},
            // The local offset of the instant itself, not today's.
            {"", R"({"unixtime":1325376000})", "2012-01-01T04:00:00+04:00"},
            {iso, R"({"unixtime":4294967295,"end_time":1325376000})", "2012-01-01T04:00:00+04:00"},
            {iso, R"({"unixtime":"0xFFFFFFFF","end_time":1104537600})", "2005-01-01T03:00:00+03:00"},
            {"", R"({"end_time":-2})", "1970-01-01T02:59:58+03:00"},
            {iso, R"({"end_time":-1,"start_time":1104537600})", "2024-03-01T10:00:00+03:00"},
            {iso + date, "{}", "2024-03-01T10:00:00+03:00"},
            {R"("ISODATE":1709276400,)" + date, "{}", dateTime}};
        for (const auto &[root, body, expected] : cases) {
            const QByteArray line = "{" + root + R"("MSG":{"k":)" + body + "}}";
            QVERIFY2(LineParser::acceptsLine(line), line.constData());
            QCOMPARE(accepted(line)->time.toString(Qt::ISODate), expected);
        }
    }

    void legacyDates()
    {
        const int year = QDate::currentDate().year();
        // The text and its local time in the current year, if it is a date at all.
        const QVector<QPair<const char *, const char *>> cases{
            // The logger pads one-digit days.
            {"Jan 5 23:59:59", "01-05T23:59:59"}, {"Mar  1 10:15:00", "03-01T10:15:00"}, {"Jan 5 aa:bb:cc", "01-05T00:00:00"},
            {"Jan 5 10::00", "01-05T10:00:00"}, {"Jan \n 5 \n 10:00:00", "01-05T10:00:00"}, {"Jan 5 24:00:00", nullptr},
            {"Feb 29 12:00:00", QDate::isLeapYear(year) ? "02-29T12:00:00" : nullptr}, {"Jan 5 10:60:00", nullptr},
            {"Apr 31 12:00:00", nullptr}, {"jan 5 10:00:00", nullptr}, {"January 5 10:00:00", nullptr},
            {"Jan 5 10:00", nullptr}, {"Jan 5 10:00:00 2024", nullptr}, {"Jan\t5 10:00:00", nullptr}, {"", nullptr}};
        for (const auto &[text, time] : cases) {
            const QString local = QString::number(year) + '-' + QLatin1String(time);
            const QDateTime expected = time ? QDateTime::fromString(local, Qt::ISODate) : QDateTime();
            const QDateTime parsed = LineParser::parseLegacyDate(QString::fromLatin1(text));
            QVERIFY2(parsed == expected && (!time || parsed.timeSpec() == Qt::LocalTime), text);
            // The same through a whole line whose DATE is the only time.
            const QByteArray json = QJsonDocument(QJsonArray{QString::fromLatin1(text)}).toJson(QJsonDocument::Compact);
            const QByteArray line = R"({"DATE":)" + json.mid(1).chopped(1) + R"(,"MSG":{"k":{}}})";
            QVERIFY2(LineParser::acceptsLine(line) == bool(time), text);
            const auto event = LineParser::parseLine(line);
            QVERIFY2(event ? event->time == expected : !time, text);
        }
    }

};

// The seconds rules depend on the local offset; the zone is pinned before main() runs, so
// before any date-time exists.
const bool kZonePinned = [] {
    qputenv("TZ", "Europe/Moscow");
    tzset();
    return true;
}();

NIMB_TEST_MAIN(TestLineParser)

#include "test_lineparser.moc"
