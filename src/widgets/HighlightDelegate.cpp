// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "HighlightDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace
{
using Range = KeywordMatcher::Range;

// The ranges of `text` that are still on screen once it is shortened to `shown`, moved to
// their places in it. A range the ellipsis cuts is dropped.
QVector<Range> visibleRanges(const QVector<Range> &ranges, const QString &text, const QString &shown)
{
    if (shown == text)
        return ranges;
    int head = 0;
    while (head < shown.size() && head < text.size() && shown.at(head) == text.at(head))
        ++head;
    const int tailLimit = std::max(0, int(shown.size()) - head - 1);
    int tail = 0;
    while (tail < tailLimit && shown.at(shown.size() - 1 - tail) == text.at(text.size() - 1 - tail))
        ++tail;
    const int tailStart = text.size() - tail;
    const int shift = int(shown.size()) - int(text.size());
    QVector<Range> result;
    for (const Range &range : ranges) {
        if (range.start + range.length <= head)
            result.append(range);
        else if (range.start >= tailStart)
            result.append({range.start + shift, range.length});
    }
    return result;
}
}

HighlightDelegate::HighlightDelegate(QObject *parent) : QStyledItemDelegate(parent)
{
}

QColor HighlightDelegate::markColor(const QPalette &palette, QPalette::ColorGroup group, bool selected)
{
    QColor color = palette.color(group, selected ? QPalette::HighlightedText : QPalette::Highlight);
    color.setAlpha(selected ? 96 : 112);
    return color;
}

void HighlightDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QVector<Range> found = m_matcher.ranges(opt.text);
    if (found.isEmpty()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }

    const QWidget *widget = opt.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    const QString text = opt.text;
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &opt, widget);
    // Background, selection, icon and focus frame as usual; the text is ours.
    opt.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);

    // The margins and wrapping the style's own text drawing uses.
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
    const QRect area = textRect.adjusted(margin, 0, -margin, 0);
    const bool wrap = opt.features & QStyleOptionViewItem::WrapText;
    const bool oneLine = !wrap && !text.contains(QChar::LineSeparator);
    const QString shown = oneLine ? opt.fontMetrics.elidedText(text, opt.textElideMode, area.width()) : text;
    const QVector<Range> marks = visibleRanges(found, text, shown);

    QTextOption textOption;
    textOption.setWrapMode(wrap ? QTextOption::WordWrap : QTextOption::ManualWrap);
    textOption.setTextDirection(opt.direction);
    textOption.setAlignment(QStyle::visualAlignment(opt.direction, opt.displayAlignment));
    QTextLayout layout(shown, opt.font);
    layout.setTextOption(textOption);
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(area.width());
        line.setPosition(QPointF(0, height));
        height += line.height();
    }
    layout.endLayout();

    qreal top = area.top();
    if (opt.displayAlignment & Qt::AlignBottom)
        top = area.bottom() + 1 - height;
    else if (!(opt.displayAlignment & Qt::AlignTop))
        top = area.top() + (area.height() - height) / 2;
    const QPointF origin(area.left(), top);

    const QPalette::ColorGroup group = !(opt.state & QStyle::State_Enabled) ? QPalette::Disabled
        : (opt.state & QStyle::State_Active)                              ? QPalette::Normal
                                                                           : QPalette::Inactive;
    const bool selected = opt.state & QStyle::State_Selected;

    painter->save();
    painter->setClipRect(area);
    const QColor mark = markColor(opt.palette, group, selected);
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        const int lineStart = line.textStart();
        const int lineEnd = lineStart + line.textLength();
        for (const Range &range : marks) {
            const int start = std::max(range.start, lineStart);
            const int end = std::min(range.start + range.length, lineEnd);
            if (start >= end)
                continue;
            const qreal x1 = line.cursorToX(start);
            const qreal x2 = line.cursorToX(end);
            painter->fillRect(QRectF(origin.x() + std::min(x1, x2), origin.y() + line.y(), std::abs(x2 - x1), line.height()),
                              mark);
        }
    }
    painter->setPen(opt.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    layout.draw(painter, origin);
    painter->restore();
}
