// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "JournalGenerator.h"

#include <QBuffer>
#include <QByteArray>
#include <QByteArrayList>
#include <QVector>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

// Journal lines for the tests that hold the fast readers to the line parser and to Qt's
// JSON reader: hand-made lines, generated journals, and generated lines broken in every
// way the readers must tell apart.
namespace corpus
{
// A corpus of journal-like lines, well-formed and broken in the ways real journals are.
// Times vary most: they are where acceptsLine() and parseLine() could part ways.
class Corpus
{
public:
    explicit Corpus(quint32 seed) : m_random(seed) {}

    QByteArray line()
    {
        QByteArrayList root;
        maybe(root, 85, "PRIORITY", pick({"\"info\"", "\"Warning\"", "\"err\"", "7", "\"notice \""}));
        maybe(root, 80, "HOST", pick({"\"alpha\"", "\"\"", "null", "[1]", "\"хост\""}));
        // Dates, clock times and offsets, each well-formed or subtly not, in every combination.
        maybe(root, 60, "ISODATE",
              chance(10) ? pick({"null", "1709276400", "[]", "\"garbage\"", "\"\""})
                         : '"' + pick({"2024-03-01", "2024-02-29", "2023-02-29", "2024-13-01", "0000-01-01", "2024/03/01"})
                               + pick({"T", "T", "t", " "})
                               + pick({"10:15:00", "23:59:59", "24:00:00", "23:60:00", "23:59:60", "10:00:00.123", "10:15"})
                               + pick({"", "Z", "z", "+03:00", "-11:30", "+14:59", "+15:00", "+03:60", "+0300"}) + '"');
        maybe(root, 50, "DATE",
              chance(10) ? pick({"null", "12", "\"\""})
                         : '"' + pick({"Mar", "Jan", "Feb", "Dec", "jan", "Foo"})
                               + pick({"  1 ", " 5 ", " 29 ", " 30 ", " 32 ", "\\n5\\n"})
                               + pick({"10:15:00", "23:59:59", "24:00:00", "23:59:60", "10:00", "10:00:00 x"}) + '"');
        maybe(root, 95, "MSG", msg());
        std::shuffle(root.begin(), root.end(), m_random);
        return mutate('{' + root.join(',') + '}');
    }

private:
    bool chance(int percent) { return int(m_random() % 100) < percent; }
    int below(int n) { return int(m_random() % quint32(n)); }
    QByteArray pick(std::initializer_list<const char *> items) { return items.begin()[below(int(items.size()))]; }
    QByteArray quoted(std::initializer_list<const char *> items) { return '"' + pick(items) + '"'; }

    void maybe(QByteArrayList &members, int percent, const QByteArray &key, const QByteArray &value)
    {
        if (chance(percent))
            members.append('"' + key + "\":" + value);
    }

    QByteArray value()
    {
        switch (below(4)) {
        case 0:
            return quoted({"root", "", "\\n", "failed", "maybe", "not yes", "10", "0xFFFFFFFF", "4294967295", "Ёлка",
                           "Пользователь", "\\u0000", "\\ud800", "\\\"quoted\\\"", "2024-03-01T12:00:00", "1:2:3", "𝄞"});
        case 1:
            return pick({"0", "1", "-1", "42", "65535", "4294967295", "4294967296", "-4294967297", "9007199254740993",
                         "1e30", "-1e300", "1.5", "-0", "18446744073709551615", "1e400"});
        case 2: return pick({"true", "false", "null", "[]", "[1,\"a\"]", "{}", "{\"a\":1}"});
        default: return '"' + QByteArray::number(qint64(quint64(m_random()) << 32 | m_random())) + '"';
        }
    }

    QByteArray timeValue()
    {
        if (chance(70))
            return pick({"1709276400", "4294967295", "\"4294967295\"", "0", "-1", "-2", "\"0xFFFFFFFF\"", "4294967296",
                         "1e17", "-1e17", "1e300", "\"1709276400\"", "\"  12\"", "1.9", "true", "null", "\"\"", "[]"});
        return value();
    }

    QByteArray msg()
    {
        switch (below(16)) {
        case 0: return pick({"{}", "{\"kernel\":{},\"sshd\":{}}", "[]", "null", "\"kernel\"", "[{\"kernel\":{}}]"});
        case 1: return "{\"kernel\":" + value() + '}';
        default: return '{' + quoted({"kernel", "sshd", "", "источник"}) + ':' + body() + '}';
        }
    }

    QByteArray body()
    {
        QByteArrayList members;
        maybe(members, 80, "message_id", chance(85) ? QByteArray("\"1001\"") : value());
        maybe(members, 70, "name_en", chance(85) ? QByteArray("\"User logged in\"") : value());
        maybe(members, 70, "name_ru", chance(85) ? QByteArray("\"Вход пользователя\"") : value());
        maybe(members, 25, "time",
              chance(60) ? quoted({"2024-03-01T12:00:00", "2024-03-01T12:00:00+03:00", "garbage", "", "1709276400"})
                         : timeValue());
        for (const char *key : {"unixtime", "end_time", "start_time"})
            maybe(members, 25, key, timeValue());
        // Keys repeat only through the mutations below, which repeat them with plain
        // values: Qt 5.15's reader leaks an object or array that a repeated key replaces.
        QByteArrayList others{"uid", "gid", "pid", "user", "result", "success", "onsudo", "obj", "signal", "source",
                              "host", "undefined", "command", "deny", "site code", "shift", "foo", "", "MSG", "время"};
        std::shuffle(others.begin(), others.end(), m_random);
        for (const QByteArray &key : others.mid(0, below(8)))
            maybe(members, 100, key, value());
        std::shuffle(members.begin(), members.end(), m_random);
        return '{' + members.join(',') + '}';
    }

    QByteArray mutate(QByteArray text)
    {
        switch (below(16)) {
        case 0: return text.left(below(text.size() + 1)); // a truncated last line
        case 1: return text.remove(below(text.size()), 1);
        case 2: return text.insert(below(text.size() + 1), pick({"\"", "{", "}", ",", ":", "\\", "\n", "\xff"}));
        case 3: return text + pick({"\n", "\r\n", " trailing"});
        case 4: return "\xEF\xBB\xBF" + text;
        case 5: return '[' + text + ']';
        case 6: return text.replace("\"MSG\"", "\"msg\"");
        // The same key twice, as a careless writer might produce.
        case 7:
            return text.replace("\"unixtime\":", "\"unixtime\":4294967295,\"unixtime\":")
                .replace("\"time\":", "\"time\":null,\"time\":");
        default: return text;
        }
    }

    std::mt19937 m_random;
};

// Lines of a generated journal: seed, lines, days; a tenth of them malformed as the
// generator breaks lines, ending at a fixed time.
inline QVector<QByteArray> generated(quint64 seed, qint64 lines, int days = 10)
{
    const nimbgen::GeneratorOptions options{seed, lines, -1, days, 100, 1709276400};
    QBuffer journal;
    journal.open(QIODevice::WriteOnly);
    nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&journal);
    QVector<QByteArray> result = journal.data().split('\n').toVector();
    result.removeLast();
    return result;
}

// Breaks well-formed lines the ways a fast reader could misjudge: cut, flipped and
// foreign bytes, escapes, unusual numbers, byte order marks, deep nesting, repeated
// keys around the sixteen members up to which Qt keeps the last of equal keys, and
// whitespace of every kind. Repeated keys never replace an object or array: Qt 5.15
// leaks those.
class Mutator
{
public:
    explicit Mutator(quint32 seed) : m_random(seed) {}

    QByteArray mutate(QByteArray line)
    {
        // About a third of the lines stay as they were; others get one to three faults.
        // An object or array put in comes last, so that no later fault repeats its key.
        const int faults = below(3) == 0 ? 0 : 1 + below(3);
        for (int i = 0; i < faults; ++i)
            line = fault(line);
        if (below(8) == 0)
            line = below(2) ? nest(line) : container(line);
        return line;
    }

private:
    int below(int n) { return int(m_random() % quint32(std::max(n, 1))); }
    template<typename T, int N>
    const T &pick(const T (&items)[N]) { return items[below(N)]; }
    int anywhere(const QByteArray &text) { return below(text.size() + 1); }

    // A position just after one of the given bytes, or -1.
    int after(const QByteArray &text, const char *bytes)
    {
        QVector<int> places;
        for (int i = 0; i < text.size(); ++i) {
            if (std::strchr(bytes, text.at(i)) && text.at(i) != 0)
                places.append(i + 1);
        }
        return places.isEmpty() ? -1 : places.at(below(places.size()));
    }

    QByteArray fault(QByteArray text)
    {
        static const char controls[] = {0x01, '\t', 0x00, 0x1f, 0x7f, '\r', 0x0b};
        static const char *const escapes[] = {"\\n", "\\u0041", "\\ud800", "\\udc00", "\\ud83d\\ude00", "\\a",
                                              "\\", "\\u12", "\\u00zz", "\\x", "\\/", "\\\"", "\\\xc3\xa9",
                                              "\\\xff", "\\\x01", "\\U0041"};
        static const char *const numbers[] = {"1.", ".5", "1e-400", "-0", "1e400", "1E+2", "0.000", "-", "01", "1e",
                                              "1.5e308", "123456789012345678901234567890", "-.5", "2e-320", "1e-300",
                                              "0e-999", "9223372036854775808", "-9223372036854775809", "4294967295",
                                              "1.0", "+1", "1e+", "17.25", "1E2", "0x10", "Infinity", "NaN", "-1"};
        static const char *const bytes[] = {"\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xff", "\xe2\x82",
                                            "\xf0\x9f\x98\x80", "\xd0", "\xc2\xa0", "\xef\xbf\xbf", "\xf5\x80\x80\x80"};
        static const char *const spaces[] = {" ", "\t", "\r", "\n", "\x0b", "\x0c", "\xc2\xa0", "  \t\r "};
        static const char *const timeKeys[] = {"time", "unixtime", "end_time", "ISODATE", "DATE", "PRIORITY", "HOST",
                                               "message_id", "name_en", "user", "uid"};
        static const char *const scalars[] = {"1", "null", "\"x\"", "4294967295", "\"2024-03-01T10:00:00Z\"",
                                              "true", "\"Jan 5 10:00:00\"", "-2", "\"garbage\""};
        switch (below(13)) {
        case 0:
            return text.left(anywhere(text));
        case 1: {
            if (text.isEmpty())
                return text;
            const int at = below(text.size());
            text[at] = char(below(4) ? text.at(at) ^ (1 << below(8)) : below(256));
            return text;
        }
        case 2: return text.insert(anywhere(text), QByteArray(1, pick(controls)));
        case 3: return text.insert(anywhere(text), pick(escapes));
        case 4: {
            // A number in place of a value.
            const int at = after(text, ":[");
            if (at < 0)
                return text;
            int end = at;
            while (end < text.size() && !std::strchr(",}]", text.at(end)))
                ++end;
            return text.replace(at, end - at, pick(numbers));
        }
        case 5: return "\xEF\xBB\xBF" + text;
        case 6: return text.insert(anywhere(text), pick(bytes));
        case 7: {
            const int at = after(text, ",:{[");
            return at < 0 ? text : text.insert(at, pick(spaces));
        }
        case 8:
        case 9:
        case 10: {
            // A key again, earlier or later in the root or the body, with a plain value.
            const QByteArray key = QByteArray("\"") + pick(timeKeys) + "\":";
            if (text.contains(key + "{") || text.contains(key + "["))
                return text;
            const int at = below(3) ? objectStart(text) : after(text, ",");
            return at < 0 ? text : text.insert(at, key + pick(scalars) + ",");
        }
        case 11: {
            // Enough other members for Qt's sort to stop keeping equal keys in order.
            const int open = objectStart(text) - 1;
            if (open < 0)
                return text;
            QByteArray members;
            const int count = 10 + below(12);
            for (int i = 0; i < count; ++i)
                members += "\"pad" + QByteArray::number(i) + "\":" + pick(scalars) + ",";
            return text.insert(open + 1, members);
        }
        case 12: {
            // The message's source named twice, the first time with a plain value.
            const int at = text.indexOf("\"MSG\":{\"");
            if (at < 0)
                return text;
            const int nameEnd = text.indexOf('"', at + 8);
            if (nameEnd < 0)
                return text;
            return text.insert(at + 7, text.mid(at + 7, nameEnd - at - 6) + ":" + pick(scalars) + ",");
        }
        default: return text;
        }
    }

    QByteArray nest(QByteArray text)
    {
        // A member nested around Qt's limit of 1024 levels, or far below it.
        const int depth = pick({3, 60, 62, 63, 64, 65, 1020, 1021, 1022, 1023, 1100});
        const QByteArray nested = below(2) ? QByteArray(depth, '[') + "1" + QByteArray(depth, ']')
                                           : QByteArray("{\"a\":").repeated(depth) + "1" + QByteArray(depth, '}');
        const int at = objectStart(text);
        return at < 0 ? text : text.insert(at, "\"deep\":" + nested + ",");
    }

    // An object or array where a string was, unless its key is written twice.
    QByteArray container(QByteArray text)
    {
        const int at = text.indexOf(":\"", below(std::max(text.size(), 1)));
        const int keyStart = at < 1 ? -1 : text.lastIndexOf('"', at - 2);
        if (keyStart < 0 || text.count(text.mid(keyStart, at - keyStart + 1)) != 1)
            return text;
        int end = at + 2;
        while (end < text.size() && text.at(end) != '"')
            end += text.at(end) == '\\' ? 2 : 1;
        return text.replace(at + 1, end - at, pick({"[]", "{}", "[1,{\"k\":[]}]", "{\"k\":null}"}));
    }

    // Just inside the root object or the message body, or -1.
    int objectStart(const QByteArray &text)
    {
        const int msg = text.indexOf("\"MSG\":{");
        const int body = msg < 0 ? -1 : text.indexOf('{', msg + 7);
        const int at = below(2) && body >= 0 ? body : text.indexOf('{');
        return at < 0 ? -1 : at + 1;
    }

    template<typename T>
    T pick(std::initializer_list<T> items) { return items.begin()[below(int(items.size()))]; }

    std::mt19937 m_random;
};

// How many lines the thorough tests take: a bounded share in the normal suite, at least
// a million with FULL=1, and an eighth of the normal share under sanitizers, which slow
// everything down several times.
inline int lineBudget(int normal, int full)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    Q_UNUSED(full)
    return normal / 8;
#else
    return qgetenv("FULL") == "1" ? full : normal;
#endif
}
}
