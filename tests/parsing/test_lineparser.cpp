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

// A line around the given message body, with a usable time of its own.
QByteArray withBody(const QByteArray &body)
{
    return R"({"ISODATE":"2024-03-01T10:00:00+03:00","MSG":{"kernel":)" + body + "}}";
}

const AuxPar *parameter(const Event &event, const char *key)
{
    return event.parameters.value(AuxParRegistry::instance().typeOf(QString::fromLatin1(key)));
}

QDateTime moscow(int year, int month, int day, int hour, int minute, int second, int offsetHours)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::OffsetFromUTC, offsetHours * 3600);
}

// ---------------------------------------------------------------------------------------
// A corpus of journal-like lines, well-formed and broken in the ways real journals are.

class Corpus
{
    using Members = std::vector<std::pair<QByteArray, QByteArray>>;

public:
    explicit Corpus(quint32 seed) : m_random(seed) {}

    QByteArray line()
    {
        Members root;
        if (chance(85))
            root.emplace_back("FACILITY", pick({"\"auth\"", "\"daemon\"", "5", "null", "\"\""}));
        if (chance(85))
            root.emplace_back("PRIORITY", priority());
        if (chance(80))
            root.emplace_back("HOST", pick({"\"alpha\"", "\"\"", "null", "[1]", "\"хост\""}));
        if (chance(60))
            root.emplace_back("ISODATE", isoDate());
        if (chance(50))
            root.emplace_back("DATE", legacyDate());
        if (chance(10))
            root.emplace_back("SOURCEIP", "\"127.0.0.1\"");
        if (chance(95))
            root.emplace_back("MSG", msg());
        shuffle(root);
        QByteArray text = object(root);
        return mutate(text);
    }

private:
    bool chance(int percent) { return int(m_random() % 100) < percent; }
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
        for (size_t i = 0; i < members.size(); ++i) {
            if (i)
                text += ',';
            text += '"' + members[i].first + "\":" + members[i].second;
        }
        return text + '}';
    }

    QByteArray priority()
    {
        return pick({"\"info\"", "\"informational\"", "\"Warning\"", "\"emerg\"", "\"debug\"", "\"err\"",
                     "\"crit\"", "7", "null", "\"\"", "\"notice \""});
    }

    QByteArray isoDate()
    {
        return pick({"\"2024-03-01T10:00:00+03:00\"", "\"2023-12-31T23:59:59Z\"", "\"2024-02-30T10:00:00\"",
                     "\"garbage\"", "\"\"", "null", "1709276400", "\"2024-03-01 10:00:00\"",
                     "\"2024-03-01T25:00:00\"", "\"2024-03-01T10:00:00.123+05:30\"", "[]",
                     "\"2024-02-29T00:00:00Z\"", "\"2023-02-29T00:00:00Z\"", "\"0000-01-01T00:00:00Z\"",
                     "\"2024-03-01T23:59:60Z\"", "\"2024-03-01T24:00:00Z\"", "\"2024-03-01T10:15:00+14:59\"",
                     "\"2024-03-01T10:15:00-00:00\"", "\"2024-03-01T10:15:00+15:00\"", "\"2024-03-01T10:15:00+03:60\"",
                     "\"2024-03-01T10:15:00+0300\"", "\"2024-03-01T10:15:00z\"", "\"2024-03-01t10:15:00Z\"",
                     "\"2024-13-01T10:15:00Z\"", "\"2024-03-01T10:15:00 \"", "\"\uff12024-03-01T10:15:00Z\""});
    }

    QByteArray legacyDate()
    {
        return pick({"\"Mar  1 10:15:00\"", "\"Jan 5 24:00:00\"", "\"Jan 5 23:59:59\"", "\"Feb 29 12:00:00\"",
                     "\"Feb 30 12:00:00\"", "\"Foo 1 10:00:00\"", "\"Jan 5 10:00\"", "\"Jan 5 10:00:00 x\"",
                     "\"Jan\\n5\\n10:00:00\"", "\"Jan \\n 5 \\n 10:00:00\"", "\"Dec 31 23:59:60\"", "\"\"",
                     "null", "12", "\"jan 5 10:00:00\"", "\"Jan 32 10:00:00\""});
    }

    QByteArray number()
    {
        return pick({"0", "1", "-1", "10", "42", "1000", "65535", "4294967295", "4294967296", "-4294967297",
                     "9007199254740993", "1e30", "-1e300", "1.5", "0.0", "1709276400", "1E3", "-0",
                     "18446744073709551615", "1e400"});
    }

    QByteArray string()
    {
        return pick({"\"root\"", "\"\"", "\"\\n\"", "\"success\"", "\"failed\"", "\"unknown\"", "\"maybe\"",
                     "\"not yes\"", "\"10\"", "\"0xFFFFFFFF\"", "\"4294967295\"", "\"1709276400\"", "\"true\"",
                     "\"Пользователь\"", "\"Ёлка\"", "\"\\u0000\"", "\"\\ud800\"", "\"\\\"quoted\\\"\"",
                     "\"2024-03-01T12:00:00\"", "\"0:0:0:0:0\"", "\"1:2:3\"", "\"𝄞\"", "\"  \""});
    }

    QByteArray value()
    {
        switch (below(10)) {
        case 0:
        case 1:
        case 2:
            return string();
        case 3:
        case 4:
        case 5:
            return number();
        case 6:
            return pick({"true", "false"});
        case 7:
            return "null";
        case 8:
            return pick({"[]", "[1,\"a\"]", "{}", "{\"a\":1}"});
        default:
            return '"' + QByteArray::number(qint64(quint64(m_random()) << 32 | m_random())) + '"';
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
        case 0:
            return "{}";
        case 1:
            return "{\"kernel\":{},\"sshd\":{}}";
        case 2:
            return pick({"\"kernel\"", "[]", "null", "5", "[{\"kernel\":{}}]"});
        case 3:
            return "{\"kernel\":" + value() + '}';
        default:
            break;
        }
        static const char *const sources[] = {"kernel", "sshd", "cron", "", "источник", "unrecognized"};
        return "{\"" + QByteArray(sources[below(6)]) + "\":" + body() + '}';
    }

    QByteArray body()
    {
        static const char *const timeKeys[] = {"time", "unixtime", "end_time", "start_time"};
        static const char *const otherKeys[] = {
            "uid", "auid", "gid", "pid", "ppid", "user", "result", "success", "onsudo", "state", "obj",
            "subj", "obj_new", "signal", "source", "host", "undefined", "type_en", "type_ru", "command",
            "level", "categories", "path", "deny", "tally", "site code", "shift", "foo", "bar", "", "MSG",
            "message_id", "name_en", "name_ru", "UID", "время"};
        Members members;
        if (chance(80))
            members.emplace_back("message_id", chance(85) ? QByteArray("\"1001\"") : value());
        if (chance(70))
            members.emplace_back("name_en", chance(85) ? QByteArray("\"User logged in\"") : value());
        if (chance(70))
            members.emplace_back("name_ru", chance(85) ? QByteArray("\"Вход пользователя\"") : value());
        for (const char *key : timeKeys)
            if (chance(25))
                members.emplace_back(key, timeValue(key));
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
        case 0:
            return text.left(below(text.size() + 1));        // a truncated last line
        case 1:
            return text.remove(below(text.size()), 1);
        case 2:
            return text.insert(below(text.size() + 1), pick({"\"", "{", "}", ",", ":", "\\", "\n", "\xff", " "}));
        case 3:
            return text + '\n';
        case 4:
            return text + "\r\n";
        case 5:
            return "\xEF\xBB\xBF" + text;
        case 6:
            return '[' + text + ']';
        case 7:
            return text + " trailing";
        case 8:
            return text.replace("\"MSG\"", "\"msg\"");
        case 9:
            // The same key twice, as a careless writer might produce.
            return text.replace("\"unixtime\":", "\"unixtime\":4294967295,\"unixtime\":");
        case 10:
            return text.replace("\"time\":", "\"time\":null,\"time\":");
        case 11:
            return QByteArray();
        case 12:
            return pick({"{}", "[]", "null", "5", "\"text\"", "true", " ", "\n", "{\"MSG\":{}}"});
        case 13:
            return text.replace(':', ',');
        default:
            return text;
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
        for (size_t t = 0; t < seen.size(); ++t) {
            threads.emplace_back([&lines, &describe, &seen, t] {
                for (const QByteArray &line : lines)
                    seen[t].append(describe(line));
            });
        }
        for (auto &thread : threads)
            thread.join();

        QStringList expected;
        for (const QByteArray &line : qAsConst(lines))
            expected.append(describe(line));
        QVERIFY(expected.count(QStringLiteral("rejected")) < expected.size());
        for (const QStringList &descriptions : seen)
            QVERIFY(descriptions == expected);
    }

    void rejectsBrokenLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        const QByteArray good = R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"message_id":"1"}}})";
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("line feed") << QByteArray("\n");
        QTest::newRow("blank") << QByteArray("   ");
        QTest::newRow("invalid json") << QByteArray("{ISODATE: 2024}");
        QTest::newRow("truncated") << good.left(good.size() - 3);
        QTest::newRow("truncated in string") << good.left(20);
        QTest::newRow("trailing garbage") << good + "x";
        QTest::newRow("array") << "[" + good + "]";
        QTest::newRow("number") << QByteArray("5");
        QTest::newRow("string") << QByteArray("\"text\"");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("empty object") << QByteArray("{}");
        QTest::newRow("no MSG") << QByteArray(R"({"ISODATE":"2024-03-01T10:00:00"})");
        QTest::newRow("lowercase msg") << QByteArray(R"({"ISODATE":"2024-03-01T10:00:00","msg":{"kernel":{}}})");
        QTest::newRow("MSG not an object") << QByteArray(R"({"ISODATE":"2024-03-01T10:00:00","MSG":"kernel"})");
        QTest::newRow("MSG array") << QByteArray(R"({"ISODATE":"2024-03-01T10:00:00","MSG":[{"kernel":{}}]})");
        QTest::newRow("MSG empty") << QByteArray(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{}})");
        QTest::newRow("MSG two members")
            << QByteArray(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"message_id":"1"},"sshd":{}}})");
        QTest::newRow("no time") << QByteArray(R"({"MSG":{"kernel":{"message_id":"1"}}})");
        QTest::newRow("no usable time")
            << QByteArray(R"({"ISODATE":"garbage","DATE":"Jan 5 24:00:00","MSG":{"kernel":{"time":"garbage"}}})");
        QTest::newRow("only start_time") << QByteArray(R"({"MSG":{"kernel":{"start_time":1709276400}}})");
        QTest::newRow("missing unixtime")
            << QByteArray(R"({"MSG":{"kernel":{"unixtime":4294967295,"end_time":-1,"time":null}}})");
    }

    void rejectsBrokenLines()
    {
        QFETCH(QByteArray, line);
        QVERIFY(!parse(line));
        QVERIFY(!LineParser::acceptsLine(line));
    }

    void readsTheLinesFields()
    {
        const QByteArray line =
            R"({"FACILITY":"authpriv","PRIORITY":"err","HOST":"alpha","SOURCEIP":"10.0.0.1",)"
            R"("ISODATE":"2024-03-01T10:00:00+03:00","MSG":{"sshd":{"message_id":"1001",)"
            R"("name_en":"User logged in","name_ru":"Вход пользователя","pid":42,"user":"root",)"
            R"("uid":"1000","type_en":"Login","gid":null,"site code":"A1","shift":null}}})";
        const auto event = parse(line + '\n');
        QVERIFY(event);
        QCOMPARE(event->number, 0u);
        QCOMPARE(event->facility, QStringLiteral("authpriv"));
        QCOMPARE(event->priority, Event::Error);
        QCOMPARE(event->messageId, QStringLiteral("1001"));
        QCOMPARE(event->nameEn, QStringLiteral("User logged in"));
        QCOMPARE(event->nameRu, QStringLiteral("Вход пользователя"));
        QCOMPARE(event->time, moscow(2024, 3, 1, 10, 0, 0, 3));
        QCOMPARE(event->host(), QStringLiteral("alpha"));
        QCOMPARE(event->source(), QStringLiteral("sshd"));

        // One object per kind, empty or not.
        QCOMPARE(event->parameters.size(), AuxParRegistry::count());
        QCOMPARE(parameter(*event, "pid")->value(), QVariant(42.0));
        QCOMPARE(parameter(*event, "pid")->toString(), QStringLiteral("42"));
        QCOMPARE(parameter(*event, "uid")->value(), QVariant(QStringLiteral("1000")));
        QCOMPARE(parameter(*event, "user")->toString(), QStringLiteral("root"));
        QVERIFY(!parameter(*event, "gid")->isValid());
        QVERIFY(!parameter(*event, "ppid")->isValid());
        QVERIFY(!parameter(*event, "type_ru")->isValid());
        QVERIFY(!parameter(*event, "undefined")->isValid());

        // Declared custom parameters, present and not null only.
        QCOMPARE(event->customParameters.size(), 1);
        QCOMPARE(event->customParameters.value(QStringLiteral("site code")), QStringLiteral("A1"));
    }

    void otherJsonKindsReadAsEmptyText()
    {
        const auto event = parse(R"({"FACILITY":5,"PRIORITY":["info"],"HOST":{"name":"alpha"},)"
                                 R"("ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"message_id":1001,)"
                                 R"("name_en":true,"name_ru":null}}})");
        QVERIFY(event);
        QCOMPARE(event->facility, QString());
        QCOMPARE(event->priority, Event::Unknown);
        QCOMPARE(event->host(), QString());
        QVERIFY(parameter(*event, "host"));
        QCOMPARE(event->messageId, QString());
        QCOMPARE(event->nameEn, QString());
        QCOMPARE(event->nameRu, QString());

        // A body that is not an object is an empty body.
        const auto textBody = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":"text"}})");
        QVERIFY(textBody);
        QCOMPARE(textBody->source(), QStringLiteral("kernel"));
        QCOMPARE(textBody->messageId, QString());
    }

    void priorityWords_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("priority");
        QTest::newRow("Warning") << QByteArray("\"Warning\"") << 0;
        QTest::newRow("warning") << QByteArray("\"warning\"") << 5;
        QTest::newRow("informational") << QByteArray("\"informational\"") << 7;
        QTest::newRow("info") << QByteArray("\"info\"") << 7;
        QTest::newRow("emerg") << QByteArray("\"emerg\"") << 1;
        QTest::newRow("crit") << QByteArray("\"crit\"") << 3;
        QTest::newRow("debug") << QByteArray("\"debug\"") << 8;
        QTest::newRow("number") << QByteArray("7") << 0;
        QTest::newRow("null") << QByteArray("null") << 0;
    }

    void priorityWords()
    {
        QFETCH(QByteArray, value);
        QFETCH(int, priority);
        const auto event = parse(R"({"ISODATE":"2024-03-01T10:00:00","PRIORITY":)" + value + R"(,"MSG":{"k":{}}})");
        QVERIFY(event);
        QCOMPARE(int(event->priority), priority);
        const auto missing = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"k":{}}})");
        QCOMPARE(missing->priority, Event::Unknown);
    }

    void booleansBySubstring_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QVariant>("expected");
        const QVariant yes(true), no(false), none;
        QTest::newRow("failed") << QByteArray("\"failed\"") << no;
        QTest::newRow("unknown") << QByteArray("\"unknown\"") << no;
        QTest::newRow("maybe") << QByteArray("\"maybe\"") << none;
        QTest::newRow("number 1") << QByteArray("1") << yes;
        QTest::newRow("number 0") << QByteArray("0") << no;
        QTest::newRow("text 10") << QByteArray("\"10\"") << yes;
        QTest::newRow("number 10") << QByteArray("10") << yes;
        QTest::newRow("not yes") << QByteArray("\"not yes\"") << yes;
        QTest::newRow("true") << QByteArray("true") << yes;
        QTest::newRow("false") << QByteArray("false") << no;
        QTest::newRow("success") << QByteArray("\"success\"") << yes;
        QTest::newRow("no") << QByteArray("\"no\"") << no;
        QTest::newRow("fail") << QByteArray("\"fail\"") << no;
        QTest::newRow("YES") << QByteArray("\"YES\"") << none;
        QTest::newRow("True") << QByteArray("\"True\"") << none;
        QTest::newRow("empty") << QByteArray("\"\"") << none;
        QTest::newRow("number 2") << QByteArray("2") << none;
        QTest::newRow("null") << QByteArray("null") << none;
        QTest::newRow("array") << QByteArray("[1]") << none;
    }

    void booleansBySubstring()
    {
        QFETCH(QByteArray, value);
        QFETCH(QVariant, expected);
        for (const char *key : {"onsudo", "result", "state", "success"}) {
            const auto event = parse(withBody("{\"" + QByteArray(key) + "\":" + value + '}'));
            QVERIFY(event);
            const AuxPar *flag = parameter(*event, key);
            QVERIFY(flag);
            QCOMPARE(flag->isValid(), expected.isValid());
            if (expected.isValid()) {
                QCOMPARE(flag->value().type(), QVariant::Bool);
                QCOMPARE(flag->value().toBool(), expected.toBool());
            }
        }
    }

    void valuesByKind()
    {
        const auto event = parse(withBody(R"({"user":5,"command":true,"time":"garbage","signal":9,)"
                                          R"("obj":"1:0:0:0:0","unixtime":"1709276400"})"));
        QVERIFY(event);
        QCOMPARE(parameter(*event, "user")->toString(), QStringLiteral("5"));
        QCOMPARE(parameter(*event, "command")->toString(), QStringLiteral("true"));
        QCOMPARE(parameter(*event, "signal")->toString(), QStringLiteral("SIGKILL"));
        QVERIFY(parameter(*event, "obj")->isValid());
        QCOMPARE(parameter(*event, "unixtime")->value(), QVariant(QStringLiteral("1709276400")));
        // An unreadable time is kept, as an invalid date-time.
        const AuxPar *time = parameter(*event, "time");
        QCOMPARE(time->value().type(), QVariant::DateTime);
        QVERIFY(!time->isValid());
    }

    void undefinedInformation()
    {
        auto undefinedOf = [](const QByteArray &body) {
            const auto event = parse(withBody(body));
            if (!event)
                return QStringLiteral("<rejected>");
            const AuxPar *undefined = event->parameters.value(AuxParId::Undefined);
            return undefined ? undefined->value().toString() : QStringLiteral("<absent>");
        };
        QCOMPARE(undefinedOf(R"({"foo":5})"), QStringLiteral("foo: "));
        QCOMPARE(undefinedOf(R"({"foo":"bar"})"), QStringLiteral("foo: bar"));
        QCOMPARE(undefinedOf(R"({"foo":null})"), QStringLiteral("foo: "));
        QCOMPARE(undefinedOf(R"({"foo":"\n"})"), QStringLiteral("foo: \n"));
        QCOMPARE(undefinedOf(R"({"baz":"qux","foo":"bar"})"), QStringLiteral("baz: qux; foo: bar"));
        QCOMPARE(undefinedOf(R"({"baz":"qux","uid":7,"foo":"bar","message_id":"1"})"),
                 QStringLiteral("baz: qux; foo: bar"));
        // Known keys, the message's own keys and declared custom names are not undefined.
        QCOMPARE(undefinedOf(R"({"message_id":"1","name_en":"a","name_ru":"b","uid":7,"host":"h",)"
                             R"("source":"s","undefined":"u","site code":"A1","shift":"x"})"),
                 QString());
        QCOMPARE(undefinedOf(R"({"UID":"7"})"), QStringLiteral("UID: 7"));
        QCOMPARE(undefinedOf(R"({})"), QString());

        // Always present, even when empty.
        const auto event = parse(withBody("{}"));
        QVERIFY(event);
        QVERIFY(event->parameters.contains(AuxParId::Undefined));
        QVERIFY(!event->parameters.value(AuxParId::Undefined)->isValid());
    }

    void timePrecedence_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QDateTime>("expected");
        const QByteArray iso = R"("ISODATE":"2024-03-01T10:00:00+03:00")";
        const QByteArray date = R"("DATE":"Jan 5 23:59:59")";
        const QDateTime isoTime = moscow(2024, 3, 1, 10, 0, 0, 3);
        const QDateTime dateTime(QDate(QDate::currentDate().year(), 1, 5), QTime(23, 59, 59), Qt::LocalTime);

        QTest::newRow("time first") << QByteArray("{" + iso + "," + date + R"(,"MSG":{"k":{"time":"2022-05-06T07:08:09+02:00",)"
                                                                           R"("unixtime":1577836800,"end_time":1325376000}}})")
                                    << QDateTime(QDate(2022, 5, 6), QTime(7, 8, 9), Qt::OffsetFromUTC, 7200);
        QTest::newRow("time without ISODATE or DATE")
            << QByteArray(R"({"MSG":{"k":{"time":"2022-05-06T07:08:09+02:00"}}})")
            << QDateTime(QDate(2022, 5, 6), QTime(7, 8, 9), Qt::OffsetFromUTC, 7200);
        QTest::newRow("unreadable time, unixtime")
            << QByteArray("{" + iso + R"(,"MSG":{"k":{"time":"garbage","unixtime":1577836800,"end_time":1325376000}}})")
            << moscow(2020, 1, 1, 3, 0, 0, 3);
        QTest::newRow("numeric time, unixtime")
            << QByteArray(R"({"MSG":{"k":{"time":1600000000,"unixtime":1577836800}}})") << moscow(2020, 1, 1, 3, 0, 0, 3);
        QTest::newRow("unixtime as text") << QByteArray(R"({"MSG":{"k":{"unixtime":"1577836800"}}})")
                                          << moscow(2020, 1, 1, 3, 0, 0, 3);
        // The local offset of the instant itself, not today's.
        QTest::newRow("unixtime 2012") << QByteArray(R"({"MSG":{"k":{"unixtime":1325376000}}})")
                                       << moscow(2012, 1, 1, 4, 0, 0, 4);
        QTest::newRow("unixtime summer 2005") << QByteArray(R"({"MSG":{"k":{"unixtime":1120176000}}})")
                                              << moscow(2005, 7, 1, 4, 0, 0, 4);
        QTest::newRow("unixtime winter 2005") << QByteArray(R"({"MSG":{"k":{"unixtime":1104537600}}})")
                                              << moscow(2005, 1, 1, 3, 0, 0, 3);
        QTest::newRow("unixtime 0") << QByteArray(R"({"MSG":{"k":{"unixtime":0}}})") << moscow(1970, 1, 1, 3, 0, 0, 3);
        QTest::newRow("unixtime all ones, end_time")
            << QByteArray("{" + iso + R"(,"MSG":{"k":{"unixtime":4294967295,"end_time":1325376000}}})")
            << moscow(2012, 1, 1, 4, 0, 0, 4);
        QTest::newRow("unixtime hex text, end_time")
            << QByteArray("{" + iso + R"(,"MSG":{"k":{"unixtime":"0xFFFFFFFF","end_time":1104537600}}})")
            << moscow(2005, 1, 1, 3, 0, 0, 3);
        QTest::newRow("unixtime null, end_time")
            << QByteArray(R"({"MSG":{"k":{"unixtime":null,"end_time":1104537600}}})") << moscow(2005, 1, 1, 3, 0, 0, 3);
        QTest::newRow("end_time before the epoch")
            << QByteArray(R"({"MSG":{"k":{"end_time":-2}}})") << moscow(1970, 1, 1, 2, 59, 58, 3);
        QTest::newRow("end_time -1, ISODATE")
            << QByteArray("{" + iso + R"(,"MSG":{"k":{"end_time":-1,"start_time":1104537600}}})") << isoTime;
        QTest::newRow("ISODATE before DATE") << QByteArray("{" + iso + "," + date + R"(,"MSG":{"k":{}}})") << isoTime;
        QTest::newRow("unreadable ISODATE, DATE")
            << QByteArray(R"({"ISODATE":"garbage",)" + date + R"(,"MSG":{"k":{}}})") << dateTime;
        QTest::newRow("numeric ISODATE, DATE")
            << QByteArray(R"({"ISODATE":1709276400,)" + date + R"(,"MSG":{"k":{}}})") << dateTime;
        QTest::newRow("DATE alone") << QByteArray("{" + date + R"(,"MSG":{"k":{}}})") << dateTime;
    }

    void timePrecedence()
    {
        QFETCH(QByteArray, line);
        QFETCH(QDateTime, expected);
        QVERIFY(LineParser::acceptsLine(line));
        const auto event = parse(line);
        QVERIFY(event);
        QCOMPARE(event->time, expected);
        QCOMPARE(event->time.offsetFromUtc(), expected.offsetFromUtc());
        QCOMPARE(event->time.toString(Qt::ISODate), expected.toString(Qt::ISODate));
    }

    void secondsArePinnedAtTheirLocalOffset()
    {
        // Moscow kept +04:00 all year from 2011 to 2014 and +03:00 since.
        const QDateTime pinned = LineParser::fromEpochSeconds(1325376000);
        QCOMPARE(pinned.timeSpec(), Qt::OffsetFromUTC);
        QCOMPARE(pinned.offsetFromUtc(), 4 * 3600);
        QCOMPARE(pinned.toSecsSinceEpoch(), Q_INT64_C(1325376000));
        QCOMPARE(pinned.toString(Qt::ISODate), QStringLiteral("2012-01-01T04:00:00+04:00"));
        const QDateTime recent = LineParser::fromEpochSeconds(1709276400);
        QCOMPARE(recent.offsetFromUtc(), 3 * 3600);
        QCOMPARE(recent.toString(Qt::ISODate), QStringLiteral("2024-03-01T10:00:00+03:00"));
    }

    void aTimeFoundEarlyAcceptsWhateverItGives()
    {
        // The first three rules accept without asking whether the date-time is usable.
        for (const QByteArray &body : {QByteArray(R"({"unixtime":1e17})"), QByteArray(R"({"unixtime":-1e17})"),
                                      QByteArray(R"({"end_time":9.2e18})"), QByteArray(R"({"unixtime":true})")}) {
            const QByteArray line = R"({"MSG":{"k":)" + body + "}}";
            QVERIFY2(LineParser::acceptsLine(line), line.constData());
            QVERIFY2(parse(line), line.constData());
        }
    }

    void legacyDates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected");
        const int year = QDate::currentDate().year();
        auto at = [year](int month, int day, int hour, int minute, int second) {
            return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::LocalTime);
        };
        QTest::newRow("last second") << QStringLiteral("Jan 5 23:59:59") << at(1, 5, 23, 59, 59);
        QTest::newRow("hour 24") << QStringLiteral("Jan 5 24:00:00") << QDateTime();
        QTest::newRow("hour 25") << QStringLiteral("Jan 5 25:00:00") << QDateTime();
        QTest::newRow("minute 60") << QStringLiteral("Jan 5 10:60:00") << QDateTime();
        QTest::newRow("second 61") << QStringLiteral("Jan 5 10:00:61") << QDateTime();
        QTest::newRow("syslog padding") << QStringLiteral("Mar  1 10:15:00") << at(3, 1, 10, 15, 0);
        QTest::newRow("December") << QStringLiteral("Dec 31 00:00:00") << at(12, 31, 0, 0, 0);
        QTest::newRow("leap day") << QStringLiteral("Feb 29 12:00:00")
                                  << (QDate::isLeapYear(year) ? at(2, 29, 12, 0, 0) : QDateTime());
        QTest::newRow("Feb 30") << QStringLiteral("Feb 30 12:00:00") << QDateTime();
        QTest::newRow("day 31 of April") << QStringLiteral("Apr 31 12:00:00") << QDateTime();
        QTest::newRow("day 32") << QStringLiteral("Jan 32 10:00:00") << QDateTime();
        QTest::newRow("day 0") << QStringLiteral("Jan 0 10:00:00") << QDateTime();
        QTest::newRow("day not a number") << QStringLiteral("Jan x 10:00:00") << QDateTime();
        QTest::newRow("clock not numbers") << QStringLiteral("Jan 5 aa:bb:cc") << at(1, 5, 0, 0, 0);
        QTest::newRow("bad month") << QStringLiteral("Foo 5 10:00:00") << QDateTime();
        QTest::newRow("month lowercase") << QStringLiteral("jan 5 10:00:00") << QDateTime();
        QTest::newRow("month in full") << QStringLiteral("January 5 10:00:00") << QDateTime();
        QTest::newRow("too many parts") << QStringLiteral("Jan 5 10:00:00 2024") << QDateTime();
        QTest::newRow("too few parts") << QStringLiteral("Jan 5") << QDateTime();
        QTest::newRow("two clock fields") << QStringLiteral("Jan 5 10:00") << QDateTime();
        QTest::newRow("four clock fields") << QStringLiteral("Jan 5 10:00:00:00") << QDateTime();
        QTest::newRow("empty clock field") << QStringLiteral("Jan 5 10::00") << at(1, 5, 10, 0, 0);
        QTest::newRow("lone line feeds") << QStringLiteral("Jan \n 5 \n 10:00:00") << at(1, 5, 10, 0, 0);
        QTest::newRow("tab is no separator") << QStringLiteral("Jan\t5 10:00:00") << QDateTime();
        QTest::newRow("empty") << QString() << QDateTime();
    }

    void legacyDates()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        const QDateTime parsed = LineParser::parseLegacyDate(text);
        QCOMPARE(parsed.isValid(), expected.isValid());
        if (expected.isValid()) {
            QCOMPARE(parsed, expected);
            QCOMPARE(parsed.timeSpec(), Qt::LocalTime);
            QCOMPARE(parsed.time().msec(), 0);
        }
        // The same through a whole line whose DATE is the only time.
        const QByteArray line = R"({"DATE":)" + QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact).mid(1).chopped(1)
                                + R"(,"MSG":{"k":{}}})";
        QCOMPARE(LineParser::acceptsLine(line), expected.isValid());
        const auto event = parse(line);
        QCOMPARE(bool(event), expected.isValid());
        if (event)
            QCOMPARE(event->time, expected);
    }

    void acceptanceAgreesWithParsing()
    {
        QVector<QByteArray> lines;
        Corpus corpus(20240301);
        for (int i = 0; i < 12000; ++i)
            lines.append(corpus.line());
#ifdef NIMB_HAVE_GENERATOR
        nimbgen::GeneratorOptions options;
        options.seed = 7;
        options.lines = 3000;
        options.malformedPermille = 100;
        options.end = 1709276400;
        nimbgen::JournalGenerator generator(nimbgen::Catalogue::builtIn(), options);
        QBuffer journal;
        journal.open(QIODevice::WriteOnly);
        QVERIFY(generator.write(&journal));
        const QList<QByteArray> generated = journal.data().split('\n');
        QVERIFY(generated.size() >= 3000);
        for (const QByteArray &line : generated)
            lines.append(line);
#endif
        int accepted = 0;
        QStringList disagreements;
        for (const QByteArray &line : qAsConst(lines)) {
            const bool accepts = LineParser::acceptsLine(line);
            const auto event = parse(line);
            if (accepts != bool(event))
                disagreements << QString::fromUtf8(line.toPercentEncoding(" {}\":,[]"));
            if (event) {
                ++accepted;
                QCOMPARE(event->parameters.size(), AuxParRegistry::count());
            }
        }
        // The corpus has to exercise both answers for the comparison to mean something.
        QVERIFY2(accepted > lines.size() / 5, qPrintable(QString::number(accepted)));
        QVERIFY2(lines.size() - accepted > lines.size() / 5, qPrintable(QString::number(accepted)));
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
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(QStringLiteral(NIMB_TEST_DATA_DIR "/model/sysroot")));
    QCoreApplication app(argc, argv);
    TestLineParser test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_lineparser.moc"
