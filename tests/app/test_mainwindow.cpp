// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "BottomWidget.h"
#include "ClearButtons.h"
#include "ColumnChooser.h"
#include "ConfigHandler.h"
#include "DetailsWindow.h"
#include "EventsModel.h"
#include "EventsPrinter.h"
#include "ExportDialog.h"
#include "EventsView.h"
#include "FilterWindow.h"
#include "GoToTimeDialog.h"
#include "JournalSettings.h"
#include "JournalGenerator.h"
#include "LoadWarning.h"
#include "LogInfoWindow.h"
#include "LineParser.h"
#include "LogParser.h"
#include "LogWidget.h"
#include "MainLogWidget.h"
#include "MainWindow.h"
#include "PageWidget.h"
#include "NimbTestMain.h"
#include "PrinterDialog.h"
#include "PriorityItem.h"
#include "SummaryDialog.h"
#include "output/FailingTargets.h"
#include "TsanDefaults.h"

#include <KAcceleratorManager>

#include <QApplication>
#include <QPushButton>
#include <QListWidget>
#include <QLineEdit>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QRadioButton>
#include <QTimer>
#include <QPointer>
#include <QProcess>
#include <QSpinBox>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStandardPaths>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStatusBar>
#include <QTabBar>
#include <QTableWidget>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace
{
// A system tree of the demo's descriptions with a journal of its own, made once per run.
QTemporaryDir *g_sysroot = nullptr;

QString journalDir()
{
    return g_sysroot->path() + QStringLiteral("/quorv/log/velmo");
}

QString mainJournal()
{
    return journalDir() + QStringLiteral("/events");
}

// A journal of well-formed lines whose newest event is at `end`, spread over `days`.
bool writeJournal(const QString &path, int lines, qint64 end, int days = 10)
{
    nimbgen::GeneratorOptions options;
    options.seed = 7;
    options.lines = lines;
    options.days = days;
    options.malformedPermille = 0;
    options.end = end;
    QFile journal(path);
    return journal.open(QIODevice::WriteOnly | QIODevice::Truncate)
        && nimbgen::JournalGenerator(nimbgen::Catalogue::builtIn(), options).write(&journal);
}

bool makeSysroot()
{
    const QString demo = QStringLiteral(NIMB_DEMO_DIR "/sysroot");
    const QString root = g_sysroot->path();
    if (!QFile::link(demo + QStringLiteral("/etc"), root + QStringLiteral("/etc"))
        || !QFile::link(demo + QStringLiteral("/usr"), root + QStringLiteral("/usr")) || !QDir().mkpath(journalDir()))
        return false;
    return writeJournal(mainJournal(), 3000, QDateTime(QDate(2024, 3, 1), QTime(12, 0), Qt::UTC).toSecsSinceEpoch());
}

QStringList texts(const QList<QAction *> &actions)
{
    QStringList result;
    for (const QAction *action : actions)
        result.append(action->isSeparator() ? QStringLiteral("|") : action->menu() ? action->menu()->title() : action->text());
    return result;
}

QString menuTitles(const QMenuBar *bar)
{
    return texts(bar->actions()).mid(0, 3).join(QLatin1Char(','));
}

// Waits until the tab has counted and shows its page.
bool loaded(LogWidget *tab)
{
    return tab
        && QTest::qWaitFor([tab] { return !tab->isLoading() && tab->eventCount() > 0 && tab->model()->rowCount() > 0; },
                           10000);
}

// A row the table shows, halfway down: a followed journal shows its newest rows.
int shownRow(LogWidget *tab)
{
    return tab->view()->rowAt(tab->view()->viewport()->height() / 2);
}

void clickRow(LogWidget *tab, int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const QRect rect = tab->view()->visualRect(tab->model()->index(row, 1));
    QTest::mouseClick(tab->view()->viewport(), Qt::LeftButton, modifiers, rect.center());
}

// A right click on the row, delivered through the window as the desktop delivers it,
// and the entry of the menu it opens. The menu runs its own event loop: the entry is
// clicked from a timer inside it.
bool chooseFromContextMenu(LogWidget *tab, int row, const QString &entry)
{
    bool chosen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        poll.stop();
        for (QAction *action : menu->actions()) {
            if (action->text() == entry && action->isEnabled()) {
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
                chosen = true;
                return;
            }
        }
        menu->close();
    });
    poll.start(10);
    QWidget *viewport = tab->view()->viewport();
    const QPoint at = viewport->mapTo(viewport->window(), tab->view()->visualRect(tab->model()->index(row, 1)).center());
    QTest::mouseClick(viewport->window()->windowHandle(), Qt::RightButton, Qt::NoModifier, at);
    return chosen;
}

// Answers the next file dialog with the path, typed; `accepted` runs once it took it.
QTimer *answerFileDialog(QObject *owner, const QString &path, std::function<void()> accepted = {})
{
    auto *poll = new QTimer(owner);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, path, accepted] {
        auto *files = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!files)
            return;
        poll->stop();
        auto *edit = files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        edit->clear();
        QTest::keyClicks(edit, path);
        QTest::keyClick(edit, Qt::Key_Return);
        if (accepted)
            accepted();
    });
    poll->start(10);
    return poll;
}

struct ShownBox {
    QMessageBox::Icon icon;
    QString title;
    QString text;
    QString reason;
};

// While the timer lives, every message box that comes up is noted and answered through
// its own buttons: "Yes" where it asks, "OK" otherwise.
std::unique_ptr<QTimer> answerBoxes(QList<ShownBox> *shown)
{
    auto poll = std::make_unique<QTimer>();
    QObject::connect(poll.get(), &QTimer::timeout, poll.get(), [shown] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        shown->append({box->icon(), box->windowTitle(), box->text(), box->informativeText()});
        QAbstractButton *answer = box->button(QMessageBox::Yes) ? box->button(QMessageBox::Yes) : box->button(QMessageBox::Ok);
        QTest::mouseClick(answer, Qt::LeftButton);
    });
    poll->start(10);
    return poll;
}

// What the system says to creating a file in the folder.
QString creationRefusal(const QString &folder)
{
    const int fd = ::open(QFile::encodeName(folder + QStringLiteral("/nimb-probe")).constData(),
                          O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (fd >= 0) {
        ::close(fd);
        return QString();
    }
    return qt_error_string(errno);
}

const char kChangeSettingsThenWait[] = "--change-settings-then-wait";

// The child process of savedChangesSurviveAKill: a user sets the page size, adds a
// favourite from a table's menu and opens a file, then the process says "ready" with
// the favourite's ID and waits to be killed. Nothing it changed is saved at exit: it never
// gets there.
int changeSettingsThenWait(int argc, char **argv)
{
    const QString opened = QString::fromLocal8Bit(argv[2]);
    QApplication app(argc, argv);
    auto fail = [](const char *what) {
        std::fprintf(stderr, "child: %s\n", what);
        return 2;
    };
    MainWindow window;
    window.show();
    QApplication::setActiveWindow(&window);
    if (!QTest::qWaitForWindowActive(&window))
        return fail("the window never became active");
    auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("tabWidget"));
    auto current = [tabs] { return qobject_cast<LogWidget *>(tabs->currentWidget()); };
    if (!loaded(current()))
        return fail("the main journal never showed");
    // First: the settings dialog writes the whole store, which would carry the later
    // changes along had they come before.
    window.findChild<QAction *>(QStringLiteral("actionSettings"))->trigger();
    auto *settings = window.findChild<JournalSettings *>();
    if (!settings->isVisible() || !settings->isModal())
        return fail("no modal settings dialog");
    auto *perPage = settings->findChild<QSpinBox *>(QStringLiteral("messagesPerPage"));
    perPage->setFocus();
    QTest::keyClick(perPage, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(perPage, QStringLiteral("1500"));
    QTest::mouseClick(settings->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    if (settings->isVisible())
        return fail("the settings dialog stayed open");
    if (!loaded(current()))
        return fail("the journal never showed again in pages of the new size");

    const int row = shownRow(current());
    clickRow(current(), row);
    if (!chooseFromContextMenu(current(), row, QStringLiteral("Filter by message ID")))
        return fail("no \"Filter by message ID\" in the table's menu");
    LogWidget *filtered = current();
    if (!filtered->isFiltered() || !loaded(filtered))
        return fail("no filtered tab");
    const int filteredRow = shownRow(filtered);
    clickRow(filtered, filteredRow);
    const QString id = filtered->currentEvent() ? filtered->currentEvent()->messageId : QString();
    if (id.isEmpty() || !chooseFromContextMenu(filtered, filteredRow, QStringLiteral("Add to favorites")))
        return fail("no \"Add to favorites\" in the filtered table's menu");

    // No window manager hands the focus back when the menu closes.
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        return fail("the window never became active again");
    answerFileDialog(&window, opened);
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_O,
                    Qt::ControlModifier);
    if (!QTest::qWaitFor([&] { return tabs->tabText(tabs->currentIndex()) == opened; }))
        return fail("the file was never opened");

    std::printf("ready %s\n", qPrintable(id));
    std::fflush(stdout);
    return app.exec();
}
}

class TestMainWindow : public QObject
{
    Q_OBJECT

    std::unique_ptr<MainWindow> m_window;
    QTemporaryDir m_files;

    MainWindow &window()
    {
        if (!m_window)
            m_window = std::make_unique<MainWindow>();
        return *m_window;
    }
    QTabWidget *tabs() { return window().findChild<QTabWidget *>(QStringLiteral("tabWidget")); }
    QAction *action(const char *name) { return window().findChild<QAction *>(QLatin1String(name)); }
    QMenu *menu(const char *name) { return window().findChild<QMenu *>(QLatin1String(name)); }
    LogWidget *current() { return qobject_cast<LogWidget *>(tabs()->currentWidget()); }
    ColumnChooser *chooser() { return window().findChild<ColumnChooser *>(QStringLiteral("columnChooser")); }

    LogWidget *openFile(const QString &path)
    {
        window().openLog(path);
        return current();
    }

    QString copyOfJournal(const QString &name)
    {
        const QString path = m_files.filePath(name);
        QFile::remove(path);
        return QFile::copy(mainJournal(), path) ? path : QString();
    }

    void selectFirstRow(LogWidget *tab)
    {
        tab->view()->selectRow(0);
    }

    // The first lines of the main journal as a journal of its own.
    QString partOfJournal(const QString &name, int lines)
    {
        QFile journal(mainJournal());
        QFile part(m_files.filePath(name));
        if (!journal.open(QIODevice::ReadOnly) || !part.open(QIODevice::WriteOnly))
            return QString();
        for (int i = 0; i < lines; ++i)
            part.write(journal.readLine());
        return part.fileName();
    }

    void showActive()
    {
        window().show();
        QApplication::setActiveWindow(&window());
        QVERIFY(QTest::qWaitForWindowActive(&window()));
    }

    // Keys go where the user's keyboard goes.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        // No window manager hands the focus back when a dialog closes.
        if (!QApplication::activeWindow()) {
            window().activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&window()));
        }
        QWidget *focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : QApplication::activeWindow(), key, modifiers);
    }

    // Answers the next file dialog with a new file of this name.
    QString saveAs(const QString &name)
    {
        const QString path = m_files.filePath(name);
        QFile::remove(path);
        answerFileDialog(&window(), path);
        return path;
    }

    // The next print dialog is accepted as it stands.
    void acceptPrintDialog()
    {
        whenModal<QPrintDialog>([](QPrintDialog *printDialog) {
            auto *buttons = printDialog->findChild<QDialogButtonBox *>();
            for (QAbstractButton *button : buttons->buttons()) {
                if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole)
                    QTest::mouseClick(button, Qt::LeftButton);
            }
        });
    }

    void clickTool(const char *name)
    {
        auto *toolBar = window().findChild<QToolBar *>(QStringLiteral("toolBar"));
        QTest::mouseClick(toolBar->widgetForAction(action(name)), Qt::LeftButton);
    }

    template<typename Dialog>
    void clickRadio(Dialog *dialog, const char *name)
    {
        auto *button = dialog->template findChild<QRadioButton *>(QLatin1String(name));
        // Its indicator, not the empty width beside the text.
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(6, button->height() / 2));
    }

    static void appendTo(const QString &path, const QString &from, int lines)
    {
        QFile source(from);
        QFile target(path);
        QVERIFY(source.open(QIODevice::ReadOnly) && target.open(QIODevice::Append));
        for (int i = 0; i < lines; ++i)
            target.write(source.readLine());
    }

    void clickTab(int index, Qt::MouseButton button = Qt::LeftButton)
    {
        QTabBar *bar = tabs()->tabBar();
        QTest::mouseClick(bar, button, Qt::NoModifier, bar->tabRect(index).center());
    }

    // A modal dialog runs its own event loop: `answer` gets the first one of this
    // type to come up, from inside that loop. The timer dies with the test case.
    template<typename Dialog, typename Answer>
    QTimer *whenModal(Answer answer)
    {
        auto *poll = new QTimer(&window());
        connect(poll, &QTimer::timeout, poll, [poll, answer] {
            if (auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget())) {
                poll->stop();
                answer(dialog);
            }
        });
        poll->start(10);
        return poll;
    }

    // Closes the window once its tabs are at rest. Closing in the middle of a count
    // is the window's business too, but a loader stopped that way is ordered with the
    // tab's destruction only through Qt's own locks, which ThreadSanitizer cannot see.
    void closeWindow()
    {
        if (!m_window)
            return;
        // Asked afresh each time: a tab closed just before goes away while this waits.
        QVERIFY(QTest::qWaitFor([this] {
            const auto tabs = m_window->findChildren<LogWidget *>();
            return std::none_of(tabs.begin(), tabs.end(), [](const LogWidget *tab) { return tab->isLoading(); });
        }, 10000));
        QVERIFY(QTest::qWaitFor([this] { return clearButtonsSettled(*m_window); }, 5000));
        m_window.reset();
    }

private Q_SLOTS:
    void init()
    {
        // Every case starts as a first run.
        const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
        QDir(config + QStringLiteral("/trelvik")).removeRecursively();
    }

    void cleanup()
    {
        closeWindow();
    }

    void actionsMenusAndToolbar()
    {
        QCOMPARE(window().windowTitle(), QStringLiteral("System events journal"));
        QCOMPARE(menuTitles(window().menuBar()), QStringLiteral("&File,&Log,&Settings"));
        QCOMPARE(window().menuBar()->actions().size(), 4); // and the help menu
        QCOMPARE(texts(menu("menuFile")->actions()),
                 QStringList({"Open log", "Copy", "Recently opened files", "|", "Print", "Export", "|", "Exit"}));
        const QStringList log{"Start reading", "Stop reading", "|", "Clear table", "Refresh log", "Filter",
                              "Saved filters", "Summary of events", "Show log info"};
        QCOMPARE(texts(menu("menuLog")->actions()).mid(0, log.size()), log);
        QVERIFY(texts(menu("menuLog")->actions()).contains(QStringLiteral("Favorite events")));
        QCOMPARE(texts(menu("menuSettings")->actions()),
                 QStringList({"Application settings", "Show details", "Show timeline"}));
        QCOMPARE(action("actionGoToTime")->shortcut(), QKeySequence(QStringLiteral("Ctrl+G")));

        auto *toolBar = window().findChild<QToolBar *>(QStringLiteral("toolBar"));
        QVERIFY(toolBar);
        QVERIFY(!toolBar->isMovable());
        QCOMPARE(toolBar->allowedAreas(), Qt::TopToolBarArea);
        QCOMPARE(toolBar->contextMenuPolicy(), Qt::NoContextMenu);
        QCOMPARE(window().contextMenuPolicy(), Qt::NoContextMenu);
        const QList<QAction *> tools = toolBar->actions();
        QStringList tips;
        for (const QAction *tool : tools)
            tips.append(tool->isSeparator() ? QStringLiteral("|") : tool->toolTip());
        tips.removeLast();
        QCOMPARE(tips, QStringList({"Open log", "Copy", "|", "Event details", "Print", "Log export", "Summary of events",
                                    "|", "Start reading", "Stop reading", "|", "Clear table", "Refresh log",
                                    "Message filter", "|", "Show log info", "|"}));
        QCOMPARE(toolBar->widgetForAction(tools.last()), chooser());

        // Shortcuts, tags and the states before anything is selected.
        QCOMPARE(action("actionCopy")->shortcut(), QKeySequence(QStringLiteral("Ctrl+C")));
        QCOMPARE(action("actionExit")->shortcut(), QKeySequence(QStringLiteral("Ctrl+Q")));
        QCOMPARE(action("actionExport")->shortcut(), QKeySequence(QStringLiteral("Ctrl+E")));
        QCOMPARE(action("actionOpenLog")->shortcut(), QKeySequence(QStringLiteral("Ctrl+O")));
        QCOMPARE(action("actionPrint")->shortcut(), QKeySequence(QStringLiteral("Ctrl+P")));
        const QStringList tags{"filterById", "notifyById", "disableNotifications", "enableNotifications",
                               "addToFavs", "removeFromFavs"};
        for (const QString &tag : tags) {
            int found = 0;
            for (const QAction *candidate : window().findChildren<QAction *>())
                found += candidate->data().toString() == tag;
            QVERIFY2(found == 1, qPrintable(tag));
        }
        QVERIFY(!action("actionCopy")->isEnabled());
        QVERIFY(!action("actionEventDetails")->isEnabled());
        QVERIFY(!action("actionRefreshLog")->isEnabled());
        QVERIFY(action("actionShowDetails")->isCheckable() && action("actionShowDetails")->isChecked());

        // "Event details" is an icon alone; its name is in the tool tip.
        QAction *details = action("actionEventDetails");
        QVERIFY(details->text().isEmpty());
        QVERIFY(!details->icon().isNull());
        auto *button = qobject_cast<QToolButton *>(toolBar->widgetForAction(details));
        QVERIFY(button);
        QVERIFY(button->text().isEmpty());
        QCOMPARE(button->toolTip(), QStringLiteral("Event details"));

        // A first run has no favourites, saved filters or recent files.
        QCOMPARE(texts(menu("menuFavoriteEvents")->actions()), QStringList({"Edit list"}));
        QVERIFY(!menu("menuSavedFilters")->isEnabled());
        QVERIFY(menu("menuRecentFiles")->actions().isEmpty());

        QStandardItemModel *columns = chooser()->columnModel();
        QCOMPARE(columns->item(0)->text(), QStringLiteral("Show columns"));
        QVERIFY(!columns->item(0)->isCheckable());
        QCOMPARE(columns->rowCount(), EventsModel().columnCount() - EventsModel().firstAuxColumn() + 1);
        for (int row = 1; row < columns->rowCount(); ++row)
            QCOMPARE(columns->item(row)->flags(), Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
        QCOMPARE(chooser()->currentText(), QStringLiteral("Show columns"));
    }

    void mainTabCannotBeClosed()
    {
        QCOMPARE(tabs()->count(), 1);
        QCOMPARE(tabs()->tabText(0), QStringLiteral("MAIN LOG"));
        auto *main = qobject_cast<MainLogWidget *>(tabs()->widget(0));
        QVERIFY(main);
        QCOMPARE(main->logPath(), mainJournal());
        QVERIFY(main->isFollowing());
        QVERIFY(!action("actionStartReading")->isEnabled());
        QVERIFY(action("actionStopReading")->isEnabled());
        QVERIFY(!tabs()->tabBar()->tabButton(0, QTabBar::RightSide));
        QVERIFY(!tabs()->tabBar()->tabButton(0, QTabBar::LeftSide));

        QVERIFY(loaded(main));
        LogParser parser(mainJournal());
        QCOMPARE(main->eventCount(), parser.count());
        QCOMPARE(window().statusBar()->currentMessage(), main->feedbackText());
        QVERIFY(!main->feedbackText().isEmpty());

        emit tabs()->tabCloseRequested(0);
        emit tabs()->tabCloseRequested(-1);
        emit tabs()->tabCloseRequested(1);
        QCOMPARE(tabs()->count(), 1);
        QCOMPARE(tabs()->widget(0), main);
    }

    void openingFiles()
    {
        const QString path = copyOfJournal(QStringLiteral("copy.log"));
        LogWidget *opened = openFile(path);
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->tabText(1), path);
        QCOMPARE(qobject_cast<MainLogWidget *>(opened), nullptr);
        QVERIFY(tabs()->tabBar()->tabButton(1, QTabBar::RightSide) || tabs()->tabBar()->tabButton(1, QTabBar::LeftSide));
        QVERIFY(loaded(opened));
        QCOMPARE(texts(menu("menuRecentFiles")->actions()), QStringList({path}));

        // Opened again, from the dialog's path or the recent list: the same tab comes forward.
        tabs()->setCurrentIndex(0);
        window().openLog(path);
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->currentIndex(), 1);
        tabs()->setCurrentIndex(0);
        menu("menuRecentFiles")->actions().first()->trigger();
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->currentIndex(), 1);

        // A file that is no journal says so in the status bar and leaves the rest alone.
        openFile(m_files.filePath(QStringLiteral("missing.log")));
        QCOMPARE(tabs()->count(), 3);
        QTRY_COMPARE(window().statusBar()->currentMessage(), QStringLiteral("Can't open log file."));
        tabs()->setCurrentIndex(0);
        QVERIFY(loaded(current()));
        QCOMPARE(window().statusBar()->currentMessage(), current()->feedbackText());
        QCOMPARE(menu("menuRecentFiles")->actions().size(), 2);

        // The desktop adds accelerators to whatever window becomes active; paths
        // and the base of filtered titles must come through unchanged.
        KAcceleratorManager::manage(&window());
        QCOMPARE(tabs()->tabText(0), QStringLiteral("MAIN LOG"));
        QCOMPARE(tabs()->tabText(1), path);
        window().openLog(path);
        QCOMPARE(tabs()->count(), 3);
        QCOMPARE(tabs()->currentIndex(), 1);
    }

    // The information window counts the lines of the tab's file that are no event.
    void logInformationCountsMalformedLines()
    {
        const QString path = partOfJournal(QStringLiteral("damaged.log"), 30);
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write("not an event\n{\"MSG\": \n\n");
        file.close();
        LogWidget *tab = openFile(path);
        QVERIFY(loaded(tab));
        showActive();
        clickTool("actionLogInfo");
        auto *info = window().findChild<LogInfoWindow *>();
        QTRY_VERIFY(info->isVisible());
        QCOMPARE(info->findChild<QLabel *>(QStringLiteral("malformed"))->text(),
                 QStringLiteral("%1 skipped").arg(2 + 30 - tab->eventCount()));
    }

    void compressedRotations_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("program");
        QTest::newRow("gzip") << "events.2.gz" << "gzip";
        QTest::newRow("bzip2") << "events.3.bz2" << "bzip2";
        QTest::newRow("xz") << "events.4.xz" << "xz";
        QTest::newRow("zstd") << "events.5.zst" << "zstd";
    }

    void compressedRotations()
    {
        QFETCH(QString, name);
        QFETCH(QString, program);
        const QString packed = m_files.filePath(name);
        QFile::remove(packed);
        QProcess pack;
        pack.setStandardInputFile(mainJournal());
        pack.setStandardOutputFile(packed);
        pack.start(program, {QStringLiteral("-c")});
        QVERIFY2(pack.waitForFinished(10000) && pack.exitCode() == 0, qPrintable(program));

        LogWidget *tab = openFile(packed);
        QCOMPARE(tabs()->tabText(tabs()->currentIndex()), packed);
        QVERIFY(loaded(tab));
        QCOMPARE(tab->eventCount(), LogParser(mainJournal()).count());
        QCOMPARE(window().statusBar()->currentMessage(), tab->feedbackText());
    }

    // Whatever sits where a journal was expected, its own tab says so, promptly, and
    // the other tabs go on as before.
    void hostileFilesStayInTheirTabs()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        const int mainCount = main->eventCount();
        auto message = [](LogWidget *tab) {
            const auto *label = tab->findChild<QLabel *>(QStringLiteral("messageLabel"));
            return label && label->isVisibleTo(tab) ? label->text() : QString();
        };
        auto pack = [](const QString &from, const QString &to) {
            QProcess gzip;
            gzip.setStandardInputFile(from);
            gzip.setStandardOutputFile(to);
            gzip.start(QStringLiteral("gzip"), {QStringLiteral("-c")});
            return gzip.waitForFinished(30000) && gzip.exitCode() == 0;
        };
        const QString cannot = QStringLiteral("Can't open log file.");
        // The tab's message opens with `cannot` and ends with the reason, if any.
        auto says = [&](LogWidget *tab, const QString &reason) {
            const QString text = message(tab);
            return text.startsWith(cannot) && text.endsWith(reason);
        };

        const QString fifo = m_files.filePath(QStringLiteral("events.fifo"));
        QFile::remove(fifo);
        QVERIFY(QProcess::execute(QStringLiteral("mkfifo"), {fifo}) == 0);
        const QString directory = m_files.filePath(QStringLiteral("events.d"));
        QVERIFY(QDir().mkpath(directory));
        const QString nuls = m_files.filePath(QStringLiteral("nuls"));
        QVERIFY(QProcess::execute(QStringLiteral("truncate"), {QStringLiteral("-s"), QStringLiteral("24M"), nuls}) == 0);
        const QString cut = m_files.filePath(QStringLiteral("cut.gz"));
        QFile::remove(cut);
        QVERIFY(pack(mainJournal(), cut));
        QVERIFY(QProcess::execute(QStringLiteral("truncate"), {QStringLiteral("-s"), QStringLiteral("5000"), cut}) == 0);
        for (const QString &path : {fifo, directory, nuls}) {
            LogWidget *tab = openFile(path);
            QTRY_VERIFY2(says(tab, QString()), qPrintable(message(tab)));
            QCOMPARE(window().statusBar()->currentMessage(), cannot);
        }
        LogWidget *damaged = openFile(cut);
        QTRY_VERIFY2(says(damaged, QStringLiteral("\nThe compressed file is damaged or incomplete.")),
                     qPrintable(message(damaged)));
        QVERIFY(!damaged->isLoading());

        // The content decides, not the name: a packed rotation without its suffix, and
        // a plain one with a packed suffix.
        const QString unsuffixed = m_files.filePath(QStringLiteral("events.6"));
        QFile::remove(unsuffixed);
        QVERIFY(pack(mainJournal(), unsuffixed));
        const QString misnamed = copyOfJournal(QStringLiteral("events.7.gz"));
        for (const QString &path : {unsuffixed, misnamed}) {
            LogWidget *tab = openFile(path);
            QVERIFY(loaded(tab));
            QCOMPARE(tab->eventCount(), mainCount);
        }

        // A small archive of a huge output stops at the unpacking limit, and leaves nothing.
        QByteArray repeated;
        QFile journal(mainJournal());
        QVERIFY(journal.open(QIODevice::ReadOnly));
        const QByteArray lines = journal.readAll();
        while (repeated.size() < 48 * 1024 * 1024)
            repeated += lines;
        const QString big = m_files.filePath(QStringLiteral("big"));
        QFile bigFile(big);
        QVERIFY(bigFile.open(QIODevice::WriteOnly) && bigFile.write(repeated) == repeated.size());
        bigFile.close();
        repeated.clear();
        const QString bomb = m_files.filePath(QStringLiteral("events.8.gz"));
        QFile::remove(bomb);
        QVERIFY(pack(big, bomb));
        QFile::remove(big);
        auto *bounded = new LogWidget(bomb, {});
        bounded->setUnpackLimits({16 * 1024 * 1024, 0});
        const QString copy = bounded->readablePath();
        tabs()->addTab(bounded, bomb);
        tabs()->setCurrentWidget(bounded);
        bounded->refresh();
        QTRY_VERIFY2(says(bounded, QStringLiteral("\nThe compressed file unpacks to more than 16.00 MiB; unpacking "
                                                  "was stopped there.")),
                     qPrintable(message(bounded)));
        QCOMPARE(QFileInfo(copy).size(), 0);
        window().resize(1000, 600);
        QDir().mkpath(QStringLiteral(NIMB_SCREENSHOT_DIR));
        QVERIFY(window().grab().save(QStringLiteral(NIMB_SCREENSHOT_DIR "/hostile-archive-tab.png")));

        // Closing a tab while it unpacks stops the unpacking and removes the copy.
        const QString secondBomb = m_files.filePath(QStringLiteral("events.9.gz"));
        QFile::remove(secondBomb);
        QVERIFY(QFile::copy(bomb, secondBomb));
        {
            LogWidget abandoned(secondBomb, {});
            QSignalSpy finished(&abandoned, &LogWidget::loadingFinished);
            abandoned.refresh();
            QVERIFY(abandoned.isLoading());
            abandoned.abandon();
            QVERIFY(finished.count() > 0 || finished.wait(10000));
            // Stopped before the end: nothing unpacked is left, and nothing was counted.
            QCOMPARE(abandoned.eventCount(), -1);
            QCOMPARE(QFileInfo(abandoned.readablePath()).size(), 0);
            abandoned.stopLoader();
        }
        QPointer<LogWidget> unpacking = openFile(secondBomb);
        const QString partial = unpacking->readablePath();
        QVERIFY(unpacking->isLoading());
        tabs()->tabCloseRequested(tabs()->currentIndex());
        QTRY_VERIFY(unpacking.isNull());
        QVERIFY(!QFile::exists(partial));

        tabs()->setCurrentIndex(0);
        QVERIFY(loaded(main));
        QCOMPARE(main->eventCount(), mainCount);
        QCOMPARE(main->feedbackText(), QStringLiteral("Events: %1").arg(mainCount));
    }

    // Criteria set in the filter window and applied open "MAIN LOG (filtered)" with
    // exactly the events of the journal that meet them.
    void filterWindowAppliesToTheJournal()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        action("actionFilter")->trigger();
        auto *filterWindow = window().findChild<FilterWindow *>();
        QVERIFY(filterWindow && filterWindow->isVisible());
        auto *nameCheck = filterWindow->findChild<QCheckBox *>(QStringLiteral("checkBoxNameContains"));
        auto *name = filterWindow->findChild<QLineEdit *>(QStringLiteral("nameContains"));
        auto *priorityCheck = filterWindow->findChild<QCheckBox *>(QStringLiteral("checkBoxPriority"));
        auto *priorities = filterWindow->findChild<QListWidget *>(QStringLiteral("priorityFilter"));
        auto *buttons = filterWindow->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
        QVERIFY(nameCheck && name && priorityCheck && priorities && buttons);

        // A word of some event's name, in other letter case, and the priorities from warning up.
        const QString word = main->model()->events().front()->nameEn.section(QLatin1Char(' '), 0, 0);
        QVERIFY(!word.isEmpty());
        nameCheck->setChecked(true);
        name->clear();
        QTest::keyClicks(name, word.toUpper());
        priorityCheck->setChecked(true);
        QVector<int> severe;
        for (int row = 0; row < priorities->count(); ++row) {
            auto *item = static_cast<PriorityItem *>(priorities->item(row));
            const bool wanted = item->priority() <= Event::Warning;
            item->setChecked(wanted);
            if (wanted)
                severe.append(item->priority());
        }
        QVERIFY(!severe.isEmpty());
        QPushButton *apply = buttons->button(QDialogButtonBox::Apply);
        QVERIFY(apply && apply->isEnabled());
        QTest::mouseClick(apply, Qt::LeftButton);

        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->tabText(1), QStringLiteral("MAIN LOG (filtered)"));
        LogWidget *filtered = current();
        QTRY_VERIFY_WITH_TIMEOUT(!filtered->isLoading() && filtered->eventCount() >= 0, 10000);

        // The same criteria matched event by event against the whole journal.
        FilterPack expected;
        expected.checkNameContains = true;
        expected.nameContains = word.toUpper();
        expected.checkPriorities = true;
        expected.priorities = severe;
        LogParser parser(mainJournal());
        parser.count();
        auto [opened, events] = parser.loadAll();
        QVERIFY(opened);
        int matching = 0;
        for (Event *event : events) {
            matching += expected.match(*event) ? 1 : 0;
            delete event;
        }
        QVERIFY(matching > 0 && matching < main->eventCount());
        QCOMPARE(filtered->eventCount(), matching);
        QVERIFY(filtered->filter().checkNameContains && filtered->filter().checkPriorities);
    }

    void filteringOpensOrRefilters()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        selectFirstRow(main);
        const QString first = main->currentEvent()->messageId;
        action("actionAddToFavorites")->trigger();
        QCOMPARE(texts(menu("menuFavoriteEvents")->actions()), QStringList({first, "|", "Edit list"}));

        // The main journal being followed: its filtered view follows it too.
        menu("menuFavoriteEvents")->actions().first()->trigger();
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->tabText(1), QStringLiteral("MAIN LOG (filtered)"));
        LogWidget *filtered = current();
        QCOMPARE(filtered, tabs()->widget(1));
        QVERIFY(filtered->isFiltered());
        QCOMPARE(filtered->filter().id, first);
        auto *followed = qobject_cast<MainLogWidget *>(filtered);
        QVERIFY(followed && followed->isFollowing());
        QVERIFY(!action("actionStartReading")->isEnabled() && action("actionStopReading")->isEnabled());
        QVERIFY(loaded(filtered));
        for (const Event *event : filtered->model()->events())
            QCOMPARE(event->messageId, first);
        QVERIFY(filtered->eventCount() < main->eventCount());

        // Filtering the filtered tab by another event's ID replaces its filter in place.
        const auto other = std::find_if(main->model()->events().begin(), main->model()->events().end(),
                                        [&](const Event *event) { return event->messageId != first; });
        QVERIFY(other != main->model()->events().end());
        const QString second = (*other)->messageId;
        FilterPack saved;
        saved.name = QStringLiteral("second");
        saved.checkId = true;
        saved.id = second;
        ConfigHandler *config = window().findChild<ConfigHandler *>();
        config->store().savedFilters().append(saved);
        config->writeConfig();
        QVERIFY(menu("menuSavedFilters")->isEnabled());
        QCOMPARE(texts(menu("menuSavedFilters")->actions()), QStringList({"second"}));
        menu("menuSavedFilters")->actions().first()->trigger();
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(current(), filtered);
        QCOMPARE(filtered->filter().id, second);
        QVERIFY(loaded(filtered));
        for (const Event *event : filtered->model()->events())
            QCOMPARE(event->messageId, second);

        // "Filter by message ID" on the filtered tab stays in place as well.
        selectFirstRow(filtered);
        action("actionFilterById")->trigger();
        QCOMPARE(tabs()->count(), 2);

        // Removing the favourite leaves the editor entry alone; without a single
        // selected event the commands do nothing.
        tabs()->setCurrentIndex(0);
        selectFirstRow(main);
        action("actionRemoveFromFavorites")->trigger();
        QCOMPARE(texts(menu("menuFavoriteEvents")->actions()), QStringList({"Edit list"}));
        main->view()->clearSelection();
        action("actionFilterById")->trigger();
        action("actionAddToFavorites")->trigger();
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(texts(menu("menuFavoriteEvents")->actions()), QStringList({"Edit list"}));

        // A file not being followed gets a plain filtered tab titled after it.
        const QString path = copyOfJournal(QStringLiteral("other.log"));
        LogWidget *opened = openFile(path);
        QVERIFY(loaded(opened));
        selectFirstRow(opened);
        action("actionFilterById")->trigger();
        QCOMPARE(tabs()->count(), 4);
        QCOMPARE(tabs()->tabText(3), path + QStringLiteral(" (filtered)"));
        QVERIFY(current()->isFiltered());
        QVERIFY(!qobject_cast<MainLogWidget *>(current()));
        QCOMPARE(current()->logPath(), path);
    }

    void switchingTabsSetsActions()
    {
        auto *main = qobject_cast<MainLogWidget *>(current());
        QVERIFY(loaded(main));
        action("actionStopReading")->trigger();
        QVERIFY(!main->isFollowing());
        QVERIFY(action("actionStartReading")->isEnabled() && !action("actionStopReading")->isEnabled());

        LogWidget *opened = openFile(copyOfJournal(QStringLiteral("switch.log")));
        QVERIFY(loaded(opened));
        QVERIFY(!action("actionStartReading")->isEnabled() && !action("actionStopReading")->isEnabled());
        action("actionStartReading")->trigger();
        QVERIFY(!main->isFollowing());

        action("actionClearTable")->trigger();
        QVERIFY(opened->isCleared());
        QVERIFY(action("actionRefreshLog")->isEnabled());
        tabs()->setCurrentIndex(0);
        QVERIFY(!action("actionRefreshLog")->isEnabled());
        QVERIFY(action("actionStartReading")->isEnabled() && !action("actionStopReading")->isEnabled());
        action("actionStartReading")->trigger();
        QVERIFY(main->isFollowing());
        tabs()->setCurrentIndex(1);
        QVERIFY(action("actionRefreshLog")->isEnabled());
        action("actionRefreshLog")->trigger();
        QVERIFY(!opened->isCleared());
        QVERIFY(!action("actionRefreshLog")->isEnabled());
        tabs()->setCurrentIndex(0);
        QVERIFY(!action("actionStartReading")->isEnabled() && action("actionStopReading")->isEnabled());

        // The details panel and the chosen columns follow the window, not the tab.
        window().show();
        action("actionShowDetails")->setChecked(false);
        QVERIFY(!main->bottomWidget()->isVisible());
        QStandardItem *column = chooser()->columnModel()->item(1);
        const int section = main->model()->firstAuxColumn();
        QVERIFY(main->view()->isColumnHidden(section));
        column->setCheckState(Qt::Checked);
        QVERIFY(!main->view()->isColumnHidden(section));
        tabs()->setCurrentIndex(1);
        QVERIFY(!opened->bottomWidget()->isVisible());
        QVERIFY(!opened->view()->isColumnHidden(section));
        QVERIFY(opened->view()->isColumnHidden(section + 1));
        action("actionShowDetails")->setChecked(true);
        QVERIFY(opened->bottomWidget()->isVisible());
    }

    void columnChooserKeepsItsListOpen()
    {
        window().show();
        ColumnChooser *box = chooser();
        QTest::mousePress(box, Qt::LeftButton, {}, box->rect().center());
        QAbstractItemView *list = box->view();
        QTRY_VERIFY(list->isVisible());
        const QRect second = list->visualRect(box->columnModel()->index(2, 0));
        // The press that opened the list ends over whatever row opened under the pointer.
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, second.center());
        QCOMPARE(box->columnModel()->item(2)->checkState(), Qt::Unchecked);
        QVERIFY(list->isVisible());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, second.center());
        QCOMPARE(box->columnModel()->item(2)->checkState(), Qt::Checked);
        QVERIFY(list->isVisible());
        QCOMPARE(box->checkedTypes().size() + box->checkedCustomNames().size(), 1);
        QVERIFY(!current()->view()->isColumnHidden(current()->model()->firstAuxColumn() + 1));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, second.center());
        QCOMPARE(box->columnModel()->item(2)->checkState(), Qt::Unchecked);
        // The caption row is no column.
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(box->columnModel()->index(0, 0)).center());
        QCOMPARE(box->checkedTypes().size() + box->checkedCustomNames().size(), 0);
        QCOMPARE(box->currentText(), QStringLiteral("Show columns"));
        box->hidePopup();
    }

    // Export asks which events and where, then writes the tab it was asked on, even
    // when another tab came forward meanwhile, and says how it went.
    void exportWritesTheTabItWasAskedFor()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        const QString partPath = partOfJournal(QStringLiteral("part.log"), 100);
        LogWidget *part = openFile(partPath);
        QVERIFY(loaded(part));
        showActive();

        press(Qt::Key_E, Qt::ControlModifier);
        auto *dialog = window().findChild<ExportDialog *>();
        QTRY_VERIFY(dialog->isVisible());
        QVERIFY(dialog->isModal());
        // Nothing selected, nothing to offer as the selection.
        QVERIFY(!dialog->findChild<QRadioButton *>(QStringLiteral("exportSelectedButton"))->isEnabled());
        QVERIFY(dialog->findChild<QRadioButton *>(QStringLiteral("exportCurrentPageButton"))->isChecked());
        clickTab(0);
        QCOMPARE(current(), main);
        clickRadio(dialog, "exportAllButton");
        const QString raw = saveAs(QStringLiteral("part-export.log"));
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("exportButton")), Qt::LeftButton);
        QTRY_COMPARE(window().statusBar()->currentMessage(), QStringLiteral("Exported 100 events to %1.").arg(raw));
        QFile written(raw);
        QFile expected(partPath);
        QVERIFY(written.open(QIODevice::ReadOnly) && expected.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), expected.readAll());

        // Two rows of the tab in front; the export speaks for itself while it runs.
        clickRow(main, 1);
        clickRow(main, 3, Qt::ShiftModifier);
        QCOMPARE(main->selectedEvents().size(), 3);
        press(Qt::Key_E, Qt::ControlModifier);
        QTRY_VERIFY(dialog->isVisible());
        QVERIFY(dialog->findChild<QRadioButton *>(QStringLiteral("exportSelectedButton"))->isChecked());
        const QString json = saveAs(QStringLiteral("selected.json"));
        QSignalSpy messages(window().statusBar(), &QStatusBar::messageChanged);
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("exportButton")), Qt::LeftButton);
        auto *overlayText = main->findChild<LoadWarning *>()->findChild<QLabel *>(QStringLiteral("label"));
        QCOMPARE(overlayText->text(), QStringLiteral("Exporting… 0 %"));
        QTRY_COMPARE(window().statusBar()->currentMessage(), QStringLiteral("Exported 3 events to %1.").arg(json));
        QTRY_COMPARE(overlayText->text(), QStringLiteral("Please wait, file loading is in progress..."));
        QVERIFY(!messages.isEmpty());
        QVERIFY(messages.first().first().toString().startsWith(QStringLiteral("Exporting… ")));
        QVERIFY(QFileInfo(json).size() > 0);
    }

    void printPrintsTheTabItWasAskedFor()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        LogWidget *part = openFile(partOfJournal(QStringLiteral("print.log"), 50));
        QVERIFY(loaded(part));
        showActive();
        press(Qt::Key_P, Qt::ControlModifier);
        auto *dialog = window().findChild<PrinterDialog *>();
        QTRY_VERIFY(dialog->isVisible());
        QVERIFY(dialog->isModal());
        QVERIFY(!dialog->findChild<QRadioButton *>(QStringLiteral("printSelectedButton"))->isEnabled());

        // Its tab closed under the dialog: there is nothing left to print.
        clickTab(1, Qt::MiddleButton);
        QCOMPARE(tabs()->count(), 1);
        bool asked = false;
        QTimer *poll = whenModal<QPrintDialog>([&asked](QPrintDialog *printDialog) {
            asked = true;
            printDialog->reject();
        });
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("printButton")), Qt::LeftButton);
        QVERIFY(!dialog->isVisible());
        QVERIFY(!asked);
        delete poll;

        clickRow(main, 2);
        clickRow(main, 3, Qt::ShiftModifier);
        const QString pdf = m_files.filePath(QStringLiteral("printed.pdf"));
        QFile::remove(pdf);
        window().findChild<EventsPrinter *>()->printer()->setOutputFileName(pdf);
        press(Qt::Key_P, Qt::ControlModifier);
        QTRY_VERIFY(dialog->isVisible());
        QVERIFY(dialog->findChild<QRadioButton *>(QStringLiteral("printSelectedButton"))->isChecked());
        acceptPrintDialog();
        QSignalSpy messages(window().statusBar(), &QStatusBar::messageChanged);
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("printButton")), Qt::LeftButton);
        QTRY_COMPARE(window().statusBar()->currentMessage(), QStringLiteral("Printed 2 events."));
        QVERIFY(!messages.isEmpty());
        QVERIFY(messages.first().first().toString().startsWith(QStringLiteral("Printing… ")));
        QVERIFY(QFileInfo(pdf).size() > 0);
    }

    // An export that cannot be written is told with the system's reason; the target
    // keeps what it held and nothing half-written is left beside it. Root writes
    // through permission bits, so the folder that refuses is /proc.
    void exportFailuresAreTold_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<bool>("becomesFolder");
        QTest::addColumn<bool>("cutShort");
        const QString folder = m_files.filePath(QStringLiteral("failing"));
        QDir(folder).removeRecursively();
        QVERIFY(QDir().mkpath(folder));
        const QString earlier = folder + QStringLiteral("/earlier.json");
        QFile file(earlier);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("earlier export\n") > 0);
        QTest::newRow("full device") << failing::fullDevice(folder, QStringLiteral("full.json")) << qt_error_string(ENOSPC) << false << false;
        QTest::newRow("folder refusing files") << QStringLiteral("/proc/nimb-export.json")
                                               << creationRefusal(QStringLiteral("/proc")) << false << false;
        QTest::newRow("a folder") << folder + QStringLiteral("/folder.json")
                                  << QSaveFile::tr("Filename refers to a directory") << true << false;
        QTest::newRow("cut short") << earlier << qt_error_string(EFBIG) << false << true;
    }

    void exportFailuresAreTold()
    {
        QFETCH(QString, target);
        QFETCH(QString, reason);
        QFETCH(bool, becomesFolder);
        QFETCH(bool, cutShort);
        QVERIFY(!reason.isEmpty());
        LogWidget *main = current();
        QVERIFY(loaded(main));
        showActive();
        QByteArray state = failing::stateOf(target);
        QStringList beside = failing::besides(target);
        QList<ShownBox> boxes;
        const auto answering = answerBoxes(&boxes);
        // The path is free when the dialog takes it and a folder when it is written.
        answerFileDialog(&window(), target, [&] {
            if (!becomesFolder)
                return;
            QDir().mkpath(target + QStringLiteral("/inside"));
            state = failing::stateOf(target);
            beside = failing::besides(target);
        });

        press(Qt::Key_E, Qt::ControlModifier);
        auto *dialog = window().findChild<ExportDialog *>();
        QTRY_VERIFY(dialog->isVisible());
        clickRadio(dialog, "exportAllButton");
        std::unique_ptr<failing::FileSizeLimit> limit;
        if (cutShort)
            limit = std::make_unique<failing::FileSizeLimit>(64 * 1024);
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("exportButton")), Qt::LeftButton);
        QTRY_VERIFY(!boxes.isEmpty() && boxes.last().icon == QMessageBox::Critical);
        limit.reset();
        const ShownBox &box = boxes.last();
        QCOMPARE(box.title, QStringLiteral("Export events"));
        QCOMPARE(box.text, QStringLiteral("The events could not be exported to %1.").arg(target));
        QCOMPARE(box.reason, reason);
        QTRY_COMPARE(window().statusBar()->currentMessage(), QStringLiteral("Could not write to %1.").arg(target));
        QCOMPARE(failing::stateOf(target), state);
        QCOMPARE(failing::besides(target), beside);
        QTRY_VERIFY(!main->isLoading());
    }

    // Printing into a file that fills up is told, and the earlier printout stays.
    void printFailuresAreTold()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        showActive();
        const QString pdf = m_files.filePath(QStringLiteral("earlier.pdf"));
        QFile earlier(pdf);
        QVERIFY(earlier.open(QIODevice::WriteOnly | QIODevice::Truncate) && earlier.write("earlier printout") > 0);
        earlier.close();
        const QByteArray state = failing::stateOf(pdf);
        window().findChild<EventsPrinter *>()->printer()->setOutputFileName(pdf);
        QList<ShownBox> boxes;
        const auto answering = answerBoxes(&boxes);
        acceptPrintDialog();
        press(Qt::Key_P, Qt::ControlModifier);
        auto *dialog = window().findChild<PrinterDialog *>();
        QTRY_VERIFY(dialog->isVisible());
        {
            failing::FileSizeLimit limit(4096);
            QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("printButton")), Qt::LeftButton);
            QTRY_VERIFY(!boxes.isEmpty() && boxes.last().icon == QMessageBox::Critical);
        }
        QCOMPARE(boxes.last().title, QStringLiteral("Print events"));
        QCOMPARE(boxes.last().text, QStringLiteral("The events could not be printed to %1.").arg(pdf));
        QCOMPARE(boxes.last().reason, QStringLiteral("The printout was cut short while it was being drawn."));
        QCOMPARE(failing::stateOf(pdf), state);
        QCOMPARE(failing::besides(pdf), QStringList({QStringLiteral("earlier.pdf")}));
    }

    // Settings that cannot be saved from their dialog are told with the reason.
    void settingsFailuresAreTold()
    {
        const QString file = ConfigHandler::settingsFilePath();
        QVERIFY(QDir().mkpath(file + QStringLiteral("/inside")));
        QVERIFY(loaded(current()));
        showActive();
        QList<ShownBox> boxes;
        const auto answering = answerBoxes(&boxes);
        action("actionSettings")->trigger();
        auto *settings = window().findChild<JournalSettings *>();
        QVERIFY(settings->isVisible() && settings->isModal());
        auto *perPage = settings->findChild<QSpinBox *>(QStringLiteral("messagesPerPage"));
        QTest::keyClick(perPage, Qt::Key_Up);
        auto *buttons = settings->findChild<QDialogButtonBox *>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        QTRY_COMPARE(boxes.size(), 1);
        QCOMPARE(boxes[0].icon, QMessageBox::Critical);
        QCOMPARE(boxes[0].text, QStringLiteral("The settings could not be saved to %1.").arg(file));
        QCOMPARE(boxes[0].reason, QSaveFile::tr("Filename refers to a directory"));
        QVERIFY(settings->isVisible());
        QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
        QCOMPARE(failing::stateOf(file), QByteArray("folder inside"));
        // Leaving says so in the log only.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^The settings could not be saved")));
        closeWindow();
        QCOMPARE(boxes.size(), 1);
    }

    // Favourites, recent files and settings are saved when they change: a killed
    // program leaves them for the next start. The changes are made in a child process,
    // by its user, and the child is killed once they are made.
    void savedChangesSurviveAKill()
    {
        const QString opened = copyOfJournal(QStringLiteral("opened-before-kill.log"));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QLatin1String(kChangeSettingsThenWait), opened});
        QVERIFY(child.waitForStarted());
        QByteArray said;
        while (!said.contains('\n') && child.waitForReadyRead(60000))
            said += child.readAllStandardOutput();
        QVERIFY2(said.startsWith("ready "), child.readAllStandardError().constData());
        const QString id = QString::fromUtf8(said.mid(6).trimmed());
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);

        QVERIFY(loaded(current()));
        QVERIFY(texts(menu("menuFavoriteEvents")->actions()).contains(id));
        QCOMPARE(texts(menu("menuRecentFiles")->actions()), QStringList({opened}));
        action("actionSettings")->trigger();
        auto *settings = window().findChild<JournalSettings *>();
        QCOMPARE(settings->findChild<QSpinBox *>(QStringLiteral("messagesPerPage"))->value(), 1500);
        QTest::mouseClick(settings->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    }

    // A row of the summary double-clicked filters the journal by its priority and
    // source: the filtered tab holds as many events as the row counted in the week.
    void summaryRowsFilterTheJournal()
    {
        const QString recent = m_files.filePath(QStringLiteral("recent.log"));
        QVERIFY(writeJournal(recent, 600, QDateTime::currentSecsSinceEpoch() - 60, 3));
        ConfigStore store;
        store.mainLogPath() = recent;
        ConfigHandler(store).writeConfig();

        LogWidget *main = current();
        QVERIFY(loaded(main));
        QCOMPARE(main->logPath(), recent);
        showActive();
        clickTool("actionSummary");
        auto *summary = window().findChild<SummaryDialog *>();
        QTRY_VERIFY(summary->isVisible() && summary->isReady() && summary->model());
        QCOMPARE(summary->windowModality(), Qt::WindowModal);
        const QStandardItemModel *counts = summary->model();
        auto *view = summary->findChild<QTreeView *>(QStringLiteral("treeView"));
        auto doubleClick = [view](const QModelIndex &index) {
            const QPoint centre = view->visualRect(index).center();
            QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre);
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, centre);
        };
        auto week = [](const QModelIndex &index) {
            return index.sibling(index.row(), SummaryDialog::WeekColumn).data().toInt();
        };
        // A named source of a priority that has others too.
        QModelIndex priority;
        QModelIndex source;
        for (int row = 0; row < counts->rowCount() && !source.isValid(); ++row) {
            priority = counts->index(row, SummaryDialog::PriorityColumn);
            const QModelIndex first = counts->index(0, SummaryDialog::SourceColumn, priority);
            if (counts->rowCount(priority) > 1 && !first.data().toString().isEmpty())
                source = first;
        }
        QVERIFY(source.isValid() && week(source) > 0 && week(priority) > week(source));

        doubleClick(source);
        QCOMPARE(tabs()->count(), 2);
        LogWidget *filtered = current();
        QVERIFY(loaded(filtered));
        QCOMPARE(filtered->eventCount(), week(source));
        for (const Event *event : filtered->model()->events()) {
            QCOMPARE(event->priorityText(), priority.data().toString());
            QCOMPARE(event->sourceText(), source.data().toString());
        }
        // The priority alone, in place of the criteria of the tab in front.
        doubleClick(priority);
        QCOMPARE(tabs()->count(), 2);
        QTRY_COMPARE(filtered->eventCount(), week(priority));
    }

    void statusTextSurvivesHovering()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        showActive();
        const QString count = main->feedbackText();
        QCOMPARE(window().statusBar()->currentMessage(), count);
        auto *toolBar = window().findChild<QToolBar *>(QStringLiteral("toolBar"));
        QWidget *button = toolBar->widgetForAction(action("actionPrint"));
        QTest::mouseMove(button);
        // What a hovered tool or menu entry announces: its status tip, empty here.
        QStatusTipEvent tip(action("actionPrint")->statusTip());
        QCoreApplication::sendEvent(button, &tip);
        QCOMPARE(window().statusBar()->currentMessage(), count);
        QMenu *file = menu("menuFile");
        QMenuBar *bar = window().menuBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(file->menuAction()).center());
        QTRY_VERIFY(file->isVisible());
        QTest::keyClick(file, Qt::Key_Down);
        QTRY_VERIFY(file->activeAction());
        QTest::keyClick(file, Qt::Key_Escape);
        QCOMPARE(window().statusBar()->currentMessage(), count);
    }

    // A tab whose file cannot be read has nothing to summarise, export, print or filter.
    void unreadableTabsOfferNothingToWorkOn()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        showActive();
        FilterPack saved;
        saved.name = QStringLiteral("saved");
        ConfigHandler *config = window().findChild<ConfigHandler *>();
        config->store().savedFilters().append(saved);
        config->writeConfig();
        clickRow(main, 0);
        action("actionAddToFavorites")->trigger();
        const QList<QAction *> work{action("actionSummary"), action("actionExport"), action("actionPrint"),
                                    action("actionFilter")};
        auto offered = [&] {
            int enabled = 0;
            for (QAction *command : work)
                enabled += command->isEnabled();
            enabled += menu("menuSavedFilters")->isEnabled();
            enabled += menu("menuFavoriteEvents")->actions().first()->isEnabled();
            return enabled;
        };
        QCOMPARE(offered(), 6);

        const QString path = m_files.filePath(QStringLiteral("appears-later.log"));
        QFile::remove(path);
        LogWidget *missing = openFile(path);
        QTRY_VERIFY(!missing->isReadable());
        QCOMPARE(offered(), 0);
        QVERIFY(menu("menuFavoriteEvents")->actions().last()->isEnabled());
        press(Qt::Key_F, Qt::ControlModifier);
        QVERIFY(!window().findChild<FilterWindow *>()->isVisible());

        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(current(), main);
        QCOMPARE(offered(), 6);
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(current(), missing);
        QCOMPARE(offered(), 0);

        // The file comes, F5 reads it.
        appendTo(path, mainJournal(), 20);
        press(Qt::Key_F5);
        QVERIFY(loaded(missing));
        QVERIFY(missing->isReadable());
        QCOMPARE(offered(), 6);
    }

    void desktopKeys()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        LogWidget *first = openFile(partOfJournal(QStringLiteral("keys1.log"), 30));
        const QString secondPath = partOfJournal(QStringLiteral("keys2.log"), 40);
        LogWidget *second = openFile(secondPath);
        QVERIFY(loaded(first) && loaded(second));
        showActive();

        // Round the ends, both ways.
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(current(), main);
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(current(), first);
        press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(current(), main);
        press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(current(), second);

        // F5 reads the file again; a cleared table stays cleared until "Refresh log".
        appendTo(secondPath, mainJournal(), 5);
        press(Qt::Key_F5);
        QTRY_COMPARE(second->eventCount(), 45);
        clickTool("actionClearTable");
        QTRY_VERIFY(!second->isLoading());
        appendTo(secondPath, mainJournal(), 3);
        press(Qt::Key_F5);
        QTRY_COMPARE(second->eventCount(), 3);
        QVERIFY(second->isCleared());
        QVERIFY(action("actionRefreshLog")->isEnabled());
        clickTool("actionRefreshLog");
        QTRY_COMPARE(second->eventCount(), 48);

        // Ctrl+W and the middle button close tabs, never the main one.
        press(Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(current(), first);
        clickTab(0);
        press(Qt::Key_W, Qt::ControlModifier);
        clickTab(0, Qt::MiddleButton);
        QCOMPARE(tabs()->count(), 2);
        clickTab(1, Qt::MiddleButton);
        QCOMPARE(tabs()->count(), 1);
        QCOMPARE(current(), main);

        press(Qt::Key_F, Qt::ControlModifier);
        QVERIFY(window().findChild<FilterWindow *>()->isVisible());
    }

    void closingTabs()
    {
        QVERIFY(loaded(current()));
        QPointer<LogWidget> idle = openFile(copyOfJournal(QStringLiteral("idle.log")));
        QVERIFY(loaded(idle));
        emit tabs()->tabCloseRequested(1);
        QCOMPARE(tabs()->count(), 1);
        QTRY_VERIFY(idle.isNull());

        // A tab still at work outlives its tab until the work ends.
        QPointer<LogWidget> busy = openFile(copyOfJournal(QStringLiteral("busy.log")));
        QVERIFY(loaded(busy));
        busy->setBusy(true);
        emit tabs()->tabCloseRequested(1);
        QCOMPARE(tabs()->count(), 1);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!busy.isNull());
        busy->setBusy(false);
        QTRY_VERIFY(busy.isNull());
    }

    void statusBarFollowsTheCurrentTab()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        auto *progress = window().findChild<QProgressBar *>(QStringLiteral("progressBar"));
        QVERIFY(progress);
        QCOMPARE(progress->minimum(), 0);
        QCOMPARE(progress->maximum(), 100);
        window().show();
        QVERIFY(!progress->isVisible());
        main->setBusy(true);
        QTRY_VERIFY(progress->isVisible());
        QVERIFY(window().statusBar()->currentMessage().isEmpty());
        QCOMPARE(progress->value(), main->percent());
        main->setBusy(false);
        QTRY_VERIFY(!progress->isVisible());
        QCOMPARE(window().statusBar()->currentMessage(), main->feedbackText());
    }

    void eventDetails()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        auto *details = window().findChild<DetailsWindow *>();
        QVERIFY(details);
        main->view()->selectRow(2);
        QVERIFY(action("actionCopy")->isEnabled());
        QVERIFY(action("actionEventDetails")->isEnabled());
        const int expected = static_cast<int>(main->currentEvent()->number) - 1;
        QSignalSpy shown(details, &DetailsWindow::eventShown);
        action("actionEventDetails")->trigger();
        QVERIFY(details->isVisible());
        QCOMPARE(details->position(), expected);
        QTRY_VERIFY(!shown.isEmpty());
        QCOMPARE(shown.first().first().toInt(), expected);
        details->hide();

        // Enter on the table asks for the same window.
        main->view()->setCurrentIndex(main->model()->index(4, 0));
        main->view()->selectRow(4);
        QTest::keyClick(main->view(), Qt::Key_Return);
        QTRY_VERIFY(details->isVisible());
        QCOMPARE(details->position(), static_cast<int>(main->model()->event(4)->number) - 1);

        main->view()->clearSelection();
        QVERIFY(!action("actionCopy")->isEnabled());
        QVERIFY(!action("actionEventDetails")->isEnabled());
    }

    // Ctrl+G asks for a time and shows the first event in file order at or after it;
    // a time after every event is answered in the status bar.
    void goToTime()
    {
        LogWidget *main = current();
        QVERIFY(loaded(main));
        QVector<QDateTime> times;
        QStringList ids;
        QFile journal(mainJournal());
        QVERIFY(journal.open(QIODevice::ReadOnly));
        while (!journal.atEnd()) {
            const std::unique_ptr<Event> event = LineParser::parseLine(journal.readLine());
            if (event) {
                times.append(event->time);
                ids.append(event->messageId);
            }
        }
        const QDateTime target = times.at(1234).addSecs(-1);
        const int row = int(std::find_if(times.begin(), times.end(), [&](const QDateTime &t) { return t >= target; })
                            - times.begin());
        const auto answer = [this](const QDateTime &time) {
            // A window manager gives the focus back to the window when a dialog closes.
            showActive();
            press(Qt::Key_G, Qt::ControlModifier);
            auto *dialog = window().findChild<GoToTimeDialog *>();
            QTRY_VERIFY(dialog && dialog->isVisible());
            auto *edit = dialog->findChild<QDateTimeEdit *>(QStringLiteral("dateTimeEdit"));
            edit->setDateTime(time.toLocalTime());
            QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
            QVERIFY(!dialog->isVisible());
        };

        answer(target);
        QTRY_VERIFY(main->currentEvent() && main->currentEvent()->number == quint32(row + 1));
        QCOMPARE(main->pageWidget()->page(), row / ConfigStore::kDefaultMessagesPerPage + 1);
        const auto *panel = main->bottomWidget()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
        QVERIFY(panel->findItems(ids.at(row), Qt::MatchExactly).size() == 1);

        answer(std::max_element(times.begin(), times.end())->addSecs(3600));
        QTRY_VERIFY(window().statusBar()->currentMessage().startsWith(QStringLiteral("No event happened at or after ")));
        QCOMPARE(main->currentEvent()->number, quint32(row + 1));
    }

    // The timeline can be hidden, and stays as the user left it.
    void timelineIsShownOrHiddenForGood()
    {
        showActive();
        LogWidget *main = current();
        QVERIFY(loaded(main));
        QVERIFY(action("actionShowTimeline")->isChecked());
        QTRY_VERIFY(main->timelineWidget()->isVisible() && !main->timelineWidget()->bars().empty());
        menu("menuSettings")->popup(window().mapToGlobal(QPoint(0, 0)));
        QTRY_VERIFY(menu("menuSettings")->isVisible());
        QTest::mouseClick(menu("menuSettings"), Qt::LeftButton, {},
                          menu("menuSettings")->actionGeometry(action("actionShowTimeline")).center());
        QVERIFY(!action("actionShowTimeline")->isChecked());
        QVERIFY(!main->timelineWidget()->isVisible());
        LogWidget *opened = openFile(partOfJournal(QStringLiteral("part"), 50));
        QVERIFY(loaded(opened));
        QVERIFY(!opened->timelineWidget()->isVisible());

        closeWindow();
        showActive();
        QVERIFY(!action("actionShowTimeline")->isChecked());
        QVERIFY(loaded(current()));
        QVERIFY(!current()->timelineWidget()->isVisible());
        action("actionShowTimeline")->trigger();
        QTRY_VERIFY(current()->timelineWidget()->isVisible() && !current()->timelineWidget()->bars().empty());
    }

    void windowComesBackAsItWasLeft()
    {
        window().show();
        QVERIFY(QTest::qWaitForWindowExposed(&window()));
        window().resize(700, 500);
        chooser()->columnModel()->item(3)->setCheckState(Qt::Checked);
        const QSet<int> types = chooser()->checkedTypes();
        const QSet<QString> custom = chooser()->checkedCustomNames();
        closeWindow();

        window().show();
        QCOMPARE(window().size(), QSize(700, 500));
        QVERIFY(!window().isMaximized());
        QCOMPARE(chooser()->columnModel()->item(3)->checkState(), Qt::Checked);
        QCOMPARE(chooser()->checkedTypes(), types);
        QCOMPARE(chooser()->checkedCustomNames(), custom);
        QVERIFY(!current()->view()->isColumnHidden(current()->model()->firstAuxColumn() + 2));

        window().showMaximized();
        QTRY_VERIFY(window().isMaximized());
        closeWindow();
        QVERIFY(window().isMaximized());
        window().showNormal();
        QCOMPARE(window().size(), QSize(700, 500));
    }

    void laterStartsBringTheWindowBack()
    {
        window().hide();
        window().bringToFront(QStringLiteral("raise"));
        QVERIFY(window().isHidden());
        window().bringToFront(QStringLiteral("toggle"));
        QVERIFY(window().isVisible());
        window().showMinimized();
        QTRY_VERIFY(window().isMinimized());
        window().bringToFront(QStringLiteral("toggle"));
        QTRY_VERIFY(!window().isMinimized());
    }
};

int main(int argc, char **argv)
{
    // The parent's system tree and settings folder come with the environment.
    if (argc > 2 && qstrcmp(argv[1], kChangeSettingsThenWait) == 0)
        return changeSettingsThenWait(argc, argv);
    QTemporaryDir sysroot;
    g_sysroot = &sysroot;
    if (!sysroot.isValid() || !makeSysroot())
        qFatal("cannot build the test system tree");
    qputenv("NIMB_EVENT_VIEWER_SYSROOT", QFile::encodeName(sysroot.path()));
    QApplication app(argc, argv);
    TestMainWindow test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_mainwindow.moc"
