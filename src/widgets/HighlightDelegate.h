// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "KeywordMatcher.h"

#include <QPalette>
#include <QStyledItemDelegate>

// Paints cells as the view's style does, with the filter keyword's occurrences marked
// behind the text. Cells without an occurrence are left entirely to the base class.
class HighlightDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit HighlightDelegate(QObject *parent = nullptr);

    void setMatcher(const KeywordMatcher &matcher) { m_matcher = matcher; }
    const KeywordMatcher &matcher() const { return m_matcher; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    // Translucent, so that the text keeps the colour it has without a match and stays
    // readable on light and dark schemes alike; a selected row's highlight would hide
    // the palette's own, so the selected text colour is used there.
    static QColor markColor(const QPalette &palette, QPalette::ColorGroup group, bool selected);

private:
    KeywordMatcher m_matcher;
};
