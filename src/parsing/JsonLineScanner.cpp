// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JsonLineScanner.h"

#include <QByteArray>

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{
// Qt's reader allows 1024 levels; journal lines nest three or four. Deeper ones go to Qt.
constexpr int kMaxDepth = 64;
// Number literals whose conversion to double surely succeeds: the first significant
// digit stands for at most 10^300 (no overflow) and at least 10^-300 (no underflow to
// zero, which Qt refuses). Longer literals are left to Qt.
constexpr int kMaxMagnitude = 300;
constexpr int kMaxNumberSize = 400;
constexpr int kMaxExponentDigits = 6;

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isHexDigit(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr bool isContinuation(uchar c)
{
    return (c & 0xc0) == 0x80;
}

// Length of the UTF-8 sequence at p that Qt's reader accepts (no overlong forms, no
// surrogates, nothing above U+10FFFF; non-characters are fine), or 0.
inline int sequenceLength(const char *p, const char *end)
{
    const auto *u = reinterpret_cast<const uchar *>(p);
    const qsizetype available = end - p;
    const uchar lead = u[0];
    if (lead < 0xc2 || lead > 0xf4)
        return 0;
    if (lead < 0xe0)
        return available >= 2 && isContinuation(u[1]) ? 2 : 0;
    if (lead < 0xf0) {
        if (available < 3 || !isContinuation(u[1]) || !isContinuation(u[2]))
            return 0;
        const uint code = (uint(lead & 0x0f) << 12) | (uint(u[1] & 0x3f) << 6) | uint(u[2] & 0x3f);
        return code >= 0x800 && (code < 0xd800 || code > 0xdfff) ? 3 : 0;
    }
    if (available < 4 || !isContinuation(u[1]) || !isContinuation(u[2]) || !isContinuation(u[3]))
        return 0;
    const uint code = (uint(lead & 0x07) << 18) | (uint(u[1] & 0x3f) << 12) | (uint(u[2] & 0x3f) << 6)
        | uint(u[3] & 0x3f);
    return code >= 0x10000 && code <= 0x10ffff ? 4 : 0;
}

// The root key a name spells, or -1; told apart by length and first letter first.
int rootKeyOf(const JsonLineScanner::Text &name)
{
    auto is = [&name](const char *text, int key) {
        return std::memcmp(name.data, text, size_t(name.size)) == 0 ? key : -1;
    };
    switch (name.size) {
    case 3: return is("MSG", JsonLineScanner::Msg);
    case 4: return name.data[0] == 'H' ? is("HOST", JsonLineScanner::Host) : is("DATE", JsonLineScanner::Date);
    case 7: return is("ISODATE", JsonLineScanner::IsoDate);
    case 8:
        return name.data[0] == 'F' ? is("FACILITY", JsonLineScanner::Facility)
                                   : is("PRIORITY", JsonLineScanner::Priority);
    default: return -1;
    }
}
}

JsonLineScanner::Verdict JsonLineScanner::scan(const char *data, qsizetype size)
{
    m_p = data;
    m_end = data + size;
    m_rootMembers = 0;
    m_rootSeen = 0;
    for (Value &value : m_root)
        value = Value();
    m_messageMembers = 0;
    m_messageNamesDiffer = false;
    m_message = Member();
    m_body.clear();

    // Qt skips a byte order mark only in front of something more.
    if (size > 3 && uchar(data[0]) == 0xef && uchar(data[1]) == 0xbb && uchar(data[2]) == 0xbf)
        m_p += 3;
    Step step = Step::Invalid;
    Verdict whole = Verdict::Invalid;
    switch (nextToken()) {
    case '{':
        step = readRoot();
        whole = Verdict::Object;
        break;
    case '[':
        step = readArray(1);
        whole = Verdict::OtherDocument;
        break;
    default:
        return Verdict::Invalid;
    }
    if (step != Step::Ok)
        return step == Step::Invalid ? Verdict::Invalid : Verdict::Unsure;
    skipSpace();
    return m_p == m_end ? whole : Verdict::Invalid;
}

void JsonLineScanner::skipSpaces()
{
    while (m_p < m_end && isSpaceByte(*m_p))
        ++m_p;
}

// m_p is just behind the opening quotation mark. Most strings of a line are ASCII names
// and values that end within 32 bytes: those are settled here, inline.
inline JsonLineScanner::Step JsonLineScanner::readString(Text &text)
{
#if defined(__SSE2__)
    if (m_end - m_p >= 32) {
        auto classes = [](const char *at, unsigned *quotes, unsigned *others) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
            *quotes = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"'))));
            *others = unsigned(_mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')), bytes)));
        };
        unsigned quotes = 0;
        unsigned others = 0;
        classes(m_p, &quotes, &others);
        if (quotes == 0 && others == 0) {
            classes(m_p + 16, &quotes, &others);
            quotes <<= 16;
            others <<= 16;
        }
        const unsigned before = (quotes & (0u - quotes)) - 1;
        if (quotes != 0 && (others & before) == 0) {
            const int length = __builtin_ctz(quotes);
            text = {m_p, length, false};
            m_p += length + 1;
            return Step::Ok;
        }
    }
#endif
    return readStringBlocks(text);
}

// m_p is just behind the opening quotation mark. Sixteen bytes at a time are searched for
// the closing quotation mark; bytes from 0x80 up must form two-byte sequences, checked
// for the whole block at once (Cyrillic text is made of them). Escapes and longer
// sequences are left to the byte-by-byte reading.
JsonLineScanner::Step JsonLineScanner::readStringBlocks(Text &text)
{
#if defined(__SSE2__)
    const char *p = m_p;
    // A lead at the end of the block before, which needs a continuation first.
    unsigned pending = 0;
    while (m_end - p >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const unsigned stops = unsigned(_mm_movemask_epi8(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\')))));
        // The bytes up to and including the first stop, or the whole block.
        const unsigned reach = stops ? (stops ^ (stops - 1)) : 0xffff;
        const unsigned high = unsigned(_mm_movemask_epi8(bytes)) & reach;
        if (high != 0 || pending != 0) {
            // Signed bytes: continuations 0x80-0xbf are below -64, leads 0xc2-0xdf lie in -62..-33.
            const unsigned continuations =
                unsigned(_mm_movemask_epi8(_mm_cmplt_epi8(bytes, _mm_set1_epi8(char(0xc0)))));
            const unsigned leads = unsigned(_mm_movemask_epi8(_mm_and_si128(
                _mm_cmpgt_epi8(bytes, _mm_set1_epi8(char(0xc1))), _mm_cmplt_epi8(bytes, _mm_set1_epi8(char(0xe0))))));
            if (high & ~(continuations | leads))
                return readStringSlowly(text);
            // Every continuation follows a lead and every lead has one after it.
            if ((continuations ^ ((leads << 1) | pending)) & reach)
                return Step::Invalid;
            pending = (leads >> 15) & 1;
        }
        if (stops != 0) {
            const char *stop = p + __builtin_ctz(stops);
            if (*stop != '"')
                return readStringSlowly(text);
            text = {m_p, int(stop - m_p), false};
            m_p = stop + 1;
            return Step::Ok;
        }
        p += 16;
    }
    // The last bytes of the line: byte by byte, from the last whole sequence on.
    const char *resume = p - pending;
    const char *start = m_p;
    m_p = resume;
    const Step step = readStringSlowly(text);
    text.data = start;
    text.size = step == Step::Ok ? int(m_p - 1 - start) : 0;
    return step;
#else
    return readStringSlowly(text);
#endif
}

template<typename OnMember>
JsonLineScanner::Step JsonLineScanner::readObject(int depth, OnMember onMember)
{
    if (depth > kMaxDepth)
        return Step::Unsure;
    char token = nextToken();
    if (token == '}')
        return Step::Ok;
    while (token == '"') {
        Text name;
        Step step = readString(name);
        if (step != Step::Ok)
            return step;
        // Journal lines put no space around the colon: that case is tested first.
        if (m_p < m_end && *m_p == ':')
            ++m_p;
        else if (nextToken() != ':')
            return Step::Invalid;
        skipSpace();
        if (m_p == m_end)
            return Step::Invalid;
        step = onMember(name, depth);
        if (step != Step::Ok)
            return step;
        if (m_end - m_p >= 2 && m_p[0] == ',' && m_p[1] == '"') {
            m_p += 2;
            continue;
        }
        token = nextToken();
        if (token != ',')
            break;
        // A comma must be followed by another member.
        token = nextToken();
        if (token != '"')
            return Step::Invalid;
    }
    return token == '}' ? Step::Ok : Step::Invalid;
}

JsonLineScanner::Step JsonLineScanner::readArray(int depth)
{
    if (depth > kMaxDepth)
        return Step::Unsure;
    skipSpace();
    if (m_p == m_end)
        return Step::Invalid;
    if (*m_p == ']') {
        ++m_p;
        return Step::Ok;
    }
    for (;;) {
        skipSpace();
        if (m_p == m_end)
            return Step::Invalid;
        Value element;
        const Step step = readValue(element, depth);
        if (step != Step::Ok)
            return step;
        const char token = nextToken();
        if (token == ']')
            return Step::Ok;
        if (token != ',')
            return Step::Invalid;
    }
}

// Values of the members that are kept, mostly strings: those are read inline.
inline JsonLineScanner::Step JsonLineScanner::readMemberValue(Value &value, int depth)
{
    if (*m_p != '"')
        return readValue(value, depth);
    ++m_p;
    value.kind = Kind::String;
    return readString(value.text);
}

// m_p is on the value's first byte. `depth` is that of the enclosing container.
JsonLineScanner::Step JsonLineScanner::readValue(Value &value, int depth)
{
    const char first = *m_p++;
    switch (first) {
    case '"':
        value.kind = Kind::String;
        return readString(value.text);
    case '{':
        value.kind = Kind::Object;
        return readObject(depth + 1, [this](const Text &, int depth) {
            Value member;
            return readValue(member, depth);
        });
    case '[':
        value.kind = Kind::Array;
        return readArray(depth + 1);
    case 't': return readLiteral(value, "rue", 3, Kind::True);
    case 'f': return readLiteral(value, "alse", 4, Kind::False);
    case 'n': return readLiteral(value, "ull", 3, Kind::Null);
    case ',':
    case '}':
    case ']':
        return Step::Invalid;
    default:
        --m_p;
        value.kind = Kind::Number;
        return readNumber(value.text);
    }
}

// m_p is behind the literal's first letter. Qt wants one byte more than the literal
// before it looks, which the closing bracket of any valid line provides.
JsonLineScanner::Step JsonLineScanner::readLiteral(Value &value, const char *rest, int restSize, Kind kind)
{
    if (m_end - m_p < restSize + 1 || std::memcmp(m_p, rest, size_t(restSize)) != 0)
        return Step::Invalid;
    value.kind = kind;
    value.text = {m_p - 1, restSize + 1, false};
    m_p += restSize;
    return Step::Ok;
}

// A string byte by byte: escapes, longer sequences and the bytes behind the last block.
JsonLineScanner::Step JsonLineScanner::readStringSlowly(Text &text)
{
    const char *start = m_p;
    bool escaped = false;
    for (;;) {
        if (m_p == m_end)
            return Step::Invalid;
        const uchar c = uchar(*m_p);
        if (c == '"')
            break;
        if (c == '\\') {
            escaped = true;
            const Step step = readEscape();
            if (step != Step::Ok)
                return step;
        } else if (c < 0x80) {
            ++m_p;
        } else {
            const int length = sequenceLength(m_p, m_end);
            if (length == 0)
                return Step::Invalid;
            m_p += length;
        }
    }
    text = {start, int(m_p - start), escaped};
    ++m_p;
    return Step::Ok;
}

// m_p is on a backslash. Qt takes any byte after it as itself, except the known escapes;
// a byte from 0x80 up turns into a character of its own that no one here can predict.
JsonLineScanner::Step JsonLineScanner::readEscape()
{
    if (m_end - m_p < 2)
        return Step::Invalid;
    const char escaped = m_p[1];
    m_p += 2;
    if (escaped == 'u') {
        if (m_end - m_p < 4)
            return Step::Invalid;
        for (int i = 0; i < 4; ++i) {
            if (!isHexDigit(m_p[i]))
                return Step::Invalid;
        }
        m_p += 4;
        return Step::Ok;
    }
    return uchar(escaped) < 0x80 ? Step::Ok : Step::Unsure;
}

// m_p is on the first byte of something that is no string, container or literal. The bytes
// are taken as Qt takes them; only the plain forms whose conversion surely succeeds are
// decided here.
JsonLineScanner::Step JsonLineScanner::readNumber(Text &text)
{
    const char *start = m_p;
    const char *p = m_p;
    if (p < m_end && *p == '-')
        ++p;
    const char *integer = p;
    if (p < m_end && *p == '0') {
        ++p;
    } else {
        while (p < m_end && isDigit(*p))
            ++p;
    }
    const char *integerEnd = p;
    // Whole numbers, the journal's usual ones, are settled at once.
    if (p < m_end && *p != '.' && *p != 'e' && *p != 'E') {
        m_p = p;
        if (p == start)
            return Step::Invalid;
        text = {start, int(p - start), false};
        return integer < integerEnd && integerEnd - integer <= kMaxMagnitude ? Step::Ok : Step::Unsure;
    }
    const char *fraction = nullptr;
    if (p < m_end && *p == '.') {
        fraction = ++p;
        while (p < m_end && isDigit(*p))
            ++p;
    }
    const char *fractionEnd = p;
    const char *exponent = nullptr;
    bool negativeExponent = false;
    if (p < m_end && (*p == 'e' || *p == 'E')) {
        ++p;
        if (p < m_end && (*p == '-' || *p == '+'))
            negativeExponent = *p++ == '-';
        exponent = p;
        while (p < m_end && isDigit(*p))
            ++p;
    }
    m_p = p;
    // Qt wants a byte after the number; a line that ends in one is no document.
    if (p == m_end)
        return Step::Invalid;
    // Nothing numeric: Qt reads it as 0, then fails on the byte that is still there.
    if (p == start)
        return Step::Invalid;
    text = {start, int(p - start), false};
    if (integer == integerEnd || fraction == fractionEnd || exponent == p || p - start > kMaxNumberSize
        || (exponent && p - exponent > kMaxExponentDigits))
        return Step::Unsure;

    // The power of ten of the first significant digit.
    int magnitude = 0;
    bool zero = true;
    for (const char *digit = integer; digit < integerEnd && zero; ++digit) {
        zero = *digit == '0';
        magnitude = int(integerEnd - digit) - 1;
    }
    for (const char *digit = fraction; fraction && digit < fractionEnd && zero; ++digit) {
        zero = *digit == '0';
        magnitude = -int(digit - fraction) - 1;
    }
    if (zero)
        return Step::Ok;
    int power = 0;
    for (const char *digit = exponent; exponent && digit < p; ++digit)
        power = power * 10 + (*digit - '0');
    magnitude += negativeExponent ? -power : power;
    return magnitude >= -kMaxMagnitude && magnitude <= kMaxMagnitude ? Step::Ok : Step::Unsure;
}

JsonLineScanner::Step JsonLineScanner::readRoot()
{
    return readObject(1, [this](const Text &name, int depth) {
        ++m_rootMembers;
        // An escaped name may spell one of the keys below.
        if (name.escaped)
            return Step::Unsure;
        const int key = rootKeyOf(name);
        if (key < 0) {
            Value ignored;
            return readValue(ignored, depth);
        }
        // Which of several equal keys Qt keeps depends on how many members there are.
        if (m_rootSeen & (1u << key))
            return Step::Unsure;
        m_rootSeen |= 1u << key;
        if (key == Msg && *m_p == '{') {
            ++m_p;
            m_root[Msg].kind = Kind::Object;
            return readMessage(depth + 1);
        }
        return readMemberValue(m_root[key], depth);
    });
}

JsonLineScanner::Step JsonLineScanner::readMessage(int depth)
{
    return readObject(depth, [this](const Text &name, int depth) {
        if (name.escaped)
            return Step::Unsure;
        if (++m_messageMembers == 1) {
            m_message.name = name;
            if (*m_p == '{') {
                ++m_p;
                m_message.value.kind = Kind::Object;
                return readBody(depth + 1);
            }
            return readValue(m_message.value, depth);
        }
        if (!(name == m_message.name))
            m_messageNamesDiffer = true;
        Value ignored;
        return readValue(ignored, depth);
    });
}

JsonLineScanner::Step JsonLineScanner::readBody(int depth)
{
    return readObject(depth, [this](const Text &name, int depth) {
        if (name.escaped)
            return Step::Unsure;
        m_body.push_back(Member{name, Value()});
        // Containers in the body are read without touching the member list.
        return readMemberValue(m_body.back().value, depth);
    });
}

QString JsonLineScanner::text(const Text &text)
{
    if (!text.escaped)
        return QString::fromUtf8(text.data, text.size);
    // As Qt's reader resolves escapes: \uXXXX is one UTF-16 unit, lone surrogates
    // included, and an unknown escape stands for the byte after the backslash.
    QString result;
    result.reserve(text.size);
    const char *p = text.data;
    const char *end = p + text.size;
    while (p < end) {
        const char *plain = p;
        while (p < end && *p != '\\')
            ++p;
        if (p > plain)
            result += QString::fromUtf8(plain, int(p - plain));
        if (p == end)
            break;
        const char escaped = p[1];
        p += 2;
        switch (escaped) {
        case 'b': result += QChar(0x08); break;
        case 'f': result += QChar(0x0c); break;
        case 'n': result += QChar(0x0a); break;
        case 'r': result += QChar(0x0d); break;
        case 't': result += QChar(0x09); break;
        case 'u':
            result += QChar(ushort(QByteArray::fromRawData(p, 4).toUShort(nullptr, 16)));
            p += 4;
            break;
        default: result += QChar(ushort(uchar(escaped))); break;
        }
    }
    return result;
}

bool JsonLineScanner::jsonValue(const Value &value, QJsonValue *result)
{
    switch (value.kind) {
    case Kind::Missing: *result = QJsonValue(QJsonValue::Undefined); return true;
    case Kind::Null: *result = QJsonValue(QJsonValue::Null); return true;
    case Kind::True: *result = QJsonValue(true); return true;
    case Kind::False: *result = QJsonValue(false); return true;
    case Kind::String: *result = QJsonValue(text(value.text)); return true;
    case Kind::Number: {
        // The conversions of Qt's reader, in its order: a whole number as a 64-bit
        // integer when it fits, anything else as a double (kept as an integer when it is one).
        const QByteArray literal = QByteArray::fromRawData(value.text.data, value.text.size);
        const bool integral = literal.indexOf('.') < 0 && literal.indexOf('e') < 0 && literal.indexOf('E') < 0;
        bool ok = false;
        if (integral) {
            const qlonglong number = literal.toLongLong(&ok);
            if (ok) {
                *result = QJsonValue(qint64(number));
                return true;
            }
        }
        *result = QJsonValue(literal.toDouble(&ok));
        return ok;
    }
    case Kind::Array:
    case Kind::Object: break;
    }
    return false;
}
