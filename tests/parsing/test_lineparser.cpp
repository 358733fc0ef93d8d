#include "AuxParRegistry.h"
#include "LineParser.h"

#ifdef NIMB_HAVE_GENERATOR
#include "JournalGenerator.h"
#endif

#include <QBuffer>
#include <QtTest>

#include <algorithm>
#include <ctime>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace
{
std::unique_ptr<Event> parse(const QByteArray &line)
{
    return LineParser::parseLine(line);
}

std::unique_ptr<Event> accepted(const QByteArray &line)
{
    auto event = LineParser::parseLine(line);
    if (!event)
        qFatal("line rejected: %s", line.constData());
    return event;
}

// A line around the given message body, with a usable time of its own.
QByteArray withBody(const QByteArray &body)
{
    return R"({"ISODATE":"2024-03-01T10:00:00+03:00","MSG":{"kernel":)" + body + "}}";
}

const AuxPar *parameter(const Event &event, const char *key)
{
    return event.parameters.value(AuxParRegistry::instance().typeOf(QString::fromLatin1(key)));
}

// A corpus of journal-like lines, well-formed and broken in the ways real journals are.
class Corpus
{
    using Members = std::vector<std::pair<QByteArray, QByteArray>>;

public:
    explicit Corpus(quint32 seed) : m_random(seed) {}

    QByteArray line()
    {
        Members root;
        maybe(root, 85, "FACILITY", [this] { return pick({"\"auth\"", "\"daemon\"", "5", "null", "\"\""}); });
        maybe(root, 85, "PRIORITY", [this] {
            return pick({"\"info\"", "\"informational\"", "\"Warning\"", "\"emerg\"", "\"debug\"", "\"err\"",
                         "\"crit\"", "7", "null", "\"\"", "\"notice \""});
        });
        maybe(root, 80, "HOST", [this] { return pick({"\"alpha\"", "\"\"", "null", "[1]", "\"хост\""}); });
        maybe(root, 60, "ISODATE", [this] {
            return pick({"\"2024-03-01T10:00:00+03:00\"", "\"2023-12-31T23:59:59Z\"", "\"2024-02-30T10:00:00\"",
                         "\"garbage\"", "\"\"", "null", "1709276400", "\"2024-03-01 10:00:00\"",
                         "\"2024-03-01T25:00:00\"", "\"2024-03-01T10:00:00.123+05:30\"", "[]",
                         "\"2024-02-29T00:00:00Z\"", "\"2023-02-29T00:00:00Z\"", "\"0000-01-01T00:00:00Z\"",
                         "\"2024-03-01T23:59:60Z\"", "\"2024-03-01T24:00:00Z\"", "\"2024-03-01T10:15:00+14:59\"",
                         "\"2024-03-01T10:15:00-00:00\"", "\"2024-03-01T10:15:00+15:00\"", "\"2024-03-01T10:15:00+03:60\"",
                         "\"2024-03-01T10:15:00+0300\"", "\"2024-03-01T10:15:00z\"", "\"2024-03-01t10:15:00Z\"",
                         "\"2024-13-01T10:15:00Z\"", "\"2024-03-01T10:15:00 \"", "\"\uff12024-03-01T10:15:00Z\""});
        });
        maybe(root, 50, "DATE", [this] {
            return pick({"\"Mar  1 10:15:00\"", "\"Jan 5 24:00:00\"", "\"Jan 5 23:59:59\"", "\"Feb 29 12:00:00\"",
                         "\"Feb 30 12:00:00\"", "\"Foo 1 10:00:00\"", "\"Jan 5 10:00\"", "\"Jan 5 10:00:00 x\"",
                         "\"Jan\\n5\\n10:00:00\"", "\"Jan \\n 5 \\n 10:00:00\"", "\"Dec 31 23:59:60\"", "\"\"",
                         "null", "12", "\"jan 5 10:00:00\"", "\"Jan 32 10:00:00\""});
        });
        maybe(root, 10, "SOURCEIP", [] { return QByteArray("\"127.0.0.1\""); });
        maybe(root, 95, "MSG", [this] { return msg(); });
        shuffle(root);
        return mutate(object(root));
    }

private:
    bool chance(int percent) { return int(m_random() % 100) < percent; }
    template <typename Value> void maybe(Members &members, int percent, const char *key, Value value)
    {
        if (chance(percent))
            members.emplace_back(key, value());
    }
    int below(int n) { return int(m_random() % quint32(n)); }

    QByteArray pick(std::initializer_list<const char *> items)
    {
        auto it = items.begin();
        std::advance(it, below(int(items.size())));
        return QByteArray(*it);
    }

    void shuffle(Members &items)
    {
        for (int i = int(items.size()) - 1; i > 0; --i)
            std::swap(items[size_t(i)], items[size_t(below(i + 1))]);
    }

    static QByteArray object(const Members &members)
    {
        QByteArray text = "{";
        for (size_t i = 0; i < members.size(); ++i)
            text += (i ? ",\"" : "\"") + members[i].first + "\":" + members[i].second;
        return text + '}';
    }

    QByteArray value()
    {
        switch (below(10)) {
        case 0: case 1: case 2:
            return pick({"\"root\"", "\"\"", "\"\\n\"", "\"success\"", "\"failed\"", "\"unknown\"", "\"maybe\"",
                         "\"not yes\"", "\"10\"", "\"0xFFFFFFFF\"", "\"4294967295\"", "\"1709276400\"", "\"true\"",
                         "\"Пользователь\"", "\"Ёлка\"", "\"\\u0000\"", "\"\\ud800\"", "\"\\\"quoted\\\"\"",
                         "\"2024-03-01T12:00:00\"", "\"0:0:0:0:0\"", "\"1:2:3\"", "\"𝄞\"", "\"  \""});
        case 3: case 4: case 5:
            return pick({"0", "1", "-1", "10", "42", "1000", "65535", "4294967295", "4294967296", "-4294967297",
                         "9007199254740993", "1e30", "-1e300", "1.5", "0.0", "1709276400", "1E3", "-0",
                         "18446744073709551615", "1e400"});
        case 6: return pick({"true", "false"});
        case 7: return "null";
        case 8: return pick({"[]", "[1,\"a\"]", "{}", "{\"a\":1}"});
        default: return '"' + QByteArray::number(qint64(quint64(m_random()) << 32 | m_random())) + '"';
        }
    }

    QByteArray timeValue(const char *key)
    {
        if (qstrcmp(key, "time") == 0 && chance(60))
            return pick({"\"2024-03-01T12:00:00\"", "\"2024-03-01T12:00:00+03:00\"", "\"garbage\"", "\"\"",
                         "\"2024-13-01T00:00:00\"", "\"1709276400\""});
        if (chance(70))
            return pick({"1709276400", "4294967295", "\"4294967295\"", "0", "-1", "-2", "\"0xFFFFFFFF\"",
                         "4294967296", "1e17", "-1e17", "1e300", "\"1709276400\"", "\"  12\"", "1.9", "true",
                         "false", "null", "\"\"", "[]"});
        return value();
    }

    QByteArray msg()
    {
        switch (below(20)) {
        case 0: return "{}";
        case 1: return "{\"kernel\":{},\"sshd\":{}}";
        case 2: return pick({"\"kernel\"", "[]", "null", "5", "[{\"kernel\":{}}]"});
        case 3: return "{\"kernel\":" + value() + '}';
        default: break;
        }
        static const char *const sources[] = {"kernel", "sshd", "cron", "", "источник", "unrecognized"};
        return "{\"" + QByteArray(sources[below(6)]) + "\":" + body() + '}';
    }

    QByteArray body()
    {
        static const char *const otherKeys[] = {
            "uid", "auid", "gid", "pid", "ppid", "user", "result", "success", "onsudo", "state", "obj",
            "subj", "obj_new", "signal", "source", "host", "undefined", "type_en", "type_ru", "command",
            "level", "categories", "path", "deny", "tally", "site code", "shift", "foo", "bar", "", "MSG",
            "message_id", "name_en", "name_ru", "UID", "время"};
        Members members;
        maybe(members, 80, "message_id", [this] { return chance(85) ? QByteArray("\"1001\"") : value(); });
        maybe(members, 70, "name_en", [this] { return chance(85) ? QByteArray("\"User logged in\"") : value(); });
        maybe(members, 70, "name_ru", [this] { return chance(85) ? QByteArray("\"Вход пользователя\"") : value(); });
        for (const char *key : {"time", "unixtime", "end_time", "start_time"})
            maybe(members, 25, key, [this, key] { return timeValue(key); });
        // Keys repeat only through the mutations below, which repeat them with plain
        // values: Qt 5.15's reader leaks an object or array that a repeated key replaces.
        const int others = below(8);
        for (int i = 0; i < others; ++i) {
            const QByteArray key = otherKeys[below(int(sizeof otherKeys / sizeof *otherKeys))];
            if (std::none_of(members.begin(), members.end(), [&key](const auto &member) { return member.first == key; }))
                members.emplace_back(key, value());
        }
        shuffle(members);
        return object(members);
    }

    QByteArray mutate(QByteArray text)
    {
        switch (below(24)) {
        case 0: return text.left(below(text.size() + 1)); // a truncated last line
        case 1: return text.remove(below(text.size()), 1);
        case 2: return text.insert(below(text.size() + 1), pick({"\"", "{", "}", ",", ":", "\\", "\n", "\xff", " "}));
        case 3: return text + '\n';
        case 4: return text + "\r\n";
        case 5: return "\xEF\xBB\xBF" + text;
        case 6: return '[' + text + ']';
        case 7: return text + " trailing";
        case 8: return text.replace("\"MSG\"", "\"msg\"");
        // The same key twice, as a careless writer might produce.
        case 9: return text.replace("\"unixtime\":", "\"unixtime\":4294967295,\"unixtime\":");
        case 10: return text.replace("\"time\":", "\"time\":null,\"time\":");
        case 11: return QByteArray();
        case 12: return pick({"{}", "[]", "null", "5", "\"text\"", "true", " ", "\n", "{\"MSG\":{}}"});
        case 13: return text.replace(':', ',');
        default: return text;
        }
    }

    std::mt19937 m_random;
};
}

class TestLineParser : public QObject
{
    Q_OBJECT

private slots:
    // First on purpose: the threads also race to build the process-wide tables.
    void parsesAlikeOnSeveralThreads()
    {
        QVector<QByteArray> lines;
        Corpus corpus(77);
        for (int i = 0; i < 1500; ++i)
            lines.append(corpus.line());
        auto describe = [](const QByteArray &line) {
            const auto event = LineParser::parseLine(line);
            if (!event)
                return QStringLiteral("rejected");
            QString text = event->copyLine() + event->time.toString(Qt::ISODate) + event->facility;
            for (const Event::Row &row : event->parameterList())
                text += row.first + row.second;
            return text;
        };
        std::vector<QStringList> seen(4);
        std::vector<std::thread> threads;
        for (size_t t = 0; t < seen.size(); ++t)
            threads.emplace_back([&lines, &describe, &seen, t] {
                for (const QByteArray &line : lines)
                    seen[t].append(describe(line));
            });
        for (auto &thread : threads)
            thread.join();
        QStringList expected;
        for (const QByteArray &line : qAsConst(lines))
            expected.append(describe(line));
        QVERIFY(expected.count(QStringLiteral("rejected")) < expected.size());
        for (const QStringList &descriptions : seen)
            QVERIFY(descriptions == expected);
    }

    void rejectsBrokenLines()
    {
        const QByteArray good = R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"message_id":"1"}}})";
        const QByteArray iso = R"({"ISODATE":"2024-03-01T10:00:00",)";
        for (const QByteArray &line :
             {QByteArray(), QByteArray("\n"), QByteArray("   "), QByteArray("{ISODATE: 2024}"), good.left(good.size() - 3),
              good.left(20), good + "x", "[" + good + "]", QByteArray("5"), QByteArray("\"text\""), QByteArray("null"),
              QByteArray("{}"), QByteArray(R"({"ISODATE":"2024-03-01T10:00:00"})"), iso + R"("msg":{"kernel":{}}})",
              iso + R"("MSG":"kernel"})", iso + R"("MSG":[{"kernel":{}}]})", iso + R"("MSG":{}})",
              iso + R"("MSG":{"kernel":{"message_id":"1"},"sshd":{}}})",
              QByteArray(R"({"MSG":{"kernel":{"message_id":"1"}}})"), // no time
              QByteArray(R"({"ISODATE":"garbage","DATE":"Jan 5 24:00:00","MSG":{"kernel":{"time":"garbage"}}})"),
              QByteArray(R"({"MSG":{"kernel":{"start_time":1709276400}}})"),
              QByteArray(R"({"MSG":{"kernel":{"unixtime":4294967295,"end_time":-1,"time":null}}})")}) {
            QVERIFY2(!parse(line), line.constData());
            QVERIFY2(!LineParser::acceptsLine(line), line.constData());
        }
    }

    void readsTheLinesFields()
    {
        const auto event = accepted(R"({"FACILITY":"authpriv","PRIORITY":"err","HOST":"alpha","SOURCEIP":"10.0.0.1",)"
                                    R"("ISODATE":"2024-03-01T10:00:00+03:00","MSG":{"sshd":{"message_id":"1001",)"
                                    R"("name_en":"User logged in","name_ru":"Вход пользователя","pid":42,"user":"root",)"
                                    R"("uid":"1000","type_en":"Login","gid":null,"site code":"A1","shift":null}}})"
                                    "\n");
        QVERIFY(event->number == 0u && event->priority == Event::Error);
        QCOMPARE(event->time.toString(Qt::ISODate), QStringLiteral("2024-03-01T10:00:00+03:00"));
        QCOMPARE(QStringList({event->facility, event->messageId, event->nameEn, event->nameRu, event->host(),
                              event->source()}),
                 QStringList({"authpriv", "1001", "User logged in", "Вход пользователя", "alpha", "sshd"}));
        // One object per kind, empty or not.
        QCOMPARE(event->parameters.size(), AuxParRegistry::count());
        QCOMPARE(parameter(*event, "pid")->value(), QVariant(42.0));
        QCOMPARE(parameter(*event, "pid")->toString(), QStringLiteral("42"));
        QCOMPARE(parameter(*event, "uid")->value(), QVariant(QStringLiteral("1000")));
        QCOMPARE(parameter(*event, "user")->toString(), QStringLiteral("root"));
        for (const char *empty : {"gid", "ppid", "type_ru", "undefined"})
            QVERIFY2(!parameter(*event, empty)->isValid(), empty);
        // Declared custom parameters, present and not null only.
        QCOMPARE(event->customParameters, (QMap<QString, QString>{{QStringLiteral("site code"), QStringLiteral("A1")}}));
    }

    void otherJsonKindsReadAsEmptyText()
    {
        const auto event = accepted(R"({"FACILITY":5,"PRIORITY":["info"],"HOST":{"name":"alpha"},)"
                                    R"("ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"message_id":1001,)"
                                    R"("name_en":true,"name_ru":null}}})");
        QVERIFY(parameter(*event, "host"));
        QCOMPARE(event->facility + event->host() + event->messageId + event->nameEn + event->nameRu, QString());
        // A priority that is no text, or none at all, is unknown; so is a word out of case.
        for (const char *priority : {R"("PRIORITY":["info"],)", R"("PRIORITY":7,)", R"("PRIORITY":null,)", "",
                                     R"("PRIORITY":"Warning",)"})
            QVERIFY2(accepted("{" + QByteArray(priority) + R"("ISODATE":"2024-03-01T10:00:00","MSG":{"k":{}}})")->priority
                         == Event::Unknown, priority);
        // A body that is not an object is an empty body.
        const auto textBody = accepted(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":"text"}})");
        QVERIFY(textBody->source() == QLatin1String("kernel") && textBody->messageId.isEmpty());
    }

    void booleansBySubstring()
    {
        const QVariant yes(true), no(false), none;
        const QVector<QPair<QByteArray, QVariant>> cases{
            {"\"failed\"", no}, {"\"unknown\"", no}, {"\"maybe\"", none}, {"1", yes},        {"0", no},
            {"\"10\"", yes},    {"10", yes},         {"\"not yes\"", yes}, {"true", yes},    {"false", no},
            {"\"success\"", yes}, {"\"no\"", no},    {"\"fail\"", no},     {"\"YES\"", none}, {"\"True\"", none},
            {"\"\"", none},     {"2", none},         {"null", none},       {"[1]", none}};
        for (const auto &[value, expected] : cases)
            for (const char *key : {"onsudo", "result", "state", "success"}) {
                const auto event = accepted(withBody("{\"" + QByteArray(key) + "\":" + value + '}'));
                const AuxPar *flag = parameter(*event, key);
                QVERIFY2(flag->isValid() == expected.isValid(), value.constData());
                QVERIFY2(!expected.isValid() || (flag->value().type() == QVariant::Bool && flag->value() == expected),
                         value.constData());
            }
    }

    void valuesByKind()
    {
        const auto event = accepted(withBody(R"({"user":5,"command":true,"time":"garbage","signal":9,)"
                                             R"("obj":"1:0:0:0:0","unixtime":"1709276400"})"));
        QCOMPARE(parameter(*event, "user")->toString(), QStringLiteral("5"));
        QCOMPARE(parameter(*event, "command")->toString(), QStringLiteral("true"));
        QCOMPARE(parameter(*event, "signal")->toString(), QStringLiteral("SIGKILL"));
        QVERIFY(parameter(*event, "obj")->isValid());
        QCOMPARE(parameter(*event, "unixtime")->value(), QVariant(QStringLiteral("1709276400")));
        // An unreadable time is kept, as an invalid date-time.
        QVERIFY(parameter(*event, "time")->value().type() == QVariant::DateTime && !parameter(*event, "time")->isValid());
    }

    void undefinedInformation()
    {
        const QVector<QPair<QByteArray, QString>> cases{
            {R"({"foo":5})", "foo: "}, {R"({"foo":"bar"})", "foo: bar"}, {R"({"foo":null})", "foo: "},
            {R"({"foo":"\n"})", "foo: \n"}, {R"({"baz":"qux","foo":"bar"})", "baz: qux; foo: bar"},
            {R"({"baz":"qux","uid":7,"foo":"bar","message_id":"1"})", "baz: qux; foo: bar"},
            // Known keys, the message's own keys and declared custom names are not undefined.
            {R"({"message_id":"1","name_en":"a","name_ru":"b","uid":7,"host":"h",)"
             R"("source":"s","undefined":"u","site code":"A1","shift":"x"})", QString()},
            {R"({"UID":"7"})", "UID: 7"}, {R"({})", QString()}};
        for (const auto &[body, text] : cases) {
            // Always present, even when empty.
            const auto event = accepted(withBody(body));
            const AuxPar *undefined = event->parameters.value(AuxParId::Undefined);
            QVERIFY(undefined);
            QCOMPARE(undefined->value().toString(), text);
            QCOMPARE(undefined->isValid(), !text.isEmpty());
        }
    }

    void timePrecedence_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("expected");
        const QByteArray iso = R"("ISODATE":"2024-03-01T10:00:00+03:00",)";
        const QByteArray date = R"("DATE":"Jan 5 23:59:59",)";
        const QString dateTime = QString::number(QDate::currentDate().year()) + QStringLiteral("-01-05T23:59:59");
        auto row = [](const char *name, const QByteArray &root, const char *body, const QString &expected) {
            QTest::newRow(name) << "{" + root + R"("MSG":{"k":)" + body + "}}" << expected;
        };
        row("time first", iso + date, R"({"time":"2022-05-06T07:08:09+02:00","unixtime":1577836800,"end_time":1325376000})",
            "2022-05-06T07:08:09+02:00");
        row("time without ISODATE or DATE", "", R"({"time":"2022-05-06T07:08:09+02:00"})", "2022-05-06T07:08:09+02:00");
        row("unreadable time, unixtime", iso, R"({"time":"garbage","unixtime":1577836800,"end_time":1325376000})",
            "2020-01-01T03:00:00+03:00");
        row("numeric time, unixtime", "", R"({"time":1600000000,"unixtime":1577836800})", "2020-01-01T03:00:00+03:00");
        row("unixtime as text", "", R"({"unixtime":"1577836800"})", "2020-01-01T03:00:00+03:00");
        // The local offset of the instant itself, not today's.
        row("unixtime 2012", "", R"({"unixtime":1325376000})", "2012-01-01T04:00:00+04:00");
        row("unixtime summer 2005", "", R"({"unixtime":1120176000})", "2005-07-01T04:00:00+04:00");
        row("unixtime winter 2005", "", R"({"unixtime":1104537600})", "2005-01-01T03:00:00+03:00");
        row("unixtime 0", "", R"({"unixtime":0})", "1970-01-01T03:00:00+03:00");
        row("unixtime all ones, end_time", iso, R"({"unixtime":4294967295,"end_time":1325376000})",
            "2012-01-01T04:00:00+04:00");
        row("unixtime hex text, end_time", iso, R"({"unixtime":"0xFFFFFFFF","end_time":1104537600})",
            "2005-01-01T03:00:00+03:00");
        row("unixtime null, end_time", "", R"({"unixtime":null,"end_time":1104537600})", "2005-01-01T03:00:00+03:00");
        row("end_time before the epoch", "", R"({"end_time":-2})", "1970-01-01T02:59:58+03:00");
        row("end_time -1, ISODATE", iso, R"({"end_time":-1,"start_time":1104537600})", "2024-03-01T10:00:00+03:00");
        row("ISODATE before DATE", iso + date, "{}", "2024-03-01T10:00:00+03:00");
        row("unreadable ISODATE, DATE", R"("ISODATE":"garbage",)" + date, "{}", dateTime);
        row("numeric ISODATE, DATE", R"("ISODATE":1709276400,)" + date, "{}", dateTime);
        row("DATE alone", date, "{}", dateTime);
    }

    void timePrecedence()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, expected);
        QVERIFY(LineParser::acceptsLine(line));
        const auto event = accepted(line);
        // The text carries the offset, or its absence for local time.
        QCOMPARE(event->time.toString(Qt::ISODate), expected);
        QCOMPARE(event->time, QDateTime::fromString(expected, Qt::ISODate));
    }

    void secondsArePinnedAtTheirLocalOffset()
    {
        // Moscow kept +04:00 all year from 2011 to 2014 and +03:00 since.
        const QDateTime pinned = LineParser::fromEpochSeconds(1325376000);
        QVERIFY(pinned.timeSpec() == Qt::OffsetFromUTC && pinned.toSecsSinceEpoch() == 1325376000);
        QCOMPARE(pinned.toString(Qt::ISODate), QStringLiteral("2012-01-01T04:00:00+04:00"));
        QCOMPARE(LineParser::fromEpochSeconds(1709276400).toString(Qt::ISODate),
                 QStringLiteral("2024-03-01T10:00:00+03:00"));
    }

    void aTimeFoundEarlyAcceptsWhateverItGives()
    {
        // The first three rules accept without asking whether the date-time is usable.
        for (const char *body : {R"({"unixtime":1e17})", R"({"unixtime":-1e17})", R"({"end_time":9.2e18})",
                                 R"({"unixtime":true})"}) {
            const QByteArray line = R"({"MSG":{"k":)" + QByteArray(body) + "}}";
            QVERIFY2(LineParser::acceptsLine(line), body);
            QVERIFY2(parse(line), body);
        }
    }

    void legacyDates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected");
        const int year = QDate::currentDate().year();
        // The text and its local time in the current year, if it is a date at all.
        const QVector<QPair<const char *, const char *>> cases{
            {"Jan 5 23:59:59", "01-05T23:59:59"}, {"Mar  1 10:15:00", "03-01T10:15:00"}, // the logger's padding
            {"Dec 31 00:00:00", "12-31T00:00:00"}, {"Jan 5 aa:bb:cc", "01-05T00:00:00"},
            {"Jan 5 10::00", "01-05T10:00:00"},    {"Jan \n 5 \n 10:00:00", "01-05T10:00:00"},
            {"Feb 29 12:00:00", QDate::isLeapYear(year) ? "02-29T12:00:00" : nullptr},
            {"Jan 5 24:00:00", nullptr},  {"Jan 5 25:00:00", nullptr},    {"Jan 5 10:60:00", nullptr},
            {"Jan 5 10:00:61", nullptr},  {"Feb 30 12:00:00", nullptr},   {"Apr 31 12:00:00", nullptr},
            {"Jan 32 10:00:00", nullptr}, {"Jan 0 10:00:00", nullptr},    {"Jan x 10:00:00", nullptr},
            {"Foo 5 10:00:00", nullptr},  {"jan 5 10:00:00", nullptr},    {"January 5 10:00:00", nullptr},
            {"Jan 5 10:00:00 2024", nullptr}, {"Jan 5", nullptr},         {"Jan 5 10:00", nullptr},
            {"Jan 5 10:00:00:00", nullptr}, {"Jan\t5 10:00:00", nullptr}, {"", nullptr}};
        for (const auto &[text, time] : cases) {
            const QString local = QString::number(year) + '-' + QLatin1String(time);
            QTest::newRow(*text ? text : "empty")
                << QString::fromLatin1(text) << (time ? QDateTime::fromString(local, Qt::ISODate) : QDateTime());
        }
    }

    void legacyDates()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        const QDateTime parsed = LineParser::parseLegacyDate(text);
        QCOMPARE(parsed.isValid(), expected.isValid());
        if (expected.isValid())
            QVERIFY(parsed == expected && parsed.timeSpec() == Qt::LocalTime && parsed.time().msec() == 0);
        // The same through a whole line whose DATE is the only time.
        const QByteArray line = R"({"DATE":)" + QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact).mid(1).chopped(1)
                                + R"(,"MSG":{"k":{}}})";
        QCOMPARE(LineParser::acceptsLine(line), expected.isValid());
        const auto event = parse(line);
        QCOMPARE(bool(event), expected.isValid());
        QVERIFY(!event || event->time == expected);
    }

    void acceptanceAgreesWithParsing()
    {
        QVector<QByteArray> lines;
        Corpus corpus(20240301);
        for (int i = 0; i < 12000; ++i)
            lines.append(corpus.line());
#ifdef NIMB_HAVE_GENERATOR
        // Seed, lines, no size, days, malformed lines per mille, newest time.
        const nimbgen::GeneratorOptions options{7, 3000, -1, 10, 100, 1709276400};
        QBuffer journal;
        journal.open(QIODevice::WriteOnly);
        QVERIFY(nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&journal));
        const QList<QByteArray> generated = journal.data().split('\n');
        QVERIFY(generated.size() >= 3000);
        for (const QByteArray &line : generated)
            lines.append(line);
#endif
        // Counting decides by acceptsLine(), pages by parseLine(): a counted line must load.
        for (const char *iso : {"2024-03-01T10:15:00+03:00", "2024-03-01T10:15:00Z", "2024-03-01T10:15:00-11:30",
                                "2024-02-29T23:59:59+00:00", "2023-02-29T10:00:00+00:00", "2024-13-01T10:00:00Z",
                                "2024-03-01T24:00:00+01:00", "2024-03-01T23:60:00Z", "2024-03-01T10:15:00+15:00",
                                "2024-03-01T10:15:00+03:60", "2024-03-01t10:15:00Z", "2024-03-01 10:15:00Z",
                                "2024-03-01T10:15:00.250+03:00", "2024-03-01T10:15+03:00", "2024-03-01T10:15:00",
                                "0000-03-01T10:15:00Z", "2024/03/01T10:15:00Z", "2024-03-01T1a:15:00Z", "garbage"})
            for (const char *date : {"", "Mar  1 10:15:00"})
                lines.append(QByteArray("{\"ISODATE\":\"") + iso + "\",\"DATE\":\"" + date
                             + "\",\"MSG\":{\"velmo-auth\":{\"message_id\":\"m\"}}}");
        int accepted = 0;
        QStringList disagreements;
        for (const QByteArray &line : qAsConst(lines)) {
            const auto event = parse(line);
            if (LineParser::acceptsLine(line) != bool(event))
                disagreements << QString::fromUtf8(line.toPercentEncoding(" {}\":,[]"));
            if (event) {
                ++accepted;
                QCOMPARE(event->parameters.size(), AuxParRegistry::count());
            }
        }
        // The corpus has to exercise both answers for the comparison to mean something.
        QVERIFY2(accepted > lines.size() / 5 && lines.size() - accepted > lines.size() / 5,
                 qPrintable(QString::number(accepted)));
        QVERIFY2(disagreements.isEmpty(), qPrintable(QStringLiteral("%1 lines, e.g. %2")
                                                         .arg(disagreements.size())
                                                         .arg(disagreements.mid(0, 5).join(QLatin1String("\n")))));
    }
};

int main(int argc, char **argv)
{
    // The seconds rules depend on the local offset; pin the zone before any date-time exists.
    qputenv("TZ", "Europe/Moscow");
    tzset();
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QByteArray(NIMB_TEST_DATA_DIR "/model/sysroot"));
    QCoreApplication app(argc, argv);
    TestLineParser test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_lineparser.moc"
