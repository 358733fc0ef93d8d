#include "AuxParRegistry.h"
#include "Event.h"
#include "Language.h"
#include "LineParser.h"

#include <QtTest>

namespace
{
using Rows = QVector<Event::Row>;

std::unique_ptr<Event> parse(const char *line)
{
    return LineParser::parseLine(QByteArray(line));
}

// An event that holds only the parameter objects it is given, as code other than the
// parser may build one.
std::unique_ptr<Event> sparseEvent(std::initializer_list<QPair<int, QVariant>> parameters)
{
    auto event = std::make_unique<Event>();
    for (const auto &parameter : parameters) {
        auto object = AuxParRegistry::instance().create(parameter.first);
        object->setValue(parameter.second);
        event->parameters.insert(std::move(object));
    }
    return event;
}

const char kFullLine[] =
    R"({"FACILITY":"auth","PRIORITY":"notice","HOST":"alpha","ISODATE":"2024-03-01T09:00:00+03:00",)"
    R"("MSG":{"kernel":{"message_id":"1001","name_en":"User logged in","name_ru":"Вход пользователя",)"
    R"("user":"root","uid":1000,"type_en":"Login","type_ru":"Вход","result":"success","pid":77,)"
    R"("time":"2024-03-01T10:00:05+03:00","unixtime":1709276405,"gid":null,"site code":"A1","shift":"",)"
    R"("foo":"bar"}}})";
}

class TestEvent : public QObject
{
    Q_OBJECT

private slots:
    void rowsOfAFullEvent()
    {
        const auto event = parse(kFullLine);
        QVERIFY(event);
        const bool russian = Language::isRussian();
        const Rows expected = {
            {QStringLiteral("Event name"), russian ? QStringLiteral("Вход пользователя") : QStringLiteral("User logged in")},
            {QStringLiteral("Message ID"), QStringLiteral("1001")},
            {QStringLiteral("Date and time"), QStringLiteral("2024-03-01T10:00:05+03:00")},
            {QStringLiteral("Event type"), russian ? QStringLiteral("Вход") : QStringLiteral("Login")},
            {QStringLiteral("Priority"), QStringLiteral("notice")},
            // Parameters that carry a value, in type order, without time and the two types.
            {QStringLiteral("Host"), QStringLiteral("alpha")},
            {QStringLiteral("Process ID"), QStringLiteral("77")},
            {QStringLiteral("Result"), QStringLiteral("success")},
            {QStringLiteral("Source"), russian ? QStringLiteral("Ядро") : QStringLiteral("Kernel")},
            {QStringLiteral("User ID"), QStringLiteral("1000")},
            {QStringLiteral("Undefined information"), QStringLiteral("foo: bar")},
            {QStringLiteral("UNIX time label"), QStringLiteral("1709276405")},
            {QStringLiteral("User"), QStringLiteral("root")},
            // Custom parameters with a value; "shift" is empty.
            {QStringLiteral("site code"), QStringLiteral("A1")},
        };
        QCOMPARE(event->parameterList(), expected);
    }

    void rowsOfAnEventWithoutParameterValues()
    {
        // A nameless source leaves even the source parameter empty.
        const auto warning = parse(R"({"PRIORITY":"Warning","ISODATE":"2024-03-01T10:00:00","MSG":{"":{"message_id":"7"}}})");
        QVERIFY(warning);
        QCOMPARE(warning->priority, Event::Unknown);
        const Rows four = {
            {QStringLiteral("Event name"), QString()},
            {QStringLiteral("Message ID"), QStringLiteral("7")},
            {QStringLiteral("Date and time"), QStringLiteral("2024-03-01T10:00:00")},
            {QStringLiteral("Event type"), QString()},
        };
        QCOMPARE(warning->parameterList(), four);

        const auto debug = parse(R"({"PRIORITY":"debug","ISODATE":"2024-03-01T10:00:00","MSG":{"":{"message_id":"7"}}})");
        QVERIFY(debug);
        Rows five = four;
        five.append({QStringLiteral("Priority"), QStringLiteral("debug")});
        QCOMPARE(debug->parameterList(), five);

        const Event blank;
        QCOMPARE(blank.parameterList().size(), 4);
        QCOMPARE(blank.parameterList().at(2), Event::Row(QStringLiteral("Date and time"), QString()));

        // Empty custom values and empty parameter objects add nothing.
        const auto empties = parse(R"({"PRIORITY":"alert","ISODATE":"2024-03-01T10:00:00",)"
                                   R"("MSG":{"":{"user":"","uid":null,"result":"maybe","site code":""}}})");
        QVERIFY(empties);
        QCOMPARE(empties->parameterList().size(), 5);
    }

    void typeAndNameFollowTheSystemLanguage()
    {
        const bool russian = Language::isRussian();
        const auto both = parse(kFullLine);
        QVERIFY(both);
        QCOMPARE(both->typeText(), russian ? QStringLiteral("Вход") : QStringLiteral("Login"));
        QCOMPARE(both->eventName(), russian ? QStringLiteral("Вход пользователя") : QStringLiteral("User logged in"));

        // No fallback between the languages for a parsed event: its empty type_ru object counts.
        const auto englishOnly = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":)"
                                       R"({"name_en":"Logout","type_en":"Login"}}})");
        QVERIFY(englishOnly);
        QCOMPARE(englishOnly->typeText(), russian ? QString() : QStringLiteral("Login"));
        QCOMPARE(englishOnly->eventName(), russian ? QString() : QStringLiteral("Logout"));
        QCOMPARE(englishOnly->parameterList().at(3).second, englishOnly->typeText());

        const auto russianOnly = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":)"
                                       R"({"name_ru":"Выход","type_ru":"Вход"}}})");
        QVERIFY(russianOnly);
        QCOMPARE(russianOnly->typeText(), russian ? QStringLiteral("Вход") : QString());
        QCOMPARE(russianOnly->eventName(), russian ? QStringLiteral("Выход") : QString());

        // Without a type_ru object at all, the English type serves.
        const auto sparse = sparseEvent({{AuxParId::TypeEn, QStringLiteral("Login")}});
        QCOMPARE(sparse->typeText(), QStringLiteral("Login"));
        const auto sparseRu = sparseEvent({{AuxParId::TypeRu, QStringLiteral("Вход")}});
        QCOMPARE(sparseRu->typeText(), russian ? QStringLiteral("Вход") : QString());
        QCOMPARE(Event().typeText(), QString());
    }

    void hostAndSource()
    {
        const auto event = parse(kFullLine);
        QVERIFY(event);
        QCOMPARE(event->host(), QStringLiteral("alpha"));
        QCOMPARE(event->source(), QStringLiteral("kernel"));
        QCOMPARE(event->sourceText(), Language::isRussian() ? QStringLiteral("Ядро") : QStringLiteral("Kernel"));
        QCOMPARE(event->facility, QStringLiteral("auth"));
        QCOMPARE(event->priorityText(), QStringLiteral("notice"));

        const auto unknown = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"cron":{}}})");
        QVERIFY(unknown);
        QCOMPARE(unknown->source(), QStringLiteral("cron"));
        QCOMPARE(unknown->sourceText(),
                 Language::isRussian() ? QStringLiteral("Неизвестный источник") : QStringLiteral("Unknown source"));
        QCOMPARE(unknown->host(), QString());

        const Event blank;
        QCOMPARE(blank.host(), QString());
        QCOMPARE(blank.source(), QString());
        QCOMPARE(blank.sourceText(), QString());
    }

    void copyLine()
    {
        const bool russian = Language::isRussian();
        const auto event = parse(kFullLine);
        QVERIFY(event);
        const QStringList fields = event->copyLine().split(QLatin1Char('\t'));
        QVERIFY(fields.size() > 5);
        QCOMPARE(fields.mid(0, 5),
                 (QStringList{QStringLiteral("2024-03-01T10:00:05+03:00"), QStringLiteral("1001"),
                              russian ? QStringLiteral("Вход") : QStringLiteral("Login"), QStringLiteral("notice"),
                              russian ? QStringLiteral("Вход пользователя") : QStringLiteral("User logged in")}));
        const QString parameters = fields.mid(5).join(QLatin1Char('\t'));
        QVERIFY(parameters.contains(QLatin1String("root")));
        QVERIFY(parameters.contains(QLatin1String("A1")));
        QVERIFY(!parameters.contains(QLatin1String("Login")));

        // Without a display word the priority and its tab are left out.
        const auto unknownPriority = parse(R"({"PRIORITY":"Warning","ISODATE":"2024-03-01T10:00:00",)"
                                           R"("MSG":{"kernel":{"message_id":"9","name_en":"N","name_ru":"Н","type_en":"T","type_ru":"Т"}}})");
        QVERIFY(unknownPriority);
        const QString line = unknownPriority->copyLine();
        const QString head = russian ? QStringLiteral("2024-03-01T10:00:00\t9\tТ\tН\t")
                                     : QStringLiteral("2024-03-01T10:00:00\t9\tT\tN\t");
        QVERIFY2(line.startsWith(head), qPrintable(line));
    }

    void priorityWords_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("priority");
        QTest::newRow("emergency") << QStringLiteral("emergency") << 1;
        QTest::newRow("emerg") << QStringLiteral("emerg") << 1;
        QTest::newRow("alert") << QStringLiteral("alert") << 2;
        QTest::newRow("critical") << QStringLiteral("critical") << 3;
        QTest::newRow("crit") << QStringLiteral("crit") << 3;
        QTest::newRow("error") << QStringLiteral("error") << 4;
        QTest::newRow("err") << QStringLiteral("err") << 4;
        QTest::newRow("warning") << QStringLiteral("warning") << 5;
        QTest::newRow("notice") << QStringLiteral("notice") << 6;
        QTest::newRow("info") << QStringLiteral("info") << 7;
        QTest::newRow("informational") << QStringLiteral("informational") << 7;
        QTest::newRow("debug") << QStringLiteral("debug") << 8;
        // No case folding, no other short forms, no padding.
        QTest::newRow("Warning") << QStringLiteral("Warning") << 0;
        QTest::newRow("warn") << QStringLiteral("warn") << 0;
        QTest::newRow("INFO") << QStringLiteral("INFO") << 0;
        QTest::newRow("padded") << QStringLiteral(" info") << 0;
        QTest::newRow("longer") << QStringLiteral("informational!") << 0;
        QTest::newRow("prefix") << QStringLiteral("inf") << 0;
        QTest::newRow("number") << QStringLiteral("7") << 0;
        QTest::newRow("empty") << QString() << 0;
        QTest::newRow("cyrillic") << QStringLiteral("инфо") << 0;
        QTest::newRow("embedded nul") << QString::fromLatin1("info\0x", 6) << 0;
    }

    void priorityWords()
    {
        QFETCH(QString, word);
        QFETCH(int, priority);
        QCOMPARE(int(Event::priorityFromWord(word)), priority);
    }
};

int main(int argc, char **argv)
{
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(QStringLiteral(NIMB_TEST_DATA_DIR "/model/sysroot")));
    QCoreApplication app(argc, argv);
    TestEvent test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_event.moc"
