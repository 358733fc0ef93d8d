// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilterOptions.h"

#include "AuxParKindTable.h"
#include "AuxParRegistry.h"
#include "Dictionary.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QStringList>

namespace
{
const QString kFrom = QStringLiteral("from");
const QString kTo = QStringLiteral("to");
const QString kId = QStringLiteral("id");
const QString kType = QStringLiteral("type");
const QString kTypeExcludes = QStringLiteral("type-excludes");
const QString kNameContains = QStringLiteral("name-contains");
const QString kNameExcludes = QStringLiteral("name-excludes");
const QString kPriority = QStringLiteral("priority");
const QString kSearch = QStringLiteral("search");
const QString kCaseSensitive = QStringLiteral("case-sensitive");
const QString kWholeWord = QStringLiteral("whole-word");
const QString kParam = QStringLiteral("param");
const QString kCustom = QStringLiteral("custom");

QString dashed(const QString &name)
{
    return QStringLiteral("--") + name;
}

bool readDateTime(const QCommandLineParser &parser, const QString &name, QDateTime *result, QString *error)
{
    const QString text = parser.value(name);
    *result = QDateTime::fromString(text, Qt::ISODate);
    if (result->isValid())
        return true;
    *error = QStringLiteral("%1: '%2' is not an ISO 8601 date-time (e.g. 2024-03-01T10:15:00)").arg(dashed(name), text);
    return false;
}

// The text filters refuse an empty value, as the filter dialog does: an empty exclusion
// would hide every event, which is never what the caller meant.
bool readText(const QCommandLineParser &parser, const QString &name, QString *result, QString *error)
{
    *result = parser.value(name);
    if (!result->isEmpty())
        return true;
    *error = QStringLiteral("%1 needs a non-empty text").arg(dashed(name));
    return false;
}

bool splitAssignment(const QString &assignment, QString *key, QString *value)
{
    const int equals = assignment.indexOf(QLatin1Char('='));
    if (equals <= 0)
        return false;
    *key = assignment.left(equals).trimmed();
    *value = assignment.mid(equals + 1);
    return !key->isEmpty();
}

bool readBoolean(const QString &text, const AuxParKindInfo &kind, bool *result)
{
    const QString word = text.trimmed().toLower();
    static const QStringList yes{QStringLiteral("yes"), QStringLiteral("true"), QStringLiteral("1"),
                                 QStringLiteral("success")};
    static const QStringList no{QStringLiteral("no"), QStringLiteral("false"), QStringLiteral("0"),
                                QStringLiteral("failed")};
    // The kind's own display words ("enabled"/"disabled" for the state) read naturally too.
    if (yes.contains(word) || (kind.trueWord && word == QLatin1String(kind.trueWord))) {
        *result = true;
        return true;
    }
    if (no.contains(word) || (kind.falseWord && word == QLatin1String(kind.falseWord))) {
        *result = false;
        return true;
    }
    return false;
}

bool readSignal(const QString &text, qlonglong *result)
{
    bool ok = false;
    *result = text.trimmed().toLongLong(&ok);
    if (ok)
        return true;
    const auto &names = Dictionary::instance().signalNames();
    QString name = text.trimmed().toUpper();
    if (!name.startsWith(QLatin1String("SIG")))
        name.prepend(QLatin1String("SIG"));
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        if (it.value() == name) {
            *result = it.key();
            return true;
        }
    }
    return false;
}
}

namespace FilterOptions
{

void addTo(QCommandLineParser &parser)
{
    parser.addOptions({
        {kFrom, QStringLiteral("Only events at or after this ISO 8601 date-time."), QStringLiteral("datetime")},
        {kTo, QStringLiteral("Only events at or before this ISO 8601 date-time."), QStringLiteral("datetime")},
        {kId, QStringLiteral("Only events with this message ID."), QStringLiteral("message-id")},
        {kType, QStringLiteral("Only events of this event type (repeatable)."), QStringLiteral("type")},
        {kTypeExcludes, QStringLiteral("Hide events whose type contains this text."), QStringLiteral("text")},
        {kNameContains, QStringLiteral("Only events whose name contains this text."), QStringLiteral("text")},
        {kNameExcludes, QStringLiteral("Hide events whose name contains this text."), QStringLiteral("text")},
        {kPriority,
         QStringLiteral("Only events of this priority, a word such as 'error' or a number 1-8 "
                        "(repeatable, or comma-separated)."),
         QStringLiteral("priority")},
        {kSearch, QStringLiteral("Only events with this keyword in one of their texts."), QStringLiteral("keyword")},
        {kCaseSensitive, QStringLiteral("The keyword search respects case.")},
        {kWholeWord, QStringLiteral("The keyword search matches whole words only.")},
        {kParam,
         QStringLiteral("Only events whose built-in parameter KEY has this value, e.g. uid=1000 or "
                        "result=failed (repeatable)."),
         QStringLiteral("KEY=VALUE")},
        {kCustom, QStringLiteral("Only events whose custom parameter NAME has this value (repeatable)."),
         QStringLiteral("NAME=VALUE")},
    });
}

bool anyGiven(const QCommandLineParser &parser)
{
    for (const QString &name : {kFrom, kTo, kId, kType, kTypeExcludes, kNameContains, kNameExcludes, kPriority,
                                kSearch, kCaseSensitive, kWholeWord, kParam, kCustom}) {
        if (parser.isSet(name))
            return true;
    }
    return false;
}

Event::Priority parsePriority(const QString &text)
{
    const QString trimmed = text.trimmed();
    bool isNumber = false;
    const int number = trimmed.toInt(&isNumber);
    if (isNumber)
        return number >= Event::Emergency && number <= Event::Debug ? Event::Priority(number) : Event::Unknown;
    const Event::Priority fromJournalWord = Event::priorityFromWord(trimmed.toLower());
    if (fromJournalWord != Event::Unknown)
        return fromJournalWord;
    // The display words, which differ from the journal's under a translated interface.
    const auto &words = Dictionary::instance().priorities();
    for (auto it = words.cbegin(); it != words.cend(); ++it) {
        if (it.value().compare(trimmed, Qt::CaseInsensitive) == 0)
            return it.key();
    }
    return Event::Unknown;
}

bool parseParameterCondition(const QString &assignment, int *type, QVariant *value, QString *error)
{
    QString key;
    QString text;
    if (!splitAssignment(assignment, &key, &text)) {
        *error = QStringLiteral("--param: '%1' is not of the form KEY=VALUE").arg(assignment);
        return false;
    }
    *type = AuxParRegistry::instance().typeOf(key);
    if (*type < 0) {
        *error = QStringLiteral("--param: unknown parameter '%1'").arg(key);
        return false;
    }
    if (AuxParRegistry::isExcludedFromMatching(*type)) {
        *error = QStringLiteral("--param: parameter '%1' takes no part in filtering (use --from/--to or --type)")
                     .arg(key);
        return false;
    }
    const AuxParKindInfo &kind = kAuxParKinds[*type];
    switch (kind.family) {
    case AuxParFamily::Integer:
    case AuxParFamily::LongLong: {
        bool ok = false;
        const qlonglong number = text.trimmed().toLongLong(&ok);
        if (!ok) {
            *error = QStringLiteral("--param: '%1' needs a whole number, not '%2'").arg(key, text);
            return false;
        }
        *value = number;
        return true;
    }
    case AuxParFamily::Signal: {
        qlonglong number = 0;
        if (!readSignal(text, &number)) {
            *error = QStringLiteral("--param: '%1' needs a signal number or name, not '%2'").arg(key, text);
            return false;
        }
        *value = number;
        return true;
    }
    case AuxParFamily::Bool: {
        bool flag = false;
        if (!readBoolean(text, kind, &flag)) {
            *error = QStringLiteral("--param: '%1' needs yes/no, true/false, 1/0 or success/failed, not '%2'")
                         .arg(key, text);
            return false;
        }
        *value = flag;
        return true;
    }
    case AuxParFamily::Mac:
    case AuxParFamily::Source:
    case AuxParFamily::String:
    case AuxParFamily::Time:
        break;
    }
    *value = text;
    return true;
}

bool build(const QCommandLineParser &parser, FilterPack *pack, QString *error)
{
    FilterPack result;
    // Criteria that take one value and switch their own test on.
    struct TimeBound {
        const QString &option;
        QDateTime FilterPack::*value;
        bool FilterPack::*check;
    };
    const TimeBound bounds[] = {{kFrom, &FilterPack::from, &FilterPack::checkFrom},
                                {kTo, &FilterPack::to, &FilterPack::checkTo}};
    for (const TimeBound &bound : bounds) {
        if (!parser.isSet(bound.option))
            continue;
        if (!readDateTime(parser, bound.option, &(result.*bound.value), error))
            return false;
        result.*bound.check = true;
    }
    if (result.checkFrom && result.checkTo && result.to < result.from) {
        *error = QStringLiteral("--to is earlier than --from");
        return false;
    }
    struct TextCriterion {
        const QString &option;
        QString FilterPack::*value;
        bool FilterPack::*check;
    };
    const TextCriterion texts[] = {{kId, &FilterPack::id, &FilterPack::checkId},
                                   {kTypeExcludes, &FilterPack::typeExcludes, &FilterPack::checkTypeExcludes},
                                   {kNameContains, &FilterPack::nameContains, &FilterPack::checkNameContains},
                                   {kNameExcludes, &FilterPack::nameExcludes, &FilterPack::checkNameExcludes},
                                   {kSearch, &FilterPack::search, &FilterPack::checkSearch}};
    for (const TextCriterion &criterion : texts) {
        if (!parser.isSet(criterion.option))
            continue;
        if (!readText(parser, criterion.option, &(result.*criterion.value), error))
            return false;
        result.*criterion.check = true;
    }
    if (parser.isSet(kType)) {
        const QStringList types = parser.values(kType);
        for (const QString &type : types) {
            if (type.isEmpty()) {
                *error = QStringLiteral("--type needs a non-empty event type");
                return false;
            }
            result.eventTypes.append(type);
        }
        result.checkEventTypes = true;
    }
    if (parser.isSet(kPriority)) {
        const QStringList values = parser.values(kPriority);
        for (const QString &value : values) {
            const QStringList words = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
            if (words.isEmpty()) {
                *error = QStringLiteral("--priority needs a priority word or a number 1-8");
                return false;
            }
            for (const QString &word : words) {
                const Event::Priority priority = parsePriority(word);
                if (priority == Event::Unknown) {
                    *error = QStringLiteral("--priority: '%1' is neither a priority word nor a number 1-8").arg(word);
                    return false;
                }
                if (!result.priorities.contains(priority))
                    result.priorities.append(priority);
            }
        }
        result.checkPriorities = true;
    }
    if ((parser.isSet(kCaseSensitive) || parser.isSet(kWholeWord)) && !result.checkSearch) {
        *error = QStringLiteral("--case-sensitive and --whole-word refine --search, which is missing");
        return false;
    }
    result.caseSensitive = parser.isSet(kCaseSensitive);
    result.wholeWord = parser.isSet(kWholeWord);

    const QStringList conditions = parser.values(kParam);
    for (const QString &assignment : conditions) {
        int type = -1;
        QVariant value;
        if (!parseParameterCondition(assignment, &type, &value, error))
            return false;
        result.auxConditions.insert(type, value);
    }
    const QStringList customConditions = parser.values(kCustom);
    for (const QString &assignment : customConditions) {
        QString name;
        QString value;
        if (!splitAssignment(assignment, &name, &value)) {
            *error = QStringLiteral("--custom: '%1' is not of the form NAME=VALUE").arg(assignment);
            return false;
        }
        if (!AuxParRegistry::instance().isCustom(name)) {
            *error = QStringLiteral("--custom: '%1' is not a custom parameter of this system").arg(name);
            return false;
        }
        result.customConditions.insert(name, value);
    }
    *pack = result;
    return true;
}

}
