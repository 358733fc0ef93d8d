// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"
#include "Event.h"
#include "Language.h"
#include "LineParser.h"
#include "NimbTestMain.h"

namespace
{
using Rows = QVector<Event::Row>;

std::unique_ptr<Event> parse(const char *line)
{
    return LineParser::parseLine(QByteArray(line));
}

// An event that holds only the parameter object it is given, as code other than the
// parser may build one.
std::unique_ptr<Event> sparseEvent(int type, const QVariant &value)
{
    auto event = std::make_unique<Event>();
    auto object = AuxParRegistry::instance().create(type);
    object->setValue(value);
    event->parameters.insert(std::move(object));
    return event;
}

QString inLanguage(const char *english, const char *russian)
{
    return QString::fromUtf8(Language::isRussian() ? russian : english);
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
    void aFullEvent()
    {
        const auto event = parse(kFullLine);
        QVERIFY(event);
        const Rows expected = {
            {"Event name", inLanguage("User logged in", "Вход пользователя")}, {"Message ID", "1001"},
            {"Date and time", "2024-03-01T10:00:05+03:00"}, {"Event type", inLanguage("Login", "Вход")},
            {"Priority", "notice"},
            // Parameters that carry a value, in type order, without time and the two types.
            {"Host", "alpha"}, {"Process ID", "77"}, {"Result", "success"}, {"Source", inLanguage("Kernel", "Ядро")},
            {"User ID", "1000"}, {"Undefined information", "foo: bar"}, {"UNIX time label", "1709276405"},
            {"User", "root"},
            // Custom parameters with a value; "shift" is empty.
            {"site code", "A1"}};
        QCOMPARE(event->parameterList(), expected);
        const QStringList fields = event->copyLine().split(QLatin1Char('\t'));
        QVERIFY(fields.size() > 5);
        QCOMPARE(fields.mid(0, 5), QStringList({"2024-03-01T10:00:05+03:00", "1001", inLanguage("Login", "Вход"), "notice",
                                                inLanguage("User logged in", "Вход пользователя")}));
        const QString parameters = fields.mid(5).join(QLatin1Char('\t'));
        QVERIFY(parameters.contains(QLatin1String("root")) && parameters.contains(QLatin1String("A1")));
        QVERIFY(!parameters.contains(QLatin1String("Login")));

        // Without a display word the priority and its tab are left out.
        const auto unknownPriority = parse(R"({"PRIORITY":"Warning","ISODATE":"2024-03-01T10:00:00",)"
                                           R"("MSG":{"kernel":{"message_id":"9","name_en":"N","name_ru":"Н","type_en":"T","type_ru":"Т"}}})");
        QVERIFY(unknownPriority);
        const QString line = unknownPriority->copyLine();
        QVERIFY2(line.startsWith(inLanguage("2024-03-01T10:00:00\t9\tT\tN\t", "2024-03-01T10:00:00\t9\tТ\tН\t")),
                 qPrintable(line));
    }

    void rowsOfAnEventWithoutParameterValues()
    {
        // A nameless source leaves even the source parameter empty.
        const auto warning = parse(R"({"PRIORITY":"Warning","ISODATE":"2024-03-01T10:00:00","MSG":{"":{"message_id":"7"}}})");
        QVERIFY(warning);
        Rows rows = {{"Event name", QString()}, {"Message ID", "7"}, {"Date and time", "2024-03-01T10:00:00"},
                     {"Event type", QString()}};
        QCOMPARE(warning->parameterList(), rows);
        const auto debug = parse(R"({"PRIORITY":"debug","ISODATE":"2024-03-01T10:00:00","MSG":{"":{"message_id":"7"}}})");
        QVERIFY(debug);
        rows.append({QStringLiteral("Priority"), QStringLiteral("debug")});
        QCOMPARE(debug->parameterList(), rows);
    }

    void typeAndNameFollowTheSystemLanguage()
    {
        // No fallback between the languages for a parsed event: its empty type_ru object counts.
        const auto englishOnly = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"name_en":"Logout","type_en":"Login"}}})");
        QVERIFY(englishOnly);
        QCOMPARE(englishOnly->typeText(), inLanguage("Login", ""));
        QCOMPARE(englishOnly->eventName(), inLanguage("Logout", ""));
        const auto russianOnly = parse(R"({"ISODATE":"2024-03-01T10:00:00","MSG":{"kernel":{"name_ru":"Выход","type_ru":"Вход"}}})");
        QVERIFY(russianOnly);
        QCOMPARE(russianOnly->typeText(), inLanguage("", "Вход"));
        QCOMPARE(russianOnly->eventName(), inLanguage("", "Выход"));

        // Without a type_ru object at all, the English type serves.
        QCOMPARE(sparseEvent(AuxParId::TypeEn, QStringLiteral("Login"))->typeText(), QStringLiteral("Login"));
        QCOMPARE(sparseEvent(AuxParId::TypeRu, QStringLiteral("Вход"))->typeText(), inLanguage("", "Вход"));
    }

    void priorityWords()
    {
        // No case folding, no other short forms, no padding.
        const QVector<QPair<QString, int>> cases{
            {"emergency", 1}, {"emerg", 1},   {"alert", 2},   {"critical", 3},      {"crit", 3},  {"error", 4},
            {"err", 4},       {"warning", 5}, {"notice", 6},  {"info", 7},          {"informational", 7},
            {"debug", 8},     {"Warning", 0}, {"warn", 0},    {"INFO", 0},          {" info", 0}, {"informational!", 0},
            {"inf", 0},       {"7", 0},       {QString(), 0}, {"инфо", 0},          {QString::fromLatin1("info\0x", 6), 0}};
        for (const auto &[word, priority] : cases)
            QVERIFY2(int(Event::priorityFromWord(word)) == priority, qPrintable(word));
    }
};

NIMB_TEST_MAIN(TestEvent)
#include "test_event.moc"
