#include "AuxParRegistry.h"
#include "ConfigHandler.h"
#include "LineParser.h"
#include "NimbTestMain.h"
#include "SystemPaths.h"

#include <memory>

namespace
{
int typeOf(const char *key)
{
    return AuxParRegistry::instance().typeOf(QLatin1String(key));
}

// A login of alice as the journal writes it, with one piece of the line replaced.
const QByteArray kAlice =
    R"({"PRIORITY":"info","HOST":"node1","ISODATE":"2024-03-01T10:00:00+03:00","MSG":{"velmo-auth":{)"
    R"("message_id":"auth-login","name_en":"User logged in","type_en":"Authentication",)"
    R"("uid":1000,"user":"alice","result":"success","ticket_id":"T-1"}}})";

std::unique_ptr<Event> login(const char *before = "alice", const char *after = "alice")
{
    return LineParser::parseLine(QByteArray(kAlice).replace(before, after));
}
}

class TestConfigStore : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QString settingsFile() const { return m_dir->path() + QStringLiteral("/trelvik/nimb-event-viewer.conf"); }

    QByteArray fileBytes() const
    {
        QFile file(settingsFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void writeFile(const QByteArray &content)
    {
        QVERIFY(QDir().mkpath(m_dir->path() + QStringLiteral("/trelvik")));
        QFile file(settingsFile());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }

    // QSettings keeps the typed values of a file it wrote itself in memory, while the
    // next start of the program sees only the file's text. Reading a copy under a new
    // path gives that next start's view.
    ConfigStore readFromDisk()
    {
        const QByteArray content = fileBytes();
        init();
        writeFile(content);
        ConfigStore read;
        ConfigHandler(read).readConfig();
        return read;
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir->path());
    }

    void recentListKeepsFiveAndKeysEntriesByIndexCharacter()
    {
        ConfigStore store;
        for (int i = 1; i <= 6; ++i)
            store.addRecentFile(QStringLiteral("/f%1").arg(i));
        store.addRecentFile(QStringLiteral("/f3"));
        // The oldest drops out; a path already listed keeps its place.
        QCOMPARE(store.recentFiles(), QStringList({"/f2", "/f3", "/f4", "/f5", "/f6"}));
        store.favoriteEvents() = {QStringLiteral("zeta"), QStringLiteral("alpha")};
        ConfigHandler(store).writeConfig();

        // The ini format percent-encodes the index characters U+0000, U+0001, U+0002.
        const QByteArray bytes = fileBytes();
        for (const char *entry : {"Recent%20files%20number=5\n", "Recent%20file%20%00=/f2\n", "Recent%20file%20%01=/f3\n",
                                  "Recent%20file%20%02=/f4\n", "Favorite%20event%20%00=alpha\n",
                                  "Favorite%20event%20%01=zeta\n"})
            QVERIFY2(bytes.contains(entry), entry);
    }

    void writtenFileRestoresEveryField()
    {
        const int uid = typeOf("uid"), user = typeOf("user"), result = typeOf("result"), source = typeOf("source");
        // Every criterion set, and still passing the login of alice: restored, it must too.
        FilterPack logins;
        logins.name = QStringLiteral("Logins of alice");
        logins.from = QDateTime(QDate(2024, 3, 1), QTime(9, 0), Qt::OffsetFromUTC, 3 * 3600);
        logins.to = QDateTime(QDate(2024, 3, 2), QTime(0, 0), Qt::UTC);
        logins.id = QStringLiteral("auth-login");
        logins.typeExcludes = QStringLiteral("net");
        logins.nameContains = QStringLiteral("logged");
        logins.nameExcludes = QStringLiteral("@out, bob"); // characters the ini format must escape
        logins.search = QStringLiteral("alice");
        logins.eventTypes = {QStringLiteral("Authentication"), QStringLiteral("Network"), QString()};
        logins.priorities = {Event::Info, Event::Notice};
        logins.checkFrom = logins.checkTo = logins.checkId = logins.checkEventTypes = logins.checkTypeExcludes = true;
        logins.checkNameContains = logins.checkNameExcludes = logins.checkPriorities = logins.checkSearch = true;
        logins.caseSensitive = logins.wholeWord = true;
        logins.auxConditions = {{uid, 1000}, {user, "alice"}, {result, true}, {source, "velmo-auth"}};
        logins.customConditions = {{QStringLiteral("ticket_id"), "T-1"}, {QStringLiteral("workplace"), "desk 7"}};

        ConfigStore store;
        store.geometry() = QByteArray("\x01\x00\xff geometry", 12);
        store.state() = QByteArray("\x00\x00\x00\xffstate", 9);
        store.pos() = QPoint(12, -34);
        store.size() = QSize(800, 600);
        store.visibleColumns() = {typeOf("auid"), source, user};
        store.visibleCustomColumns() = {QStringLiteral("workplace")};
        store.mainLogPath() = QStringLiteral("/srv/logs/events");
        store.messagesPerPage() = 250;
        store.addRecentFile(QStringLiteral("/srv/b.log.gz"));
        store.favoriteEvents() = {QStringLiteral("auth-login"), QStringLiteral("net-up")};
        store.savedFilters() = {FilterPack(), logins};
        ConfigHandler(store).writeConfig();

        const ConfigStore read = readFromDisk();
        QVERIFY(read.geometry() == store.geometry() && read.state() == store.state() && !read.maximized());
        QVERIFY(read.pos() == store.pos() && read.size() == store.size());
        QVERIFY(read.visibleColumns() == store.visibleColumns()
                && read.visibleCustomColumns() == store.visibleCustomColumns());
        QVERIFY(read.mainLogPath() == store.mainLogPath() && read.messagesPerPage() == 250);
        QCOMPARE(read.recentFiles(), store.recentFiles());
        QCOMPARE(read.favoriteEvents(), store.favoriteEvents());
        QCOMPARE(read.savedFilters().size(), 2);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(read.savedFilters().at(i).name, store.savedFilters().at(i).name);
            QVERIFY(read.savedFilters().at(i) == store.savedFilters().at(i));
        }

        // The restored values carry the types events report, not the file's text.
        const FilterPack &restored = read.savedFilters().at(1);
        const std::unique_ptr<Event> alice = login();
        QVERIFY(alice && restored.match(*alice));
        QVERIFY(restored.auxConditions.value(uid).userType() != QMetaType::QString);
        for (int type : {user, result, source})
            QCOMPARE(restored.auxConditions.value(type).userType(), alice->parameters.value(type)->value().userType());

        // An event lacking a parameter is not held back by its condition.
        const QVector<std::tuple<const char *, const char *, bool>> others{
            {R"("uid":1000,)", "", true},       {R"("info")", R"("notice")", true},   {"1000", "1001", false},
            {"success", "failed", false},       {R"("alice")", R"("bob")", false},    {"T-1", "T-2", false},
            {"velmo-auth", "velmo-net", false}, {"Authentication", "Network", false}, {"10:00:00", "08:00:00", false},
            {R"("info")", R"("debug")", false}, {"logged in", "logged in @out, bob", false}};
        for (const auto &[before, after, passes] : others) {
            const std::unique_ptr<Event> event = login(before, after);
            QVERIFY2(event && restored.match(*event) == passes && logins.match(*event) == passes, after);
        }
    }

    void writesLeaveEarlierKeysInPlace()
    {
        ConfigStore earlier;
        earlier.pos() = QPoint(5, 6);
        earlier.size() = QSize(640, 480);
        for (const char *path : {"/1", "/2", "/3", "/4", "/5"})
            earlier.addRecentFile(QLatin1String(path));
        ConfigHandler(earlier).writeConfig();

        ConfigStore later;
        later.maximized() = true;
        later.size() = QSize(1920, 1080);
        later.addRecentFile(QStringLiteral("/new"));
        ConfigHandler(later).writeConfig();

        // The counts, not the keys present, decide what is read.
        const ConfigStore read = readFromDisk();
        QVERIFY(read.maximized() && read.pos() == QPoint(5, 6) && read.size() == QSize(640, 480));
        QCOMPARE(read.recentFiles(), QStringList({"/new"}));
    }

    void unusableValuesFallBackToDefaults()
    {
        writeFile("[MainWindow]\nPos=nonsense\nSize=@Size(oops)\nGeometry=@ByteArray(\n"
                  "[Application%20settings]\nMain%20log%20path=\nMessages%20per%20page=abc\n"
                  "[Recently%20opened%20files]\nRecent%20files%20number=2147483647\nRecent%20file%20%00=/var/log/a\n"
                  "[Favorite%20events]\nFavorite%20events%20number=-4\nFavorite%20event%20%00=x\n"
                  "[Filters]\nNumber%20of%20filters=2147483647\nName%200=broken\n"
                  "check_uid%200=true\nuid%200=not a number\ncheck_result%200=true\nresult%200=maybe\n"
                  "check_user%200=true\nuser%200=bob\ncheck_ticket_id%200=true\n"
                  "FilterEventTypes\\auth0=yes\ninfo0=1\n"
                  "Check%20from%200=true\nFrom%200=@Variant(\\0\\0\\0\\x10garbage)\n");
        ConfigStore read;
        ConfigHandler(read).readConfig();
        QVERIFY(read.pos().isNull() && !read.size().isValid());
        QCOMPARE(read.mainLogPath(), SystemPaths::defaultJournal());
        QCOMPARE(read.messagesPerPage(), 1000);
        QCOMPARE(read.recentFiles(), QStringList({"/var/log/a"}));
        QVERIFY(read.favoriteEvents().empty());
        QCOMPARE(read.savedFilters().size(), 1);
        const FilterPack &broken = read.savedFilters().constFirst();
        QCOMPARE(broken.auxConditions, (QHash<int, QVariant>{{typeOf("user"), QStringLiteral("bob")}}));
        QVERIFY(broken.customConditions.isEmpty() && broken.eventTypes.isEmpty() && broken.checkFrom);
        QCOMPARE(broken.priorities, QVector<int>({Event::Info}));

        // Page sizes the settings dialog cannot produce, a negative filter count, and no ini
        // file at all. Each read replaces whatever the store held before.
        static const char garbage[] = "\x00\xff[[[=\n=\n@Variant(\x01\n[Filters\nNumber";
        const QByteArray filters = "\n[Filters]\nNumber%20of%20filters=-1\nName%200=never\n";
        for (const QByteArray &content : {"[Application%20settings]\nMessages%20per%20page=-5" + filters,
                                          "[Application%20settings]\nMessages%20per%20page=0" + filters,
                                          "[Application%20settings]\nMessages%20per%20page=2147483647" + filters,
                                          QByteArray(garbage, sizeof garbage - 1)}) {
            init();
            writeFile(content);
            ConfigHandler(read).readConfig();
            QVERIFY(read.messagesPerPage() == 1000 && read.favoriteEvents().empty() && read.savedFilters().isEmpty());
        }
    }
};

NIMB_TEST_MAIN_WITH(TestConfigStore, QCoreApplication, NIMB_TEST_DATA_DIR "/config-sysroot")
#include "test_configstore.moc"
