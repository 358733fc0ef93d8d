// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "MainWindow.h"

#include "AppLogging.h"
#include "ColumnChooser.h"
#include "ConfigHandler.h"
#include "DetailsWindow.h"
#include "EventGenerator.h"
#include "EventsDataCopier.h"
#include "EventsModel.h"
#include "EventsPrinter.h"
#include "EventsSelection.h"
#include "FavoriteIdsEditor.h"
#include "FilterWindow.h"
#include "GoToTimeDialog.h"
#include "JournalSettings.h"
#include "LogInfoWindow.h"
#include "NotificationController.h"
#include "OutputProgress.h"
#include "PrintedFile.h"
#include "SummaryDialog.h"
#include "AbstractLogParser.h"
#include "LogWidget.h"
#include "MainLogWidget.h"
#include "NimbHelpMenu.h"
#include "NimbIcon.h"
#include "SystemPaths.h"

#include "ui_MainWindow.h"

#include <KAcceleratorManager>

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPrintDialog>
#include <QThread>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QToolBar>

#include <algorithm>

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(std::make_unique<Ui::MainWindow>())
{
    ui->setupUi(this);
    setWindowTitle(tr("System events journal"));
    // Tab titles are paths and the base of filtered titles; the desktop's automatic
    // accelerators, set when the window is activated, must not put '&' into them.
    KAcceleratorManager::setNoAccel(ui->tabWidget->tabBar());

    m_config = new ConfigHandler(this);
    m_config->readConfig();
    connect(m_config, &ConfigHandler::writeFailed, this, [this](const QString &path, const QString &reason) {
        tellFailure(tr("Application settings"),
                    tr("The settings could not be saved to %1.").arg(QDir::toNativeSeparators(path)), reason);
    });

    createStatusBar();
    createDialogs();
    createActions();
    createMenus();
    createToolBar();
    m_notifications->rescan();
    openMainTab();
    connect(ui->tabWidget, &QTabWidget::tabCloseRequested, this, &MainWindow::closeTab);
    ui->tabWidget->tabBar()->installEventFilter(this);
    restoreWindow();
    startReadingClicked();
}

MainWindow::~MainWindow()
{
    // A job may be waiting for its tab's loader; it stops and ends before the tabs do.
    const auto jobs = findChildren<QThread *>(QString(), Qt::FindDirectChildrenOnly);
    for (QThread *job : jobs) {
        if (auto *progress = job->findChild<OutputProgress *>())
            progress->requestStop();
        job->wait();
    }
    // The tabs die with the tab widget, after this body has run: nothing they or the
    // tab widget announce on the way may reach this window. Tabs closed while still
    // loading are children too, though no longer in the tab widget.
    disconnect(ui->tabWidget, nullptr, this, nullptr);
    ui->tabWidget->tabBar()->removeEventFilter(this);
    const auto tabs = findChildren<LogWidget *>();
    for (LogWidget *tab : tabs) {
        disconnect(tab, nullptr, this, nullptr);
        tab->stopLoader();
    }
    saveWindow();
}

void MainWindow::createStatusBar()
{
    m_progressBar = new QProgressBar(this);
    m_progressBar->setObjectName(QStringLiteral("progressBar"));
    m_progressBar->setRange(0, 100);
    m_progressBar->setValue(0);
    m_progressBar->hide();
    statusBar()->addWidget(m_progressBar, 0);
}

void MainWindow::createDialogs()
{
    m_detailsWindow = new DetailsWindow(this);
    m_logInfoWindow = new LogInfoWindow(this);

    m_favoritesEditor = new FavoriteIdsEditor(*m_config, this);
    connect(m_favoritesEditor, &QDialog::accepted, this, &MainWindow::fillFavorites);

    m_journalSettings = new JournalSettings(*m_config, this);
    connect(m_journalSettings, &JournalSettings::settingsChanged, this, &MainWindow::settingsChanged);

    m_filterWindow = new FilterWindow(m_config->store(), this);
    connect(m_filterWindow, &FilterWindow::applyFilters, this, &MainWindow::applyFilter);
    connect(m_filterWindow, &FilterWindow::saveConfig, m_config, &ConfigHandler::writeConfig);
    connect(m_config, &ConfigHandler::configWritten, m_filterWindow, &FilterWindow::updateSavedFilters);

    m_goToTimeDialog = new GoToTimeDialog(this);
    m_goToTimeDialog->setWindowModality(Qt::WindowModal);
    connect(m_goToTimeDialog, &QDialog::accepted, this, [this] {
        if (LogWidget *tab = currentLog())
            tab->goToTime(m_goToTimeDialog->dateTime());
    });

    m_summaryDialog = new SummaryDialog(m_config->store().mainLogPath(), this);
    m_summaryDialog->setWindowModality(Qt::WindowModal);
    connect(m_summaryDialog, &SummaryDialog::filterRequest, this, [this](Event::Priority priority, const QString &source) {
        applyFilter(SummaryDialog::filterFor(priority, source));
    });

    m_printer = new EventsPrinter(this);
    m_printerDialog = new PrinterDialog(this);
    connect(m_printerDialog, &PrinterDialog::printEvents, this, &MainWindow::print);

    m_exportDialog = new ExportDialog(this);
    connect(m_exportDialog, &ExportDialog::exportEvents, this, &MainWindow::exportEvents);

    m_copier = new EventsDataCopier(this);
}

QAction *MainWindow::makeAction(const QString &objectName, const QString &text, const QString &toolTip,
                               const QString &iconName, const QKeySequence &shortcut, const QString &dataTag)
{
    auto *action = new QAction(NimbIcon::themeIcon(iconName), text, this);
    action->setObjectName(objectName);
    if (!toolTip.isEmpty())
        action->setToolTip(toolTip);
    if (!shortcut.isEmpty())
        action->setShortcut(shortcut);
    if (!dataTag.isEmpty())
        action->setData(dataTag);
    return action;
}

void MainWindow::createActions()
{
    m_clearTableAction = makeAction(QStringLiteral("actionClearTable"), tr("Clear table"), tr("Clear table"),
                                   QStringLiteral("edit-clear"));
    connect(m_clearTableAction, &QAction::triggered, this, &MainWindow::clearTableClicked);

    // Reached by their keys alone, as in any window with tabs.
    m_closeTabAction =
        makeAction(QStringLiteral("actionCloseTab"), tr("Close tab"), QString(), QStringLiteral("tab-close"));
    m_closeTabAction->setShortcuts(QKeySequence::Close);
    connect(m_closeTabAction, &QAction::triggered, this, [this] { closeTab(ui->tabWidget->currentIndex()); });
    m_nextTabAction = makeAction(QStringLiteral("actionNextTab"), tr("Next tab"), QString(), QString());
    m_nextTabAction->setShortcuts(QKeySequence::NextChild);
    connect(m_nextTabAction, &QAction::triggered, this, [this] { switchTab(1); });
    m_previousTabAction = makeAction(QStringLiteral("actionPreviousTab"), tr("Previous tab"), QString(), QString());
    m_previousTabAction->setShortcuts(QKeySequence::PreviousChild);
    connect(m_previousTabAction, &QAction::triggered, this, [this] { switchTab(-1); });
    // Reads the file again; a cleared table stays cleared, for "Refresh log" to restore.
    m_reloadAction =
        makeAction(QStringLiteral("actionReload"), tr("Reload log"), QString(), QStringLiteral("view-refresh"));
    m_reloadAction->setShortcuts(QKeySequence::Refresh);
    connect(m_reloadAction, &QAction::triggered, this, [this] {
        if (LogWidget *tab = currentLog())
            tab->refresh();
    });
    addActions({m_closeTabAction, m_nextTabAction, m_previousTabAction, m_reloadAction});

    m_copyAction = makeAction(QStringLiteral("actionCopy"), tr("Copy"), tr("Copy"), QStringLiteral("edit-copy"),
                             QKeySequence(Qt::CTRL | Qt::Key_C));
    m_copyAction->setEnabled(false);
    connect(m_copyAction, &QAction::triggered, this, &MainWindow::copyEvents);

    m_editListAction = makeAction(QStringLiteral("actionEditList"), tr("Edit list"), QString(), QStringLiteral("pencil"));
    connect(m_editListAction, &QAction::triggered, this, [this] {
        m_favoritesEditor->load();
        m_favoritesEditor->show();
        m_favoritesEditor->raise();
    });

    m_eventDetailsAction = makeAction(QStringLiteral("actionEventDetails"), QString(), tr("Event details"),
                                     QStringLiteral("view-calendar-agenda"));
    m_eventDetailsAction->setEnabled(false);
    connect(m_eventDetailsAction, &QAction::triggered, this, &MainWindow::eventDetailsClicked);

    m_exitAction = makeAction(QStringLiteral("actionExit"), tr("Exit"), QString(), QStringLiteral("application-exit"),
                             QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(m_exitAction, &QAction::triggered, qApp, &QCoreApplication::quit, Qt::QueuedConnection);

    m_exportAction = makeAction(QStringLiteral("actionExport"), tr("Export"), tr("Log export"),
                               QStringLiteral("document-export"), QKeySequence(Qt::CTRL | Qt::Key_E));
    connect(m_exportAction, &QAction::triggered, this, &MainWindow::exportClicked);

    m_filterAction = makeAction(QStringLiteral("actionFilter"), tr("Filter"), tr("Message filter"),
                               QStringLiteral("view-filter"));
    m_filterAction->setShortcuts(QKeySequence::Find);
    connect(m_filterAction, &QAction::triggered, this, &MainWindow::filterClicked);

    m_filterByIdAction = makeAction(QStringLiteral("actionFilterById"), tr("Filter by message ID"), QString(),
                                   QStringLiteral("view-filter"), QKeySequence(), QStringLiteral("filterById"));
    connect(m_filterByIdAction, &QAction::triggered, this, &MainWindow::filterByIdClicked);

    m_notifySettingsAction = makeAction(QStringLiteral("actionNotifySettings"), tr("Notification settings"), QString(),
                                       QStringLiteral("dialog-warning"), QKeySequence(), QStringLiteral("notifyById"));
    m_disableNotificationsAction =
        makeAction(QStringLiteral("actionDisableNotifications"), tr("Disable notifications sending"), QString(),
                  QStringLiteral("dialog-cancel"), QKeySequence(), QStringLiteral("disableNotifications"));
    m_enableNotificationsAction =
        makeAction(QStringLiteral("actionEnableNotifications"), tr("Enable notifications sending"), QString(),
                  QStringLiteral("legalmoves"), QKeySequence(), QStringLiteral("enableNotifications"));
    m_notifications = new NotificationController(this, [this]() -> const Event * {
        const LogWidget *tab = currentLog();
        return tab ? tab->currentEvent() : nullptr;
    });
    for (QAction *action : {m_notifySettingsAction, m_enableNotificationsAction, m_disableNotificationsAction})
        connect(action, &QAction::triggered, m_notifications, &NotificationController::notificationCommand);

    m_addToFavoritesAction = makeAction(QStringLiteral("actionAddToFavorites"), tr("Add to favorites"), QString(),
                                       QStringLiteral("list-add"), QKeySequence(), QStringLiteral("addToFavs"));
    connect(m_addToFavoritesAction, &QAction::triggered, this, &MainWindow::addToFavoritesClicked);
    m_removeFromFavoritesAction =
        makeAction(QStringLiteral("actionRemoveFromFavorites"), tr("Remove from favorites"), QString(),
                  QStringLiteral("list-remove"), QKeySequence(), QStringLiteral("removeFromFavs"));
    connect(m_removeFromFavoritesAction, &QAction::triggered, this, &MainWindow::removeFromFavoritesClicked);

    m_logInfoAction = makeAction(QStringLiteral("actionLogInfo"), tr("Show log info"), tr("Show log info"),
                                QStringLiteral("help-about"));
    connect(m_logInfoAction, &QAction::triggered, this, &MainWindow::logInfoClicked);

    m_openLogAction = makeAction(QStringLiteral("actionOpenLog"), tr("Open log"), tr("Open log"),
                                QStringLiteral("document-open"), QKeySequence(Qt::CTRL | Qt::Key_O));
    connect(m_openLogAction, &QAction::triggered, this, &MainWindow::openLogClicked);

    m_printAction = makeAction(QStringLiteral("actionPrint"), tr("Print"), tr("Print"), QStringLiteral("document-print"),
                              QKeySequence(Qt::CTRL | Qt::Key_P));
    connect(m_printAction, &QAction::triggered, this, &MainWindow::printClicked);

    m_refreshLogAction = makeAction(QStringLiteral("actionRefreshLog"), tr("Refresh log"), tr("Refresh log"),
                                   QStringLiteral("task-recurring"));
    m_refreshLogAction->setEnabled(false);
    connect(m_refreshLogAction, &QAction::triggered, this, &MainWindow::refreshLogClicked);

    m_showDetailsAction = makeAction(QStringLiteral("actionShowDetails"), tr("Show details"), tr("Show details"),
                                    QStringLiteral("view-split-top-bottom"));
    m_showDetailsAction->setCheckable(true);
    m_showDetailsAction->setChecked(true);
    connect(m_showDetailsAction, &QAction::toggled, this, &MainWindow::showBottomChecked);

    m_settingsAction = makeAction(QStringLiteral("actionSettings"), tr("Application settings"),
                                 tr("Application settings"), QStringLiteral("gear"));
    connect(m_settingsAction, &QAction::triggered, this, [this] {
        m_journalSettings->load();
        m_journalSettings->show();
        m_journalSettings->raise();
    });

    m_startReadingAction = makeAction(QStringLiteral("actionStartReading"), tr("Start reading"), tr("Start reading"),
                                     QStringLiteral("media-playback-start"));
    connect(m_startReadingAction, &QAction::triggered, this, &MainWindow::startReadingClicked);
    m_stopReadingAction = makeAction(QStringLiteral("actionStopReading"), tr("Stop reading"), tr("Stop reading"),
                                    QStringLiteral("media-playback-stop"));
    connect(m_stopReadingAction, &QAction::triggered, this, &MainWindow::stopReadingClicked);

    m_summaryAction = makeAction(QStringLiteral("actionSummary"), tr("Summary of events"), tr("Summary of events"),
                                QStringLiteral("view-list-text"));
    // Does nothing while a summary is being counted.
    connect(m_summaryAction, &QAction::triggered, m_summaryDialog, &SummaryDialog::requestSummary);

    m_goToTimeAction = makeAction(QStringLiteral("actionGoToTime"), tr("Go to time…"), tr("Go to time"),
                                 QStringLiteral("go-jump"), QKeySequence(Qt::CTRL | Qt::Key_G));
    connect(m_goToTimeAction, &QAction::triggered, this, &MainWindow::goToTimeClicked);

    m_showTimelineAction = makeAction(QStringLiteral("actionShowTimeline"), tr("Show timeline"), tr("Show timeline"),
                                     QStringLiteral("view-statistics"));
    m_showTimelineAction->setCheckable(true);
    m_showTimelineAction->setChecked(m_config->store().showTimeline());
    connect(m_showTimelineAction, &QAction::toggled, this, &MainWindow::showTimelineChecked);
}

void MainWindow::createMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->setObjectName(QStringLiteral("menuFile"));
    file->addAction(m_openLogAction);
    file->addAction(m_copyAction);
    m_recentFilesMenu = file->addMenu(tr("Recently opened files"));
    m_recentFilesMenu->setObjectName(QStringLiteral("menuRecentFiles"));
    file->addSeparator();
    file->addAction(m_printAction);
    file->addAction(m_exportAction);
    file->addSeparator();
    file->addAction(m_exitAction);

    QMenu *log = menuBar()->addMenu(tr("&Log"));
    log->setObjectName(QStringLiteral("menuLog"));
    log->addAction(m_startReadingAction);
    log->addAction(m_stopReadingAction);
    log->addSeparator();
    log->addAction(m_clearTableAction);
    log->addAction(m_refreshLogAction);
    log->addAction(m_filterAction);
    m_savedFiltersMenu = log->addMenu(tr("Saved filters"));
    m_savedFiltersMenu->setObjectName(QStringLiteral("menuSavedFilters"));
    log->addAction(m_summaryAction);
    log->addAction(m_logInfoAction);
    log->addAction(m_goToTimeAction);
    log->addSeparator();
    m_favoritesMenu = log->addMenu(tr("Favorite events"));
    m_favoritesMenu->setObjectName(QStringLiteral("menuFavoriteEvents"));

    QMenu *settings = menuBar()->addMenu(tr("&Settings"));
    settings->setObjectName(QStringLiteral("menuSettings"));
    settings->addAction(m_settingsAction);
    settings->addAction(m_showDetailsAction);
    settings->addAction(m_showTimelineAction);

    menuBar()->addMenu((new NimbHelpMenu(this))->menu());

    fillRecentFiles();
    fillSavedFilters();
    fillFavorites();
    connect(m_config, &ConfigHandler::configWritten, this, &MainWindow::fillSavedFilters);
}

void MainWindow::createToolBar()
{
    m_toolBar = addToolBar(tr("Toolbar"));
    m_toolBar->setObjectName(QStringLiteral("toolBar"));
    m_toolBar->setMovable(false);
    m_toolBar->setAllowedAreas(Qt::TopToolBarArea);
    m_toolBar->setContextMenuPolicy(Qt::NoContextMenu);
    setContextMenuPolicy(Qt::NoContextMenu);

    m_toolBar->addAction(m_openLogAction);
    m_toolBar->addAction(m_copyAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_eventDetailsAction);
    // The button shows only an icon; a screen reader needs its name.
    m_toolBar->widgetForAction(m_eventDetailsAction)->setAccessibleName(tr("Event details"));
    m_toolBar->addAction(m_printAction);
    m_toolBar->addAction(m_exportAction);
    m_toolBar->addAction(m_summaryAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_startReadingAction);
    m_toolBar->addAction(m_stopReadingAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_clearTableAction);
    m_toolBar->addAction(m_refreshLogAction);
    m_toolBar->addAction(m_filterAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_logInfoAction);
    m_toolBar->addSeparator();

    m_columnChooser = new ColumnChooser(m_toolBar);
    m_columnChooser->setObjectName(QStringLiteral("columnChooser"));
    m_toolBar->addWidget(m_columnChooser);
    connect(m_columnChooser->columnModel(), &QAbstractItemModel::dataChanged, this, &MainWindow::showedColumnsChanged);
}

QList<QAction *> MainWindow::contextActions(bool filtered) const
{
    QList<QAction *> actions{m_printAction,          m_copyAction,
                             m_filterByIdAction,     m_notifySettingsAction,
                             m_enableNotificationsAction, m_disableNotificationsAction};
    if (filtered)
        actions << m_addToFavoritesAction << m_removeFromFavoritesAction;
    return actions;
}

void MainWindow::openMainTab()
{
    auto *tab = new MainLogWidget(m_config->store().mainLogPath(), contextActions(false));
    addLogTab(tab, tr("MAIN LOG"));
    m_mainTabIndex = ui->tabWidget->indexOf(tab);
    QTabBar *bar = ui->tabWidget->tabBar();
    const auto side = static_cast<QTabBar::ButtonPosition>(
        bar->style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, bar));
    if (QWidget *button = bar->tabButton(m_mainTabIndex, side)) {
        button->deleteLater();
        bar->setTabButton(m_mainTabIndex, side, nullptr);
    }
    // Whether the first page shows up quickly on a large journal is worth watching.
    m_firstPage = connect(tab->model(), &QAbstractItemModel::modelReset, this, [this, tab] {
        if (tab->model()->rowCount() == 0)
            return;
        qCInfo(nimbApp) << "first page shown:" << tab->model()->rowCount() << "rows of" << tab->eventCount();
        disconnect(m_firstPage);
    });
}

void MainWindow::restoreWindow()
{
    const ConfigStore &store = m_config->store();
    // A first run fills the screen, also where no window manager maximises windows.
    if (store.geometry().isEmpty())
        setGeometry(screen()->availableGeometry());
    restoreGeometry(store.geometry());
    restoreState(store.state());
    move(store.pos());
    if (store.size().isValid())
        resize(store.size());
    if (store.maximized())
        setWindowState(windowState() | Qt::WindowMaximized);
    const QVector<int> &types = store.visibleColumns();
    const QVector<QString> &names = store.visibleCustomColumns();
    m_columnChooser->setChecked(QSet<int>(types.begin(), types.end()), QSet<QString>(names.begin(), names.end()));
}

void MainWindow::saveWindow()
{
    ConfigStore &store = m_config->store();
    store.geometry() = saveGeometry();
    store.state() = saveState();
    store.maximized() = isMaximized();
    store.pos() = pos();
    store.size() = size();
    const QSet<int> types = m_columnChooser->checkedTypes();
    store.visibleColumns() = QVector<int>(types.begin(), types.end());
    std::sort(store.visibleColumns().begin(), store.visibleColumns().end());
    const QSet<QString> names = m_columnChooser->checkedCustomNames();
    store.visibleCustomColumns() = QVector<QString>(names.begin(), names.end());
    std::sort(store.visibleCustomColumns().begin(), store.visibleCustomColumns().end());
    // The window is going away: nothing of it needs to hear about the write.
    disconnect(m_config, nullptr, this, nullptr);
    m_config->writeConfig();
}

void MainWindow::fillRecentFiles()
{
    m_recentFilesMenu->clear();
    for (const QString &path : m_config->store().recentFiles()) {
        QAction *action = m_recentFilesMenu->addAction(QString(path).replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setData(path);
        connect(action, &QAction::triggered, this, [this, path] { openLog(path); });
    }
    m_recentFilesMenu->setEnabled(!m_recentFilesMenu->isEmpty());
}

void MainWindow::fillSavedFilters()
{
    m_savedFiltersMenu->clear();
    for (const FilterPack &filter : m_config->store().savedFilters()) {
        QAction *action = m_savedFiltersMenu->addAction(QString(filter.name).replace(QLatin1Char('&'), QStringLiteral("&&")));
        connect(action, &QAction::triggered, this, [this, filter] { applyFilter(filter); });
    }
    updateJournalActions();
}

void MainWindow::fillFavorites()
{
    m_favoritesMenu->clear();
    for (const QString &id : m_config->store().favoriteEvents()) {
        QAction *action = m_favoritesMenu->addAction(QString(id).replace(QLatin1Char('&'), QStringLiteral("&&")));
        connect(action, &QAction::triggered, this, [this, id] { applyFilter(messageIdFilter(id)); });
    }
    if (!m_favoritesMenu->isEmpty())
        m_favoritesMenu->addSeparator();
    m_favoritesMenu->addAction(m_editListAction);
    updateJournalActions();
}

void MainWindow::addLogTab(LogWidget *tab, const QString &title)
{
    connect(tab, &LogWidget::feedbackRequest, this, &MainWindow::setFeedbackMessage);
    connect(tab, &LogWidget::feedbackRequest, this, &MainWindow::updateJournalActions);
    connect(tab, &LogWidget::selectionChanged, this, &MainWindow::selectionChanged);
    connect(tab, &LogWidget::showDetails, this, &MainWindow::showEventDetails);
    connect(tab, &LogWidget::contextMenuAboutToShow, this, [this, tab] {
        m_notifications->updateContextActions(
            {m_notifySettingsAction, m_enableNotificationsAction, m_disableNotificationsAction}, tab->currentEvent());
    });
    ui->tabWidget->addTab(tab, title);
    ui->tabWidget->setCurrentWidget(tab);
    ui->tabWidget->update();
}

void MainWindow::closeTab(int index)
{
    if (index <= 0 || index >= ui->tabWidget->count())
        return;
    LogWidget *tab = logAt(index);
    ui->tabWidget->removeTab(index);
    if (!tab)
        return;
    disconnect(tab, nullptr, this, nullptr);
    if (tab->isLoading()) {
        connect(tab, &LogWidget::loadingFinished, tab, &QObject::deleteLater);
        tab->abandon();
    } else {
        tab->stopLoader();
        tab->deleteLater();
    }
}

void MainWindow::switchTab(int step)
{
    const int count = ui->tabWidget->count();
    if (count > 1)
        ui->tabWidget->setCurrentIndex(((ui->tabWidget->currentIndex() + step) % count + count) % count);
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    QTabBar *bar = ui->tabWidget->tabBar();
    if (watched == bar && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::MiddleButton) {
            closeTab(bar->tabAt(mouse->pos()));
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

LogWidget *MainWindow::stillOpen(const QPointer<LogWidget> &tab) const
{
    // A closed tab lives on until its work ends, outside the tab widget.
    return tab && ui->tabWidget->indexOf(tab) >= 0 ? tab.data() : nullptr;
}

LogWidget *MainWindow::logAt(int index) const
{
    return qobject_cast<LogWidget *>(ui->tabWidget->widget(index));
}

LogWidget *MainWindow::currentLog() const
{
    return qobject_cast<LogWidget *>(ui->tabWidget->currentWidget());
}

QString MainWindow::currentMessageId() const
{
    const LogWidget *tab = currentLog();
    const Event *event = tab ? tab->currentEvent() : nullptr;
    return event ? event->messageId : QString();
}

void MainWindow::openLogClicked()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open log"), SystemPaths::journalDir());
    if (!path.isEmpty())
        openLog(path);
}

void MainWindow::openLog(const QString &path)
{
    const QStringList recent = m_config->store().recentFiles();
    m_config->addRecentFile(path);
    if (m_config->store().recentFiles() != recent)
        m_config->writeConfig();
    for (int i = 0; i < ui->tabWidget->count(); ++i) {
        if (ui->tabWidget->tabText(i) == path) {
            ui->tabWidget->setCurrentIndex(i);
            return;
        }
    }
    fillRecentFiles();
    auto *tab = new LogWidget(path, contextActions(false));
    addLogTab(tab, path);
    tab->refresh();
}

void MainWindow::applyFilter(const FilterPack &filter)
{
    LogWidget *tab = currentLog();
    if (!tab || !tab->isReadable())
        return;
    if (tab->isFiltered()) {
        tab->setFilter(filter);
        return;
    }
    const QString title = tr("%1 (filtered)", "title of a tab that filters another tab's events")
                              .arg(ui->tabWidget->tabText(ui->tabWidget->currentIndex()));
    // A filtered view of the journal being followed goes on following it.
    auto *followed = qobject_cast<MainLogWidget *>(tab);
    if (followed && followed->isFollowing()) {
        auto *filtered = new MainLogWidget(tab->logPath(), filter, contextActions(true));
        addLogTab(filtered, title);
        filtered->startFollowing();
        updateReadingActions();
    } else {
        auto *filtered = new LogWidget(tab->logPath(), filter, contextActions(true));
        // The events the tab shows, even if rotation has given its path to another file.
        filtered->readSameFileAs(*tab);
        addLogTab(filtered, title);
        filtered->refresh();
    }
}

FilterPack MainWindow::messageIdFilter(const QString &messageId)
{
    FilterPack filter;
    filter.checkId = true;
    filter.id = messageId;
    return filter;
}

void MainWindow::bringToFront(const QString &message)
{
    if (message == QLatin1String("toggle")) {
        if (isHidden())
            show();
        if (isMinimized())
            setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    }
    raise();
    activateWindow();
}

void MainWindow::eventDetailsClicked()
{
    LogWidget *tab = currentLog();
    if (!tab)
        return;
    const QList<const Event *> events = tab->selectedEvents();
    if (!events.isEmpty())
        showEventDetails(tab->eventGenerator(), static_cast<int>(events.last()->number) - 1);
}

void MainWindow::on_tabWidget_currentChanged(int index)
{
    LogWidget *tab = logAt(index);
    if (!tab)
        return;
    tab->setVisibleColumns(m_columnChooser->checkedTypes(), m_columnChooser->checkedCustomNames());
    tab->setBottomVisible(m_showDetailsAction->isChecked());
    tab->setTimelineVisible(m_showTimelineAction->isChecked());
    m_refreshLogAction->setEnabled(tab->isCleared());
    setFeedbackMessage();
    updateReadingActions();
    updateJournalActions();
    selectionChanged(!tab->selectedEvents().isEmpty());
}

void MainWindow::setFeedbackMessage()
{
    LogWidget *tab = currentLog();
    if (!tab)
        return;
    const auto job = m_jobs.constFind(tab);
    if (job != m_jobs.constEnd()) {
        // What the tab itself last said about its loading is stale while a job holds it.
        m_progressBar->hide();
        showStatus(job->progressText(job->progress->percent()));
    } else if (tab->isLoading()) {
        showStatus(QString());
        m_progressBar->setValue(tab->percent());
        m_progressBar->show();
    } else {
        m_progressBar->hide();
        showStatus(tab->feedbackText());
    }
}

void MainWindow::showStatus(const QString &text)
{
    m_statusText = text;
    statusBar()->showMessage(text);
}

bool MainWindow::event(QEvent *event)
{
    // Every hovered menu entry and tool button announces its status tip, and none of
    // ours has one: shown as it comes, the empty tip would wipe the status text.
    if (event->type() == QEvent::StatusTip) {
        const QString tip = static_cast<QStatusTipEvent *>(event)->tip();
        statusBar()->showMessage(tip.isEmpty() ? m_statusText : tip);
        return true;
    }
    return QMainWindow::event(event);
}

void MainWindow::updateJournalActions()
{
    const LogWidget *tab = currentLog();
    const bool readable = tab && tab->isReadable();
    for (QAction *action :
         {m_summaryAction, m_printAction, m_exportAction, m_filterAction, m_filterByIdAction, m_goToTimeAction})
        action->setEnabled(readable);
    m_savedFiltersMenu->setEnabled(readable && !m_savedFiltersMenu->isEmpty());
    const auto favorites = m_favoritesMenu->actions();
    for (QAction *action : favorites) {
        if (action != m_editListAction)
            action->setEnabled(readable);
    }
}

void MainWindow::goToTimeClicked()
{
    const LogWidget *tab = currentLog();
    if (!tab || !tab->isReadable())
        return;
    // From the event in view, so that a nearby time is a few keystrokes away.
    const Event *event = tab->currentEvent();
    m_goToTimeDialog->setDateTime(event && event->time.isValid() ? event->time : QDateTime::currentDateTime());
    m_goToTimeDialog->open();
}

void MainWindow::showTimelineChecked(bool checked)
{
    m_config->store().showTimeline() = checked;
    m_config->writeConfig();
    for (int i = 0; i < ui->tabWidget->count(); ++i) {
        if (LogWidget *tab = logAt(i))
            tab->setTimelineVisible(checked);
    }
}

void MainWindow::showBottomChecked(bool checked)
{
    if (LogWidget *tab = currentLog())
        tab->setBottomVisible(checked);
}

void MainWindow::showedColumnsChanged()
{
    if (LogWidget *tab = currentLog())
        tab->setVisibleColumns(m_columnChooser->checkedTypes(), m_columnChooser->checkedCustomNames());
}

void MainWindow::showEventDetails(const EventGenerator *generator, int position)
{
    // The marks are those of the tab the event comes from.
    FilterPack highlight;
    const auto tabs = findChildren<LogWidget *>();
    for (const LogWidget *tab : tabs)
        if (tab->eventGenerator() == generator && tab->isFiltered())
            highlight = tab->filter();
    m_detailsWindow->setHighlight(highlight);
    m_detailsWindow->load(generator, position);
    m_detailsWindow->show();
    m_detailsWindow->raise();
}

void MainWindow::selectionChanged(bool selected)
{
    m_copyAction->setEnabled(selected);
    m_eventDetailsAction->setEnabled(selected);
}

void MainWindow::settingsChanged()
{
    for (int i = 0; i < ui->tabWidget->count(); ++i) {
        if (LogWidget *tab = logAt(i))
            tab->reload();
    }
}

void MainWindow::clearTableClicked()
{
    if (LogWidget *tab = currentLog()) {
        tab->clearTable();
        m_refreshLogAction->setEnabled(true);
    }
}

void MainWindow::refreshLogClicked()
{
    if (LogWidget *tab = currentLog()) {
        m_refreshLogAction->setEnabled(false);
        tab->restoreTable();
    }
}

void MainWindow::startReadingClicked()
{
    if (auto *tab = qobject_cast<MainLogWidget *>(currentLog())) {
        m_startReadingAction->setEnabled(false);
        m_stopReadingAction->setEnabled(true);
        tab->startFollowing();
    }
}

void MainWindow::stopReadingClicked()
{
    if (auto *tab = qobject_cast<MainLogWidget *>(currentLog())) {
        m_stopReadingAction->setEnabled(false);
        m_startReadingAction->setEnabled(true);
        tab->stopFollowing();
    }
}

void MainWindow::updateReadingActions()
{
    const auto *tab = qobject_cast<const MainLogWidget *>(currentLog());
    m_startReadingAction->setEnabled(tab && !tab->isFollowing());
    m_stopReadingAction->setEnabled(tab && tab->isFollowing());
}

void MainWindow::filterByIdClicked()
{
    const QString id = currentMessageId();
    if (!id.isEmpty())
        applyFilter(messageIdFilter(id));
}

void MainWindow::addToFavoritesClicked()
{
    const QString id = currentMessageId();
    if (id.isEmpty())
        return;
    m_config->store().favoriteEvents().insert(id);
    fillFavorites();
    m_config->writeConfig();
}

void MainWindow::removeFromFavoritesClicked()
{
    const QString id = currentMessageId();
    if (id.isEmpty())
        return;
    m_config->store().favoriteEvents().erase(id);
    fillFavorites();
    m_config->writeConfig();
}

void MainWindow::copyEvents()
{
    if (LogWidget *tab = currentLog())
        m_copier->copyToClipboard(tab->selectedEvents(), m_columnChooser->checkedTypes(),
                                  m_columnChooser->checkedCustomNames());
}

void MainWindow::filterClicked()
{
    LogWidget *tab = currentLog();
    if (!tab)
        return;
    m_filterWindow->prepare();
    if (tab->isFiltered())
        m_filterWindow->loadFilter(tab->filter());
    m_filterWindow->show();
    m_filterWindow->raise();
}

void MainWindow::logInfoClicked()
{
    LogWidget *tab = currentLog();
    if (!tab)
        return;
    m_logInfoWindow->fill(tab->logPath(), qobject_cast<MainLogWidget *>(tab) && !tab->isFiltered(),
                          tab->parser()->malformedLineCount());
    m_logInfoWindow->show();
    m_logInfoWindow->raise();
}

void MainWindow::printClicked()
{
    LogWidget *tab = currentLog();
    if (!tab || !tab->isReadable() || tab->isLoading() || m_printer->isPrinting())
        return;
    m_printTab = tab;
    offerChoice(m_printerDialog, tab);
}

void MainWindow::exportClicked()
{
    LogWidget *tab = currentLog();
    if (!tab || !tab->isReadable() || tab->isLoading())
        return;
    m_exportTab = tab;
    offerChoice(m_exportDialog, tab);
}

void MainWindow::offerChoice(EventsChoiceDialog *dialog, const LogWidget *tab)
{
    // The selection when there is one, the page the user sees otherwise.
    const bool selected = !tab->selectedEvents().isEmpty();
    dialog->setSelectionAvailable(selected);
    dialog->setFilter(selected ? EventsChoiceDialog::SelectedEvents : EventsChoiceDialog::CurrentPage);
    dialog->show();
    dialog->raise();
}

EventsSelection MainWindow::selectionFor(LogWidget *tab, int filter) const
{
    if (filter == 0)
        return EventsSelection::wholeJournal(tab->loader());
    if (filter == 2)
        return EventsSelection::loaded(tab->selectedEvents(), tab->loader());
    return EventsSelection::loaded(tab->model()->events(), tab->loader());
}

template<typename Work>
void MainWindow::runJob(LogWidget *tab, Work work, std::function<QString(int)> progressText,
                        std::function<QString(int)> doneText, const QString &failureTitle,
                        const QString &failureText)
{
    auto *progress = new OutputProgress;
    QThread *thread = QThread::create([work = std::move(work), progress, tab]() mutable {
        work(progress);
        tab->setBusy(false);
    });
    progress->setParent(thread);
    thread->setParent(this);
    m_jobs.insert(tab, {progress, std::move(progressText)});
    tab->setBusy(true);
    tab->showJobProgress(m_jobs.value(tab).progressText(0));
    connect(progress, &OutputProgress::percentChanged, this, [this, tab, progress] {
        // The job's own words over its table, not the loading text of a count.
        if (m_jobs.value(tab).progress == progress)
            tab->showJobProgress(m_jobs.value(tab).progressText(progress->percent()));
        if (currentLog() == tab)
            setFeedbackMessage();
    });
    connect(thread, &QThread::finished, this,
            [this, tab, thread, progress, doneText = std::move(doneText), failureTitle, failureText] {
                if (m_jobs.value(tab).progress == progress)
                    m_jobs.remove(tab);
                setFeedbackMessage();
                const QString done = doneText(progress->outcome());
                if (!done.isEmpty())
                    showStatus(done);
                const QString reason = progress->failure();
                if (progress->outcome() < 0 && !reason.isEmpty())
                    tellFailure(failureTitle, failureText, reason);
                thread->deleteLater();
            });
    thread->start();
}

void MainWindow::print(PrinterDialog::PrintFilter filter)
{
    QPointer<LogWidget> tab = stillOpen(m_printTab);
    if (!tab || tab->isLoading() || m_printer->isPrinting())
        return;
    QPrintDialog dialog(m_printer->printer(), this);
    if (dialog.exec() != QDialog::Accepted || !stillOpen(tab))
        return;
    const QString target = QDir::toNativeSeparators(PrintedFile(*m_printer->printer()).target());
    runJob(
        tab,
        [printer = m_printer, selection = selectionFor(tab, filter)](OutputProgress *progress) {
            printer->print(selection, progress);
        },
        [](int percent) { return tr("Printing… %1 %").arg(percent); },
        // A printer that cannot be drawn on goes to the debug log only; a file that
        // cannot be written is told.
        [](int printed) { return printed < 0 ? QString() : tr("Printed %n events.", "", printed); },
        tr("Print events"), tr("The events could not be printed to %1.").arg(target));
}

void MainWindow::exportEvents(ExportDialog::ExportFilter filter)
{
    QPointer<LogWidget> tab = stillOpen(m_exportTab);
    if (!tab || tab->isLoading())
        return;
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Export events"), QString(), QStringLiteral("*.json;; *.csv;; *.log"));
    EventsDataCopier::Format format;
    if (path.isEmpty() || !EventsDataCopier::formatOfFile(path, &format) || !stillOpen(tab))
        return;
    const QString shownPath = QDir::toNativeSeparators(path);
    runJob(
        tab,
        [copier = m_copier, selection = selectionFor(tab, filter), format, path](OutputProgress *progress) {
            copier->write(selection, format, path, progress);
        },
        [](int percent) { return tr("Exporting… %1 %").arg(percent); },
        [shownPath](int written) {
            return written < 0 ? tr("Could not write to %1.").arg(shownPath)
                               : tr("Exported %n events to %1.", "", written).arg(shownPath);
        },
        tr("Export events"), tr("The events could not be exported to %1.").arg(shownPath));
}

void MainWindow::tellFailure(const QString &title, const QString &text, const QString &reason)
{
    // Not waited for: a failure told while another dialog is open neither blocks the
    // job that ends next nor the dialog.
    auto *box = new QMessageBox(QMessageBox::Critical, title, text, QMessageBox::Ok, this);
    box->setInformativeText(reason);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
