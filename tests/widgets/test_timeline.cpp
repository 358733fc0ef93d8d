// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#include "BottomWidget.h"
#include "ConfigStore.h"
#include "Event.h"
#include "EventsModel.h"
#include "EventsView.h"
#include "LogWidget.h"
#include "MainLogWidget.h"
#include "NimbTestMain.h"
#include "PageWidget.h"
#include "TimelineWidget.h"

#include <QApplication>
#include <QHelpEvent>
#include <QProcess>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QToolTip>

#include <algorithm>
#include <map>
#include <numeric>

namespace
{
const char *const kWords[] = {"emerg", "alert", "crit", "err", "warning", "notice", "info", "debug", "bogus"};

struct Written {
    QString id;
    qint64 msecs;
    int priority; // 1..8, 0 unknown
};

QByteArray line(const Written &event)
{
    // Written in Moscow time: the hours are counted in UTC all the same.
    const QString time = QDateTime::fromMSecsSinceEpoch(event.msecs, Qt::OffsetFromUTC, 3 * 3600).toString(Qt::ISODate);
    const char *word = event.priority == 0 ? kWords[8] : kWords[event.priority - 1];
    return QStringLiteral("{\"PRIORITY\":\"%1\",\"ISODATE\":\"%2\",\"MSG\":{\"velmo-auth\":{\"message_id\":\"%3\"}}}\n")
        .arg(QLatin1String(word), time, event.id)
        .toUtf8();
}

QByteArray lines(const QVector<Written> &events)
{
    QByteArray bytes;
    for (const Written &event : events)
        bytes += line(event);
    return bytes;
}

void appendByWriter(const QString &path, const QByteArray &bytes)
{
    QProcess process;
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("printf '%s' \"$1\" >> \"$2\""),
                                              QStringLiteral("sh"), QString::fromUtf8(bytes), path});
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 0);
}

// What the bars must say, counted the plain way: per UTC hour or day, the priorities
// 1 to 8 and then the unknown one.
std::map<qint64, EventTimes::Counts> countBy(const QVector<Written> &events, qint64 bucketMs)
{
    std::map<qint64, EventTimes::Counts> counts;
    for (const Written &event : events) {
        const qint64 start = event.msecs - ((event.msecs % bucketMs) + bucketMs) % bucketMs;
        counts[start][std::size_t(event.priority == 0 ? 8 : event.priority - 1)] += 1;
    }
    return counts;
}

bool barsMatch(const TimelineWidget &timeline, const std::map<qint64, EventTimes::Counts> &expected)
{
    return timeline.bars().size() == expected.size()
        && std::equal(timeline.bars().begin(), timeline.bars().end(), expected.begin(),
                      [](const TimelineWidget::Bar &bar, const std::pair<const qint64, EventTimes::Counts> &hour) {
                          return bar.startMsecs == hour.first && bar.byPriority == hour.second;
                      });
}

void compareBars(const TimelineWidget &timeline, const std::map<qint64, EventTimes::Counts> &expected)
{
    QCOMPARE(timeline.bars().size(), expected.size());
    auto it = expected.begin();
    for (const TimelineWidget::Bar &bar : timeline.bars()) {
        QCOMPARE(bar.startMsecs, it->first);
        QVERIFY(bar.byPriority == it->second);
        QCOMPARE(bar.total, std::accumulate(it->second.begin(), it->second.end(), qint64(0)));
        ++it;
    }
}

int firstAtOrAfter(const QVector<Written> &events, qint64 msecs)
{
    for (int i = 0; i < events.size(); ++i)
        if (events.at(i).msecs >= msecs)
            return i;
    return -1;
}

QString panelId(const LogWidget &widget)
{
    const auto *panel = widget.bottomWidget()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    for (int row = 0; row < panel->rowCount(); ++row)
        if (panel->item(row, 0)->text() == QLatin1String("Message ID"))
            return panel->item(row, 1)->text();
    return QString();
}
}

class TestTimeline : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const qint64 m_base = QDateTime(QDate(2024, 3, 1), QTime(6, 0), Qt::UTC).toMSecsSinceEpoch();

    // Five hours of events, then the clock steps back two and a half hours.
    QVector<Written> steppingBack() const
    {
        QVector<Written> events;
        for (int i = 0; i < 240; ++i) {
            const qint64 msecs = i < 160 ? m_base + i * 113000LL : m_base + 9000000LL + (i - 160) * 67000LL;
            events.append({QStringLiteral("e%1").arg(i), msecs, (i * 5) % 9});
        }
        return events;
    }

    QString journal(const QString &name, const QVector<Written> &events)
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(lines(events)) < 0)
            qFatal("cannot write the journal");
        return path;
    }

private slots:
    void init() { ConfigStore::instance().messagesPerPage() = 100; }

    void barsCountHoursByPriorityAndLeadToTheirFirstEvent()
    {
        QVector<Written> events = steppingBack();
        const QString path = journal(QStringLiteral("hours"), events);
        MainLogWidget widget(path, {});
        widget.resize(1000, 700);
        widget.show();
        widget.startFollowing();
        auto *timeline = widget.findChild<TimelineWidget *>(QStringLiteral("timelineWidget"));
        QVERIFY(timeline && timeline->isVisible());
        QTRY_VERIFY(!widget.isLoading() && !timeline->bars().empty());
        QCOMPARE(widget.pageWidget()->page(), 3);
        compareBars(*timeline, countBy(events, 3600000));

        QVERIFY(QDir().mkpath(QStringLiteral(NIMB_SCREENSHOT_DIR)));
        QVERIFY(widget.grab().save(QStringLiteral(NIMB_SCREENSHOT_DIR "/timeline.png")));

        // Each bar tells its hour and its counts.
        const TimelineWidget::Bar second = timeline->bars().at(1);
        const QPoint point = timeline->barRect(1).center();
        QHelpEvent help(QEvent::ToolTip, point, timeline->mapToGlobal(point));
        QApplication::sendEvent(timeline, &help);
        QTRY_VERIFY(QToolTip::isVisible());
        const QString start = QLocale().toString(QDateTime::fromMSecsSinceEpoch(second.startMsecs).toLocalTime(),
                                                 QLocale::ShortFormat);
        QVERIFY2(QToolTip::text().startsWith(QStringLiteral("%1 events from %2 to ").arg(second.total).arg(start)),
                 qPrintable(QToolTip::text()));
        QVERIFY(QToolTip::text().contains(QStringLiteral("Warning: %1\n").arg(second.byPriority[4])));
        QVERIFY(QToolTip::text().endsWith(QStringLiteral("Unknown priority: %1").arg(second.byPriority[8])));

        // A click on an hour goes to the first event in file order at or after its
        // start, on its page, and shows it below.
        for (const int bar : {1, int(timeline->bars().size()) - 1}) {
            const int row = firstAtOrAfter(events, timeline->bars().at(std::size_t(bar)).startMsecs);
            QTest::mouseClick(timeline, Qt::LeftButton, {}, timeline->barRect(bar).center());
            QTRY_VERIFY(widget.currentEvent() && widget.currentEvent()->number == quint32(row + 1));
            QCOMPARE(widget.pageWidget()->page(), row / 100 + 1);
            QCOMPARE(panelId(widget), events.at(row).id);
            QVERIFY(widget.view()->visualRect(widget.view()->currentIndex()).intersects(widget.view()->viewport()->rect()));
        }

        // Going to a time the clock passed twice finds its first passage.
        const qint64 twice = m_base + 9000000LL + 600000LL;
        widget.goToTime(QDateTime::fromMSecsSinceEpoch(twice));
        QTRY_COMPARE(widget.currentEvent()->number, quint32(firstAtOrAfter(events, twice) + 1));
        QCOMPARE(widget.pageWidget()->page(), 1);
        widget.goToTime(QDateTime::fromMSecsSinceEpoch(m_base + 86400000LL));
        QTRY_VERIFY(widget.feedbackText().startsWith(QStringLiteral("No event happened at or after ")));
        QCOMPARE(widget.currentEvent()->number, quint32(firstAtOrAfter(events, twice) + 1));

        // The journal grows by a later hour: the followed tab counts it in.
        QVector<Written> later;
        for (int i = 0; i < 7; ++i)
            later.append({QStringLiteral("l%1").arg(i), m_base + 10 * 3600000LL + i * 1000, 3 + i % 3});
        appendByWriter(path, lines(later));
        events += later;
        QTRY_VERIFY(barsMatch(*timeline, countBy(events, 3600000)));
        compareBars(*timeline, countBy(events, 3600000));
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 247"));
    }

    void longJournalsGoByDaysAndNarrowStripsMergeThem()
    {
        QVector<Written> events;
        for (int i = 0; i < 150; ++i)
            events.append({QStringLiteral("d%1").arg(i), m_base + i * 5 * 3600000LL, i % 4 == 0 ? 4 : 7});
        LogWidget widget(journal(QStringLiteral("days"), events), {});
        widget.resize(1000, 700);
        widget.show();
        widget.refresh();
        auto *timeline = widget.timelineWidget();
        QTRY_VERIFY(!widget.isLoading() && timeline->bucket() == TimelineWidget::Bucket::Day
                    && !timeline->bars().empty());
        compareBars(*timeline, countBy(events, 86400000));

        // Too narrow for a bar a day: neighbours share bars, and nothing is lost.
        TimelineWidget narrow;
        narrow.setEntries(timeline->entries(), timeline->bucket());
        narrow.resize(40, narrow.sizeHint().height());
        narrow.show();
        QVERIFY(!narrow.bars().empty() && int(narrow.bars().size()) <= (40 - 4) / 3);
        qint64 total = 0;
        for (int i = 0; i < int(narrow.bars().size()); ++i) {
            const TimelineWidget::Bar &bar = narrow.bars().at(std::size_t(i));
            QVERIFY(bar.endMsecs - bar.startMsecs >= 2 * 86400000LL);
            QVERIFY(narrow.rect().contains(narrow.barRect(i)));
            if (i > 0)
                QVERIFY(narrow.barRect(i).left() > narrow.barRect(i - 1).right());
            total += bar.total;
        }
        QCOMPARE(total, qint64(events.size()));

        // Hidden, it keeps nothing; shown again, it counts again.
        widget.setTimelineVisible(false);
        QVERIFY(!timeline->isVisible() && timeline->bars().empty());
        widget.setTimelineVisible(true);
        QTRY_VERIFY(!timeline->bars().empty());
    }

    void filteredTabsCountWhatTheyShow()
    {
        const QVector<Written> events = steppingBack();
        FilterPack errors;
        errors.checkPriorities = true;
        errors.priorities = {int(Event::Error)};
        LogWidget widget(journal(QStringLiteral("filtered"), events), errors, {});
        widget.show();
        widget.refresh();
        QTRY_VERIFY(!widget.isLoading() && !widget.timelineWidget()->bars().empty());
        QVector<Written> shown;
        std::copy_if(events.begin(), events.end(), std::back_inserter(shown),
                     [](const Written &event) { return event.priority == Event::Error; });
        compareBars(*widget.timelineWidget(), countBy(shown, 3600000));
    }
};

NIMB_TEST_MAIN_WITH(TestTimeline, QApplication, NIMB_TEST_DATA_DIR "/sysroot-engine")
#include "test_timeline.moc"
