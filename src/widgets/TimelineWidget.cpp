// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "TimelineWidget.h"

#include "EventsModel.h"

#include "ui_TimelineWidget.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr qint64 kHourMs = 3600000;
constexpr qint64 kDayMs = 24 * kHourMs;
// Narrower bars could not be told apart or hit with the mouse; wider ones would make
// a journal of a few hours look like a wall.
constexpr int kMinPitch = 3;
constexpr int kMaxPitch = 32;

qint64 sum(const EventTimes::Counts &counts, int from, int to)
{
    qint64 total = 0;
    for (int i = from; i <= to; ++i)
        total += counts[std::size_t(i)];
    return total;
}

QString shortTime(qint64 msecs)
{
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC).toLocalTime(), QLocale::ShortFormat);
}
}

TimelineWidget::TimelineWidget(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::TimelineWidget>())
{
    ui->setupUi(this);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

TimelineWidget::~TimelineWidget() = default;

QSize TimelineWidget::sizeHint() const
{
    return {200, fontMetrics().height() * 4};
}

QSize TimelineWidget::minimumSizeHint() const
{
    return {kMinPitch * 8, sizeHint().height()};
}

void TimelineWidget::setEntries(std::vector<Entry> entries, Bucket bucket)
{
    m_entries = std::move(entries);
    m_bucket = bucket;
    layoutBars();
    update();
}

void TimelineWidget::clear()
{
    setEntries({}, m_bucket);
}

QRect TimelineWidget::chartRect() const
{
    const QRect area = contentsRect().adjusted(2, 2, -2, 0);
    return area.adjusted(0, 0, 0, -(fontMetrics().height() + 2));
}

void TimelineWidget::layoutBars()
{
    m_bars.clear();
    m_maxTotal = 0;
    if (m_entries.empty())
        return;
    const qint64 bucketMs = m_bucket == Bucket::Day ? kDayMs : kHourMs;
    const qint64 first = m_entries.front().startMsecs;
    const qint64 slotCount = (m_entries.back().startMsecs - first) / bucketMs + 1;
    const int width = std::max(1, chartRect().width());
    const qint64 maxBars = std::max(1, width / kMinPitch);
    const qint64 group = (slotCount + maxBars - 1) / maxBars;
    const qint64 barCount = (slotCount + group - 1) / group;
    m_pitch = std::min<double>(kMaxPitch, double(width) / double(barCount));
    m_barWidth = std::max(1, int(m_pitch) - (m_pitch >= kMinPitch ? 1 : 0));
    for (const Entry &entry : m_entries) {
        const int slot = int((entry.startMsecs - first) / bucketMs / group);
        if (m_bars.empty() || m_bars.back().slot != slot) {
            Bar bar;
            bar.slot = slot;
            bar.startMsecs = first + slot * group * bucketMs;
            bar.endMsecs = bar.startMsecs + group * bucketMs;
            m_bars.push_back(bar);
        }
        Bar &bar = m_bars.back();
        bar.total += entry.total;
        EventTimes::addCounts(bar.byPriority, entry.byPriority);
    }
    for (const Bar &bar : m_bars)
        m_maxTotal = std::max(m_maxTotal, bar.total);
}

QRect TimelineWidget::barRect(int index) const
{
    if (index < 0 || index >= int(m_bars.size()) || m_maxTotal <= 0)
        return {};
    const Bar &bar = m_bars[std::size_t(index)];
    const QRect chart = chartRect();
    const int height = std::max(1, int(std::lround(double(chart.height()) * double(bar.total) / double(m_maxTotal))));
    const int x = chart.left() + int(std::lround(bar.slot * m_pitch));
    return {x, chart.bottom() - height + 1, m_barWidth, height};
}

int TimelineWidget::barAt(const QPoint &point) const
{
    const QRect chart = chartRect();
    if (m_bars.empty() || point.y() < chart.top() || point.y() > chart.bottom() || m_pitch <= 0)
        return -1;
    // Short bars are hit anywhere above them, as far up as the tallest reaches.
    const int slot = int(std::floor((point.x() - chart.left()) / m_pitch));
    const auto found = std::lower_bound(m_bars.begin(), m_bars.end(), slot,
                                        [](const Bar &bar, int wanted) { return bar.slot < wanted; });
    if (found == m_bars.end() || found->slot != slot)
        return -1;
    const int index = int(found - m_bars.begin());
    const QRect rect = barRect(index);
    return point.x() >= rect.left() && point.x() <= rect.right() ? index : -1;
}

QString TimelineWidget::barToolTip(int index) const
{
    if (index < 0 || index >= int(m_bars.size()))
        return QString();
    const Bar &bar = m_bars[std::size_t(index)];
    const QLocale locale;
    QString text = tr("%n events from %1 to %2.\nEmergency: %3\nAlert: %4\nCritical: %5\nError: %6\nWarning: %7\n"
                      "Notice: %8\nInfo: %9\nDebug: %10\nUnknown priority: %11",
                      "", int(std::min<qint64>(bar.total, std::numeric_limits<int>::max())))
                       .arg(shortTime(bar.startMsecs), shortTime(bar.endMsecs));
    for (const qint64 count : bar.byPriority)
        text = text.arg(locale.toString(count));
    return text;
}

bool TimelineWidget::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        const int index = barAt(help->pos());
        if (index >= 0)
            QToolTip::showText(help->globalPos(), barToolTip(index), this, barRect(index));
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

void TimelineWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutBars();
}

void TimelineWidget::mouseReleaseEvent(QMouseEvent *event)
{
    const int index = event->button() == Qt::LeftButton ? barAt(event->pos()) : -1;
    if (index < 0) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    emit barClicked(QDateTime::fromMSecsSinceEpoch(m_bars[std::size_t(index)].startMsecs, Qt::UTC));
}

const TimelineWidget::Colours &TimelineWidget::colours() const
{
    const QPalette palette = QApplication::palette("QAbstractItemView");
    if (palette.cacheKey() != m_colours.paletteKey) {
        // The shades the events table writes these priorities in, so that a bar reads
        // as the rows it stands for.
        m_colours.severe = EventsModel::severityColour(Qt::red, palette);
        m_colours.warning = EventsModel::severityColour(Qt::darkYellow, palette);
        // Halfway between text and base: neutral, and visible in light and dark schemes.
        const QColor text = palette.color(QPalette::Text);
        const QColor base = palette.color(QPalette::Base);
        m_colours.other = QColor((text.red() + base.red()) / 2, (text.green() + base.green()) / 2,
                                 (text.blue() + base.blue()) / 2);
        m_colours.paletteKey = palette.cacheKey();
    }
    return m_colours;
}

void TimelineWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPalette viewPalette = QApplication::palette("QAbstractItemView");
    painter.fillRect(rect(), viewPalette.color(QPalette::Base));
    const QRect chart = chartRect();
    painter.setPen(viewPalette.color(QPalette::Mid));
    painter.drawLine(chart.left(), chart.bottom() + 1, chart.right(), chart.bottom() + 1);
    if (m_bars.empty())
        return;

    const Colours &shades = colours();
    for (int i = 0; i < int(m_bars.size()); ++i) {
        const Bar &bar = m_bars[std::size_t(i)];
        const QRect whole = barRect(i);
        // Severe at the foot, where even a short bar shows it; each group keeps its
        // share of the bar's height.
        const qint64 groups[] = {sum(bar.byPriority, 0, 2), sum(bar.byPriority, 3, 4),
                                 sum(bar.byPriority, 5, 8)};
        const QColor colours[] = {shades.severe, shades.warning, shades.other};
        int bottom = whole.bottom() + 1;
        qint64 below = 0;
        for (int g = 0; g < 3; ++g) {
            if (groups[g] == 0)
                continue;
            below += groups[g];
            const int top = whole.bottom() + 1 - int(std::lround(double(whole.height()) * double(below) / double(bar.total)));
            if (top < bottom)
                painter.fillRect(QRect(whole.left(), top, whole.width(), bottom - top), colours[g]);
            bottom = std::min(bottom, top);
        }
    }

    painter.setPen(viewPalette.color(QPalette::Text));
    const QRect labels(chart.left(), chart.bottom() + 2, chart.width(), height() - chart.bottom() - 2);
    const QString unit = m_bucket == Bucket::Day ? tr("Events per day") : tr("Events per hour");
    const int unitWidth = fontMetrics().horizontalAdvance(unit);
    painter.drawText(labels, Qt::AlignRight | Qt::AlignVCenter, unit);
    const QString range = tr("From %1 to %2").arg(shortTime(m_bars.front().startMsecs), shortTime(m_bars.back().endMsecs));
    const int rangeWidth = labels.width() - unitWidth - fontMetrics().averageCharWidth() * 2;
    if (rangeWidth > 0)
        painter.drawText(labels.adjusted(0, 0, -(labels.width() - rangeWidth), 0), Qt::AlignLeft | Qt::AlignVCenter,
                         fontMetrics().elidedText(range, Qt::ElideRight, rangeWidth));
}
