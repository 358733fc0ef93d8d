// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AuxPar.h"
#include "AuxParKindTable.h"
#include "FilterPack.h"
#include "LineAcceptor.h"
#include "NameTable.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <memory>
#include <vector>

// Whether lines parse and pass a filter, decided from the members the filter reads: a
// filtered count or keyword search builds no events. Every answer is the one of
// LineParser::parseLine() followed by FilterPack::match(); what the fast reading cannot
// settle exactly (repeated body keys, containers where text is read, unusual times) is
// parsed and matched in full. One filter per thread.
class LineFilter
{
public:
    enum class Result { Unreadable, Failed, Passed };

    explicit LineFilter(const FilterPack &pack);
    ~LineFilter();
    LineFilter(const LineFilter &) = delete;
    LineFilter &operator=(const LineFilter &) = delete;

    Result test(const char *data, qsizetype size);
    Result test(const QByteArray &line) { return test(line.constData(), line.size()); }

    // How many of the lines tested so far had to be parsed in full.
    qint64 linesParsedInFull() const { return m_parsedInFull; }

private:
    enum class Answer { No, Yes, Unsure };
    using Member = JsonLineScanner::Member;
    using Value = JsonLineScanner::Value;
    using Text = JsonLineScanner::Text;

    // Where a body member's name leads.
    struct KeyRole {
        int type = -1;    // registered parameter kind
        int special = -1; // message_id, name_en, name_ru
        int custom = -1;  // index among the custom parameters
    };
    // The body sorted by what its members are.
    struct Body {
        std::array<const Member *, kAuxParKindCount> registered{};
        std::array<const Member *, 3> special{};
        std::vector<const Member *> custom;
        std::vector<const Member *> unknown;
        bool repeated = false;
    };

    Answer evaluate();
    const Body &body();
    const KeyRole *roleOf(const Text &name) const;

    Answer testTime();
    Answer testTexts();
    Answer testConditions();
    Answer testCustom();
    Answer testKeyword();

    // Texts as the event would hold them.
    Answer memberText(const Value &value, QString *text) const;
    QString plainText(const Member *member) const;
    QString plainText(const Value &value) const;
    QString undefinedText();
    QDateTime eventTime(bool *known);
    AuxPar &prototype(int type);

    // The keyword in one text: a span of the line, or any other text.
    Answer keywordInSpan(const Text &text);
    bool keywordIn(const QString &text) const { return m_pack.keywordFoundIn(text); }
    Answer keywordInParameter(int type, const Value &value);
    Answer keywordInRendered(int type, const Value &value);

    FilterPack m_pack;
    LineAcceptor m_acceptor;
    bool m_russian = false;
    bool m_needsBody = false;
    bool m_alwaysInFull = false;
    qint64 m_parsedInFull = 0;

    NameTable<KeyRole> m_roles;
    // The end of the line being tested: spans may be read in blocks up to it.
    const uchar *m_lineEnd = nullptr;
    Body m_body;
    bool m_bodyRead = false;
    Event::Priority m_priority = Event::Unknown;

    // The time bounds as instants, for events whose time carries its zone.
    qint64 m_fromMsecs = 0;
    qint64 m_toMsecs = 0;

    // The keyword: whether plain byte matching decides it, and what of the rendered texts
    // it can be found in.
    QByteArray m_keyword;
    bool m_keywordPlain = false;
    bool m_keywordInNumbers = false;
    std::array<bool, 9> m_priorityHits{};
    NameTable<bool> m_sourceHits;
    bool m_unrecognizedSourceHit = false;
    bool m_emptyHit = false;
    bool m_anyBoolHit = false;
    bool m_anySignalHit = false;
    NameTable<bool> m_labelHits;

    std::array<std::unique_ptr<AuxPar>, kAuxParKindCount> m_prototypes;
};
