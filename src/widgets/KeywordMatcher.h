// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>
#include <QVector>

class FilterPack;

// Where a filter's keyword occurs in a text, found by the rules the filter itself
// uses, so that what is highlighted is what made the event pass. Inactive (no ranges)
// for a pack without a keyword search.
class KeywordMatcher
{
public:
    struct Range {
        int start = 0;
        int length = 0;
        bool operator==(const Range &other) const { return start == other.start && length == other.length; }
    };

    KeywordMatcher() = default;
    explicit KeywordMatcher(const FilterPack &pack);

    bool isActive() const { return !m_keyword.isEmpty(); }
    // Non-overlapping occurrences, in text order.
    QVector<Range> ranges(const QString &text) const;

private:
    bool bounded(const QString &text, int start, int end) const;

    QString m_keyword; // lowered per character when the case does not matter
    bool m_caseSensitive = false;
    bool m_wholeWord = false;
};
