#include "AuxParRegistry.h"
#include "FilterPack.h"
#include "Language.h"
#include "LineParser.h"

#include <QtTest>

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
    QJsonObject body{{QStringLiteral("command"), text}, {QStringLiteral("message_id"), QStringLiteral("7")},
                     {QStringLiteral("name_en"), QStringLiteral("Event")},
                     {QStringLiteral("name_ru"), QStringLiteral("Событие")}};
    QJsonObject root{{QStringLiteral("ISODATE"), QStringLiteral("2024-03-01T10:00:00+03:00")},
                     {QStringLiteral("MSG"), QJsonObject{{QStringLiteral("kernel"), body}}}};
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
    void aDefaultPackPassesEverything()
    {
        const FilterPack pack;
        QVERIFY(pack.match(*loginEvent()));
        QVERIFY(pack.match(*loginEvent(QByteArray(), "Warning")));
        QVERIFY(pack.match(Event()));
    }

    void timeBoundsAreInclusive()
    {
        const auto ten = loginEvent();
        QCOMPARE(ten->time, kTen);
        FilterPack pack;
        pack.from = kTen.addSecs(1);
        pack.to = kTen.addSecs(-1);
        QVERIFY(pack.match(*ten));   // bounds set but not enabled

        pack.checkFrom = true;
        QVERIFY(!pack.match(*ten));
        pack.from = kTen;
        QVERIFY(pack.match(*ten));
        // The same instant written in another zone.
        pack.from = kTen.toUTC();
        QVERIFY(pack.match(*ten));

        pack.checkTo = true;
        QVERIFY(!pack.match(*ten));
        pack.to = kTen;
        QVERIFY(pack.match(*ten));
        pack.to = kTen.addMSecs(1);
        QVERIFY(pack.match(*ten));
        pack.from = kTen.addMSecs(1);
        QVERIFY(!pack.match(*ten));
    }

    void messageIdIsExact()
    {
        const auto ten = loginEvent();
        FilterPack pack;
        pack.checkId = true;
        pack.id = QStringLiteral("1001");
        QVERIFY(pack.match(*ten));
        for (const char *other : {"100", "10010", " 1001", "", "1001 "}) {
            pack.id = QString::fromLatin1(other);
            QVERIFY2(!pack.match(*ten), other);
        }
        const auto lettered = loginEvent(R"("message_id":"abc")");
        pack.id = QStringLiteral("ABC");
        QVERIFY(!pack.match(*lettered));
    }

    void eventTypes()
    {
        const bool russian = Language::isRussian();
        const auto login = loginEvent();
        FilterPack pack;
        pack.checkEventTypes = true;
        QVERIFY(!pack.match(*login));   // an empty list admits nothing

        pack.eventTypes = {QStringLiteral("login")};
        QVERIFY(!pack.match(*login));   // exact equality, no case folding
        pack.eventTypes = {QStringLiteral("Logout"), QStringLiteral("Login")};
        QCOMPARE(pack.match(*login), !russian);
        pack.eventTypes = {QStringLiteral("Вход")};
        QCOMPARE(pack.match(*login), russian);
        pack.eventTypes = {QStringLiteral("Вхо")};
        QVERIFY(!pack.match(*login));
    }

    void typeExclusions()
    {
        const bool russian = Language::isRussian();
        const auto login = loginEvent();
        FilterPack pack;
        pack.checkTypeExcludes = true;
        // The empty text occurs everywhere.
        QVERIFY(!pack.match(*login));
        QVERIFY(!pack.match(*loginEvent(R"("type_en":"","type_ru":"")")));
        pack.typeExcludes = QStringLiteral("log");
        QCOMPARE(pack.match(*login), russian);
        pack.typeExcludes = QStringLiteral("LOGIN");
        QCOMPARE(pack.match(*login), russian);
        pack.typeExcludes = QStringLiteral("вХОД");
        QCOMPARE(pack.match(*login), !russian);
        pack.typeExcludes = QStringLiteral("audit");
        QVERIFY(pack.match(*login));
    }

    void eventNames()
    {
        const bool russian = Language::isRussian();
        const auto login = loginEvent();
        FilterPack contains;
        contains.checkNameContains = true;
        QVERIFY(contains.match(*login));   // the empty text is in every name
        QVERIFY(contains.match(*loginEvent(R"("name_en":"","name_ru":"")")));
        contains.nameContains = QStringLiteral("LOGGED");
        QCOMPARE(contains.match(*login), !russian);
        contains.nameContains = QStringLiteral("ПОЛЬЗОВАТЕЛ");
        QCOMPARE(contains.match(*login), russian);
        contains.nameContains = QStringLiteral("logged out");
        QVERIFY(!contains.match(*login));

        FilterPack excludes;
        excludes.checkNameExcludes = true;
        QVERIFY(!excludes.match(*login));
        excludes.nameExcludes = QStringLiteral("user");
        QCOMPARE(excludes.match(*login), russian);
        excludes.nameExcludes = QStringLiteral("вход");
        QCOMPARE(excludes.match(*login), !russian);
        excludes.nameExcludes = QStringLiteral("logout");
        QVERIFY(excludes.match(*login));
    }

    void priorities()
    {
        const auto warning = loginEvent();
        QCOMPARE(warning->priority, Event::Warning);
        FilterPack pack;
        pack.checkPriorities = true;
        QVERIFY(!pack.match(*warning));
        pack.priorities = {Event::Emergency, Event::Alert};
        QVERIFY(!pack.match(*warning));
        pack.priorities = {Event::Debug, Event::Warning};
        QVERIFY(pack.match(*warning));
        const auto unknown = loginEvent(QByteArray(), "Warning");
        QVERIFY(!pack.match(*unknown));
        pack.priorities = {Event::Unknown};
        QVERIFY(pack.match(*unknown));
    }

    void auxiliaryConditions()
    {
        const auto login = loginEvent(R"("uid":1000,"user":"root","result":"success","pid":null,"unixtime":1709276400)");
        auto passes = [&login](int type, const QVariant &value) {
            FilterPack pack;
            pack.auxConditions.insert(type, value);
            return pack.match(*login);
        };
        // The journal gives doubles; the filter window gives ints.
        QVERIFY(passes(typeOf("uid"), 1000));
        QVERIFY(passes(typeOf("uid"), 1000.0));
        QVERIFY(!passes(typeOf("uid"), 1001));
        QVERIFY(passes(typeOf("user"), QStringLiteral("root")));
        QVERIFY(!passes(typeOf("user"), QStringLiteral("ROOT")));
        QVERIFY(!passes(typeOf("user"), QStringLiteral("roo")));
        QVERIFY(passes(typeOf("result"), true));
        QVERIFY(!passes(typeOf("result"), false));
        QVERIFY(passes(typeOf("source"), QStringLiteral("kernel")));
        QVERIFY(!passes(typeOf("source"), QStringLiteral("sshd")));
        QVERIFY(!passes(typeOf("source"), QStringLiteral("Kernel")));

        // Parameters the line did not carry do not hold the event back.
        QVERIFY(passes(typeOf("pid"), 5));
        QVERIFY(passes(typeOf("gid"), 5));
        QVERIFY(passes(typeOf("host"), QStringLiteral("alpha")));
        // Times and types take no part in conditions.
        QVERIFY(passes(typeOf("type_en"), QStringLiteral("Other")));
        QVERIFY(passes(typeOf("unixtime"), 1));
        QVERIFY(passes(typeOf("time"), QDateTime()));

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
    }

    void customConditions()
    {
        const auto withSite = loginEvent(R"("site code":"A1")");
        const auto without = loginEvent();
        FilterPack pack;
        pack.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A1"));
        QVERIFY(pack.match(*withSite));
        QVERIFY(pack.match(*without));
        pack.customConditions.insert(QStringLiteral("site code"), QStringLiteral("B2"));
        QVERIFY(!pack.match(*withSite));
        QVERIFY(pack.match(*without));
        pack.customConditions.insert(QStringLiteral("site code"), QStringLiteral("a1"));
        QVERIFY(!pack.match(*withSite));
        // Only the names of conditions count, not auxiliary kinds of the same name.
        FilterPack byKey;
        byKey.customConditions.insert(QStringLiteral("user"), QStringLiteral("nobody"));
        QVERIFY(byKey.match(*loginEvent(R"("user":"root")")));
    }

    void wholeWords_data()
    {
        QTest::addColumn<QString>("keyword");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("whole");
        QTest::addColumn<bool>("anywhere");
        auto row = [](const char *name, const QString &keyword, const QString &text, bool whole, bool anywhere) {
            QTest::newRow(name) << keyword << text << whole << anywhere;
        };
        row("in a sentence", QStringLiteral("root"), QStringLiteral("user root logged"), true, true);
        row("alone", QStringLiteral("root"), QStringLiteral("root"), true, true);
        row("in brackets", QStringLiteral("root"), QStringLiteral("(root)"), true, true);
        row("at the start", QStringLiteral("root"), QStringLiteral("root:x:0:0"), true, true);
        row("at the end", QStringLiteral("root"), QStringLiteral("/home/root"), true, true);
        row("prefix", QStringLiteral("root"), QStringLiteral("rootfs"), false, true);
        row("suffix", QStringLiteral("root"), QStringLiteral("chroot"), false, true);
        row("digits bind", QStringLiteral("root"), QStringLiteral("root2"), false, true);
        row("underscore separates", QStringLiteral("root"), QStringLiteral("_root_"), true, true);
        row("cyrillic letter binds", QStringLiteral("root"), QStringLiteral("rootа"), false, true);
        row("cyrillic letter before", QStringLiteral("root"), QStringLiteral("жroot"), false, true);
        row("Yo separates", QStringLiteral("root"), QStringLiteral("Ёroot"), true, true);
        row("yo separates", QStringLiteral("root"), QStringLiteral("rootё"), true, true);
        row("cyrillic keyword", QStringLiteral("корень"), QStringLiteral("(корень)"), true, true);
        row("cyrillic keyword bound", QStringLiteral("корень"), QStringLiteral("корень2"), false, true);
        row("cyrillic keyword in word", QStringLiteral("корень"), QStringLiteral("покорень"), false, true);
        row("cyrillic keyword by Yo", QStringLiteral("корень"), QStringLiteral("ёкорень"), true, true);
        row("absent", QStringLiteral("root"), QStringLiteral("user admin"), false, false);
        row("second occurrence whole", QStringLiteral("root"), QStringLiteral("chroot root"), true, true);
    }

    void wholeWords()
    {
        QFETCH(QString, keyword);
        QFETCH(QString, text);
        QFETCH(bool, whole);
        QFETCH(bool, anywhere);
        const auto carrier = commandEvent(text);
        QVERIFY(carrier);
        QCOMPARE(searchFor(keyword, true).searchMatch(*carrier), whole);
        QCOMPARE(searchFor(keyword, true).match(*carrier), whole);
        QCOMPARE(searchFor(keyword, false).searchMatch(*carrier), anywhere);
        QCOMPARE(searchFor(keyword, false).match(*carrier), anywhere);
    }

    void keywordsAreLiteral()
    {
        QVERIFY(!searchFor(QStringLiteral(".")).match(*commandEvent(QStringLiteral("abc"))));
        QVERIFY(searchFor(QStringLiteral(".")).match(*commandEvent(QStringLiteral("a.b"))));
        QVERIFY(!searchFor(QStringLiteral("a.c")).match(*commandEvent(QStringLiteral("abc"))));
        QVERIFY(!searchFor(QStringLiteral("*")).match(*commandEvent(QStringLiteral("abc"))));
        QVERIFY(searchFor(QStringLiteral("*")).match(*commandEvent(QStringLiteral("ls *.log"))));
        QVERIFY(!searchFor(QStringLiteral("a*")).match(*commandEvent(QStringLiteral("abc"))));
        QVERIFY(searchFor(QStringLiteral("[x]")).match(*commandEvent(QStringLiteral("a[x]b"))));
        QVERIFY(!searchFor(QStringLiteral("[x]")).match(*commandEvent(QStringLiteral("axb"))));
        QVERIFY(searchFor(QStringLiteral("(root)"), true).match(*commandEvent(QStringLiteral("user (root) in"))));
        QVERIFY(searchFor(QStringLiteral("a\\b")).match(*commandEvent(QStringLiteral("a\\b"))));
        QVERIFY(!searchFor(QStringLiteral("^abc$")).match(*commandEvent(QStringLiteral("abc"))));
        QVERIFY(searchFor(QStringLiteral("+03:00")).match(*commandEvent(QStringLiteral("x"))));
    }

    void caseSensitivity()
    {
        const auto carrier = commandEvent(QStringLiteral("sudo root"));
        // Alternate on one thread: each pack must get its own expression.
        for (int round = 0; round < 2; ++round) {
            QVERIFY(searchFor(QStringLiteral("ROOT")).match(*carrier));
            QVERIFY(!searchFor(QStringLiteral("ROOT"), false, true).match(*carrier));
            QVERIFY(searchFor(QStringLiteral("root"), false, true).match(*carrier));
            QVERIFY(searchFor(QStringLiteral("ROOT"), true).match(*carrier));
            QVERIFY(!searchFor(QStringLiteral("ROOT"), true, true).match(*carrier));
            QVERIFY(searchFor(QStringLiteral("SUDO"), true).match(*carrier));
        }
        const auto cyrillic = commandEvent(QStringLiteral("Пользователь"));
        QVERIFY(searchFor(QStringLiteral("пользователь"), true).match(*cyrillic));
        QVERIFY(!searchFor(QStringLiteral("пользователь"), true, true).match(*cyrillic));
    }

    void searchedTexts()
    {
        const bool russian = Language::isRussian();
        const auto noon = loginEvent(QByteArray(), "info", "2024-03-01T12:30:00+03:00");
        const auto ten = loginEvent(QByteArray(), "info");
        QVERIFY(searchFor(QStringLiteral("T12:")).match(*noon));
        QVERIFY(!searchFor(QStringLiteral("T12:")).match(*ten));
        QVERIFY(searchFor(QStringLiteral("1001"), true).match(*ten));           // message ID

        // The priority is searched under its long word.
        QCOMPARE(ten->priority, Event::Info);
        QVERIFY(searchFor(QStringLiteral("informational"), true).match(*ten));
        QVERIFY(!searchFor(QStringLiteral("info"), true).match(*ten));
        QVERIFY(searchFor(QStringLiteral("info")).match(*ten));
        QVERIFY(!searchFor(QStringLiteral("informational")).match(*loginEvent(QByteArray(), "notice")));
        QVERIFY(searchFor(QStringLiteral("warning"), true).match(*loginEvent(QByteArray(), "warning")));
        QVERIFY(searchFor(QStringLiteral("emergency"), true).match(*loginEvent(QByteArray(), "emerg")));
        QVERIFY(!searchFor(QStringLiteral("warning")).match(*loginEvent(QByteArray(), "Warning")));

        // Names and types in the system's language only.
        QCOMPARE(searchFor(QStringLiteral("logged")).match(*ten), !russian);
        QCOMPARE(searchFor(QStringLiteral("пользователя")).match(*ten), russian);
        QCOMPARE(searchFor(QStringLiteral("Login")).match(*ten), !russian);
        QCOMPARE(searchFor(QStringLiteral("Вход"), true).match(*ten), russian);
        // The source is searched as shown.
        QVERIFY(searchFor(russian ? QStringLiteral("Ядро") : QStringLiteral("Kernel")).match(*ten));

        // Registered parameters are searched as they are shown.
        QVERIFY(searchFor(QStringLiteral("SIGKILL")).match(*loginEvent(R"("signal":9)")));
        QVERIFY(searchFor(QStringLiteral("success")).match(*loginEvent(R"("result":true)")));
        QVERIFY(searchFor(QStringLiteral("987654321")).match(*loginEvent(R"("pid":987654321)")));
        QVERIFY(searchFor(QStringLiteral("mystery: clue")).match(*loginEvent(R"("mystery":"clue")")));
    }

    void textsLeftOutOfTheSearch()
    {
        const QByteArray fixedTime = R"("time":"2024-03-01T10:00:00+03:00")";
        for (const char *key : {"start_time", "end_time", "unixtime"}) {
            const auto carrier = loginEvent(fixedTime + ",\"" + key + "\":987654321");
            QVERIFY2(!searchFor(QStringLiteral("987654321")).match(*carrier), key);
        }
        // The other language's type is in the event but not in the search.
        const auto other = loginEvent(Language::isRussian() ? R"("type_en":"Zebra")" : R"("type_ru":"Zebra")");
        QVERIFY(!searchFor(QStringLiteral("Zebra")).match(*other));
        // Custom parameters are not searched.
        QVERIFY(!searchFor(QStringLiteral("Zebra")).match(*loginEvent(R"("site code":"Zebra")")));
        QVERIFY(searchFor(QStringLiteral("Zebra")).match(*loginEvent(R"("command":"Zebra")")));
    }

    void searchRunsAfterTheOtherTests()
    {
        const auto carrier = commandEvent(QStringLiteral("root"));
        FilterPack pack = searchFor(QStringLiteral("root"));
        QVERIFY(pack.match(*carrier));
        pack.checkId = true;
        pack.id = QStringLiteral("other");
        QVERIFY(!pack.match(*carrier));
        QVERIFY(pack.searchMatch(*carrier));   // the keyword test alone ignores the rest
        pack.checkId = false;
        pack.checkSearch = false;
        pack.search = QStringLiteral("absent");
        QVERIFY(pack.match(*carrier));
    }

    void equality()
    {
        FilterPack a;
        FilterPack b;
        QVERIFY(a == b);
        b.name = QStringLiteral("Saved");
        QVERIFY(a == b);
        QVERIFY(!(a != b));

        bool FilterPack::*const flags[] = {
            &FilterPack::checkFrom,        &FilterPack::checkTo,           &FilterPack::checkId,
            &FilterPack::checkEventTypes,  &FilterPack::checkTypeExcludes, &FilterPack::checkNameContains,
            &FilterPack::checkNameExcludes, &FilterPack::checkPriorities,  &FilterPack::checkSearch,
            &FilterPack::caseSensitive,    &FilterPack::wholeWord};
        for (bool FilterPack::*flag : flags) {
            FilterPack changed = a;
            changed.*flag = true;
            QVERIFY(changed != a);
        }
        QString FilterPack::*const texts[] = {&FilterPack::id, &FilterPack::typeExcludes, &FilterPack::nameContains,
                                              &FilterPack::nameExcludes, &FilterPack::search};
        for (QString FilterPack::*text : texts) {
            FilterPack changed = a;
            changed.*text = QStringLiteral("x");
            QVERIFY(changed != a);
        }
        FilterPack later = a;
        later.from = kTen;
        QVERIFY(later != a);
        later = a;
        later.to = kTen;
        QVERIFY(later != a);

        // Lists compare as sets of the same size.
        a.eventTypes = {QStringLiteral("auth"), QStringLiteral("net")};
        b.eventTypes = {QStringLiteral("net"), QStringLiteral("auth")};
        a.priorities = {1, 5, 8};
        b.priorities = {8, 1, 5};
        QVERIFY(a == b);
        b.priorities = {8, 1};
        QVERIFY(a != b);
        b.priorities = {8, 1, 4};
        QVERIFY(a != b);
        b.priorities = a.priorities;
        b.eventTypes = {QStringLiteral("net"), QStringLiteral("auth"), QStringLiteral("custom-events")};
        QVERIFY(a != b);
        b.eventTypes = a.eventTypes;

        // Condition maps compare keys and values.
        a.auxConditions.insert(49, 1000);
        QVERIFY(a != b);
        b.auxConditions.insert(49, 1000);
        QVERIFY(a == b);
        b.auxConditions.insert(49, 1001);
        QVERIFY(a != b);
        b.auxConditions = {{53, 1000}};
        QVERIFY(a != b);
        b.auxConditions = a.auxConditions;
        a.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A1"));
        QVERIFY(a != b);
        b.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A2"));
        QVERIFY(a != b);
        b.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A1"));
        QVERIFY(a == b);

        const FilterPack copy = a;
        QVERIFY(copy == a);
        QCOMPARE(copy.auxConditions, a.auxConditions);
        QCOMPARE(copy.eventTypes, a.eventTypes);
    }

    void concurrentMatchingAgreesWithSequential()
    {
        std::vector<std::unique_ptr<Event>> events;
        static const char *const priorities[] = {"emerg", "alert", "crit", "err", "warning", "notice", "info", "debug"};
        static const char *const commands[] = {"root", "chroot /srv", "(root)", "rootfs", "ls *.log", "Ёroot",
                                               "sudo -u admin", "корень", "ROOT login"};
        for (int i = 0; i < 240; ++i) {
            const QByteArray extra = "\"uid\":" + QByteArray::number(i % 3 ? 1000 : 0) + ",\"command\":\""
                                     + QByteArray(commands[i % 9]) + "\",\"site code\":\""
                                     + (i % 4 ? "A1" : "B2") + '"';
            const QByteArray time = QDateTime(QDate(2024, 3, 1), QTime(i % 24, i % 60, 0), Qt::OffsetFromUTC, 3 * 3600)
                                        .toString(Qt::ISODate)
                                        .toLatin1();
            events.push_back(loginEvent(extra, priorities[i % 8], time));
        }

        std::vector<FilterPack> packs;
        packs.push_back(searchFor(QStringLiteral("root"), true));
        packs.push_back(searchFor(QStringLiteral("ROOT"), false, true));
        packs.push_back(searchFor(QStringLiteral("root")));
        packs.push_back(searchFor(QStringLiteral("*")));
        packs.push_back(searchFor(QStringLiteral("T1")));
        packs.push_back(searchFor(QStringLiteral("informational"), true));
        packs.push_back(searchFor(QStringLiteral("корень"), true, true));
        FilterPack combined = searchFor(QStringLiteral("root"), true);
        combined.checkPriorities = true;
        combined.priorities = {Event::Warning, Event::Error, Event::Info};
        combined.auxConditions.insert(typeOf("uid"), 1000);
        combined.customConditions.insert(QStringLiteral("site code"), QStringLiteral("A1"));
        combined.checkFrom = true;
        combined.from = QDateTime(QDate(2024, 3, 1), QTime(6, 0), Qt::OffsetFromUTC, 3 * 3600);
        packs.push_back(combined);
        FilterPack names;
        names.checkNameContains = true;
        names.nameContains = QStringLiteral("user");
        names.checkTypeExcludes = true;
        names.typeExcludes = QStringLiteral("audit");
        packs.push_back(names);

        std::vector<std::vector<char>> expected(packs.size());
        for (size_t p = 0; p < packs.size(); ++p) {
            int passed = 0;
            for (const auto &candidate : events) {
                expected[p].push_back(packs[p].match(*candidate));
                passed += expected[p].back();
            }
            // Every pack but the name pack splits the events, so a mix-up shows.
            if (p + 1 < packs.size()) {
                QVERIFY2(passed > 0 && passed < int(events.size()), qPrintable(QString::number(p)));
            }
        }

        const FilterPack *shared = packs.data();
        const size_t packCount = packs.size();
        std::atomic<int> mismatches{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&, t] {
                for (int round = 0; round < 6; ++round) {
                    for (size_t e = 0; e < events.size(); ++e) {
                        // Each thread walks the packs in its own order, switching pack every event.
                        for (size_t step = 0; step < packCount; ++step) {
                            const size_t p = (step * (t + 1) + e + round) % packCount;
                            if (shared[p].match(*events[e]) != bool(expected[p][e]))
                                ++mismatches;
                        }
                    }
                }
            });
        }
        for (auto &thread : threads)
            thread.join();
        QCOMPARE(mismatches.load(), 0);
    }
};

int main(int argc, char **argv)
{
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(QStringLiteral(NIMB_TEST_DATA_DIR "/model/sysroot")));
    QCoreApplication app(argc, argv);
    TestFilterPack test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_filterpack.moc"
