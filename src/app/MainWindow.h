// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"
#include "ExportDialog.h"
#include "FilterPack.h"
#include "PrinterDialog.h"

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class ColumnChooser;
class ConfigHandler;
class DetailsWindow;
class EventGenerator;
class EventsDataCopier;
class EventsPrinter;
class EventsSelection;
class FavoriteIdsEditor;
class FilterWindow;
class JournalSettings;
class LogInfoWindow;
class LogWidget;
class NotificationController;
class OutputProgress;
class SummaryDialog;
class GoToTimeDialog;
class QAction;
class QMenu;
class QProgressBar;
class QToolBar;

namespace Ui
{
class MainWindow;
}

// The viewer's one window: a tab per open journal, the menus and toolbar that act
// on the current tab, and the status bar with the current tab's progress.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(QWidget *parent = nullptr);
    // Stops every tab's loader and writes the window's settings.
    ~MainWindow() override;

    // "Open log" once a file has been chosen: records it among the recent files and
    // shows its tab, opening one unless a tab of that path exists.
    void openLog(const QString &path);

    // A later start of the program asked for the window: "raise" brings it to the
    // front, "toggle" also brings it back when minimised or hidden.
    void bringToFront(const QString &message);

public Q_SLOTS:
    void eventDetailsClicked();
    void copyEvents();
    void on_tabWidget_currentChanged(int index);
    void print(PrinterDialog::PrintFilter filter);
    void exportEvents(ExportDialog::ExportFilter filter);
    void setFeedbackMessage();
    void showBottomChecked(bool checked);
    void showedColumnsChanged();
    void showEventDetails(const EventGenerator *generator, int position);
    void selectionChanged(bool selected);
    void settingsChanged();

protected:
    // Status tips of hovered entries; the window's own feedback stays.
    bool event(QEvent *event) override;
    // A middle click on a tab closes it.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void createStatusBar();
    void createDialogs();
    void goToTimeClicked();
    void showTimelineChecked(bool checked);
    void createActions();
    void createMenus();
    void createToolBar();
    void openMainTab();
    void restoreWindow();
    void saveWindow();

    QAction *makeAction(const QString &objectName, const QString &text, const QString &toolTip,
                        const QString &iconName, const QKeySequence &shortcut = QKeySequence(),
                        const QString &dataTag = QString());
    QList<QAction *> contextActions(bool filtered) const;

    void fillRecentFiles();
    void fillSavedFilters();
    void fillFavorites();

    void addLogTab(LogWidget *tab, const QString &title);
    void closeTab(int index);
    // Moves `step` tabs on, round the ends.
    void switchTab(int step);
    LogWidget *currentLog() const;
    LogWidget *logAt(int index) const;
    // The tab a dialog was opened for while it is still one of the window's tabs.
    LogWidget *stillOpen(const QPointer<LogWidget> &tab) const;
    // The status bar's text until the next one; hovering menus and tools does not
    // change it.
    void showStatus(const QString &text);
    // A tab whose file could not be read offers nothing to summarise, export,
    // print or filter.
    void updateJournalActions();
    // The message ID of the single selected event of the current tab; empty otherwise.
    QString currentMessageId() const;

    // Every way of filtering ends here: a filtered tab takes the new criteria in
    // place, any other tab gets a filtered tab of its own.
    void applyFilter(const FilterPack &filter);
    static FilterPack messageIdFilter(const QString &messageId);

    void openLogClicked();
    void clearTableClicked();
    void refreshLogClicked();
    void startReadingClicked();
    void stopReadingClicked();
    void filterByIdClicked();
    void addToFavoritesClicked();
    void removeFromFavoritesClicked();
    void updateReadingActions();
    void filterClicked();
    void printClicked();
    void exportClicked();
    void offerChoice(EventsChoiceDialog *dialog, const LogWidget *tab);
    void logInfoClicked();

    // What an export or print job covers, gathered on this thread.
    EventsSelection selectionFor(LogWidget *tab, int filter) const;
    // Runs `work` on a thread of its own while the tab is held busy; the job's
    // last step releases the tab. While it runs the status bar says
    // `progressText(percent)`; at its end `doneText(outcome)`, unless empty. A file
    // the job could not write is told in a message box: `failureText`, and the reason.
    template<typename Work>
    void runJob(LogWidget *tab, Work work, std::function<QString(int)> progressText,
                std::function<QString(int)> doneText, const QString &failureTitle, const QString &failureText);
    // A message box, not the status bar alone: what failed, and why.
    void tellFailure(const QString &title, const QString &text, const QString &reason);

    std::unique_ptr<Ui::MainWindow> ui;
    ConfigHandler *m_config = nullptr;
    QProgressBar *m_progressBar = nullptr;
    DetailsWindow *m_detailsWindow = nullptr;
    LogInfoWindow *m_logInfoWindow = nullptr;
    FavoriteIdsEditor *m_favoritesEditor = nullptr;
    JournalSettings *m_journalSettings = nullptr;
    FilterWindow *m_filterWindow = nullptr;
    SummaryDialog *m_summaryDialog = nullptr;
    EventsPrinter *m_printer = nullptr;
    PrinterDialog *m_printerDialog = nullptr;
    ExportDialog *m_exportDialog = nullptr;
    EventsDataCopier *m_copier = nullptr;
    NotificationController *m_notifications = nullptr;
    // The export or print job holding a tab.
    struct Job {
        OutputProgress *progress = nullptr;
        std::function<QString(int)> progressText;
    };
    QHash<LogWidget *, Job> m_jobs;
    // The tabs the export and print dialogs were opened for.
    QPointer<LogWidget> m_exportTab;
    QPointer<LogWidget> m_printTab;
    QString m_statusText;

    QMenu *m_recentFilesMenu = nullptr;
    QMenu *m_savedFiltersMenu = nullptr;
    QMenu *m_favoritesMenu = nullptr;
    QToolBar *m_toolBar = nullptr;
    ColumnChooser *m_columnChooser = nullptr;

    QAction *m_clearTableAction = nullptr;
    QAction *m_closeTabAction = nullptr;
    QAction *m_nextTabAction = nullptr;
    QAction *m_previousTabAction = nullptr;
    QAction *m_reloadAction = nullptr;
    QAction *m_copyAction = nullptr;
    QAction *m_editListAction = nullptr;
    QAction *m_eventDetailsAction = nullptr;
    QAction *m_exitAction = nullptr;
    QAction *m_exportAction = nullptr;
    QAction *m_filterAction = nullptr;
    QAction *m_filterByIdAction = nullptr;
    QAction *m_notifySettingsAction = nullptr;
    QAction *m_disableNotificationsAction = nullptr;
    QAction *m_enableNotificationsAction = nullptr;
    QAction *m_addToFavoritesAction = nullptr;
    QAction *m_removeFromFavoritesAction = nullptr;
    QAction *m_logInfoAction = nullptr;
    QAction *m_openLogAction = nullptr;
    QAction *m_printAction = nullptr;
    QAction *m_refreshLogAction = nullptr;
    QAction *m_showDetailsAction = nullptr;
    QAction *m_settingsAction = nullptr;
    QAction *m_startReadingAction = nullptr;
    QAction *m_stopReadingAction = nullptr;
    QAction *m_summaryAction = nullptr;
    QAction *m_goToTimeAction = nullptr;
    QAction *m_showTimelineAction = nullptr;
    GoToTimeDialog *m_goToTimeDialog = nullptr;

    int m_mainTabIndex = 0;
    QMetaObject::Connection m_firstPage;
};
