#include "AuxParRegistry.h"
#include "FilterPack.h"
#include "Language.h"
#include "LineParser.h"
#include "NimbTestMain.h"

#include <atomic>
#include <functional>
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
        QCOMPARE(ten->time, kTen);
        // check from, from, check to, to, passes
        const QVector<std::tuple<bool, QDateTime, bool, QDateTime, bool>> cases{
            {false, kTen.addSecs(1), false, kTen.addSecs(-1), true}, // bounds set but not enabled
            {true, kTen.addSecs(1), false, kTen.addSecs(-1), false},
            {true, kTen, false, kTen.addSecs(-1), true},
            {true, kTen.toUTC(), false, kTen.addSecs(-1), true}, // the same instant written in another zone
            {true, kTen.toUTC(), true, kTen.addSecs(-1), false},
            {true, kTen.toUTC(), true, kTen, true},
            {true, kTen.toUTC(), true, kTen.addMSecs(1), true},
            {true, kTen.addMSecs(1), true, kTen.addMSecs(1), false}};
        for (const auto &[checkFrom, from, checkTo, to, passes] : cases) {
            FilterPack pack;
            std::tie(pack.checkFrom, pack.from, pack.checkTo, pack.to) = std::tie(checkFrom, from, checkTo, to);
            QVERIFY2(pack.match(*ten) == passes,
                     qPrintable(from.toString(Qt::ISODateWithMs) + " " + to.toString(Qt::ISODateWithMs)));
        }
    }

    void idTypesAndPriorities()
    {
        const bool russian = Language::isRussian();
        const auto login = loginEvent();
        const auto unknown = loginEvent(QByteArray(), "Warning");
        QVERIFY(FilterPack().match(*login) && FilterPack().match(*unknown) && FilterPack().match(Event()));

        FilterPack byId;
        byId.checkId = true;
        byId.id = QStringLiteral("1001");
        QVERIFY(byId.match(*login));
        for (const char *other : {"100", "10010", " 1001", "", "1001 "}) {
            byId.id = QString::fromLatin1(other);
            QVERIFY2(!byId.match(*login), other);
        }
        byId.id = QStringLiteral("ABC");
        QVERIFY(!byId.match(*loginEvent(R"("message_id":"abc")")));

        FilterPack byType;
        byType.checkEventTypes = true;
        QVERIFY(!byType.match(*login)); // an empty list admits nothing
        byType.eventTypes = {QStringLiteral("login")};
        QVERIFY(!byType.match(*login)); // exact equality, no case folding
        byType.eventTypes = {QStringLiteral("Logout"), QStringLiteral("Login")};
        QCOMPARE(byType.match(*login), !russian);
        byType.eventTypes = {QStringLiteral("Вход")};
        QCOMPARE(byType.match(*login), russian);
        byType.eventTypes = {QStringLiteral("Вхо")};
        QVERIFY(!byType.match(*login));

        QCOMPARE(login->priority, Event::Warning);
        FilterPack byPriority;
        byPriority.checkPriorities = true;
        QVERIFY(!byPriority.match(*login));
        byPriority.priorities = {Event::Emergency, Event::Alert};
        QVERIFY(!byPriority.match(*login));
        byPriority.priorities = {Event::Debug, Event::Warning};
        QVERIFY(byPriority.match(*login) && !byPriority.match(*unknown));
        byPriority.priorities = {Event::Unknown};
        QVERIFY(byPriority.match(*unknown));
    }

    void typeAndNameTexts()
    {
        const bool russian = Language::isRussian();
        const auto login = loginEvent();
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
        // The empty text occurs everywhere.
        check(&FilterPack::checkTypeExcludes, &FilterPack::typeExcludes,
              {{"", Never}, {"log", Russian}, {"LOGIN", Russian}, {"вХОД", English}, {"audit", Always}});
        check(&FilterPack::checkNameContains, &FilterPack::nameContains,
              {{"", Always}, {"LOGGED", English}, {"ПОЛЬЗОВАТЕЛ", Russian}, {"logged out", Never}});
        check(&FilterPack::checkNameExcludes, &FilterPack::nameExcludes,
              {{"", Never}, {"user", Russian}, {"вход", English}, {"logout", Always}});
        // Empty texts in the event, too.
        FilterPack excludes;
        excludes.checkTypeExcludes = true;
        QVERIFY(!excludes.match(*loginEvent(R"("type_en":"","type_ru":"")")));
        FilterPack contains;
        contains.checkNameContains = true;
        QVERIFY(contains.match(*loginEvent(R"("name_en":"","name_ru":"")")));
    }

    void conditions()
    {
        const auto login = loginEvent(R"("uid":1000,"user":"root","result":"success","pid":null,"unixtime":1709276400)");
        // The journal gives doubles and the filter window ints. Parameters the line did not
        // carry do not hold the event back; times and types take no part in conditions.
        const QVector<std::tuple<const char *, QVariant, bool>> cases{
            {"uid", 1000, true},         {"uid", 1000.0, true},       {"uid", 1001, false},
            {"user", "root", true},      {"user", "ROOT", false},     {"user", "roo", false},
            {"result", true, true},      {"result", false, false},    {"source", "kernel", true},
            {"source", "sshd", false},   {"source", "Kernel", false}, {"pid", 5, true},
            {"gid", 5, true},            {"host", "alpha", true},     {"type_en", "Other", true},
            {"unixtime", 1, true},       {"time", QDateTime(), true}};
        for (const auto &entry : cases) {
            FilterPack pack;
            pack.auxConditions.insert(typeOf(std::get<0>(entry)), std::get<1>(entry));
            QVERIFY2(pack.match(*login) == std::get<2>(entry), qPrintable(std::get<1>(entry).toString()));
        }
        FilterPack several;
        several.auxConditions.insert(typeOf("uid"), 1000);
        several.auxConditions.insert(typeOf("user"), QStringLiteral("root"));
        QVERIFY(several.match(*login));
        several.auxConditions.insert(typeOf("result"), false);
        QVERIFY(!several.match(*login));
        // A condition on a kind no event has.
        FilterPack strange;
        strange.auxConditions.insert(999, 1);
        QVERIFY(strange.match(*login));

        const auto withSite = loginEvent(R"("site code":"A1")");
        FilterPack custom;
        custom.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A1"));
        QVERIFY(custom.match(*withSite) && custom.match(*login));
        custom.customConditions.insert(QStringLiteral("site code"), QStringLiteral("B2"));
        QVERIFY(!custom.match(*withSite) && custom.match(*login));
        custom.customConditions.insert(QStringLiteral("site code"), QStringLiteral("a1"));
        QVERIFY(!custom.match(*withSite));
        // Only the names of conditions count, not auxiliary kinds of the same name.
        FilterPack byKey;
        byKey.customConditions.insert(QStringLiteral("user"), QStringLiteral("nobody"));
        QVERIFY(byKey.match(*loginEvent(R"("user":"root")")));
    }

    void keywords()
    {
        // keyword, text, found as a whole word, found anywhere
        const QVector<std::tuple<QString, QString, bool, bool>> cases{
            {"root", "user root logged", true, true}, {"root", "root", true, true},
            {"root", "(root)", true, true},           {"root", "root:x:0:0", true, true},
            {"root", "/home/root", true, true},       {"root", "rootfs", false, true},
            {"root", "chroot", false, true},          {"root", "root2", false, true},
            {"root", "_root_", true, true},           {"root", "rootа", false, true}, // Cyrillic letters bind
            {"root", "жroot", false, true},           {"root", "Ёroot", true, true},  // but Yo separates
            {"root", "rootё", true, true},            {"корень", "(корень)", true, true},
            {"корень", "корень2", false, true},       {"корень", "покорень", false, true},
            {"корень", "ёкорень", true, true},        {"root", "user admin", false, false},
            {"root", "chroot root", true, true}};
        for (const auto &[keyword, text, whole, anywhere] : cases) {
            const auto carrier = commandEvent(text);
            QVERIFY(carrier);
            QVERIFY2(searchFor(keyword, true).searchMatch(*carrier) == whole, qPrintable(text));
            QVERIFY2(searchFor(keyword, true).match(*carrier) == whole, qPrintable(text));
            QVERIFY2(searchFor(keyword, false).searchMatch(*carrier) == anywhere, qPrintable(text));
            QVERIFY2(searchFor(keyword, false).match(*carrier) == anywhere, qPrintable(text));
        }

        // keyword, text, whole word, case-sensitive, found
        const QVector<std::tuple<QString, QString, bool, bool, bool>> literal{
            {".", "abc", false, false, false},      {".", "a.b", false, false, true},
            {"a.c", "abc", false, false, false},    {"*", "abc", false, false, false},
            {"*", "ls *.log", false, false, true},  {"a*", "abc", false, false, false},
            {"[x]", "a[x]b", false, false, true},   {"[x]", "axb", false, false, false},
            {"(root)", "user (root) in", true, false, true}, {"a\\b", "a\\b", false, false, true},
            {"^abc$", "abc", false, false, false},  {"+03:00", "x", false, false, true},
            {"ROOT", "sudo root", false, false, true}, {"ROOT", "sudo root", false, true, false},
            {"root", "sudo root", false, true, true},  {"ROOT", "sudo root", true, false, true},
            {"ROOT", "sudo root", true, true, false},  {"SUDO", "sudo root", true, false, true},
            {"пользователь", "Пользователь", true, false, true},
            {"пользователь", "Пользователь", true, true, false}};
        // Twice over on one thread: each pack must get its own expression.
        for (int round = 0; round < 2; ++round)
            for (const auto &[keyword, text, whole, caseSensitive, found] : literal)
                QVERIFY2(searchFor(keyword, whole, caseSensitive).match(*commandEvent(text)) == found,
                         qPrintable(keyword + QLatin1String(" in ") + text));
    }

    void searchedTexts()
    {
        const bool russian = Language::isRussian();
        QCOMPARE(loginEvent(QByteArray(), "info")->priority, Event::Info);
        QVERIFY(searchFor(QStringLiteral("T12:")).match(*loginEvent(QByteArray(), "info", "2024-03-01T12:30:00+03:00")));
        const QByteArray fixedTime = "\"time\":\"2024-03-01T10:00:00+03:00\",";
        // keyword, whole word, members of the body, priority, found. The priority is searched
        // under its long word; names and types in the system's language only; the source and
        // registered parameters as shown. Times but the event's own, the other language's
        // type and custom parameters are left out.
        const QVector<std::tuple<QString, bool, QByteArray, QByteArray, bool>> cases{
            {"T12:", false, "", "info", false},           {"1001", true, "", "info", true},
            {"informational", true, "", "info", true},     {"info", true, "", "info", false},
            {"info", false, "", "info", true},             {"informational", false, "", "notice", false},
            {"warning", true, "", "warning", true},        {"emergency", true, "", "emerg", true},
            {"warning", false, "", "Warning", false},      {"logged", false, "", "info", !russian},
            {"пользователя", false, "", "info", russian},  {"Login", false, "", "info", !russian},
            {"Вход", true, "", "info", russian},           {russian ? "Ядро" : "Kernel", false, "", "info", true},
            {"SIGKILL", false, R"("signal":9)", "info", true},
            {"success", false, R"("result":true)", "info", true},
            {"987654321", false, R"("pid":987654321)", "info", true},
            {"mystery: clue", false, R"("mystery":"clue")", "info", true},
            {"987654321", false, fixedTime + R"("start_time":987654321)", "info", false},
            {"987654321", false, fixedTime + R"("end_time":987654321)", "info", false},
            {"987654321", false, fixedTime + R"("unixtime":987654321)", "info", false},
            {"Zebra", false, russian ? R"("type_en":"Zebra")" : R"("type_ru":"Zebra")", "info", false},
            {"Zebra", false, R"("site code":"Zebra")", "info", false},
            {"Zebra", false, R"("command":"Zebra")", "info", true}};
        for (const auto &[keyword, whole, extra, priority, found] : cases)
            QVERIFY2(searchFor(keyword, whole).match(*loginEvent(extra, priority)) == found,
                     qPrintable(keyword + QLatin1Char(' ') + QString::fromUtf8(extra)));

        // The keyword test runs after the others; alone, it ignores them.
        const auto carrier = commandEvent(QStringLiteral("root"));
        FilterPack pack = searchFor(QStringLiteral("root"));
        QVERIFY(pack.match(*carrier));
        pack.checkId = true;
        pack.id = QStringLiteral("other");
        QVERIFY(!pack.match(*carrier));
        QVERIFY(pack.searchMatch(*carrier));
        pack.checkId = false;
        pack.checkSearch = false;
        pack.search = QStringLiteral("absent");
        QVERIFY(pack.match(*carrier));
    }

    void equality()
    {
        FilterPack a;
        a.eventTypes = {QStringLiteral("auth"), QStringLiteral("net")};
        a.priorities = {1, 5, 8};
        a.auxConditions = {{49, 1000}};
        a.customConditions = {{QStringLiteral("site code"), QStringLiteral("A1")}};
        auto equalAfter = [&a](const std::function<void(FilterPack &)> &change) {
            FilterPack b = a;
            change(b);
            return a == b && !(a != b);
        };
        QVERIFY(equalAfter([](FilterPack &b) { b.name = QStringLiteral("Saved"); }));
        for (bool FilterPack::*flag :
             {&FilterPack::checkFrom, &FilterPack::checkTo, &FilterPack::checkId, &FilterPack::checkEventTypes,
              &FilterPack::checkTypeExcludes, &FilterPack::checkNameContains, &FilterPack::checkNameExcludes,
              &FilterPack::checkPriorities, &FilterPack::checkSearch, &FilterPack::caseSensitive, &FilterPack::wholeWord})
            QVERIFY(!equalAfter([flag](FilterPack &b) { b.*flag = true; }));
        for (QString FilterPack::*text : {&FilterPack::id, &FilterPack::typeExcludes, &FilterPack::nameContains,
                                          &FilterPack::nameExcludes, &FilterPack::search})
            QVERIFY(!equalAfter([text](FilterPack &b) { b.*text = QStringLiteral("x"); }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.from = kTen; }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.to = kTen; }));
        // Lists compare as sets of the same size, condition maps by keys and values.
        QVERIFY(equalAfter([](FilterPack &b) {
            b.eventTypes = {QStringLiteral("net"), QStringLiteral("auth")};
            b.priorities = {8, 1, 5};
        }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.priorities = {8, 1}; }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.priorities = {8, 1, 4}; }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.eventTypes.append(QStringLiteral("custom-events")); }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.auxConditions.clear(); }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.auxConditions[49] = 1001; }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.auxConditions = {{53, 1000}}; }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.customConditions.clear(); }));
        QVERIFY(!equalAfter([](FilterPack &b) { b.customConditions[QStringLiteral("site code")] = QStringLiteral("A2"); }));
    }

    void concurrentMatchingAgreesWithSequential()
    {
        std::vector<std::unique_ptr<Event>> events;
        static const char *const priorities[] = {"emerg", "alert", "crit", "err", "warning", "notice", "info", "debug"};
        static const char *const commands[] = {"root", "chroot /srv", "(root)", "rootfs", "ls *.log", "Ёroot",
                                               "sudo -u admin", "корень", "ROOT login"};
        for (int i = 0; i < 240; ++i) {
            const QByteArray extra = "\"uid\":" + QByteArray::number(i % 3 ? 1000 : 0) + ",\"command\":\""
                                     + QByteArray(commands[i % 9]) + "\",\"site code\":\"" + (i % 4 ? "A1" : "B2") + '"';
            const QDateTime time(QDate(2024, 3, 1), QTime(i % 24, i % 60, 0), Qt::OffsetFromUTC, 3 * 3600);
            events.push_back(loginEvent(extra, priorities[i % 8], time.toString(Qt::ISODate).toLatin1()));
        }
        std::vector<FilterPack> packs{searchFor(QStringLiteral("root"), true),
                                      searchFor(QStringLiteral("ROOT"), false, true),
                                      searchFor(QStringLiteral("root")),
                                      searchFor(QStringLiteral("*")),
                                      searchFor(QStringLiteral("T1")),
                                      searchFor(QStringLiteral("informational"), true),
                                      searchFor(QStringLiteral("корень"), true, true)};
        FilterPack combined = searchFor(QStringLiteral("root"), true);
        combined.checkPriorities = combined.checkFrom = true;
        combined.priorities = {Event::Warning, Event::Error, Event::Info};
        combined.auxConditions.insert(typeOf("uid"), 1000);
        combined.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A1"));
        combined.from = QDateTime(QDate(2024, 3, 1), QTime(6, 0), Qt::OffsetFromUTC, 3 * 3600);
        packs.push_back(combined);
        FilterPack names;
        names.checkNameContains = names.checkTypeExcludes = true;
        names.nameContains = QStringLiteral("user");
        names.typeExcludes = QStringLiteral("audit");
        packs.push_back(names);

        std::vector<std::vector<char>> expected(packs.size());
        for (size_t p = 0; p < packs.size(); ++p) {
            for (const auto &candidate : events)
                expected[p].push_back(packs[p].match(*candidate));
            // Every pack but the name pack splits the events, so a mix-up shows.
            const auto passed = std::count(expected[p].begin(), expected[p].end(), 1);
            QVERIFY2(p + 1 == packs.size() || (passed > 0 && passed < int(events.size())), qPrintable(QString::number(p)));
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
