// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "KeywordMatcher.h"

#include "FilterPack.h"

namespace
{
// The filter's regular expression compares characters one UTF-16 unit at a time,
// lowered when the case does not matter; lowering the same way keeps every offset.
QString lowered(const QString &text)
{
    QString result = text;
    for (QChar &c : result)
        c = c.toLower();
    return result;
}

// The filter's word characters: Latin and basic Cyrillic letters and digits; Ё and ё
// are separators there and so here.
bool isWordCharacter(QChar c)
{
    const ushort u = c.unicode();
    return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || (u >= '0' && u <= '9') || (u >= 0x0410 && u <= 0x044F);
}
}

KeywordMatcher::KeywordMatcher(const FilterPack &pack)
    : m_caseSensitive(pack.caseSensitive), m_wholeWord(pack.wholeWord)
{
    if (pack.checkSearch)
        m_keyword = m_caseSensitive ? pack.search : lowered(pack.search);
}

bool KeywordMatcher::bounded(const QString &text, int start, int end) const
{
    auto separator = [this](QChar c) {
        return !isWordCharacter(c) && (m_caseSensitive || !isWordCharacter(c.toLower()));
    };
    return (start == 0 || separator(text.at(start - 1))) && (end == text.size() || separator(text.at(end)));
}

QVector<KeywordMatcher::Range> KeywordMatcher::ranges(const QString &text) const
{
    QVector<Range> found;
    if (m_keyword.isEmpty())
        return found;
    const QString searched = m_caseSensitive ? text : lowered(text);
    const int length = m_keyword.size();
    int from = 0;
    while ((from = searched.indexOf(m_keyword, from, Qt::CaseSensitive)) >= 0) {
        if (m_wholeWord && !bounded(text, from, from + length)) {
            ++from;
            continue;
        }
        found.append({from, length});
        from += length;
    }
    return found;
}
