// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "AbstractLogParser.h"

#include <QColor>
#include <QDateTime>
#include <QWidget>

#include <memory>
#include <vector>

namespace Ui
{
class TimelineWidget;
}

// How many events of a tab fell in each hour or day, as bars stacked by priority
// group over a time axis. A bar under the mouse tells its counts; a click on it
// asks for the first event of its time.
class TimelineWidget : public QWidget
{
    Q_OBJECT
public:
    using Entry = AbstractLogParser::TimelineEntry;
    using Bucket = AbstractLogParser::TimelineBucket;

    // One drawn bar: the buckets it merges, with the counts of their events.
    struct Bar {
        qint64 startMsecs = 0;
        qint64 endMsecs = 0;
        qint64 total = 0;
        EventTimes::Counts byPriority{};
        int slot = 0; // place on the axis, in bars from the first
    };

    explicit TimelineWidget(QWidget *parent = nullptr);
    ~TimelineWidget() override;

    void setEntries(std::vector<Entry> entries, Bucket bucket);
    void clear();
    Bucket bucket() const { return m_bucket; }
    const std::vector<Entry> &entries() const { return m_entries; }

    // The bars that have events, in time order. Adjacent buckets share a bar when the
    // width cannot hold one bar each.
    const std::vector<Bar> &bars() const { return m_bars; }
    QRect barRect(int index) const;
    // The bar at a point of the widget, or -1.
    int barAt(const QPoint &point) const;
    QString barToolTip(int index) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void barClicked(const QDateTime &start);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void layoutBars();
    QRect chartRect() const;
    struct Colours {
        qint64 paletteKey = -1;
        QColor severe;
        QColor warning;
        QColor other;
    };
    const Colours &colours() const;

    std::unique_ptr<Ui::TimelineWidget> ui;
    std::vector<Entry> m_entries;
    Bucket m_bucket = Bucket::Hour;
    std::vector<Bar> m_bars;
    double m_pitch = 0;
    int m_barWidth = 0;
    qint64 m_maxTotal = 0;
    mutable Colours m_colours;
};
