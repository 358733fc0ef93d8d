// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LogWidget.h"

#include "AsyncLoader.h"
#include "BottomWidget.h"
#include "CompressedLogFile.h"
#include "ConfigStore.h"
#include "EventGenerator.h"
#include "EventsModel.h"
#include "EventsView.h"
#include "FilteringLogParser.h"
#include "LoadWarning.h"
#include "LogParser.h"
#include "PageWidget.h"

#include "ui_LogWidget.h"

#include <QDir>
#include <QHeaderView>
#include <QLocale>
#include <QMenu>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace
{
// Short counts and page loads (a followed journal growing, a page turned) finish
// before the overlay would be noticed; it only appears for work that lasts.
constexpr int kOverlayDelayMs = 150;
// Beyond two weeks an hour's bar would be too thin to see or hit.
constexpr qint64 kHourlySpanMs = 14 * 24 * 3600000LL;

AbstractLogParser::TimelineBucket bucketFor(const std::vector<AbstractLogParser::TimelineEntry> &entries,
                                            AbstractLogParser::TimelineBucket current)
{
    using Bucket = AbstractLogParser::TimelineBucket;
    if (entries.empty())
        return current;
    const qint64 bucketMs = current == Bucket::Day ? 24 * 3600000LL : 3600000LL;
    const qint64 span = entries.back().startMsecs + bucketMs - entries.front().startMsecs;
    // Days span at least the hours they hold, so a tab never swings between the two.
    if (current == Bucket::Hour)
        return span > kHourlySpanMs ? Bucket::Day : Bucket::Hour;
    return span <= kHourlySpanMs ? Bucket::Hour : Bucket::Day;
}
}

LogWidget::LogWidget(const QString &path, const QList<QAction *> &contextActions, QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::LogWidget>()), m_path(path),
      m_file(std::make_unique<CompressedLogFile>(path))
{
    m_parser = std::make_unique<LogParser>(m_file->readablePath());
    m_parser->setPinned(true);
    init(contextActions);
}

LogWidget::LogWidget(const QString &path, const FilterPack &filter, const QList<QAction *> &contextActions,
                     QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::LogWidget>()), m_path(path),
      m_file(std::make_unique<CompressedLogFile>(path)), m_filtered(true), m_filter(filter)
{
    auto parser = std::make_unique<FilteringLogParser>(m_file->readablePath());
    parser->setFilter(filter);
    parser->setPinned(true);
    m_parser = std::move(parser);
    init(contextActions);
}

LogWidget::~LogWidget()
{
    stopLoader();
    // Pages the loader sent before it stopped still own their events.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void LogWidget::init(const QList<QAction *> &contextActions)
{
    ui->setupUi(this);
    m_contextActions = contextActions;

    m_model = new EventsModel(this);
    ui->eventsView->setModel(m_model);
    ui->eventsView->horizontalHeader()->setStretchLastSection(true);
    // Column widths come from the rows on screen; measuring a whole page of text
    // would hold up the interface thread.
    ui->eventsView->horizontalHeader()->setResizeContentsPrecision(0);
    ui->bottomWidget->showFilter(m_filter);
    ui->eventsView->setHighlight(m_filter);
    ui->splitter->setStretchFactor(0, 3);
    ui->splitter->setStretchFactor(1, 1);
    setVisibleColumns({}, {});

    m_loadWarning = new LoadWarning(ui->verticalLayoutWidget);
    connect(ui->eventsView, &EventsView::geometryChanged, m_loadWarning, &LoadWarning::placeOver);
    m_overlayDelay = new QTimer(this);
    m_overlayDelay->setSingleShot(true);
    m_overlayDelay->setInterval(kOverlayDelayMs);
    connect(m_overlayDelay, &QTimer::timeout, this, [this] {
        if (isLoading()) {
            m_loadWarning->setGeometry(ui->eventsView->geometry());
            m_loadWarning->show();
            m_loadWarning->raise();
        }
    });

    // On before the first count, so that one scan gives the count and the timeline.
    m_timelineShown = ConfigStore::instance().showTimeline();
    m_parser->setTimelineEnabled(m_timelineShown);
    ui->timelineWidget->setVisible(m_timelineShown);
    connect(ui->timelineWidget, &TimelineWidget::barClicked, this, &LogWidget::goToTime);

    m_loader = std::make_unique<AsyncLoader>(m_parser.get());
    m_loader->moveToThread(&m_thread);
    m_generator = new EventGenerator(m_loader.get(), this);
    connect(this, &LogWidget::countRequest, m_loader.get(), &AsyncLoader::asyncCheckedCount);
    connect(m_loader.get(), &AsyncLoader::fileRefused, this, &LogWidget::onFileRefused);
    connect(this, &LogWidget::loadRequest, m_loader.get(), &AsyncLoader::asyncLoad);
    connect(m_loader.get(), &AsyncLoader::countFinished, this, &LogWidget::onCountFinished);
    connect(m_loader.get(), &AsyncLoader::loadFinished, this, &LogWidget::onLoadFinished);
    connect(m_loader.get(), &AsyncLoader::loadFailed, this, &LogWidget::onLoadFailed);
    connect(m_loader.get(), &AsyncLoader::percentRead, this, &LogWidget::onPercentRead);
    connect(m_loader.get(), &AsyncLoader::unpackFinished, this, &LogWidget::onUnpackFinished);
    connect(m_loader.get(), &AsyncLoader::timelineFinished, this,
            [this](std::vector<AbstractLogParser::TimelineEntry> entries, int) { onTimelineFinished(std::move(entries)); });
    connect(m_loader.get(), &AsyncLoader::rowAtTimeFound, this, &LogWidget::onRowAtTimeFound);
    m_thread.setObjectName(QStringLiteral("loader"));
    m_thread.start();

    connect(ui->pageWidget, &PageWidget::pageChanged, this, [this](int page) {
        if (!m_updatingPages)
            requestPage(page);
    });
    connect(ui->eventsView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { emit selectionChanged(ui->eventsView->selectionModel()->hasSelection()); });
    // A mouse click makes the row current before it selects it; either change may be
    // the last, so both refill the panel.
    connect(ui->eventsView->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &LogWidget::showSelectedEvent);
    connect(ui->eventsView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &LogWidget::showSelectedEvent);
    // A reset drops the selection without telling anyone.
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        emit selectionChanged(ui->eventsView->selectionModel()->hasSelection());
    });
    connect(ui->eventsView, &EventsView::showDetailsRequest, this, &LogWidget::requestDetails);
    connect(ui->eventsView, &QAbstractItemView::doubleClicked, this, &LogWidget::requestDetails);
    connect(ui->eventsView, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) {
        if (m_contextActions.isEmpty() || !ui->eventsView->indexAt(pos).isValid())
            return;
        emit contextMenuAboutToShow();
        QMenu menu(this);
        menu.addActions(m_contextActions);
        menu.exec(ui->eventsView->viewport()->mapToGlobal(pos));
    });
}

void LogWidget::setUnpackLimits(CompressedLogFile::Limits limits)
{
    if (!m_unpacking)
        m_file->setLimits(limits);
}

QString LogWidget::readablePath() const
{
    return m_file->readablePath();
}

EventsView *LogWidget::view() const
{
    return ui->eventsView;
}

PageWidget *LogWidget::pageWidget() const
{
    return ui->pageWidget;
}

BottomWidget *LogWidget::bottomWidget() const
{
    return ui->bottomWidget;
}

TimelineWidget *LogWidget::timelineWidget() const
{
    return ui->timelineWidget;
}

template<typename Call>
void LogWidget::onLoaderThread(Call call)
{
    QMetaObject::invokeMethod(m_loader.get(), std::move(call), Qt::QueuedConnection);
}

void LogWidget::refresh()
{
    if (m_stopped || m_abandoned || m_unpacking)
        return; // the end of unpacking refreshes
    switch (m_file->state()) {
    case CompressedLogFile::State::Ready:
        break;
    case CompressedLogFile::State::Pending:
        startUnpacking();
        return;
    default:
        showUnreadable(unpackFailure());
        return;
    }
    // Whether the file is a journal at all is for the loader to find out.
    requestCount();
}

void LogWidget::showUnreadable(const QString &reason)
{
    const QString message = tr("Can't open log file.");
    // Three lines: what happened, which file, why.
    QStringList lines{message, QDir::toNativeSeparators(m_path), reason};
    lines.removeAll(QString());
    setEventsAreaVisible(false, lines.join(QLatin1Char('\n')));
    setFeedback(message);
}

void LogWidget::onFileRefused(int check)
{
    const bool was = isLoading();
    m_pendingCount = false;
    if (m_stopped || m_abandoned) {
        busyChanged(was);
        return;
    }
    m_count = -1;
    m_generator->setCount(0);
    switch (static_cast<AbstractLogParser::FileCheck>(check)) {
    case AbstractLogParser::FileCheck::AccessDenied:
        showUnreadable(tr("You have no permission to read this file."));
        break;
    case AbstractLogParser::FileCheck::Folder:
        showUnreadable(tr("This is a folder, not a file."));
        break;
    case AbstractLogParser::FileCheck::NotRegularFile:
        showUnreadable(tr("This is not a regular file but a pipe, socket or device."));
        break;
    case AbstractLogParser::FileCheck::NotJournal:
        showUnreadable(tr("This file is not an events journal: none of its lines is an event."));
        break;
    default:
        showUnreadable(tr("The file does not exist."));
        break;
    }
    if (m_countAgain) {
        m_countAgain = false;
        requestCount();
    }
    busyChanged(was);
}

QString LogWidget::unpackFailure() const
{
    const QLocale locale;
    const CompressedLogFile::Limits limits = m_file->limits();
    switch (m_file->state()) {
    case CompressedLogFile::State::TooLarge:
        return tr("The compressed file unpacks to more than %1; unpacking was stopped there.")
            .arg(locale.formattedDataSize(limits.maxBytes));
    case CompressedLogFile::State::DiskFull:
        return tr("Unpacking was stopped: it would have left less than %1 free in %2.")
            .arg(locale.formattedDataSize(limits.keepFree), QDir::toNativeSeparators(QDir::tempPath()));
    case CompressedLogFile::State::Damaged:
        return tr("The compressed file is damaged or incomplete.");
    default:
        return QString();
    }
}

void LogWidget::startUnpacking()
{
    const bool was = isLoading();
    m_unpacking = true;
    m_percent = 0;
    m_loadWarning->setPercent(0);
    setFeedback(tr("Unpacking the compressed log file…"));
    AsyncLoader *loader = m_loader.get();
    CompressedLogFile *file = m_file.get();
    onLoaderThread([loader, file] { loader->asyncUnpack(file); });
    busyChanged(was);
}

void LogWidget::onUnpackFinished()
{
    const bool was = isLoading();
    m_unpacking = false;
    if (!m_stopped && !m_abandoned)
        refresh();
    busyChanged(was);
}

void LogWidget::reload()
{
    refresh();
}

void LogWidget::setFilter(const FilterPack &filter)
{
    if (!m_filtered || m_stopped)
        return;
    m_filter = filter;
    ui->bottomWidget->showFilter(filter);
    ui->eventsView->setHighlight(filter);
    ui->bottomWidget->showEventDetails(nullptr);
    m_model->clear();
    ui->timelineWidget->clear();
    m_nextLoad.reset();
    auto *parser = static_cast<FilteringLogParser *>(m_parser.get());
    onLoaderThread([parser, filter] { parser->setFilter(filter); });
    refresh();
    // A new filter means a full scan: say so at once.
    if (isLoading()) {
        m_overlayDelay->stop();
        m_loadWarning->setGeometry(ui->eventsView->geometry());
        m_loadWarning->show();
        m_loadWarning->raise();
    }
}

void LogWidget::clearTable()
{
    if (m_stopped)
        return;
    m_cleared = true;
    AbstractLogParser *parser = m_parser.get();
    onLoaderThread([parser] { parser->hideCounted(); });
    refresh();
}

void LogWidget::restoreTable()
{
    if (m_stopped)
        return;
    AbstractLogParser *parser = m_parser.get();
    onLoaderThread([parser] { parser->showAll(); });
    refresh();
    m_cleared = false;
}

void LogWidget::setBusy(bool busy)
{
    if (QThread::currentThread() == thread())
        applyExternalBusy(busy);
    else
        QMetaObject::invokeMethod(this, [this, busy] { applyExternalBusy(busy); }, Qt::QueuedConnection);
}

void LogWidget::showJobProgress(const QString &text)
{
    if (m_externalBusy > 0)
        m_loadWarning->setText(text);
}

void LogWidget::applyExternalBusy(bool busy)
{
    const bool was = isLoading();
    m_externalBusy = std::max(0, m_externalBusy + (busy ? 1 : -1));
    if (m_externalBusy == 0)
        m_loadWarning->setText(QString());
    busyChanged(was);
}

QList<const Event *> LogWidget::selectedEvents() const
{
    QModelIndexList rows = ui->eventsView->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex &a, const QModelIndex &b) { return a.row() < b.row(); });
    QList<const Event *> events;
    for (const QModelIndex &index : qAsConst(rows))
        if (const Event *event = m_model->event(index.row()))
            events.append(event);
    return events;
}

const Event *LogWidget::currentEvent() const
{
    const QModelIndexList rows = ui->eventsView->selectionModel()->selectedRows();
    return rows.size() == 1 ? m_model->event(rows.first().row()) : nullptr;
}

void LogWidget::setBottomVisible(bool visible)
{
    ui->bottomWidget->setVisible(visible);
}

void LogWidget::setVisibleColumns(const QSet<int> &auxTypes, const QSet<QString> &customNames)
{
    for (int column = m_model->firstAuxColumn(); column < m_model->columnCount(); ++column) {
        const int type = m_model->typeOfColumn(column);
        const bool shown = type >= 0 ? auxTypes.contains(type) : customNames.contains(m_model->nameOfColumn(column));
        ui->eventsView->setColumnHidden(column, !shown);
    }
}

void LogWidget::readSameFileAs(const LogWidget &other)
{
    m_parser->pinSameFileAs(*other.m_parser);
}

void LogWidget::stopLoader()
{
    if (m_stopped)
        return;
    m_stopped = true;
    if (!m_thread.isRunning())
        return;
    // A long scan or unpacking would otherwise hold the thread until it ends.
    m_parser->setStopFlag(true);
    m_file->requestStop();
    // The last thing the loader thread does is tell this thread, through a lock the
    // thread checkers understand, that it is done with the parser.
    std::mutex mutex;
    std::condition_variable condition;
    bool done = false;
    QMetaObject::invokeMethod(
        m_loader.get(),
        [&] {
            QThread::currentThread()->quit();
            std::lock_guard<std::mutex> lock(mutex);
            done = true;
            condition.notify_one();
        },
        Qt::QueuedConnection);
    {
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [&] { return done; });
    }
    m_thread.wait();
}

void LogWidget::abandon()
{
    m_abandoned = true;
    m_file->requestStop();
    // A cut-short scan would hand a running export or printout a partial journal.
    if (m_externalBusy == 0)
        m_parser->setStopFlag(true);
}

void LogWidget::requestCount()
{
    if (m_pendingCount) {
        // Whatever changed meanwhile is read by one more count after this one.
        m_countAgain = true;
        return;
    }
    const bool was = isLoading();
    m_pendingCount = true;
    m_percent = 0;
    m_loadWarning->setPercent(0);
    emit countRequest();
    busyChanged(was);
}

std::pair<int, int> LogWidget::pageRange(int page) const
{
    const int perPage = std::max(1, ConfigStore::instance().messagesPerPage());
    const int count = std::max(0, m_count);
    const int last = ui->pageWidget->pagesCount();
    const int rest = count % perPage;
    const int first = (page - 1) * perPage;
    if (page != last)
        return {first, perPage};
    return {first, rest != 0 ? rest : perPage};
}

void LogWidget::requestPage(int page)
{
    if (m_stopped || m_abandoned)
        return;
    const std::pair<int, int> range = pageRange(page);
    if (m_pendingLoad) {
        // Only the newest page asked for is worth reading.
        m_nextLoad = range;
        return;
    }
    const bool was = isLoading();
    m_pendingLoad = true;
    emit loadRequest(range.first, range.second);
    busyChanged(was);
}

void LogWidget::onCountFinished(int count)
{
    const bool was = isLoading();
    m_pendingCount = false;
    if (m_stopped || m_abandoned) {
        busyChanged(was);
        return;
    }
    if (count < 0) {
        m_count = -1;
        m_generator->setCount(0);
        // It passed the test a moment ago: it vanished or was replaced since.
        showUnreadable(tr("The file could not be read."));
    } else {
        if (!m_readable)
            setEventsAreaVisible(true);
        m_count = count;
        m_generator->setCount(count);
        setFeedback(tr("Events: %1").arg(count));

        const int perPage = std::max(1, ConfigStore::instance().messagesPerPage());
        const int full = count / perPage;
        const int pages = (count % perPage == 0 && full > 0) ? full : full + 1;
        const QScrollBar *bar = ui->eventsView->verticalScrollBar();
        const bool atBottom = ui->pageWidget->page() == ui->pageWidget->pagesCount() && bar->value() == bar->maximum();
        const bool goingToRow = m_rowAfterCount >= 0 && m_rowAfterCount < count;
        m_updatingPages = true;
        ui->pageWidget->setPagesCount(pages);
        if (goingToRow) {
            ui->pageWidget->setPage(m_rowAfterCount / perPage + 1);
            m_selectNumber = quint32(m_rowAfterCount) + 1;
        } else if (m_following || atBottom) {
            ui->pageWidget->setPage(pages);
        }
        m_updatingPages = false;
        m_rowAfterCount = -1;
        m_stickToBottom = !goingToRow && (m_following || atBottom);
        requestPage(ui->pageWidget->page());
        if (m_timelineShown)
            requestTimeline();
    }
    if (m_countAgain) {
        m_countAgain = false;
        requestCount();
    }
    busyChanged(was);
}

void LogWidget::onLoadFinished(std::vector<Event *> events)
{
    const bool was = isLoading();
    m_pendingLoad = false;
    if (m_stopped || m_abandoned || m_nextLoad) {
        for (Event *event : events)
            delete event;
        if (m_nextLoad && !m_stopped && !m_abandoned) {
            const std::pair<int, int> next = *m_nextLoad;
            m_nextLoad.reset();
            m_pendingLoad = true;
            emit loadRequest(next.first, next.second);
        }
        busyChanged(was);
        return;
    }
    showPage(std::move(events));
    busyChanged(was);
}

void LogWidget::showPage(std::vector<Event *> events)
{
    EventsView *view = ui->eventsView;
    // The same events keep their selection and place when a page is read again,
    // as it is each time a followed journal grows.
    QSet<quint32> selected;
    for (const Event *event : selectedEvents())
        selected.insert(event->number);
    const Event *current = m_model->event(view->currentIndex().row());
    const quint32 currentNumber = current ? current->number : 0;
    const int scroll = view->verticalScrollBar()->value();
    const quint32 firstBefore = m_model->rowCount() > 0 ? m_model->event(0)->number : 0;

    m_model->setEvents(std::move(events));
    if (!m_columnsSized && m_model->rowCount() > 0) {
        // Widths from the first rows shown; later pages keep them, and the user's.
        m_columnsSized = true;
        view->resizeColumnsToContents();
    }
    fitShortColumns();

    const quint32 firstAfter = m_model->rowCount() > 0 ? m_model->event(0)->number : 0;
    QItemSelection selection;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const quint32 number = m_model->event(row)->number;
        if (selected.contains(number))
            selection.select(m_model->index(row, 0), m_model->index(row, m_model->columnCount() - 1));
        if (number == currentNumber && currentNumber != 0)
            view->selectionModel()->setCurrentIndex(m_model->index(row, 0), QItemSelectionModel::NoUpdate);
    }
    if (!selection.isEmpty())
        view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (m_stickToBottom)
        view->scrollToBottom();
    else if (firstBefore == firstAfter && firstAfter != 0)
        view->verticalScrollBar()->setValue(scroll);
    else
        view->scrollToTop(); // another page is read from its first row
    m_stickToBottom = false;
    selectPendingRow();
    showSelectedEvent();
}

void LogWidget::fitShortColumns()
{
    // Numbers, times and priorities are short and cut ones mislead ("1…" for 1045),
    // so these columns widen to every value of the page, whatever rows the first
    // sizing saw (a view not yet laid out sees none). Measuring three short texts a
    // row costs little next to reading the page.
    EventsView *view = ui->eventsView;
    const QFontMetrics metrics(view->font());
    const int margin = 2 * (view->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1) + 8;
    for (const int column : {int(EventsModel::NumberColumn), int(EventsModel::TimeColumn), int(EventsModel::PriorityColumn)}) {
        int width = view->horizontalHeader()->sectionSizeHint(column);
        for (int row = 0; row < m_model->rowCount(); ++row)
            width = std::max(width, metrics.horizontalAdvance(m_model->index(row, column).data().toString()) + margin);
        if (view->columnWidth(column) < width)
            view->setColumnWidth(column, width);
    }
}

void LogWidget::onLoadFailed()
{
    const bool was = isLoading();
    m_pendingLoad = false;
    m_nextLoad.reset();
    if (!m_stopped) {
        const QString message = tr("Events loading failed.");
        setEventsAreaVisible(false, message);
        setFeedback(message);
    }
    busyChanged(was);
}

void LogWidget::setTimelineVisible(bool visible)
{
    if (visible == m_timelineShown)
        return;
    m_timelineShown = visible;
    ui->timelineWidget->setVisible(visible);
    if (m_stopped)
        return;
    if (visible) {
        // Its first request counts the journal again, this time with the hours.
        if (m_count >= 0)
            requestTimeline();
        return;
    }
    ui->timelineWidget->clear();
    AbstractLogParser *parser = m_parser.get();
    onLoaderThread([parser] { parser->setTimelineEnabled(false); });
}

void LogWidget::requestTimeline()
{
    if (m_stopped || m_abandoned)
        return;
    if (m_pendingTimeline) {
        m_timelineAgain = true;
        return;
    }
    m_pendingTimeline = true;
    AsyncLoader *loader = m_loader.get();
    const int bucket = int(m_timelineBucket);
    onLoaderThread([loader, bucket] { loader->asyncTimeline(bucket); });
}

void LogWidget::onTimelineFinished(std::vector<AbstractLogParser::TimelineEntry> entries)
{
    m_pendingTimeline = false;
    if (m_stopped || m_abandoned || !m_timelineShown) {
        m_timelineAgain = false;
        return;
    }
    const AbstractLogParser::TimelineBucket wanted = bucketFor(entries, m_timelineBucket);
    const bool again = m_timelineAgain || wanted != m_timelineBucket;
    m_timelineAgain = false;
    if (wanted == m_timelineBucket)
        ui->timelineWidget->setEntries(std::move(entries), wanted);
    m_timelineBucket = wanted;
    if (again)
        requestTimeline();
}

void LogWidget::goToTime(const QDateTime &time)
{
    if (m_stopped || m_abandoned || !m_readable || !time.isValid())
        return;
    AsyncLoader *loader = m_loader.get();
    onLoaderThread([loader, time] { loader->asyncRowAtTime(time); });
}

void LogWidget::onRowAtTimeFound(const QDateTime &time, int row)
{
    if (m_stopped || m_abandoned)
        return;
    if (row < 0) {
        setFeedback(tr("No event happened at or after %1.").arg(QLocale().toString(time.toLocalTime(), QLocale::LongFormat)));
        return;
    }
    if (m_count >= 0)
        setFeedback(tr("Events: %1").arg(m_count));
    if (row >= m_count) {
        // The journal grew since the last count: the pages must take the row in first.
        m_rowAfterCount = row;
        requestCount();
        return;
    }
    showRow(row);
}

void LogWidget::showRow(int row)
{
    const int perPage = std::max(1, ConfigStore::instance().messagesPerPage());
    const int page = row / perPage + 1;
    m_selectNumber = quint32(row) + 1;
    if (ui->pageWidget->page() != page) {
        ui->pageWidget->setPage(page); // the page read selects the row
        return;
    }
    if (!m_pendingLoad)
        selectPendingRow();
}

bool LogWidget::selectPendingRow()
{
    const quint32 number = m_selectNumber;
    m_selectNumber = 0;
    if (number == 0)
        return false;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (m_model->event(row)->number != number)
            continue;
        EventsView *view = ui->eventsView;
        const QModelIndex index = m_model->index(row, 0);
        view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        view->scrollTo(index, QAbstractItemView::PositionAtCenter);
        view->setFocus();
        return true;
    }
    return false;
}

void LogWidget::onPercentRead(int percent)
{
    m_percent = percent;
    m_loadWarning->setPercent(percent);
    emit feedbackRequest(m_feedback);
}

void LogWidget::showSelectedEvent()
{
    const QItemSelectionModel *selection = ui->eventsView->selectionModel();
    const QModelIndex current = ui->eventsView->currentIndex();
    const Event *event = nullptr;
    if (current.isValid() && selection->isRowSelected(current.row(), {})) {
        event = m_model->event(current.row());
    } else {
        // Ctrl-click took the current row out of a selection: the last row still selected.
        const QModelIndexList rows = selection->selectedRows();
        const auto last = std::max_element(rows.begin(), rows.end(), [](const QModelIndex &a, const QModelIndex &b) {
            return a.row() < b.row();
        });
        if (last != rows.end())
            event = m_model->event(last->row());
    }
    ui->bottomWidget->showEventDetails(event);
}

void LogWidget::requestDetails()
{
    const QModelIndex current = ui->eventsView->currentIndex();
    const Event *event = current.isValid() ? m_model->event(current.row()) : nullptr;
    if (event && event->number > 0)
        emit showDetails(m_generator, static_cast<int>(event->number) - 1);
}

void LogWidget::setFeedback(const QString &text)
{
    m_feedback = text;
    emit feedbackRequest(text);
}

void LogWidget::setEventsAreaVisible(bool visible, const QString &message)
{
    m_readable = visible;
    ui->splitter->setVisible(visible);
    ui->messageLabel->setText(message);
    ui->messageLabel->setVisible(!visible);
}

void LogWidget::busyChanged(bool wasLoading)
{
    const bool loading = isLoading();
    if (loading == wasLoading)
        return;
    if (loading) {
        m_overlayDelay->start();
    } else {
        m_overlayDelay->stop();
        m_loadWarning->hide();
        emit loadingFinished();
    }
    emit feedbackRequest(m_feedback);
}
