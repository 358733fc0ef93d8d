#include "AuxParRegistry.h"
#include "ConfigHandler.h"
#include "Dictionary.h"
#include "LineParser.h"
#include "NimbTestMain.h"
#include "SystemPaths.h"

#include <memory>

namespace
{
const QString kFixtureSysroot = QStringLiteral(NIMB_TEST_DATA_DIR "/config-sysroot");

int typeOf(const char *key)
{
    return AuxParRegistry::instance().typeOf(QLatin1String(key));
}

// A login of alice as the journal writes it, with the given members replaced or,
// when null, removed.
std::unique_ptr<Event> login(const QJsonObject &changes = {})
{
    QJsonObject body{{"message_id", "auth-login"}, {"name_en", "User logged in"}, {"type_en", "Authentication"},
                     {"uid", 1000}, {"user", "alice"}, {"result", "success"}, {"ticket_id", "T-1"}};
    QJsonObject line{{"PRIORITY", "info"}, {"HOST", "node1"}, {"ISODATE", "2024-03-01T10:00:00+03:00"}};
    QString source = QStringLiteral("velmo-auth");
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        if (it.key() == QLatin1String("PRIORITY"))
            line.insert(it.key(), it.value());
        else if (it.key() == QLatin1String("source"))
            source = it.value().toString();
        else if (it.value().isNull())
            body.remove(it.key());
        else
            body.insert(it.key(), it.value());
    }
    line.insert(QStringLiteral("MSG"), QJsonObject{{source, body}});
    return LineParser::parseLine(QJsonDocument(line).toJson(QJsonDocument::Compact));
}

void readInto(ConfigStore &store)
{
    ConfigHandler(store).readConfig();
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
        readInto(read);
        return read;
    }

private slots:
    void initTestCase()
    {
        // The fixture must really be in use, or the filter checks below prove nothing.
        QCOMPARE(Dictionary::instance().eventTypes().value(QStringLiteral("auth")), QStringLiteral("Authentication"));
        QCOMPARE(AuxParRegistry::instance().customParameters().size(), 2);
    }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir->path());
    }

    void freshUserGetsDefaults()
    {
        ConfigHandler shared;
        QCOMPARE(&shared.store(), &ConfigStore::instance());
        ConfigStore store;
        readInto(store);
        QCOMPARE(store.mainLogPath(), kFixtureSysroot + QStringLiteral("/quorv/log/velmo/events"));
        QCOMPARE(store.messagesPerPage(), 1000);
        QVERIFY(store.recentFiles().isEmpty() && store.favoriteEvents().empty() && store.savedFilters().isEmpty());
        QVERIFY(store.visibleColumns().isEmpty() && store.visibleCustomColumns().isEmpty());
        QVERIFY(store.geometry().isEmpty() && store.state().isEmpty() && !store.maximized());
        QVERIFY(store.pos() == QPoint(0, 0) && !store.size().isValid());

        // Without a sysroot the default is the system's own journal.
        const QByteArray sysroot = qgetenv("NIMB_EVENT_VIEWER_SYSROOT");
        qunsetenv("NIMB_EVENT_VIEWER_SYSROOT");
        ConfigStore system;
        readInto(system);
        qputenv("NIMB_EVENT_VIEWER_SYSROOT", sysroot);
        QCOMPARE(system.mainLogPath(), QStringLiteral("/quorv/log/velmo/events"));
    }

    void recentFilesKeepFiveWithoutReordering()
    {
        ConfigStore store;
        for (int i = 1; i <= 6; ++i)
            store.addRecentFile(QStringLiteral("/f%1").arg(i));
        const QStringList lastFive = {"/f2", "/f3", "/f4", "/f5", "/f6"};
        QCOMPARE(store.recentFiles(), lastFive);
        store.addRecentFile(QStringLiteral("/f3"));
        QCOMPARE(store.recentFiles(), lastFive);
        store.addRecentFile(QStringLiteral("/f1"));
        QCOMPARE(store.recentFiles(), QStringList({"/f3", "/f4", "/f5", "/f6", "/f1"}));

        // A list longer than five, with a repeat, obeys the same rule when read.
        writeFile("[Recently%20opened%20files]\nRecent%20files%20number=8\n"
                  "Recent%20file%20%00=a\nRecent%20file%20%01=b\nRecent%20file%20%02=a\nRecent%20file%20%03=c\n"
                  "Recent%20file%20%04=d\nRecent%20file%20%05=e\nRecent%20file%20%06=f\nRecent%20file%20%07=g\n");
        ConfigStore read;
        readInto(read);
        QCOMPARE(read.recentFiles(), QStringList({"c", "d", "e", "f", "g"}));
    }

    void listEntriesAreKeyedByIndexCharacter()
    {
        ConfigStore store;
        for (const char *path : {"/logs/one", "/logs/two", "/logs/three"})
            store.addRecentFile(QLatin1String(path));
        store.favoriteEvents() = {QStringLiteral("zeta"), QStringLiteral("alpha"), QStringLiteral("mid")};
        ConfigHandler(store).writeConfig();

        // The ini format percent-encodes the index characters U+0000, U+0001, U+0002.
        const QByteArray bytes = fileBytes();
        for (const char *entry : {"Recent%20files%20number=3\n", "Recent%20file%20%00=/logs/one\n",
                                  "Recent%20file%20%01=/logs/two\n", "Recent%20file%20%02=/logs/three\n",
                                  "Favorite%20event%20%00=alpha\n", "Favorite%20event%20%01=mid\n",
                                  "Favorite%20event%20%02=zeta\n"})
            QVERIFY2(bytes.contains(entry), entry);
        QVERIFY(!bytes.contains("Recent%20file%20%03") && !bytes.contains("Recent%20file%200"));

        const ConfigStore read = readFromDisk();
        QCOMPARE(read.recentFiles(), store.recentFiles());
        QCOMPARE(read.favoriteEvents(), store.favoriteEvents());
    }

    void writtenFileRestoresEveryField()
    {
        const int uid = typeOf("uid"), user = typeOf("user"), result = typeOf("result"), source = typeOf("source");
        FilterPack logins;
        logins.name = QStringLiteral("Logins of alice");
        logins.from = QDateTime(QDate(2024, 3, 1), QTime(9, 0), Qt::OffsetFromUTC, 3 * 3600);
        logins.to = QDateTime(QDate(2024, 3, 2), QTime(0, 0), Qt::UTC);
        logins.checkFrom = logins.checkEventTypes = logins.checkPriorities = true;
        logins.eventTypes = {QStringLiteral("Authentication")};
        logins.priorities = {Event::Info, Event::Notice};
        logins.auxConditions = {{uid, 1000}, {user, "alice"}, {result, true}, {source, "velmo-auth"}};
        logins.customConditions.insert(QStringLiteral("ticket_id"), QStringLiteral("T-1"));

        FilterPack texts;
        texts.name = QStringLiteral("Texts");
        texts.id = QStringLiteral("auth-login");
        texts.typeExcludes = QStringLiteral("net");
        texts.nameContains = QStringLiteral("logged");
        texts.nameExcludes = QStringLiteral("out");
        texts.search = QStringLiteral("@alice, bob");
        texts.eventTypes = {QStringLiteral("Network"), QString()};
        texts.checkTo = texts.checkId = texts.checkTypeExcludes = texts.checkNameContains = true;
        texts.checkNameExcludes = texts.checkSearch = texts.caseSensitive = texts.wholeWord = true;
        texts.to = QDateTime(QDate(2025, 1, 1), QTime(12, 30), Qt::LocalTime);
        texts.customConditions.insert(QStringLiteral("workplace"), QStringLiteral("desk 7"));

        ConfigStore store;
        store.geometry() = QByteArray("\x01\x00\xff geometry", 12);
        store.state() = QByteArray("\x00\x00\x00\xffstate", 9);
        store.pos() = QPoint(12, -34);
        store.size() = QSize(800, 600);
        store.visibleColumns() = {typeOf("auid"), source, user};
        store.visibleCustomColumns() = {QStringLiteral("workplace")};
        store.mainLogPath() = QStringLiteral("/srv/logs/events");
        store.messagesPerPage() = 250;
        store.addRecentFile(QStringLiteral("/srv/a.log"));
        store.addRecentFile(QStringLiteral("/srv/b.log.gz"));
        store.favoriteEvents() = {QStringLiteral("auth-login"), QStringLiteral("net-up")};
        store.savedFilters() = {logins, texts};
        ConfigHandler handler(store);
        QSignalSpy written(&handler, &ConfigHandler::configWritten);
        handler.writeConfig();
        QCOMPARE(written.count(), 1);

        const ConfigStore read = readFromDisk();
        QVERIFY(read.geometry() == store.geometry() && read.state() == store.state() && !read.maximized());
        QVERIFY(read.pos() == store.pos() && read.size() == store.size());
        QCOMPARE(read.visibleColumns(), store.visibleColumns());
        QCOMPARE(read.visibleCustomColumns(), store.visibleCustomColumns());
        QVERIFY(read.mainLogPath() == store.mainLogPath() && read.messagesPerPage() == 250);
        QCOMPARE(read.recentFiles(), store.recentFiles());
        QCOMPARE(read.favoriteEvents(), store.favoriteEvents());
        QCOMPARE(read.savedFilters().size(), 2);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(read.savedFilters().at(i).name, store.savedFilters().at(i).name);
            QVERIFY(read.savedFilters().at(i) == store.savedFilters().at(i));
        }
        // Rebuilt in the dictionary's order: priorities by number, "custom-events"
        // before "network".
        QCOMPARE(read.savedFilters().at(0).priorities, QVector<int>({Event::Notice, Event::Info}));
        QCOMPARE(read.savedFilters().at(1).eventTypes, QVector<QString>({QString(), QStringLiteral("Network")}));

        // The restored values carry the types events report, not the file's text.
        const std::unique_ptr<Event> alice = login();
        QVERIFY(alice);
        const FilterPack &restored = read.savedFilters().at(0);
        QCOMPARE(restored.auxConditions.value(uid).toDouble(), 1000.0);
        QVERIFY(restored.auxConditions.value(uid).userType() != QMetaType::QString);
        for (int type : {user, result, source})
            QCOMPARE(restored.auxConditions.value(type).userType(), alice->parameters.value(type)->value().userType());

        const QVector<QJsonObject> others = {
            {{"PRIORITY", "notice"}, {"uid", QJsonValue()}, {"result", QJsonValue()}},
            {{"uid", 1001}}, {{"result", "failed"}}, {{"user", "bob"}}, {{"ticket_id", "T-2"}},
            {{"source", "velmo-net"}}, {{"type_en", "Network"}}, {{"PRIORITY", "debug"}},
        };
        QVERIFY(restored.match(*alice));
        for (int i = 0; i < others.size(); ++i) {
            const std::unique_ptr<Event> event = login(others.at(i));
            QVERIFY(event);
            // Only the first lacks what it differs in, which does not reject it.
            QCOMPARE(restored.match(*event), i == 0);
            QCOMPARE(logins.match(*event), i == 0);
        }
    }

    void filterKeysFollowTheFileLayout()
    {
        ConfigStore store;
        store.savedFilters() = {FilterPack(), FilterPack()};
        store.savedFilters()[0].eventTypes = {QStringLiteral("Authentication")};
        store.savedFilters()[0].priorities = {Event::Info};
        store.savedFilters()[1].name = QStringLiteral("second");
        ConfigHandler(store).writeConfig();
        readFromDisk();

        QSettings raw(QSettings::NativeFormat, QSettings::UserScope, "trelvik", "nimb-event-viewer");
        raw.beginGroup(QStringLiteral("Filters"));
        QCOMPARE(raw.value(QStringLiteral("Number of filters")).toInt(), 2);
        QCOMPARE(raw.value(QStringLiteral("Name 1")).toString(), QStringLiteral("second"));
        const QMap<QString, int> flags = {{"FilterEventTypes/auth0", 1}, {"FilterEventTypes/network0", 0},
                                          {"FilterEventTypes/custom-events0", 0}, {"FilterEventTypes/auth1", 0},
                                          {"info0", 1}, {"debug0", 0}, {"info1", 0}};
        for (auto it = flags.cbegin(); it != flags.cend(); ++it)
            QCOMPARE(raw.value(it.key(), -1).toInt(), it.value());
        QVERIFY(raw.contains(QStringLiteral("Check whole word 1")));
        for (int type = 0; type < AuxParRegistry::count(); ++type) {
            const QString name = AuxParRegistry::instance().prototype(type)->key();
            const QString check = QStringLiteral("check_") + name + QStringLiteral(" 0");
            QCOMPARE(raw.contains(check), !AuxParRegistry::isExcludedFromMatching(type));
            if (raw.contains(check))
                QCOMPARE(raw.value(check).toString(), QStringLiteral("false"));
            QVERIFY2(!raw.contains(name + QStringLiteral(" 0")), qPrintable(name));
        }
        QCOMPARE(raw.value(QStringLiteral("check_ticket_id 0")).toString(), QStringLiteral("false"));
        QVERIFY(!raw.contains(QStringLiteral("ticket_id 0")));
    }

    void writesLeaveEarlierKeysInPlace()
    {
        ConfigStore earlier;
        earlier.pos() = QPoint(5, 6);
        earlier.size() = QSize(640, 480);
        for (const char *path : {"/1", "/2", "/3", "/4", "/5"})
            earlier.addRecentFile(QLatin1String(path));
        earlier.savedFilters() = {FilterPack(), FilterPack(), FilterPack()};
        earlier.savedFilters()[2].name = QStringLiteral("f2");
        ConfigHandler(earlier).writeConfig();

        ConfigStore later;
        later.maximized() = true;
        later.size() = QSize(1920, 1080);
        later.addRecentFile(QStringLiteral("/new"));
        later.savedFilters() = {FilterPack()};
        ConfigHandler(later).writeConfig();

        for (const char *entry : {"Maximized=true\n", "Pos=@Point(5 6)\n", "Size=@Size(640 480)\n",
                                  "Recent%20files%20number=1\n", "Recent%20file%20%04=/5\n", "Name%202=f2\n"})
            QVERIFY2(fileBytes().contains(entry), entry);

        // The counts, not the keys present, decide what is read.
        const ConfigStore read = readFromDisk();
        QVERIFY(read.maximized() && read.pos() == QPoint(5, 6) && read.size() == QSize(640, 480));
        QCOMPARE(read.recentFiles(), QStringList({"/new"}));
        QCOMPARE(read.savedFilters().size(), 1);

        // A maximised first run leaves no position at all.
        init();
        ConfigHandler(later).writeConfig();
        QVERIFY(!fileBytes().contains("Pos=") && !fileBytes().contains("Size="));
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
        readInto(read);
        QVERIFY(read.pos().isNull() && !read.size().isValid());
        QCOMPARE(read.mainLogPath(), SystemPaths::defaultJournal());
        QCOMPARE(read.messagesPerPage(), 1000);
        QCOMPARE(read.recentFiles(), QStringList({"/var/log/a"}));
        QVERIFY(read.favoriteEvents().empty());
        QCOMPARE(read.savedFilters().size(), 1);
        const FilterPack &broken = read.savedFilters().constFirst();
        QCOMPARE(broken.name, QStringLiteral("broken"));
        QCOMPARE(broken.auxConditions, (QHash<int, QVariant>{{typeOf("user"), QStringLiteral("bob")}}));
        QVERIFY(broken.customConditions.isEmpty() && broken.eventTypes.isEmpty() && broken.checkFrom);
        QCOMPARE(broken.priorities, QVector<int>({Event::Info}));

        // Page sizes the settings dialog cannot produce. A count beyond any int still
        // converts to some large number; only the entries present are read.
        for (const QByteArray &perPage : {QByteArray("-5"), QByteArray("0"), QByteArray("2147483647")}) {
            init();
            writeFile("[Application%20settings]\nMessages%20per%20page=" + perPage + "\n"
                      "[Favorite%20events]\nFavorite%20events%20number=99999999999\nFavorite%20event%20%00=x\n"
                      "[Filters]\nNumber%20of%20filters=-1\nName%200=never\n");
            readInto(read);
            QCOMPARE(read.messagesPerPage(), 1000);
            QCOMPARE(read.favoriteEvents(), std::set<QString>({QStringLiteral("x")}));
            QVERIFY(read.savedFilters().isEmpty());
        }

        // Not an ini file at all; a read replaces whatever the store held before.
        init();
        static const char garbage[] = "\x00\xff[[[=\n=\n@Variant(\x01\n[Filters\nNumber";
        writeFile(QByteArray(garbage, sizeof garbage - 1));
        readInto(read);
        QVERIFY(read.messagesPerPage() == 1000 && read.favoriteEvents().empty() && read.savedFilters().isEmpty());
    }
};

NIMB_TEST_MAIN_WITH(TestConfigStore, QCoreApplication, NIMB_TEST_DATA_DIR "/config-sysroot")
#include "test_configstore.moc"
