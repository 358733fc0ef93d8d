// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LineFilter.h"

#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "Language.h"
#include "LineParser.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{
using Kind = JsonLineScanner::Kind;

enum Special { MessageId, NameEn, NameRu, SpecialCount };
const char *const kSpecialKeys[SpecialCount] = {"message_id", "name_en", "name_ru"};

// Every character that texts rendered from numbers and times can hold:
// "-12", "1.5e+20", "2024-03-01T10:00:00+03:00".
const char kRenderedCharacters[] = "0123456789-+.:eETZ";

bool present(const JsonLineScanner::Value &value)
{
    return value.kind != Kind::Missing && value.kind != Kind::Null;
}

bool isAsciiLetterOrDigit(uchar c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

uchar asciiLower(uchar c)
{
    return c >= 'A' && c <= 'Z' ? uchar(c + 32) : c;
}

// The two bytes of a Cyrillic letter А-я (U+0410-U+044F), which the keyword's word
// boundaries count as a letter.
bool isCyrillicLetter(uchar lead, uchar next)
{
    return (lead == 0xd0 && next >= 0x90 && next <= 0xbf) || (lead == 0xd1 && next >= 0x80 && next <= 0x8f);
}

// ASCII characters that some other character equals when case is ignored (the Kelvin
// sign and 'k', the dotted capital I and 'i', ...): a keyword holding one of them
// cannot be matched byte by byte.
std::array<bool, 128> asciiWithForeignCases()
{
    std::array<bool, 128> foreign{};
    for (uint code = 0x80; code <= 0xffff; ++code) {
        const QChar c{ushort(code)};
        for (const QChar related : {c.toLower(), c.toUpper(), c.toCaseFolded()}) {
            const ushort unit = related.unicode();
            if (unit < 0x80) {
                foreign[unit] = true;
                foreign[QChar(unit).toLower().unicode()] = true;
                foreign[QChar(unit).toUpper().unicode()] = true;
            }
        }
    }
    return foreign;
}

// Whether a keyword character can stand for some character of the rendered texts.
bool matchesRendered(QChar c, Qt::CaseSensitivity sensitivity)
{
    for (const char *r = kRenderedCharacters; *r; ++r) {
        const QChar rendered = QLatin1Char(*r);
        if (c == rendered)
            return true;
        if (sensitivity == Qt::CaseInsensitive
            && (c.toLower() == rendered.toLower() || c.toCaseFolded() == rendered.toCaseFolded()
                || c.toUpper() == rendered.toUpper()))
            return true;
    }
    return false;
}

bool bytesBefore(const JsonLineScanner::Text &a, const JsonLineScanner::Text &b)
{
    return std::lexicographical_compare(reinterpret_cast<const uchar *>(a.data),
                                        reinterpret_cast<const uchar *>(a.data) + a.size,
                                        reinterpret_cast<const uchar *>(b.data),
                                        reinterpret_cast<const uchar *>(b.data) + b.size);
}
}

LineFilter::LineFilter(const FilterPack &pack)
    : m_pack(pack)
    , m_russian(Language::isRussian())
{
    const AuxParRegistry &registry = AuxParRegistry::instance();
    for (int type = 0; type < kAuxParKindCount; ++type)
        m_roles[QByteArray(kAuxParKinds[type].key)].type = type;
    for (int special = 0; special < SpecialCount; ++special)
        m_roles[QByteArray(kSpecialKeys[special])].special = special;
    const QVector<CustomParameter> &customs = registry.customParameters();
    for (int i = 0; i < customs.size(); ++i) {
        m_roles[customs[i].name.toUtf8()].custom = i;
        // The event finds a custom member by binary search in an order that differs from
        // the order of its members for characters from U+D800 up: leave those to it.
        if (!pack.customConditions.isEmpty()
            && std::any_of(customs[i].name.begin(), customs[i].name.end(),
                           [](QChar c) { return c.unicode() >= 0xd800; }))
            m_alwaysInFull = true;
    }
    m_body.custom.resize(size_t(customs.size()));

    m_needsBody = pack.checkId || pack.checkEventTypes || pack.checkTypeExcludes || pack.checkNameContains
        || pack.checkNameExcludes || !pack.auxConditions.isEmpty() || !pack.customConditions.isEmpty()
        || pack.checkSearch;
    if (pack.from.isValid())
        m_fromMsecs = pack.from.toMSecsSinceEpoch();
    if (pack.to.isValid())
        m_toMsecs = pack.to.toMSecsSinceEpoch();
    if (!pack.checkSearch)
        return;

    // What the keyword can be found in, worked out once with the keyword test itself.
    const QString &keyword = pack.search;
    const Qt::CaseSensitivity sensitivity = pack.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    m_emptyHit = keywordIn(QString());
    // Then every event matches through its empty texts: rare enough to leave to the event.
    m_alwaysInFull = m_alwaysInFull || m_emptyHit;
    // The search of the joined undefined text can run across its ": " and "; ".
    m_keywordPlain = !keyword.isEmpty() && !m_emptyHit
        && std::all_of(keyword.begin(), keyword.end(),
                       [](QChar c) { return c.unicode() < 0x80 && c != QLatin1Char(':') && c != QLatin1Char(';'); });
    if (m_keywordPlain && sensitivity == Qt::CaseInsensitive) {
        static const std::array<bool, 128> foreign = asciiWithForeignCases();
        m_keywordPlain = std::none_of(keyword.begin(), keyword.end(), [](QChar c) { return foreign[c.unicode()]; });
    }
    m_keyword = keyword.toLatin1();
    if (sensitivity == Qt::CaseInsensitive)
        std::transform(m_keyword.begin(), m_keyword.end(), m_keyword.begin(), [](char c) { return char(asciiLower(uchar(c))); });
    m_keywordInNumbers = std::all_of(keyword.begin(), keyword.end(),
                                     [sensitivity](QChar c) { return matchesRendered(c, sensitivity); });

    for (int priority = 0; priority <= Event::Debug; ++priority)
        m_priorityHits[size_t(priority)] = keywordIn(FilterPack::searchPriorityWord(Event::Priority(priority)));
    const Dictionary &dictionary = Dictionary::instance();
    for (auto it = dictionary.sources().cbegin(); it != dictionary.sources().cend(); ++it)
        m_sourceHits[it.key().toUtf8()] = keywordIn(dictionary.sourceText(it.key()));
    m_unrecognizedSourceHit = keywordIn(dictionary.unrecognizedSourceText());
    for (auto it = dictionary.signalNames().cbegin(); it != dictionary.signalNames().cend(); ++it)
        m_anySignalHit = m_anySignalHit || keywordIn(it.value());
    for (int type = 0; type < kAuxParKindCount; ++type) {
        if (kAuxParKinds[type].family != AuxParFamily::Bool)
            continue;
        for (const bool flag : {true, false}) {
            prototype(type).setValue(flag);
            m_anyBoolHit = m_anyBoolHit || keywordIn(prototype(type).toString());
        }
    }
}

LineFilter::~LineFilter() = default;

LineFilter::Result LineFilter::test(const char *data, qsizetype size)
{
    m_lineEnd = reinterpret_cast<const uchar *>(data + size);
    if (!m_alwaysInFull) {
        switch (m_acceptor.judge(data, size)) {
        case LineAcceptor::Answer::Rejected: return Result::Unreadable;
        case LineAcceptor::Answer::Unsure: break;
        case LineAcceptor::Answer::Accepted:
            switch (evaluate()) {
            case Answer::Yes: return Result::Passed;
            case Answer::No: return Result::Failed;
            case Answer::Unsure: break;
            }
            break;
        }
    }
    ++m_parsedInFull;
    const std::unique_ptr<Event> event = LineParser::parseLine(QByteArray::fromRawData(data, int(size)));
    if (!event)
        return Result::Unreadable;
    return m_pack.match(*event) ? Result::Passed : Result::Failed;
}

// Every test of the pack, cheapest first: the order cannot change a conjunction.
LineFilter::Answer LineFilter::evaluate()
{
    m_bodyRead = false;
    const JsonLineScanner &scanner = m_acceptor.scanner();
    const Value &priorityValue = scanner.root(JsonLineScanner::Priority);
    m_priority = Event::Unknown;
    if (priorityValue.kind == Kind::String) {
        m_priority = priorityValue.text.escaped
            ? Event::priorityFromWord(JsonLineScanner::text(priorityValue.text))
            : Event::priorityFromWord(QLatin1String(priorityValue.text.data, priorityValue.text.size));
    }
    if (m_pack.checkPriorities && !m_pack.priorities.contains(int(m_priority)))
        return Answer::No;
    if (m_needsBody && body().repeated)
        return Answer::Unsure;

    bool unsure = false;
    for (Answer (LineFilter::*test)() :
         {&LineFilter::testTexts, &LineFilter::testTime, &LineFilter::testConditions, &LineFilter::testCustom,
          &LineFilter::testKeyword}) {
        const Answer answer = (this->*test)();
        if (answer == Answer::No)
            return Answer::No;
        unsure = unsure || answer == Answer::Unsure;
    }
    return unsure ? Answer::Unsure : Answer::Yes;
}

const LineFilter::Body &LineFilter::body()
{
    if (m_bodyRead)
        return m_body;
    m_bodyRead = true;
    m_body.registered.fill(nullptr);
    m_body.special.fill(nullptr);
    std::fill(m_body.custom.begin(), m_body.custom.end(), nullptr);
    m_body.unknown.clear();
    m_body.repeated = false;
    auto place = [this](const Member *&slot, const Member &member) {
        m_body.repeated = m_body.repeated || slot != nullptr;
        slot = &member;
    };
    for (const Member &member : m_acceptor.scanner().body()) {
        const KeyRole *role = roleOf(member.name);
        if (!role) {
            for (const Member *other : m_body.unknown)
                m_body.repeated = m_body.repeated || other->name == member.name;
            m_body.unknown.push_back(&member);
            continue;
        }
        if (role->type >= 0)
            place(m_body.registered[size_t(role->type)], member);
        if (role->special >= 0)
            place(m_body.special[size_t(role->special)], member);
        if (role->custom >= 0)
            place(m_body.custom[size_t(role->custom)], member);
    }
    return m_body;
}

const LineFilter::KeyRole *LineFilter::roleOf(const Text &name) const
{
    return m_roles.find(name.data, name.size);
}

LineFilter::Answer LineFilter::testTexts()
{
    if (!m_pack.checkId && !m_pack.checkNameContains && !m_pack.checkNameExcludes && !m_pack.checkEventTypes
        && !m_pack.checkTypeExcludes)
        return Answer::Yes;
    const Body &members = body();
    if (m_pack.checkId && plainText(members.special[MessageId]) != m_pack.id)
        return Answer::No;
    if (m_pack.checkNameContains || m_pack.checkNameExcludes) {
        const QString name = plainText(members.special[m_russian ? NameRu : NameEn]);
        if (m_pack.checkNameContains && name.indexOf(m_pack.nameContains, 0, Qt::CaseInsensitive) == -1)
            return Answer::No;
        if (m_pack.checkNameExcludes && name.indexOf(m_pack.nameExcludes, 0, Qt::CaseInsensitive) != -1)
            return Answer::No;
    }
    if (m_pack.checkEventTypes || m_pack.checkTypeExcludes) {
        const Member *type = members.registered[m_russian ? AuxParId::TypeRu : AuxParId::TypeEn];
        QString text;
        if (type && present(type->value) && memberText(type->value, &text) == Answer::Unsure)
            return Answer::Unsure;
        if (m_pack.checkEventTypes && !m_pack.eventTypes.contains(text))
            return Answer::No;
        if (m_pack.checkTypeExcludes && text.indexOf(m_pack.typeExcludes, 0, Qt::CaseInsensitive) != -1)
            return Answer::No;
    }
    return Answer::Yes;
}

LineFilter::Answer LineFilter::testTime()
{
    if (!m_pack.checkFrom && !m_pack.checkTo)
        return Answer::Yes;
    // An event time that carries its zone compares as an instant, against the bounds'
    // instants (QDateTime's own rule when one side is not local time).
    const LineAcceptor::TimeRule rule = m_acceptor.timeRule();
    qint64 msecs = 0;
    bool instant = false;
    if (rule == LineAcceptor::TimeRule::BodyTime || rule == LineAcceptor::TimeRule::IsoDate) {
        instant = m_acceptor.timeText().hasInstant;
        msecs = m_acceptor.timeText().msecs;
    } else if (rule != LineAcceptor::TimeRule::Date && m_acceptor.hasEpochSeconds()) {
        instant = true;
        msecs = m_acceptor.epochSeconds() * 1000;
    }
    if (instant) {
        if (m_pack.checkFrom && m_pack.from.isValid() && msecs < m_fromMsecs)
            return Answer::No;
        if (m_pack.checkTo && (!m_pack.to.isValid() || m_toMsecs < msecs))
            return Answer::No;
        return Answer::Yes;
    }
    bool known = false;
    const QDateTime time = eventTime(&known);
    if (!known)
        return Answer::Unsure;
    if ((m_pack.checkFrom && time < m_pack.from) || (m_pack.checkTo && m_pack.to < time))
        return Answer::No;
    return Answer::Yes;
}

LineFilter::Answer LineFilter::testConditions()
{
    const JsonLineScanner &scanner = m_acceptor.scanner();
    for (auto it = m_pack.auxConditions.cbegin(); it != m_pack.auxConditions.cend(); ++it) {
        const int type = it.key();
        if (type < 0 || type >= kAuxParKindCount || AuxParRegistry::isExcludedFromMatching(type))
            continue;
        QVariant value;
        if (type == AuxParId::Host) {
            value = plainText(scanner.root(JsonLineScanner::Host));
        } else if (type == AuxParId::Source) {
            value = JsonLineScanner::text(scanner.message().name);
        } else if (type == AuxParId::Undefined) {
            value = undefinedText();
        } else {
            const Member *member = body().registered[size_t(type)];
            // A parameter the line does not carry is empty, and empty ones are not tested.
            if (!member || !present(member->value))
                continue;
            QJsonValue json;
            if (!JsonLineScanner::jsonValue(member->value, &json))
                return Answer::Unsure;
            value = LineParser::parameterValue(type, json);
        }
        AuxPar &parameter = prototype(type);
        parameter.setValue(value);
        if (parameter.isValid() && !(it.value() == parameter.value()))
            return Answer::No;
    }
    return Answer::Yes;
}

LineFilter::Answer LineFilter::testCustom()
{
    if (m_pack.customConditions.isEmpty())
        return Answer::Yes;
    const QVector<CustomParameter> &customs = AuxParRegistry::instance().customParameters();
    const Body &members = body();
    for (int i = 0; i < customs.size(); ++i) {
        const auto condition = m_pack.customConditions.constFind(customs[i].name);
        const Member *member = members.custom[size_t(i)];
        if (condition == m_pack.customConditions.constEnd() || !member || !present(member->value))
            continue;
        // The text of an array or object is empty whatever it holds.
        QJsonValue json(QJsonValue::Array);
        JsonLineScanner::jsonValue(member->value, &json);
        if (!(condition.value() == QVariant(LineParser::memberText(json))))
            return Answer::No;
    }
    return Answer::Yes;
}

LineFilter::Answer LineFilter::testKeyword()
{
    if (!m_pack.checkSearch)
        return Answer::Yes;
    if (m_priorityHits[size_t(m_priority)])
        return Answer::Yes;
    const JsonLineScanner &scanner = m_acceptor.scanner();
    const Text &source = scanner.message().name;
    const bool *sourceHit = m_sourceHits.find(source.data, source.size);
    if (source.size == 0 ? m_emptyHit : sourceHit ? *sourceHit : m_unrecognizedSourceHit)
        return Answer::Yes;

    bool unsure = false;
    // True when the keyword is found; unsure answers are noted, since a later text may
    // still hold the keyword.
    auto found = [&unsure](Answer answer) {
        unsure = unsure || answer == Answer::Unsure;
        return answer == Answer::Yes;
    };
    const Value &host = scanner.root(JsonLineScanner::Host);
    if (host.kind == Kind::String && found(keywordInSpan(host.text)))
        return Answer::Yes;
    const Body &members = body();
    for (const int special : {int(MessageId), m_russian ? int(NameRu) : int(NameEn)}) {
        const Member *member = members.special[size_t(special)];
        if (member && member->value.kind == Kind::String && found(keywordInSpan(member->value.text)))
            return Answer::Yes;
    }
    // The type text in the system's language, then every other parameter.
    const int typeKind = m_russian ? AuxParId::TypeRu : AuxParId::TypeEn;
    if (const Member *type = members.registered[size_t(typeKind)]; type && found(keywordInParameter(typeKind, type->value)))
        return Answer::Yes;
    // Body members named "host", "source" or "undefined" are not the parameters of those names.
    for (int type = 0; type < kAuxParKindCount; ++type) {
        const Member *member = members.registered[size_t(type)];
        if (!member || AuxParRegistry::isExcludedFromMatching(type) || type == AuxParId::Host
            || type == AuxParId::Source || type == AuxParId::Undefined)
            continue;
        if (found(keywordInParameter(type, member->value)))
            return Answer::Yes;
    }
    if (!m_keywordPlain && !members.unknown.empty()) {
        if (keywordIn(undefinedText()))
            return Answer::Yes;
    } else {
        // Without ':' or ';' in the keyword, a hit lies within one name or one value.
        for (const Member *member : members.unknown) {
            if (found(keywordInSpan(member->name))
                || (member->value.kind == Kind::String && found(keywordInSpan(member->value.text))))
                return Answer::Yes;
        }
    }
    if (m_keywordInNumbers) {
        bool known = false;
        const QDateTime time = eventTime(&known);
        if (!known)
            unsure = true;
        else if (keywordIn(time.toString(Qt::ISODate)))
            return Answer::Yes;
    }
    return unsure ? Answer::Unsure : Answer::No;
}

// The display text of a parameter of the event, tested for the keyword. Texts that only
// come from numbers, or from a fixed set of words none of which holds the keyword, are
// not built at all.
LineFilter::Answer LineFilter::keywordInParameter(int type, const Value &value)
{
    if (!present(value))
        return m_emptyHit ? Answer::Yes : Answer::No;
    switch (kAuxParKinds[type].family) {
    case AuxParFamily::String:
        if (value.kind == Kind::String || value.kind == Kind::True || value.kind == Kind::False)
            return keywordInSpan(value.text);
        if (value.kind == Kind::Number && !m_keywordInNumbers)
            return Answer::No;
        break;
    case AuxParFamily::Integer:
    case AuxParFamily::LongLong:
        if (!m_keywordInNumbers)
            return Answer::No;
        break;
    case AuxParFamily::Bool:
        if (!m_anyBoolHit)
            return Answer::No;
        break;
    case AuxParFamily::Signal:
        if (!m_anySignalHit)
            return Answer::No;
        break;
    case AuxParFamily::Mac:
        // Labels repeat: their texts, built by the label library, are looked at once.
        if (value.kind == Kind::String && !value.text.escaped) {
            if (const bool *known = m_labelHits.find(value.text.data, value.text.size))
                return *known ? Answer::Yes : Answer::No;
            const Answer answer = keywordInRendered(type, value);
            m_labelHits[QByteArray(value.text.data, value.text.size)] = answer == Answer::Yes;
            return answer;
        }
        break;
    case AuxParFamily::Source:
    case AuxParFamily::Time:
        break;
    }
    return keywordInRendered(type, value);
}

LineFilter::Answer LineFilter::keywordInRendered(int type, const Value &value)
{
    QJsonValue json;
    if (!JsonLineScanner::jsonValue(value, &json))
        return Answer::Unsure;
    AuxPar &parameter = prototype(type);
    parameter.setValue(LineParser::parameterValue(type, json));
    return keywordIn(parameter.toString()) ? Answer::Yes : Answer::No;
}

// A text that is a span of the line, as QRegExp would find the keyword in it: by bytes
// when the keyword is plain ASCII that nothing else stands for, by QRegExp otherwise.
LineFilter::Answer LineFilter::keywordInSpan(const Text &text)
{
    if (text.escaped || !m_keywordPlain)
        return keywordIn(JsonLineScanner::text(text)) ? Answer::Yes : Answer::No;
    const auto *bytes = reinterpret_cast<const uchar *>(text.data);
    const int length = m_keyword.size();
    const auto *keyword = reinterpret_cast<const uchar *>(m_keyword.constData());
    const bool ignoreCase = !m_pack.caseSensitive;
    // Whole words need a separator or an end on both sides; a neighbour that is neither
    // ASCII nor a Cyrillic letter is left to QRegExp.
    enum Side { Separator, Letter, Foreign };
    auto sideBefore = [&](int at) {
        if (at == 0 || (bytes[at - 1] < 0x80 && !isAsciiLetterOrDigit(bytes[at - 1])))
            return Separator;
        return bytes[at - 1] < 0x80 || (at >= 2 && isCyrillicLetter(bytes[at - 2], bytes[at - 1])) ? Letter : Foreign;
    };
    auto sideAfter = [&](int at) {
        if (at == text.size || (bytes[at] < 0x80 && !isAsciiLetterOrDigit(bytes[at])))
            return Separator;
        return bytes[at] < 0x80 || (at + 1 < text.size && isCyrillicLetter(bytes[at], bytes[at + 1])) ? Letter : Foreign;
    };
    // Candidates are the places of the keyword's first letter, in either case.
    const uchar first = keyword[0];
    const uchar firstUpper = ignoreCase && first >= 'a' && first <= 'z' ? uchar(first - 32) : first;
    const int last = text.size - length;
    for (int at = 0; at <= last; ++at) {
#if defined(__SSE2__)
        // Sixteen bytes at a time while they lie within the line, even if past the text.
        if (m_lineEnd - (bytes + at) >= 16) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes + at));
            unsigned candidates = unsigned(_mm_movemask_epi8(_mm_or_si128(
                _mm_cmpeq_epi8(block, _mm_set1_epi8(char(first))), _mm_cmpeq_epi8(block, _mm_set1_epi8(char(firstUpper))))));
            if (last - at < 15)
                candidates &= (1u << (last - at + 1)) - 1;
            if (candidates == 0) {
                at += 15;
                continue;
            }
            at += __builtin_ctz(candidates);
        }
#endif
        if (bytes[at] != first && bytes[at] != firstUpper)
            continue;
        int i = 1;
        while (i < length && (ignoreCase ? asciiLower(bytes[at + i]) : bytes[at + i]) == keyword[i])
            ++i;
        if (i < length)
            continue;
        if (!m_pack.wholeWord)
            return Answer::Yes;
        const Side before = sideBefore(at);
        const Side after = sideAfter(at + length);
        if (before == Foreign || after == Foreign)
            return keywordIn(JsonLineScanner::text(text)) ? Answer::Yes : Answer::No;
        if (before == Separator && after == Separator)
            return Answer::Yes;
    }
    return Answer::No;
}

LineFilter::Answer LineFilter::memberText(const Value &value, QString *text) const
{
    if (value.kind == Kind::String) {
        *text = JsonLineScanner::text(value.text);
        return Answer::Yes;
    }
    QJsonValue json;
    if (!JsonLineScanner::jsonValue(value, &json))
        return Answer::Unsure;
    *text = json.toVariant().toString();
    return Answer::Yes;
}

// A member read as text: present strings only, anything else is empty.
QString LineFilter::plainText(const Member *member) const
{
    return member ? plainText(member->value) : QString();
}

QString LineFilter::plainText(const Value &value) const
{
    return value.kind == Kind::String ? JsonLineScanner::text(value.text) : QString();
}

// "key: value" for every member the parser does not know, in the event's order of
// names, joined with "; ".
QString LineFilter::undefinedText()
{
    std::vector<const Member *> unknown = body().unknown;
    std::sort(unknown.begin(), unknown.end(),
              [](const Member *a, const Member *b) { return bytesBefore(a->name, b->name); });
    QStringList parts;
    for (const Member *member : unknown)
        parts.append(JsonLineScanner::text(member->name) + QStringLiteral(": ") + plainText(member->value));
    return parts.join(QStringLiteral("; "));
}

// The event's time as the parser would set it.
QDateTime LineFilter::eventTime(bool *known)
{
    *known = true;
    const Value &value = m_acceptor.timeValue();
    switch (m_acceptor.timeRule()) {
    case LineAcceptor::TimeRule::BodyTime:
    case LineAcceptor::TimeRule::IsoDate: return QDateTime::fromString(plainText(value), Qt::ISODate);
    case LineAcceptor::TimeRule::Date: return LineParser::parseLegacyDate(plainText(value));
    case LineAcceptor::TimeRule::UnixTime:
    case LineAcceptor::TimeRule::EndTime: break;
    }
    *known = m_acceptor.hasEpochSeconds();
    return *known ? LineParser::fromEpochSeconds(m_acceptor.epochSeconds()) : QDateTime();
}

AuxPar &LineFilter::prototype(int type)
{
    std::unique_ptr<AuxPar> &parameter = m_prototypes[size_t(type)];
    if (!parameter)
        parameter = AuxParRegistry::instance().create(type);
    return *parameter;
}
