// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QJsonValue>
#include <QString>
#include <QtGlobal>

#include <cstring>
#include <vector>

// Reads one journal line in a single pass by the grammar of Qt's JSON reader and tells
// what that reader would make of it (an object, another document, or nothing) without
// building a document. On the way it notes where the members lie that journal lines are
// judged by: the root's own keys, the "MSG" object and the message body inside it.
//
// What it cannot decide exactly as Qt does (rare number forms, escaped member names,
// repeated root keys, escapes of non-ASCII bytes, deep nesting) it answers Unsure, and the
// caller asks Qt. Spans point into the scanned bytes. One scanner per thread: the member
// list is reused from line to line.
class JsonLineScanner
{
public:
    enum class Verdict { Object, OtherDocument, Invalid, Unsure };
    enum class Kind : quint8 { Missing, String, Number, True, False, Null, Array, Object };

    // A string's bytes between its quotes, or a number's or literal's bytes as written.
    struct Text {
        const char *data = nullptr;
        int size = 0;
        bool escaped = false;

        bool operator==(const Text &other) const
        {
            return size == other.size && escaped == other.escaped && std::memcmp(data, other.data, size_t(size)) == 0;
        }
        bool is(const char *literal, int length) const
        {
            return !escaped && size == length && std::memcmp(data, literal, size_t(length)) == 0;
        }
    };
    struct Value {
        Kind kind = Kind::Missing;
        Text text; // strings, numbers and literals; empty for arrays and objects
    };
    struct Member {
        Text name;
        Value value;
    };

    // The root keys of a journal line.
    enum RootKey { Facility, Priority, Host, Msg, IsoDate, Date, RootKeyCount };

    Verdict scan(const char *data, qsizetype size);

    // After an Object verdict:
    bool rootIsEmpty() const { return m_rootMembers == 0; }
    const Value &root(RootKey key) const { return m_root[key]; }
    // Members of the "MSG" object as written, 0 when it is missing or no object, and
    // whether their names are not all the same (then the object has several members).
    int messageMembers() const { return m_messageMembers; }
    bool messageNamesDiffer() const { return m_messageNamesDiffer; }
    // The first member of "MSG": its name is the source, its value the body.
    const Member &message() const { return m_message; }
    // The members of the body as written, when it is an object.
    const std::vector<Member> &body() const { return m_body; }

    // The text Qt's reader keeps for a string span.
    static QString text(const Text &text);
    // The value Qt's reader keeps for a scalar; false for arrays and objects, whose
    // content is not kept.
    static bool jsonValue(const Value &value, QJsonValue *result);

private:
    enum class Step { Ok, Invalid, Unsure };

    // Whitespace is rare in journal lines: the test for none comes first and inline.
    void skipSpace()
    {
        if (m_p < m_end && !isSpaceByte(*m_p))
            return;
        skipSpaces();
    }
    void skipSpaces();
    // The next byte after whitespace, consumed; 0 at the end.
    char nextToken()
    {
        skipSpace();
        return m_p < m_end ? *m_p++ : 0;
    }
    // Qt's whitespace: space, tab, line feed and carriage return, nothing else.
    static bool isSpaceByte(char c)
    {
        return uchar(c) <= ' ' && (c == ' ' || c == '\t' || c == '\n' || c == '\r');
    }
    template<typename OnMember>
    Step readObject(int depth, OnMember onMember);
    Step readArray(int depth);
    Step readValue(Value &value, int depth);
    Step readMemberValue(Value &value, int depth);
    Step readLiteral(Value &value, const char *rest, int restSize, Kind kind);
    Step readString(Text &text);
    Step readStringBlocks(Text &text);
    Step readStringSlowly(Text &text);
    Step readEscape();
    Step readNumber(Text &text);
    Step readRoot();
    Step readMessage(int depth);
    Step readBody(int depth);

    const char *m_p = nullptr;
    const char *m_end = nullptr;

    int m_rootMembers = 0;
    unsigned m_rootSeen = 0;
    Value m_root[RootKeyCount];
    int m_messageMembers = 0;
    bool m_messageNamesDiffer = false;
    Member m_message;
    std::vector<Member> m_body;
};
