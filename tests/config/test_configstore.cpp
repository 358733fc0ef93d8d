// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"
#include "ConfigHandler.h"
#include "Dictionary.h"
#include "Language.h"
#include "LineParser.h"
#include "NimbTestMain.h"
#include "SystemPaths.h"

#include <QProcess>
#include <QTranslator>
#include <QXmlStreamReader>

#include <memory>
#include <utility>
#include <vector>

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

// The priority words of the Russian catalogue, by their English source words.
QHash<QString, QString> russianPriorityWords()
{
    QFile file(QStringLiteral(NIMB_TEST_DATA_DIR "/../../translations/nimb-event-viewer_ru.ts"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no Russian catalogue");
    QHash<QString, QString> words;
    QString context, source;
    QXmlStreamReader xml(&file);
    while (xml.readNext() != QXmlStreamReader::Invalid && !xml.atEnd()) {
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation") && context == QLatin1String("Dictionary"))
            words.insert(source, xml.readElementText());
    }
    return words;
}

// Under Russian the program words the priorities as its catalogue does, and saves them so.
class CatalogueWords : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        return qstrcmp(context, "Dictionary") == 0 ? m_words.value(QString::fromUtf8(source)) : QString();
    }
    bool isEmpty() const override { return false; }

private:
    const QHash<QString, QString> m_words = russianPriorityWords();
};

// Set for a run in the other language, which is to check that it really is in that language.
const char kLanguageVariable[] = "NIMB_TEST_EXPECTED_LANGUAGE";

const std::vector<std::pair<Event::Priority, const char *>> kEnglishPriorityWords{
    {Event::Emergency, "emergency"}, {Event::Alert, "alert"}, {Event::Critical, "critical"}, {Event::Error, "error"},
    {Event::Warning, "warning"},     {Event::Notice, "notice"}, {Event::Info, "info"},       {Event::Debug, "debug"}};
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

    // Priority flags are keyed by the words of the language the program ran in: a filter saved
    // under the other language must select the same events here, and saving it again here must
    // leave no flag of the other language to contradict the new ones.
    void savedFilterKeepsItsCriteriaInTheOtherLanguage()
    {
        if (qEnvironmentVariableIsSet(kLanguageVariable))
            QCOMPARE(Language::systemLanguageName(), qEnvironmentVariable(kLanguageVariable));
        const Dictionary &dictionary = Dictionary::instance();
        const QHash<QString, QString> russian = russianPriorityWords();
        QHash<QString, QString> otherWords; // this language's word -> the other language's
        for (const auto &[priority, source] : kEnglishPriorityWords) {
            const QString english = QLatin1String(source);
            const QString word = dictionary.priorityText(priority);
            QVERIFY2(word == (Language::isRussian() ? russian.value(english) : english), qPrintable(word));
            otherWords.insert(word, word == english ? russian.value(english) : english);
            QVERIFY2(!otherWords.value(word).isEmpty() && otherWords.value(word) != word, qPrintable(word));
        }

        const QString auth = dictionary.eventTypeText(QStringLiteral("auth"));
        const QString network = dictionary.eventTypeText(QStringLiteral("network"));
        FilterPack severe, mild;
        severe.checkPriorities = severe.checkEventTypes = mild.checkPriorities = mild.checkEventTypes = true;
        severe.priorities = {Event::Emergency, Event::Critical, Event::Warning, Event::Info};
        severe.eventTypes = {auth};
        mild.priorities = {Event::Alert, Event::Error, Event::Notice, Event::Debug};
        mild.eventTypes = {network, auth};
        // Unused bounds, but valid: a file holding an invalid one is written afresh, which would
        // hide keys left over.
        for (FilterPack *pack : {&severe, &mild})
            pack->from = pack->to = QDateTime(QDate(2024, 3, 1), QTime(10, 0), Qt::UTC);
        ConfigStore store;
        store.savedFilters() = {severe, mild};
        ConfigHandler(store).writeConfig();
        {
            QSettings file(settingsFile(), QSettings::IniFormat);
            file.beginGroup(QStringLiteral("Filters"));
            for (const QString &index : {QStringLiteral("0"), QStringLiteral("1")}) {
                for (auto it = otherWords.cbegin(); it != otherWords.cend(); ++it) {
                    QVERIFY2(file.contains(it.key() + index), qPrintable(it.key()));
                    file.setValue(it.value() + index, file.value(it.key() + index));
                    file.remove(it.key() + index);
                }
            }
        }
        ConfigStore read = readFromDisk();
        QCOMPARE(read.savedFilters().size(), 2);
        QVERIFY(read.savedFilters().at(0) == severe && read.savedFilters().at(1) == mild);
        // Counted on journal lines, each with its own priority word and type.
        int passed[2] = {0, 0};
        for (const char *priority : {"emerg", "alert", "crit", "err", "warning", "notice", "info", "debug"}) {
            for (const char *type : {R"("type_en":"Authentication","type_ru":"Аутентификация")",
                                     R"("type_en":"Network","type_ru":"Сеть")"}) {
                const std::unique_ptr<Event> event = LineParser::parseLine(
                    QByteArray(kAlice)
                        .replace(R"("PRIORITY":"info")", QByteArray("\"PRIORITY\":\"") + priority + '"')
                        .replace(R"("type_en":"Authentication")", type));
                QVERIFY(event);
                for (int i = 0; i < 2; ++i) {
                    QCOMPARE(read.savedFilters().at(i).match(*event), store.savedFilters().at(i).match(*event));
                    passed[i] += read.savedFilters().at(i).match(*event);
                }
            }
        }
        QVERIFY(passed[0] == 4 && passed[1] == 8);

        read.savedFilters()[0].priorities = {Event::Debug};
        ConfigHandler(read).writeConfig();
        QSettings file(settingsFile(), QSettings::IniFormat);
        for (auto it = otherWords.cbegin(); it != otherWords.cend(); ++it)
            QVERIFY2(!file.contains(QStringLiteral("Filters/") + it.value() + QLatin1Char('0')), qPrintable(it.value()));
        QCOMPARE(readFromDisk().savedFilters().at(0).priorities, QVector<int>{Event::Debug});
    }

    // The language is fixed for a process: the other language's run is a process of its own.
    void savedFilterKeepsItsCriteriaInEitherLanguage()
    {
        const bool russian = Language::isRussian();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), russian ? QStringLiteral("en_US.UTF-8") : QStringLiteral("ru_RU.UTF-8"));
        environment.insert(QStringLiteral("LANGUAGE"), russian ? QStringLiteral("en") : QStringLiteral("ru"));
        environment.insert(QLatin1String(kLanguageVariable), russian ? QStringLiteral("English") : QStringLiteral("Russian"));
        QProcess other;
        other.setProcessEnvironment(environment);
        other.setProcessChannelMode(QProcess::MergedChannels);
        other.start(QCoreApplication::applicationFilePath(), {QStringLiteral("savedFilterKeepsItsCriteriaInTheOtherLanguage")});
        QVERIFY2(other.waitForFinished(60000), qPrintable(other.errorString()));
        QVERIFY2(other.exitStatus() == QProcess::NormalExit && other.exitCode() == 0, other.readAll().constData());
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

int main(int argc, char **argv)
{
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QByteArray(NIMB_TEST_DATA_DIR "/config-sysroot"));
    QCoreApplication app(argc, argv);
    CatalogueWords words;
    if (Language::isRussian())
        QCoreApplication::installTranslator(&words);
    TestConfigStore test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_configstore.moc"
