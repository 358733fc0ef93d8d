// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ConfigHandler.h"

#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "SettingsFileGuard.h"
#include "SystemPaths.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimeZone>

#include <algorithm>

namespace
{
const QString kWindowGroup = QStringLiteral("MainWindow");
const QString kColumnsGroup = QStringLiteral("Visible Columns");
const QString kApplicationGroup = QStringLiteral("Application settings");
const QString kRecentGroup = QStringLiteral("Recently opened files");
const QString kFavoritesGroup = QStringLiteral("Favorite events");
const QString kFiltersGroup = QStringLiteral("Filters");
const QString kEventTypesGroup = QStringLiteral("FilterEventTypes");

const QString kRecentCount = QStringLiteral("Recent files number");
const QString kRecentEntry = QStringLiteral("Recent file ");
const QString kFavoritesCount = QStringLiteral("Favorite events number");
const QString kFavoritesEntry = QStringLiteral("Favorite event ");
const QString kFiltersCount = QStringLiteral("Number of filters");
const QString kFilterName = QStringLiteral("Name ");

// Settings files of earlier versions name list entries by a single character whose
// code is the index (U+0000 for the first), not by decimal digits; files in the
// field must keep reading, so the scheme stays. QSettings stores such a key
// percent-encoded ("Recent%20file%20%00") and decodes it back to the same string.
// One UTF-16 unit can only address this many entries.
constexpr int kMaxListEntries = 0x10000;

QString listKey(const QString &prefix, int index)
{
    return prefix + QChar(static_cast<ushort>(index));
}

// Qt cannot write back a text holding NUL characters as it read it, and no path, ID or
// name the store keeps has one: such a text counts as missing.
QString storedText(const QVariant &stored)
{
    const QString text = stored.toString();
    return text.contains(QChar::Null) ? QString() : text;
}

// The entries of a list group, in index order. A hand-edited count can be anything;
// it is trusted only up to the number of keys the group actually holds, so a count
// of 2^31-1 costs no more than the file itself. Within that bound an absent entry
// reads as empty, as it always has.
QStringList readList(QSettings &settings, const QString &countKey, const QString &entryPrefix)
{
    const int count = settings.value(countKey).toInt();
    const int present = settings.childKeys().size();
    const int bound = std::min({count, present, kMaxListEntries});
    QStringList entries;
    for (int i = 0; i < bound; ++i)
        entries.append(storedText(settings.value(listKey(entryPrefix, i))));
    return entries;
}

template<typename Container>
void writeList(QSettings &settings, const QString &countKey, const QString &entryPrefix,
               const Container &entries)
{
    const int count = static_cast<int>(std::min<qsizetype>(qsizetype(entries.size()), kMaxListEntries));
    settings.setValue(countKey, count);
    int index = 0;
    for (const QString &entry : entries) {
        if (index == count)
            break;
        settings.setValue(listKey(entryPrefix, index++), entry);
    }
}

bool flagSet(const QVariant &value)
{
    return value.toInt() == 1;
}

// A boolean condition must read back as a bool to equal what events carry; the
// file holds "true"/"false", and anything else is no usable condition.
QVariant boolValue(const QVariant &stored)
{
    if (stored.userType() == QMetaType::Bool)
        return stored;
    const QString text = stored.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return QVariant(true);
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return QVariant(false);
    return QVariant();
}

// A damaged file can hold a date-time that names a time zone but carries none, and
// Qt may even call it valid; writing it back crashes Qt.
bool usableTime(const QDateTime &time)
{
    return time.isValid() && time.date().isValid() && time.time().isValid()
        && (time.timeSpec() != Qt::TimeZone || time.timeZone().isValid());
}

// Whether Qt can write the value back.
bool writable(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QDateTime:
        return usableTime(value.toDateTime());
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        return std::all_of(list.cbegin(), list.cend(), writable);
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        return std::all_of(map.cbegin(), map.cend(), writable);
    }
    case QMetaType::QVariantHash: {
        const QVariantHash hash = value.toHash();
        return std::all_of(hash.cbegin(), hash.cend(), writable);
    }
    default:
        return true;
    }
}

// Qt writes every key of the file back when it saves, also those this version leaves
// alone, and crashes on some values a damaged file can hold; nor can such a file
// always be mended key by key (a broken group header gives keys that Qt lists but
// cannot look up). A damaged file is therefore written afresh from the store.
void forgetDamagedFile(QSettings &settings)
{
    const QStringList keys = settings.allKeys();
    const bool damaged = std::any_of(keys.cbegin(), keys.cend(), [&settings](const QString &key) {
        return !settings.contains(key) || !writable(settings.value(key));
    });
    if (damaged)
        settings.clear();
}

QDateTime storedTime(const QVariant &stored)
{
    const QDateTime time = stored.toDateTime();
    return usableTime(time) ? time : QDateTime();
}

// The ini file turns every value into text. A condition compares with QVariant
// equality against the parameter's value, so it is given back the type of its
// kind's family: numbers for numeric kinds (equal to the journal's JSON numbers),
// bools for boolean kinds, text for the rest. Null means unusable.
QVariant conditionValue(int type, const QVariant &stored)
{
    if (!stored.isValid())
        return QVariant();
    bool ok = false;
    switch (kAuxParKinds[type].family) {
    case AuxParFamily::Integer:
    case AuxParFamily::Signal: {
        const int number = stored.toInt(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    case AuxParFamily::LongLong: {
        const qlonglong number = stored.toLongLong(&ok);
        return ok ? QVariant(number) : QVariant();
    }
    case AuxParFamily::Bool:
        return boolValue(stored);
    case AuxParFamily::Time: {
        const QDateTime time = stored.toDateTime();
        return usableTime(time) ? QVariant(time) : QVariant();
    }
    case AuxParFamily::Mac:
    case AuxParFamily::Source:
    case AuxParFamily::String:
        break;
    }
    return QVariant(storedText(stored));
}

// Filter keys carry the filter's index as decimal digits after the key text.
struct FilterKeys {
    explicit FilterKeys(int index) : suffix(QString::number(index)) {}
    QString operator()(const QString &text) const { return text + suffix; }
    QString check(const QString &parameter) const
    {
        return QStringLiteral("check_") + parameter + QLatin1Char(' ') + suffix;
    }
    QString value(const QString &parameter) const { return parameter + QLatin1Char(' ') + suffix; }
    const QString suffix;
};

struct FlagKey {
    const char *key;
    bool FilterPack::*flag;
};

// In the order the flags are written.
const FlagKey kFlagKeys[] = {
    {"Check from ", &FilterPack::checkFrom},
    {"Check to ", &FilterPack::checkTo},
    {"Check ID ", &FilterPack::checkId},
    {"Check event types ", &FilterPack::checkEventTypes},
    {"Check type excludes ", &FilterPack::checkTypeExcludes},
    {"Check name contains ", &FilterPack::checkNameContains},
    {"Check name excludes ", &FilterPack::checkNameExcludes},
    {"Check priorities ", &FilterPack::checkPriorities},
    {"Check search ", &FilterPack::checkSearch},
    {"Check case sensitive ", &FilterPack::caseSensitive},
    {"Check whole word ", &FilterPack::wholeWord},
};

struct TextKey {
    const char *key;
    QString FilterPack::*text;
};

const TextKey kTextKeysBeforeDates[] = {{"Name ", &FilterPack::name}};
const TextKey kTextKeysAfterDates[] = {
    {"ID ", &FilterPack::id},
    {"Type excludes ", &FilterPack::typeExcludes},
    {"Name contains ", &FilterPack::nameContains},
    {"Name excludes ", &FilterPack::nameExcludes},
    {"Search ", &FilterPack::search},
};

// A priority's flag is keyed by the priority's word in the language the program ran in
// when it wrote the filter. Every word a file may hold is known here, not only the running
// language's, so that a filter saved under one language keeps its priorities under the
// other, and under a catalogue that has since reworded one.
struct PriorityWords {
    Event::Priority priority;
    const char *english;
    const char *russian;
};

const PriorityWords kPriorityWords[] = {
    {Event::Emergency, "emergency", "авария"},
    {Event::Alert, "alert", "тревога"},
    {Event::Critical, "critical", "критическая ошибка"},
    {Event::Error, "error", "ошибка"},
    {Event::Warning, "warning", "предупреждение"},
    {Event::Notice, "notice", "уведомление"},
    {Event::Info, "info", "информация"},
    {Event::Debug, "debug", "отладка"},
};

// The running language's word first: it is the one this version writes.
QStringList priorityWords(Event::Priority priority, const QString &current)
{
    QStringList words{current};
    for (const PriorityWords &known : kPriorityWords) {
        if (known.priority != priority)
            continue;
        for (const char *word : {known.english, known.russian}) {
            const QString text = QString::fromUtf8(word);
            if (!words.contains(text))
                words.append(text);
        }
    }
    return words;
}

void writeFilter(QSettings &settings, const FilterPack &pack, int index)
{
    const FilterKeys keys(index);
    for (const TextKey &text : kTextKeysBeforeDates)
        settings.setValue(keys(QLatin1String(text.key)), pack.*text.text);
    settings.setValue(keys(QStringLiteral("From ")), pack.from);
    settings.setValue(keys(QStringLiteral("To ")), pack.to);
    for (const TextKey &text : kTextKeysAfterDates)
        settings.setValue(keys(QLatin1String(text.key)), pack.*text.text);

    const Dictionary &dictionary = Dictionary::instance();
    settings.beginGroup(kEventTypesGroup);
    const QMap<QString, QString> &types = dictionary.eventTypes();
    for (auto it = types.cbegin(); it != types.cend(); ++it)
        settings.setValue(keys(it.key()), pack.eventTypes.contains(it.value()) ? 1 : 0);
    settings.endGroup();
    const QMap<Event::Priority, QString> &priorities = dictionary.priorities();
    for (auto it = priorities.cbegin(); it != priorities.cend(); ++it) {
        // A flag left from a run in another language would contradict this one on reading.
        const QStringList words = priorityWords(it.key(), it.value());
        for (int i = 1; i < words.size(); ++i)
            settings.remove(keys(words.at(i)));
        settings.setValue(keys(it.value()), pack.priorities.contains(int(it.key())) ? 1 : 0);
    }

    for (const FlagKey &flag : kFlagKeys)
        settings.setValue(keys(QLatin1String(flag.key)), pack.*flag.flag);

    const AuxParRegistry &registry = AuxParRegistry::instance();
    for (int type = 0; type < registry.count(); ++type) {
        if (AuxParRegistry::isExcludedFromMatching(type))
            continue;
        const QString name = registry.prototype(type)->key();
        const auto condition = pack.auxConditions.constFind(type);
        const bool checked = condition != pack.auxConditions.cend();
        settings.setValue(keys.check(name), checked);
        if (checked)
            settings.setValue(keys.value(name), condition.value());
    }
    for (const CustomParameter &custom : registry.customParameters()) {
        const auto condition = pack.customConditions.constFind(custom.name);
        const bool checked = condition != pack.customConditions.cend();
        settings.setValue(keys.check(custom.name), checked);
        if (checked)
            settings.setValue(keys.value(custom.name), condition.value());
    }
}

FilterPack readFilter(QSettings &settings, int index)
{
    const FilterKeys keys(index);
    FilterPack pack;
    for (const TextKey &text : kTextKeysBeforeDates)
        pack.*text.text = storedText(settings.value(keys(QLatin1String(text.key))));
    pack.from = storedTime(settings.value(keys(QStringLiteral("From "))));
    pack.to = storedTime(settings.value(keys(QStringLiteral("To "))));
    for (const TextKey &text : kTextKeysAfterDates)
        pack.*text.text = storedText(settings.value(keys(QLatin1String(text.key))));

    const Dictionary &dictionary = Dictionary::instance();
    settings.beginGroup(kEventTypesGroup);
    const QMap<QString, QString> &types = dictionary.eventTypes();
    for (auto it = types.cbegin(); it != types.cend(); ++it) {
        // Two groups may share a display text; the pack holds it once, as it was saved.
        if (flagSet(settings.value(keys(it.key()))) && !pack.eventTypes.contains(it.value()))
            pack.eventTypes.append(it.value());
    }
    settings.endGroup();
    const QMap<Event::Priority, QString> &priorities = dictionary.priorities();
    for (auto it = priorities.cbegin(); it != priorities.cend(); ++it) {
        const QStringList words = priorityWords(it.key(), it.value());
        const auto stored = std::find_if(words.cbegin(), words.cend(),
                                         [&](const QString &word) { return settings.contains(keys(word)); });
        if (stored != words.cend() && flagSet(settings.value(keys(*stored))))
            pack.priorities.append(int(it.key()));
    }

    for (const FlagKey &flag : kFlagKeys)
        pack.*flag.flag = settings.value(keys(QLatin1String(flag.key)), false).toBool();

    const AuxParRegistry &registry = AuxParRegistry::instance();
    for (int type = 0; type < registry.count(); ++type) {
        if (AuxParRegistry::isExcludedFromMatching(type))
            continue;
        const QString name = registry.prototype(type)->key();
        if (!settings.value(keys.check(name), false).toBool())
            continue;
        const QVariant value = conditionValue(type, settings.value(keys.value(name)));
        if (value.isValid())
            pack.auxConditions.insert(type, value);
    }
    // Custom parameters are compared as the text the journal gives them.
    for (const CustomParameter &custom : registry.customParameters()) {
        if (!settings.value(keys.check(custom.name), false).toBool())
            continue;
        const QVariant value = settings.value(keys.value(custom.name));
        if (value.isValid())
            pack.customConditions.insert(custom.name, QVariant(storedText(value)));
    }
    return pack;
}
}

ConfigHandler::ConfigHandler(QObject *parent) : ConfigHandler(ConfigStore::instance(), parent)
{
}

ConfigHandler::ConfigHandler(ConfigStore &store, QObject *parent) : QObject(parent), m_store(store)
{
}

QString ConfigHandler::settingsFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QLatin1Char('/') +
           organizationName() + QLatin1Char('/') + applicationName() + QStringLiteral(".conf");
}

void ConfigHandler::readConfig()
{
    SettingsFileGuard::dropUnsafeLines(settingsFilePath());
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope, organizationName(), applicationName());
    readWindow(settings);
    readVisibleColumns(settings);
    readApplicationSettings(settings);
    readRecentFiles(settings);
    readFavorites(settings);
    readFilters(settings);
}

// The file QSettings reads for the user, also where QSettings::setPath moved it. Asked
// of a name no file has, so that the user's file is not parsed before its guard ran.
static QString userSettingsFile()
{
    const QSettings probe(QSettings::NativeFormat, QSettings::UserScope, ConfigHandler::organizationName(),
                          ConfigHandler::applicationName() + QStringLiteral("-location"));
    return QFileInfo(probe.fileName()).absolutePath() + QLatin1Char('/') + ConfigHandler::applicationName()
        + QStringLiteral(".conf");
}

bool ConfigHandler::writeConfig()
{
    const QString path = userSettingsFile();
    const QByteArray earlier = SettingsFileGuard::safeContent(SettingsFileGuard::readFile(path));
    QByteArray content;
    QString error;
    const bool written = draftFile(earlier, &content, &error) && SettingsFileGuard::replaceFile(path, content, &error);
    if (!written)
        qWarning("The settings could not be saved to %s: %s", qPrintable(path), qPrintable(error));
    emit configWritten();
    if (!written)
        emit writeFailed(path, error);
    return written;
}

// Qt's settings writer reports success for a file whose last write was cut short (a
// full disk), and the cut file replaces the earlier one. It therefore writes a draft in
// a folder of its own, which is read back under a name Qt has not cached and compared
// with what was meant before its bytes go anywhere near the user's file.
bool ConfigHandler::draftFile(const QByteArray &earlier, QByteArray *content, QString *error) const
{
    const QString cutShort = tr("The settings could not be written in full to a temporary file.");
    QTemporaryDir scratch(QDir::tempPath() + QStringLiteral("/nimb-event-viewer-XXXXXX"));
    if (!scratch.isValid()) {
        *error = scratch.errorString();
        return false;
    }
    const QString draft = scratch.filePath(QStringLiteral("draft.conf"));
    if (!SettingsFileGuard::replaceFile(draft, earlier, error))
        return false;
    QHash<QString, QVariant> meant;
    {
        QSettings settings(draft, QSettings::NativeFormat);
        forgetDamagedFile(settings);
        writeWindow(settings);
        writeVisibleColumns(settings);
        writeApplicationSettings(settings);
        writeRecentFiles(settings);
        writeFavorites(settings);
        writeFilters(settings);
        settings.sync();
        // A format error is the earlier file's, and Qt writes the file all the same.
        if (settings.status() == QSettings::AccessError) {
            *error = cutShort;
            return false;
        }
        const QStringList keys = settings.allKeys();
        for (const QString &key : keys)
            meant.insert(key, settings.value(key));
    }
    const QString check = scratch.filePath(QStringLiteral("check.conf"));
    bool whole = QFile::rename(draft, check);
    if (whole) {
        const QSettings settings(check, QSettings::NativeFormat);
        for (auto it = meant.cbegin(); whole && it != meant.cend(); ++it) {
            const QVariant read = settings.value(it.key());
            // The file holds text: a number or a flag reads back as its text.
            whole = read == it.value() || (read.isValid() && read.toString() == it.value().toString());
        }
    }
    if (!whole) {
        *error = cutShort;
        return false;
    }
    QFile file(check);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return false;
    }
    *content = file.readAll();
    return true;
}

void ConfigHandler::readWindow(QSettings &settings)
{
    settings.beginGroup(kWindowGroup);
    m_store.geometry() = settings.value(QStringLiteral("Geometry")).toByteArray();
    m_store.state() = settings.value(QStringLiteral("State")).toByteArray();
    m_store.maximized() = settings.value(QStringLiteral("Maximized"), false).toBool();
    m_store.pos() = settings.value(QStringLiteral("Pos"), QPoint(0, 0)).toPoint();
    m_store.size() = settings.value(QStringLiteral("Size"), QSize()).toSize();
    settings.endGroup();
}

void ConfigHandler::writeWindow(QSettings &settings) const
{
    settings.beginGroup(kWindowGroup);
    settings.setValue(QStringLiteral("Geometry"), m_store.geometry());
    settings.setValue(QStringLiteral("State"), m_store.state());
    settings.setValue(QStringLiteral("Maximized"), m_store.maximized());
    // A maximised window's geometry says nothing about where it should return to,
    // so the last normal position and size are kept.
    if (!m_store.maximized()) {
        settings.setValue(QStringLiteral("Pos"), m_store.pos());
        settings.setValue(QStringLiteral("Size"), m_store.size());
    }
    settings.endGroup();
}

void ConfigHandler::readVisibleColumns(QSettings &settings)
{
    const AuxParRegistry &registry = AuxParRegistry::instance();
    settings.beginGroup(kColumnsGroup);
    m_store.visibleColumns().clear();
    for (int type = 0; type < registry.count(); ++type) {
        if (flagSet(settings.value(registry.prototype(type)->key(), 0)))
            m_store.visibleColumns().append(type);
    }
    m_store.visibleCustomColumns().clear();
    for (const CustomParameter &custom : registry.customParameters()) {
        if (flagSet(settings.value(custom.name, 0)))
            m_store.visibleCustomColumns().append(custom.name);
    }
    settings.endGroup();
}

void ConfigHandler::writeVisibleColumns(QSettings &settings) const
{
    const AuxParRegistry &registry = AuxParRegistry::instance();
    settings.beginGroup(kColumnsGroup);
    for (int type = 0; type < registry.count(); ++type)
        settings.setValue(registry.prototype(type)->key(), m_store.visibleColumns().contains(type) ? 1 : 0);
    for (const CustomParameter &custom : registry.customParameters())
        settings.setValue(custom.name, m_store.visibleCustomColumns().contains(custom.name) ? 1 : 0);
    settings.endGroup();
}

void ConfigHandler::readApplicationSettings(QSettings &settings)
{
    settings.beginGroup(kApplicationGroup);
    const QString path = storedText(settings.value(QStringLiteral("Main log path")));
    m_store.mainLogPath() = path.isEmpty() ? SystemPaths::defaultJournal() : path;
    // Only sizes the settings dialog could have written are trusted: zero would stall
    // the pager and a huge one would try to load a whole journal into one page.
    bool ok = false;
    const int perPage = settings.value(QStringLiteral("Messages per page")).toInt(&ok);
    const bool usable = ok && perPage >= ConfigStore::kMinMessagesPerPage
                        && perPage <= ConfigStore::kMaxMessagesPerPage;
    m_store.messagesPerPage() = usable ? perPage : ConfigStore::kDefaultMessagesPerPage;
    m_store.showTimeline() = settings.value(QStringLiteral("Show timeline"), true).toBool();
    settings.endGroup();
}

void ConfigHandler::writeApplicationSettings(QSettings &settings) const
{
    settings.beginGroup(kApplicationGroup);
    settings.setValue(QStringLiteral("Main log path"), m_store.mainLogPath());
    settings.setValue(QStringLiteral("Messages per page"), m_store.messagesPerPage());
    settings.setValue(QStringLiteral("Show timeline"), m_store.showTimeline());
    settings.endGroup();
}

void ConfigHandler::readRecentFiles(QSettings &settings)
{
    settings.beginGroup(kRecentGroup);
    const QStringList paths = readList(settings, kRecentCount, kRecentEntry);
    settings.endGroup();
    // Through the add rule, so that a hand-made list is held to at most five.
    m_store.clearRecentFiles();
    for (const QString &path : paths) {
        if (!path.isEmpty())
            m_store.addRecentFile(path);
    }
}

void ConfigHandler::writeRecentFiles(QSettings &settings) const
{
    settings.beginGroup(kRecentGroup);
    writeList(settings, kRecentCount, kRecentEntry, m_store.recentFiles());
    settings.endGroup();
}

void ConfigHandler::readFavorites(QSettings &settings)
{
    settings.beginGroup(kFavoritesGroup);
    const QStringList ids = readList(settings, kFavoritesCount, kFavoritesEntry);
    settings.endGroup();
    m_store.favoriteEvents().clear();
    for (const QString &id : ids) {
        if (!id.isEmpty())
            m_store.favoriteEvents().insert(id);
    }
}

void ConfigHandler::writeFavorites(QSettings &settings) const
{
    settings.beginGroup(kFavoritesGroup);
    writeList(settings, kFavoritesCount, kFavoritesEntry, m_store.favoriteEvents());
    settings.endGroup();
}

void ConfigHandler::readFilters(QSettings &settings)
{
    settings.beginGroup(kFiltersGroup);
    // A saved filter always has its name key, so the first index without one ends
    // the list however large the count claims to be.
    const int count = settings.value(kFiltersCount).toInt();
    QList<FilterPack> filters;
    for (int i = 0; i < count && settings.contains(kFilterName + QString::number(i)); ++i)
        filters.append(readFilter(settings, i));
    settings.endGroup();
    m_store.savedFilters() = filters;
}

void ConfigHandler::writeFilters(QSettings &settings) const
{
    settings.beginGroup(kFiltersGroup);
    const QList<FilterPack> &filters = m_store.savedFilters();
    settings.setValue(kFiltersCount, filters.size());
    for (int i = 0; i < filters.size(); ++i)
        writeFilter(settings, filters.at(i), i);
    settings.endGroup();
}
