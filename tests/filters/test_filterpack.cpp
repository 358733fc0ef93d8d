// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"
#include "FilterPack.h"
#include "Language.h"
#include "LineParser.h"
#include "NimbTestMain.h"

#include <atomic>
#include <thread>
#include <vector>

namespace
{
const QDateTime kTen(QDate(2024, 3, 1), QTime(10, 0, 0), Qt::OffsetFromUTC, 3 * 3600);

// A login event of the kernel at ten o'clock; `extra` adds members to the message body.
std::unique_ptr<Event> loginEvent(const QByteArray &extra = QByteArray(), const QByteArray &priority = "warning",
                                  const QByteArray &time = "2024-03-01T10:00:00+03:00")
{
    QByteArray body = R"("message_id":"1001","name_en":"User logged in","name_ru":"Вход пользователя",)"
                      R"("type_en":"Login","type_ru":"Вход")";
    if (!extra.isEmpty())
        body += ',' + extra;
    const QByteArray line = R"({"PRIORITY":")" + priority + R"(","ISODATE":")" + time + R"(","MSG":{"kernel":{)"
                            + body + "}}}";
    auto parsed = LineParser::parseLine(line);
    if (!parsed)
        qFatal("fixture line rejected: %s", line.constData());
    return parsed;
}

// An event that carries `text` in its "command" parameter and nothing else the
// keyword tests look for.
std::unique_ptr<Event> commandEvent(const QString &text)
{
    const QJsonObject body{{"command", text}, {"message_id", "7"}, {"name_en", "Event"}, {"name_ru", "Событие"}};
    const QJsonObject root{{"ISODATE", "2024-03-01T10:00:00+03:00"}, {"MSG", QJsonObject{{"kernel", body}}}};
    return LineParser::parseLine(QJsonDocument(root).toJson(QJsonDocument::Compact));
}

FilterPack searchFor(const QString &keyword, bool wholeWord = false, bool caseSensitive = false)
{
    FilterPack pack;
    pack.checkSearch = true;
    pack.search = keyword;
    pack.wholeWord = wholeWord;
    pack.caseSensitive = caseSensitive;
    return pack;
}

int typeOf(const char *key)
{
    return AuxParRegistry::instance().typeOf(QString::fromLatin1(key));
}
}

class TestFilterPack : public QObject
{
    Q_OBJECT

private slots:
    void timeBoundsAreInclusive()
    {
        const auto ten = loginEvent();
        // check from, from, check to, to, passes
        const QVector<std::tuple<bool, QDateTime, bool, QDateTime, bool>> cases{
            {false, kTen.addSecs(1), false, kTen.addSecs(-1), true}, // bounds set but not enabled
            {true, kTen.toUTC(), false, kTen.addSecs(-1), true}, // the same instant written in another zone
            {true, kTen.addSecs(1), false, kTen.addSecs(-1), false},
            {true, kTen.toUTC(), true, kTen.addSecs(-1), false},
            {true, kTen.toUTC(), true, kTen, true},
            {true, kTen.addMSecs(1), true, kTen.addMSecs(1), false}};
        for (const auto &[checkFrom, from, checkTo, to, passes] : cases) {
            FilterPack pack;
            std::tie(pack.checkFrom, pack.from, pack.checkTo, pack.to) = std::tie(checkFrom, from, checkTo, to);
            QVERIFY2(pack.match(*ten) == passes, qPrintable(from.toString(Qt::ISODateWithMs)));
        }
    }

    void textsTypesAndPriorities()
    {
        const bool russian = Language::isRussian();
        const auto login = loginEvent();
        const auto unknown = loginEvent(QByteArray(), "Warning");
        QVERIFY(FilterPack().match(*login) && FilterPack().match(*unknown) && FilterPack().match(Event()));
        enum Passes { Never, Always, English, Russian };
        auto check = [&](bool FilterPack::*flag, QString FilterPack::*text,
                         std::initializer_list<std::pair<const char *, Passes>> cases) {
            for (const auto &[value, passes] : cases) {
                FilterPack pack;
                pack.*flag = true;
                pack.*text = QString::fromUtf8(value);
                QVERIFY2(pack.match(*login) == (passes == Always || passes == (russian ? Russian : English)), value);
            }
        };
        // The identifier is compared whole; the other texts are found anywhere in either case,
        // and the empty text occurs everywhere.
        check(&FilterPack::checkId, &FilterPack::id, {{"1001", Always}, {"100", Never}, {" 1001", Never}, {"", Never}});
        check(&FilterPack::checkTypeExcludes, &FilterPack::typeExcludes,
              {{"", Never}, {"log", Russian}, {"вХОД", English}, {"audit", Always}});
        check(&FilterPack::checkNameContains, &FilterPack::nameContains,
              {{"", Always}, {"LOGGED", English}, {"ПОЛЬЗОВАТЕЛ", Russian}, {"logged out", Never}});
        check(&FilterPack::checkNameExcludes, &FilterPack::nameExcludes,
              {{"", Never}, {"user", Russian}, {"вход", English}, {"logout", Always}});

        // Types are whole texts in the system's language; an empty list admits nothing.
        FilterPack byType;
        byType.checkEventTypes = true;
        const QVector<QPair<QVector<QString>, bool>> typeLists{
            {{}, false}, {{"login"}, false}, {{"Logout", "Login"}, !russian}, {{"Вход"}, russian}, {{"Вхо"}, false}};
        for (const auto &[types, passes] : typeLists) {
            byType.eventTypes = types;
            QVERIFY2(byType.match(*login) == passes, qPrintable(types.value(0)));
        }

        FilterPack byPriority;
        byPriority.checkPriorities = true;
        byPriority.priorities = {Event::Debug, Event::Warning};
        QVERIFY(byPriority.match(*login) && !byPriority.match(*unknown));
        byPriority.priorities = {Event::Unknown};
        QVERIFY(byPriority.match(*unknown));
    }

    void conditions()
    {
        const auto login = loginEvent(R"("uid":1000,"user":"root","result":"success","pid":null,"unixtime":1709276400)");
        // The journal gives doubles and the filter window ints. Parameters the line did not
        // carry do not hold the event back; times and types take no part in conditions.
        const QVector<std::tuple<const char *, QVariant, bool>> cases{
            {"uid", 1000, true},        {"uid", 1000.0, true},     {"uid", 1001, false},
            {"user", "ROOT", false},    {"user", "roo", false},    {"result", false, false},
            {"source", "kernel", true}, {"source", "Kernel", false}, {"pid", 5, true},
            {"gid", 5, true},           {"type_en", "Other", true}, {"unixtime", 1, true}};
        for (const auto &entry : cases) {
            FilterPack pack;
            pack.auxConditions.insert(typeOf(std::get<0>(entry)), std::get<1>(entry));
            QVERIFY2(pack.match(*login) == std::get<2>(entry), qPrintable(std::get<1>(entry).toString()));
        }
        // Every condition must hold, not just one of them.
        FilterPack several;
        several.auxConditions = {{typeOf("uid"), 1000}, {typeOf("user"), "root"}, {typeOf("result"), false}};
        QVERIFY(!several.match(*login));

        // Custom values compare exactly and, when the event lacks them, do not apply; a custom
        // condition never looks at an auxiliary kind of the same name.
        const auto withSite = loginEvent(R"("site code":"A1")");
        FilterPack custom;
        custom.customConditions = {{QStringLiteral("site code"), QStringLiteral("A1")}, {QStringLiteral("user"), "x"}};
        QVERIFY(custom.match(*withSite) && custom.match(*login));
        custom.customConditions.insert(QStringLiteral("site code"), QStringLiteral("a1"));
        QVERIFY(!custom.match(*withSite) && custom.match(*login));
    }

    void keywords()
    {
        // keyword, text, found as a whole word, found anywhere
        const QVector<std::tuple<QString, QString, bool, bool>> cases{
            {"root", "root", true, true},             {"root", "(root)", true, true},
            {"root", "chroot", false, true},          {"root", "root2", false, true},
            {"root", "_root_", true, true},           {"root", "rootа", false, true}, // Cyrillic letters bind
            {"root", "жroot", false, true},           {"root", "Ёroot", true, true},  // but Yo separates
            {"root", "rootё", true, true},            {"корень", "покорень", false, true},
            {"корень", "ёкорень", true, true},        {"root", "user admin", false, false}};
        for (const auto &[keyword, text, whole, anywhere] : cases) {
            const auto carrier = commandEvent(text);
            QVERIFY2(searchFor(keyword, true).match(*carrier) == whole, qPrintable(text));
            QVERIFY2(searchFor(keyword, false).match(*carrier) == anywhere, qPrintable(text));
        }

        // keyword, text, whole word, case-sensitive, found. Consecutive rows change the
        // expression, which no pack may inherit from the one before.
        const QVector<std::tuple<QString, QString, bool, bool, bool>> literal{
            {".", "abc", false, false, false},      {"*", "ls *.log", false, false, true},
            {"[x]", "a[x]b", false, false, true},   {"[x]", "axb", false, false, false},
            {"(root)", "user (root) in", true, false, true}, {"a\\b", "a\\b", false, false, true},
            {"^abc$", "abc", false, false, false},  {"+03:00", "x", false, false, true},
            {"ROOT", "sudo root", true, false, true},  {"ROOT", "sudo root", false, true, false},
            {"пользователь", "Пользователь", true, false, true}};
        for (const auto &[keyword, text, whole, caseSensitive, found] : literal)
            QVERIFY2(searchFor(keyword, whole, caseSensitive).match(*commandEvent(text)) == found,
                     qPrintable(keyword + QLatin1String(" in ") + text));
    }

    void searchedTexts()
    {
        const bool russian = Language::isRussian();
        // keyword, whole word, members of the body, priority, found. The priority is searched
        // under its long word; names and types in the system's language only; the source and
        // registered parameters as shown. Times but the event's own, the other language's
        // type and custom parameters are left out.
        const QVector<std::tuple<QString, bool, QByteArray, QByteArray, bool>> cases{
            {"T10:", false, "", "info", true},             {"1001", true, "", "info", true},
            {"informational", true, "", "info", true},     {"info", true, "", "info", false},
            {"warning", false, "", "Warning", false},      {"logged", false, "", "info", !russian},
            {"Вход", true, "", "info", russian},           {russian ? "Ядро" : "Kernel", false, "", "info", true},
            {"SIGKILL", false, R"("signal":9)", "info", true},
            {"mystery: clue", false, R"("mystery":"clue")", "info", true},
            {"987654321", false, R"("time":"2024-03-01T10:00:00+03:00","unixtime":987654321)", "info", false},
            {"Zebra", false, russian ? R"("type_en":"Zebra")" : R"("type_ru":"Zebra")", "info", false},
            {"Zebra", false, R"("site code":"Zebra")", "info", false}};
        for (const auto &[keyword, whole, extra, priority, found] : cases)
            QVERIFY2(searchFor(keyword, whole).match(*loginEvent(extra, priority)) == found,
                     qPrintable(keyword + QLatin1Char(' ') + QString::fromUtf8(extra)));
        FilterPack disabled = searchFor(QStringLiteral("absent"));
        disabled.checkSearch = false;
        QVERIFY(disabled.match(*loginEvent()));
    }

    void equalityIgnoresTheNameAndListOrder()
    {
        FilterPack a;
        a.priorities = {1, 5, 8};
        FilterPack b = a;
        b.name = QStringLiteral("Saved");
        b.priorities = {8, 1, 5};
        QVERIFY(a == b && !(a != b));
        b.priorities = {8, 1, 1};
        QVERIFY(a != b);
    }

    void concurrentMatchingAgreesWithSequential()
    {
        std::vector<std::unique_ptr<Event>> events;
        static const char *const commands[] = {"root", "chroot /srv", "(root)", "rootfs", "ls *.log", "Ёroot",
                                               "sudo -u admin", "корень", "ROOT login"};
        for (int i = 0; i < 240; ++i)
            events.push_back(commandEvent(QStringLiteral("%1 %2").arg(QString::fromUtf8(commands[i % 9])).arg(i % 5)));
        // Packs differing in pattern and case sensitivity, so that each thread's compiled
        // keyword is replaced all the time.
        const std::vector<FilterPack> packs{searchFor(QStringLiteral("root"), true),
                                            searchFor(QStringLiteral("ROOT"), false, true),
                                            searchFor(QStringLiteral("*")), searchFor(QStringLiteral("3"), true),
                                            searchFor(QStringLiteral("корень"), true, true)};
        std::vector<std::vector<char>> expected(packs.size());
        for (size_t p = 0; p < packs.size(); ++p) {
            for (const auto &candidate : events)
                expected[p].push_back(packs[p].match(*candidate));
            // Every pack splits the events, so a mix-up shows.
            const auto passed = std::count(expected[p].begin(), expected[p].end(), 1);
            QVERIFY2(passed > 0 && passed < int(events.size()), qPrintable(QString::number(p)));
        }
        std::atomic<int> mismatches{0};
        std::vector<std::thread> threads;
        for (size_t t = 0; t < 4; ++t) {
            threads.emplace_back([&, t] {
                for (size_t round = 0; round < 6; ++round)
                    for (size_t e = 0; e < events.size(); ++e)
                        // Each thread walks the packs in its own order, switching pack every event.
                        for (size_t step = 0; step < packs.size(); ++step) {
                            const size_t p = (step * (t + 1) + e + round) % packs.size();
                            if (packs[p].match(*events[e]) != bool(expected[p][e]))
                                ++mismatches;
                        }
            });
        }
        for (auto &thread : threads)
            thread.join();
        QCOMPARE(mismatches.load(), 0);
    }
};

NIMB_TEST_MAIN(TestFilterPack)
#include "test_filterpack.moc"
