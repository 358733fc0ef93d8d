// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "CompressedLogFile.h"
#include "FilterPack.h"
#include "TimelineWidget.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <QThread>
#include <QWidget>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class AbstractLogParser;
class AsyncLoader;
class BottomWidget;
class Event;
class EventGenerator;
class EventsModel;
class EventsView;
class LoadWarning;
class PageWidget;
class QAction;
class QTimer;

namespace Ui
{
class LogWidget;
}

// One journal tab: the events table with its pager over the bottom panel. Owns the
// log's parser and a loader thread; counts the log, pages it by the configured page
// size and shows the rows of the current page.
class LogWidget : public QWidget
{
    Q_OBJECT
public:
    // An unfiltered tab. `contextActions` make up the table's context menu.
    LogWidget(const QString &path, const QList<QAction *> &contextActions, QWidget *parent = nullptr);
    // A filtered tab.
    LogWidget(const QString &path, const FilterPack &filter, const QList<QAction *> &contextActions,
              QWidget *parent = nullptr);
    ~LogWidget() override;

    // The path the tab was opened on, and the one its parser reads (a private
    // unpacked copy for a compressed rotation).
    QString logPath() const { return m_path; }
    QString readablePath() const;

    bool isFiltered() const { return m_filtered; }
    // Bounds for unpacking a compressed rotation; before the first refresh() only.
    void setUnpackLimits(CompressedLogFile::Limits limits);
    const FilterPack &filter() const { return m_filter; }
    // Refilters a filtered tab in place: new criteria in the bottom panel, an empty
    // table, then a full count.
    void setFilter(const FilterPack &filter);

    // Hides every event counted so far; later lines are shown from row 1 on.
    void clearTable();
    // Shows every line again.
    void restoreTable();
    bool isCleared() const { return m_cleared; }

    // A rotation is being unpacked, a count or page load is under way, or another
    // thread's job holds the tab.
    bool isLoading() const { return m_unpacking || m_pendingCount || m_pendingLoad || m_externalBusy > 0; }
    int percent() const { return m_percent; }
    QString feedbackText() const { return m_feedback; }
    // The last count received; -1 before the first or when the file cannot be read.
    int eventCount() const { return m_count; }
    // False while the tab shows why its file cannot be read (missing, not a journal,
    // a damaged archive): nothing in it can be summarised, exported, printed or filtered.
    bool isReadable() const { return m_readable; }

    // Holds the tab busy for a job of another thread (export, printing). Safe to call
    // from any thread; the change reaches the widget through its event loop.
    void setBusy(bool busy);
    // What the job holding the tab is doing, for the overlay; interface thread only.
    void showJobProgress(const QString &text);

    // The selected events of the current page, in row order.
    QList<const Event *> selectedEvents() const;
    // The single selected event; null for no selection or several.
    const Event *currentEvent() const;
    const EventGenerator *eventGenerator() const { return m_generator; }

    EventsModel *model() const { return m_model; }
    EventsView *view() const;
    PageWidget *pageWidget() const;
    BottomWidget *bottomWidget() const;
    AbstractLogParser *parser() const { return m_parser.get(); }
    AsyncLoader *loader() const { return m_loader.get(); }

    void setBottomVisible(bool visible);
    // The strip of events per hour or day above the table. While it is hidden its
    // counts are not kept, which spares every count of the tab that work.
    void setTimelineVisible(bool visible);
    bool isTimelineVisible() const { return m_timelineShown; }
    TimelineWidget *timelineWidget() const;

    // Shows the page of the first event, in file order, whose time is at or after
    // `time`, with that event selected; the search runs on the loader thread. When
    // there is none the feedback says so.
    void goToTime(const QDateTime &time);
    // Shows the fixed columns and exactly the auxiliary columns of these kinds and
    // custom parameter names.
    void setVisibleColumns(const QSet<int> &auxTypes, const QSet<QString> &customNames);

    // Reads the very file `other` reads, even when its path has since been given to
    // another file (a filtered view of a rotated journal). Before the first refresh().
    void readSameFileAs(const LogWidget &other);

    // Stops the loader thread (a running scan is cut short); the tab serves no
    // requests afterwards. Called before destruction at the latest.
    void stopLoader();
    // The tab is going away: its unpacking and counting end early and it starts
    // nothing new, so that it leaves its loading state soon. A job of another thread
    // holding the tab runs to its end.
    void abandon();

public Q_SLOTS:
    // Tests the file; shows the table and counts when it is a journal, otherwise
    // hides the table and reports "Can't open log file.". A compressed rotation is
    // unpacked first, on the loader thread.
    void refresh();
    // Takes a changed page size into account.
    void reload();

Q_SIGNALS:
    void countRequest();
    void loadRequest(int position, int count);
    // The feedback text or the loading state changed.
    void feedbackRequest(const QString &text);
    void selectionChanged(bool selected);
    void showDetails(const EventGenerator *generator, int position);
    // The tab left its loading state.
    void loadingFinished();
    // The table's context menu is about to open with the actions the tab was given;
    // receivers adjust their state (enabled, visible) for the current event first.
    void contextMenuAboutToShow();

protected:
    // Whether new counts move the view to the newest page.
    bool following() const { return m_following; }
    void setFollowing(bool following) { m_following = following; }

private:
    void init(const QList<QAction *> &contextActions);
    void requestCount();
    void startUnpacking();
    void onUnpackFinished();
    // Hides the table and says why the file cannot be shown.
    void showUnreadable(const QString &reason);
    void onFileRefused(int check);
    QString unpackFailure() const;
    void requestPage(int page);
    std::pair<int, int> pageRange(int page) const;
    void onCountFinished(int count);
    void onLoadFinished(std::vector<Event *> events);
    void showPage(std::vector<Event *> events);
    void fitShortColumns();
    void onLoadFailed();
    void requestTimeline();
    void onTimelineFinished(std::vector<AbstractLogParser::TimelineEntry> entries);
    void onRowAtTimeFound(const QDateTime &time, int row);
    // Turns to the page of a shown row and selects it once that page is on screen.
    void showRow(int row);
    bool selectPendingRow();
    void onPercentRead(int percent);
    // The bottom panel follows the selection, whichever way it was made.
    void showSelectedEvent();
    void requestDetails();
    void setFeedback(const QString &text);
    void setEventsAreaVisible(bool visible, const QString &message = QString());
    void busyChanged(bool wasLoading);
    void applyExternalBusy(bool busy);
    // Runs `call` on the loader thread, after what was queued before it.
    template<typename Call>
    void onLoaderThread(Call call);

    std::unique_ptr<Ui::LogWidget> ui;
    QString m_path;
    std::unique_ptr<CompressedLogFile> m_file;
    bool m_filtered = false;
    FilterPack m_filter;
    std::unique_ptr<AbstractLogParser> m_parser;
    std::unique_ptr<AsyncLoader> m_loader;
    QThread m_thread;
    EventGenerator *m_generator = nullptr;
    EventsModel *m_model = nullptr;
    LoadWarning *m_loadWarning = nullptr;
    QTimer *m_overlayDelay = nullptr;
    QList<QAction *> m_contextActions;

    int m_count = -1;
    int m_percent = 0;
    QString m_feedback;
    bool m_cleared = false;
    bool m_readable = true;
    bool m_following = false;
    bool m_stopped = false;
    bool m_abandoned = false;
    int m_externalBusy = 0;
    // At most one count and one page load are in flight; what is asked meanwhile
    // waits for them (a count runs again, the newest page is read next).
    bool m_unpacking = false;
    bool m_pendingCount = false;
    bool m_countAgain = false;
    bool m_pendingLoad = false;
    std::optional<std::pair<int, int>> m_nextLoad;
    bool m_updatingPages = false;
    // The next page shown is scrolled to its end (the newest events).
    bool m_stickToBottom = false;
    bool m_columnsSized = false;
    bool m_timelineShown = true;
    bool m_pendingTimeline = false;
    bool m_timelineAgain = false;
    AbstractLogParser::TimelineBucket m_timelineBucket = AbstractLogParser::TimelineBucket::Hour;
    // A row found by time beyond the last count waits for the count that takes it in.
    int m_rowAfterCount = -1;
    // The event (by number) to select when its page is shown; 0 for none.
    quint32 m_selectNumber = 0;
};
