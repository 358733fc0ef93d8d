// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsView.h"

#include "HighlightDelegate.h"

#include <QHeaderView>
#include <QKeyEvent>

EventsView::EventsView(QWidget *parent) : QTableView(parent), m_highlight(new HighlightDelegate(this))
{
    setItemDelegate(m_highlight);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setHighlightSections(false);
    // Row numbers are a column of their own; one line of text per row.
    verticalHeader()->setVisible(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
}

void EventsView::setHighlight(const FilterPack &filter)
{
    m_highlight->setMatcher(KeywordMatcher(filter));
    viewport()->update();
}

void EventsView::moveEvent(QMoveEvent *event)
{
    QTableView::moveEvent(event);
    Q_EMIT geometryChanged(x(), y(), width(), height());
}

void EventsView::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    Q_EMIT geometryChanged(x(), y(), width(), height());
}

void EventsView::keyPressEvent(QKeyEvent *event)
{
    // The details are those of the row Enter was pressed on, whatever the base
    // handling does with the current index afterwards.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Q_EMIT showDetailsRequest();
    QTableView::keyPressEvent(event);
}
