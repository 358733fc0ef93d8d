// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ConfigStore.h"
#include "Event.h"
#include "EventGenerator.h"
#include "EventsModel.h"
#include "BottomWidget.h"
#include "EventsView.h"
#include "FilterPack.h"
#include "LoadWarning.h"
#include "LogWidget.h"
#include "MainLogWidget.h"
#include "PageWidget.h"
#include "NimbTestMain.h"
#include "TsanDefaults.h"

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QToolButton>

#include <thread>

namespace
{
QByteArray eventLine(const QString &id)
{
    return QStringLiteral("{\"FACILITY\":\"auth\",\"PRIORITY\":\"info\",\"HOST\":\"h\",\"ISODATE\":\"2024-03-01T10:00:00+03:00\","
                          "\"MSG\":{\"velmo-auth\":{\"message_id\":\"%1\",\"name_en\":\"Event %1\"}}}\n")
        .arg(id)
        .toUtf8();
}

QByteArray events(int n, const QString &prefix, int from = 0)
{
    QByteArray bytes;
    for (int i = from; i < from + n; ++i)
        bytes += eventLine(prefix + QString::number(i));
    return bytes;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

// Another process changes the journal, as the logger and the rotation tool do.
void writer(const QString &script, const QStringList &args)
{
    QProcess process;
    process.start(QStringLiteral("/bin/sh"), QStringList{QStringLiteral("-c"), script, QStringLiteral("sh")} + args);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 0);
}

void appendByWriter(const QString &path, const QByteArray &bytes)
{
    writer(QStringLiteral("printf '%s' \"$1\" >> \"$2\""), {QString::fromUtf8(bytes), path});
}

QStringList shownIds(const LogWidget &widget)
{
    QStringList ids;
    for (const Event *event : widget.model()->events())
        ids.append(event->messageId);
    return ids;
}

QStringList idRange(const QString &prefix, int from, int n)
{
    QStringList ids;
    for (int i = from; i < from + n; ++i)
        ids.append(prefix + QString::number(i));
    return ids;
}

QSpinBox *pageNumber(const QWidget &w)
{
    return w.findChild<QSpinBox *>(QStringLiteral("pageNumber"));
}

QToolButton *button(const QWidget &w, const char *name)
{
    return w.findChild<QToolButton *>(QLatin1String(name));
}
}

class TestLogWidget : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString journal(const QString &name, const QByteArray &bytes)
    {
        const QString path = m_dir.filePath(name);
        writeFile(path, bytes);
        return path;
    }

private slots:
    void init()
    {
        ConfigStore::instance().messagesPerPage() = 100;
    }

    void pagerButtonsAndSignals()
    {
        PageWidget pager;
        QSignalSpy changes(&pager, &PageWidget::pageChanged);
        QCOMPARE(pager.findChild<QLabel *>(QStringLiteral("pagesTotal"))->text(), QStringLiteral("of 1"));
        for (const char *name : {"buttonFirst", "buttonPrev", "buttonNext", "buttonLast"})
            QVERIFY2(!button(pager, name)->isEnabled(), name);

        pager.setPagesCount(3);
        QCOMPARE(pager.findChild<QLabel *>(QStringLiteral("pagesTotal"))->text(), QStringLiteral(" of 3"));
        QVERIFY(button(pager, "buttonNext")->isEnabled() && !button(pager, "buttonPrev")->isEnabled());

        QTest::mouseClick(button(pager, "buttonLast"), Qt::LeftButton);
        QCOMPARE(pager.page(), 3);
        QCOMPARE(changes.size(), 1);
        QVERIFY(!button(pager, "buttonNext")->isEnabled() && !button(pager, "buttonLast")->isEnabled());
        // On the last page Last and Next say nothing.
        button(pager, "buttonLast")->click();
        button(pager, "buttonNext")->click();
        QCOMPARE(changes.size(), 1);

        QTest::mouseClick(button(pager, "buttonPrev"), Qt::LeftButton);
        QTest::mouseClick(button(pager, "buttonFirst"), Qt::LeftButton);
        QCOMPARE(pager.page(), 1);
        QCOMPARE(changes.size(), 3);
        button(pager, "buttonFirst")->click();
        QCOMPARE(changes.size(), 3);

        // Typing a page number is a change like any other; the owner setting it too.
        pageNumber(pager)->setValue(2);
        pager.setPage(2);
        QCOMPARE(changes.size(), 4);
        QVERIFY(button(pager, "buttonFirst")->isEnabled() && button(pager, "buttonLast")->isEnabled());
    }

    void countBecomesPagesAndRowRequests_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("lastPosition");
        QTest::addColumn<int>("lastRows");
        QTest::addColumn<int>("rowsShown");
        QTest::newRow("partial last page") << 250 << 3 << 200 << 50 << 50;
        QTest::newRow("full last page") << 200 << 2 << 100 << 100 << 100;
        QTest::newRow("empty log") << 0 << 1 << 0 << 100 << 0;
    }

    void countBecomesPagesAndRowRequests()
    {
        QFETCH(int, count);
        QFETCH(int, pages);
        QFETCH(int, lastPosition);
        QFETCH(int, lastRows);
        QFETCH(int, rowsShown);
        // A journal object that is no event keeps the file a journal with nothing to count.
        const QString path = journal(QStringLiteral("paging"), "{\"note\":1}\n" + events(count, QStringLiteral("e")));
        LogWidget widget(path, {});
        widget.show();
        QSignalSpy loads(&widget, &LogWidget::loadRequest);
        widget.refresh();
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: %1").arg(count));
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(widget.pageWidget()->pagesCount(), pages);
        // A fresh table sits at the end of its only page, so the first count moves
        // it to the newest events.
        QCOMPARE(widget.pageWidget()->page(), pages);
        QCOMPARE(loads.size(), 1);
        QCOMPARE(loads.first(), (QVariantList{lastPosition, lastRows}));
        QCOMPARE(widget.model()->rowCount(), rowsShown);
        if (rowsShown > 0) {
            QCOMPARE(widget.model()->event(0)->number, quint32(lastPosition + 1));
            QCOMPARE(shownIds(widget).last(), QStringLiteral("e%1").arg(count - 1));
        }

        QTest::mouseClick(button(widget, "buttonFirst"), Qt::LeftButton);
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(loads.last(), (QVariantList{0, pages == 1 ? lastRows : 100}));
        QCOMPARE(loads.size(), pages == 1 ? 1 : 2);
        QTest::mouseClick(button(widget, "buttonLast"), Qt::LeftButton);
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(loads.last(), (QVariantList{lastPosition, lastRows}));
    }

    void turningPagesQuicklyShowsTheLastPageAsked()
    {
        const QString path = journal(QStringLiteral("quick"), events(1000, QStringLiteral("q")));
        LogWidget widget(path, {});
        widget.refresh();
        QTRY_VERIFY(!widget.isLoading() && widget.model()->rowCount() == 100);
        QTest::mouseClick(button(widget, "buttonFirst"), Qt::LeftButton);
        for (int i = 0; i < 6; ++i)
            QTest::mouseClick(button(widget, "buttonNext"), Qt::LeftButton);
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(widget.pageWidget()->page(), 7);
        QCOMPARE(shownIds(widget), idRange(QStringLiteral("q"), 600, 100));
    }

    void growthMovesOnlyAFollowingView()
    {
        const QString path = journal(QStringLiteral("growing"), events(250, QStringLiteral("g")));
        MainLogWidget followed(path, {});
        MainLogWidget still(path, {});
        still.refresh();
        QTRY_COMPARE(still.feedbackText(), QStringLiteral("Events: 250"));
        QTRY_VERIFY(!still.isLoading());
        QTest::mouseClick(button(still, "buttonFirst"), Qt::LeftButton);
        QTRY_VERIFY(!still.isLoading() && still.model()->event(0)->number == 1);

        followed.startFollowing();
        QTRY_COMPARE(followed.pageWidget()->page(), 3);
        QTRY_VERIFY(!followed.isLoading());

        appendByWriter(path, events(100, QStringLiteral("g"), 250));
        QTRY_COMPARE(followed.feedbackText(), QStringLiteral("Events: 350"));
        QTRY_COMPARE(followed.pageWidget()->page(), 4);
        QTRY_COMPARE(shownIds(followed), idRange(QStringLiteral("g"), 300, 50));

        // A view that does not follow counts only when asked, and then keeps its page.
        QCOMPARE(still.feedbackText(), QStringLiteral("Events: 250"));
        still.refresh();
        QTRY_COMPARE(still.feedbackText(), QStringLiteral("Events: 350"));
        QTRY_VERIFY(!still.isLoading());
        QCOMPARE(still.pageWidget()->pagesCount(), 4);
        QCOMPARE(still.pageWidget()->page(), 1);
        QCOMPARE(shownIds(still), idRange(QStringLiteral("g"), 0, 100));

        // Stopped following: growth is no longer counted.
        followed.stopFollowing();
        appendByWriter(path, events(1, QStringLiteral("g"), 350));
        still.refresh();
        QTRY_COMPARE(still.feedbackText(), QStringLiteral("Events: 351"));
        QCOMPARE(followed.feedbackText(), QStringLiteral("Events: 350"));
    }

    void followingSurvivesRotation_data()
    {
        QTest::addColumn<QString>("rotate");
        QTest::newRow("rename and create") << QStringLiteral("mv \"$1\" \"$1.1\" && printf '%s' \"$2\" > \"$1\"");
        QTest::newRow("copy and truncate")
            << QStringLiteral("cp \"$1\" \"$1.1\" && : > \"$1\" && printf '%s' \"$2\" >> \"$1\"");
        QTest::newRow("remove, then create empty")
            << QStringLiteral("rm \"$1\" && : > \"$1\" && printf '%s' \"$2\" >> \"$1\"");
    }

    void followingSurvivesRotation()
    {
        QFETCH(QString, rotate);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("events"));
        writeFile(path, events(180, QStringLiteral("old")));
        MainLogWidget widget(path, {});
        widget.startFollowing();
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 180"));
        // A filtered view of the followed journal follows it the same way.
        FilterPack threes;
        threes.checkNameContains = true;
        threes.nameContains = QStringLiteral("3");
        MainLogWidget filtered(path, threes, {});
        filtered.startFollowing();
        QTRY_COMPARE(filtered.feedbackText(), QStringLiteral("Events: 36"));

        writer(rotate, {path, QString::fromUtf8(events(30, QStringLiteral("new")))});
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 30"));
        QTRY_COMPARE(shownIds(widget), idRange(QStringLiteral("new"), 0, 30));
        QTRY_COMPARE(filtered.feedbackText(), QStringLiteral("Events: 3"));

        // The new file is the one watched now.
        appendByWriter(path, events(5, QStringLiteral("new"), 30));
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 35"));
        QTRY_COMPARE(shownIds(widget), idRange(QStringLiteral("new"), 0, 35));
        QTRY_COMPARE(shownIds(filtered), (QStringList{"new3", "new13", "new23", "new30", "new31", "new32", "new33", "new34"}));
    }

    void vanishedJournalIsReportedUntilItReturns()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("events"));
        writeFile(path, events(20, QStringLiteral("a")));
        MainLogWidget widget(path, {});
        widget.show();
        widget.startFollowing();
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 20"));
        auto *message = widget.findChild<QLabel *>(QStringLiteral("messageLabel"));
        QVERIFY(!message->isVisible());

        writer(QStringLiteral("rm \"$1\""), {path});
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Can't open log file."));
        QTRY_VERIFY(message->isVisible());
        QVERIFY(!widget.view()->isVisible());

        writer(QStringLiteral("printf '%s' \"$2\" > \"$1\""), {path, QString::fromUtf8(events(3, QStringLiteral("b")))});
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 3"));
        QTRY_VERIFY(widget.view()->isVisible());
        QTRY_COMPARE(shownIds(widget), idRange(QStringLiteral("b"), 0, 3));
    }

    void clearThenRestore()
    {
        const QString path = journal(QStringLiteral("clearing"), events(250, QStringLiteral("c")));
        LogWidget widget(path, {});
        widget.refresh();
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 250"));

        widget.clearTable();
        QVERIFY(widget.isCleared());
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 0"));
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(widget.model()->rowCount(), 0);

        appendByWriter(path, events(5, QStringLiteral("c"), 250));
        widget.refresh();
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 5"));
        QTRY_COMPARE(shownIds(widget), idRange(QStringLiteral("c"), 250, 5));
        QCOMPARE(widget.model()->event(0)->number, 1u);

        widget.restoreTable();
        QVERIFY(!widget.isCleared());
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 255"));
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(widget.pageWidget()->pagesCount(), 3);
    }

    void unreadableFilesSayWhy_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("make");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << "nothing-here" << QString() << "The file does not exist.";
        const QString notJournal = QStringLiteral("This file is not an events journal: none of its lines is an event.");
        QTest::newRow("empty") << "empty" << ": > \"$1\"" << notJournal;
        // Megabytes of text: the test that finds no event reads them on the loader thread.
        QTest::newRow("plain text") << "messages"
                                    << "yes 'Mar  1 10:00:00 host kernel: a line of an ordinary system log' | "
                                       "head -c 12000000 > \"$1\""
                                    << notJournal;
        QTest::newRow("folder") << "folder" << "mkdir \"$1\"" << "This is a folder, not a file.";
        QTest::newRow("pipe") << "pipe" << "mkfifo \"$1\"" << "This is not a regular file but a pipe, socket or device.";
    }

    void unreadableFilesSayWhy()
    {
        QFETCH(QString, name);
        QFETCH(QString, make);
        QFETCH(QString, reason);
        const QString path = m_dir.filePath(name);
        if (!make.isEmpty())
            writer(make, {path});
        LogWidget widget(path, {});
        widget.show();
        widget.refresh();
        // The answer comes from the loader thread; this one went on at once.
        QVERIFY(widget.isLoading());
        QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Can't open log file."));
        QTRY_VERIFY(!widget.isLoading());
        QVERIFY(!widget.isReadable() && !widget.view()->isVisible());
        QCOMPARE(widget.findChild<QLabel *>(QStringLiteral("messageLabel"))->text(),
                 QStringLiteral("Can't open log file.\n%1\n%2").arg(path, reason));
    }

    void deletedFileFailsToLoad()
    {
        const QString path = journal(QStringLiteral("deleted"), events(150, QStringLiteral("d")));
        MainLogWidget deleted(path, {});
        deleted.show();
        deleted.refresh();
        QTRY_COMPARE(deleted.feedbackText(), QStringLiteral("Events: 150"));
        QTRY_VERIFY(!deleted.isLoading());
        QVERIFY(QFile::remove(path));
        QTest::mouseClick(button(deleted, "buttonFirst"), Qt::LeftButton);
        QTRY_COMPARE(deleted.feedbackText(), QStringLiteral("Events loading failed."));
        QVERIFY(!deleted.view()->isVisible());
    }

    // A tab of a file that is not followed keeps showing that file when rotation gives
    // its name to another: turning pages reads the events it counted.
    void unfollowedTabsKeepTheirFileAcrossRotation()
    {
        QTemporaryDir dir;
        const QString live = dir.filePath(QStringLiteral("events"));
        const QString rotated = dir.filePath(QStringLiteral("events.1"));
        writeFile(rotated, events(150, QStringLiteral("r")));
        writeFile(live, events(40, QStringLiteral("l")));
        FilterPack fives;
        fives.checkNameContains = true;
        fives.nameContains = QStringLiteral("5");
        LogWidget plain(rotated, {});
        LogWidget filtered(live, fives, {});
        for (LogWidget *tab : {&plain, &filtered}) {
            tab->show();
            tab->refresh();
        }
        QTRY_COMPARE(plain.feedbackText(), QStringLiteral("Events: 150"));
        QTRY_COMPARE(filtered.feedbackText(), QStringLiteral("Events: 4"));
        LogWidget sameFile(live, fives, {});
        sameFile.readSameFileAs(filtered);

        writer(QStringLiteral("gzip \"$1.1\" && mv \"$1.1.gz\" \"$1.2.gz\" && mv \"$1\" \"$1.1\" && printf '%s' \"$2\" > \"$1\""),
               {live, QString::fromUtf8(events(60, QStringLiteral("n")))});
        QTest::mouseClick(button(plain, "buttonFirst"), Qt::LeftButton);
        QTRY_VERIFY(!plain.isLoading() && plain.model()->rowCount() == 100);
        QCOMPARE(shownIds(plain), idRange(QStringLiteral("r"), 0, 100));
        filtered.refresh();
        sameFile.refresh();
        for (LogWidget *tab : {&filtered, &sameFile}) {
            QTRY_COMPARE(tab->feedbackText(), QStringLiteral("Events: 4"));
            QTRY_COMPARE(shownIds(*tab), (QStringList{"l5", "l15", "l25", "l35"}));
        }
    }

    void compressedRotationIsReadThroughAPrivateCopy()
    {
        const QString plain = journal(QStringLiteral("events.2"), events(120, QStringLiteral("z")));
        writer(QStringLiteral("gzip -k \"$1\""), {plain});
        QString copy;
        {
            LogWidget widget(plain + QStringLiteral(".gz"), {});
            copy = widget.readablePath();
            QVERIFY(copy != widget.logPath() && QFile::exists(copy));
            widget.refresh();
            QTRY_COMPARE(widget.feedbackText(), QStringLiteral("Events: 120"));
            QTRY_COMPARE(shownIds(widget), idRange(QStringLiteral("z"), 100, 20));
        }
        QVERIFY(!QFile::exists(copy));
        QVERIFY(QFile::exists(plain + QStringLiteral(".gz")));
    }

    void busyStateFromAnotherThread()
    {
        const QString path = journal(QStringLiteral("busy"), events(10, QStringLiteral("b")));
        LogWidget widget(path, {});
        widget.show();
        widget.refresh();
        QTRY_VERIFY(!widget.isLoading());
        auto *overlay = widget.findChild<LoadWarning *>();
        QVERIFY(overlay && !overlay->isVisible());
        QSignalSpy finished(&widget, &LogWidget::loadingFinished);

        std::thread([&widget] { widget.setBusy(true); }).join();
        QTRY_VERIFY(widget.isLoading());
        QTRY_VERIFY(overlay->isVisible());
        QCOMPARE(overlay->geometry(), widget.view()->geometry());
        std::thread([&widget] { widget.setBusy(false); }).join();
        QTRY_COMPARE(finished.size(), 1);
        QVERIFY(!widget.isLoading());
        QVERIFY(!overlay->isVisible());
    }

    // Whichever way a row is selected, the bottom panel shows the selected event;
    // with nothing selected it is empty.
    void selectingRowsFillsTheBottomPanel()
    {
        const QString path = journal(QStringLiteral("details"), events(150, QStringLiteral("s")));
        LogWidget widget(path, {});
        widget.resize(900, 700);
        widget.show();
        widget.refresh();
        QTRY_VERIFY(!widget.isLoading() && widget.model()->rowCount() == 50);
        QCOMPARE(widget.eventGenerator()->count(), 150);
        QSignalSpy selections(&widget, &LogWidget::selectionChanged);
        QSignalSpy details(&widget, &LogWidget::showDetails);
        auto *panel = widget.bottomWidget()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
        const auto panelId = [panel]() -> QString {
            for (int row = 0; row < panel->rowCount(); ++row)
                if (panel->item(row, 0)->text() == QLatin1String("Message ID"))
                    return panel->item(row, 1)->text();
            return QString();
        };
        const auto click = [&widget](int row, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {}) {
            const QRect rect = widget.view()->visualRect(widget.model()->index(row, 2));
            QTest::mouseClick(widget.view()->viewport(), button, modifiers, rect.center());
        };

        click(3, Qt::LeftButton);
        QCOMPARE(panelId(), QStringLiteral("s103"));
        QCOMPARE(selections.last().at(0).toBool(), true);
        click(5, Qt::RightButton);
        QCOMPARE(panelId(), QStringLiteral("s105"));
        click(7, Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(widget.selectedEvents().size(), 2);
        QVERIFY(!widget.currentEvent());
        QCOMPARE(panelId(), QStringLiteral("s107"));
        click(7, Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(panelId(), QStringLiteral("s105"));
        click(9, Qt::LeftButton, Qt::ShiftModifier);
        QVERIFY(widget.selectedEvents().size() > 2);
        QCOMPARE(panelId(), QStringLiteral("s109"));
        QTest::keyClick(widget.view(), Qt::Key_Down);
        QCOMPARE(panelId(), QStringLiteral("s110"));
        QTest::keyClick(widget.view(), Qt::Key_Return);
        QCOMPARE(details.size(), 1);
        QCOMPARE(details.at(0).at(1).toInt(), 110);
        widget.view()->selectRow(2);
        QCOMPARE(panelId(), QStringLiteral("s102"));

        // A page that is read again (a followed journal grows) keeps the selection.
        widget.refresh();
        QTRY_VERIFY(!widget.isLoading());
        QCOMPARE(panelId(), QStringLiteral("s102"));
        QTest::mouseClick(button(widget, "buttonPrev"), Qt::LeftButton);
        QTRY_VERIFY(!widget.isLoading() && widget.model()->event(0)->number == 1);
        QVERIFY(widget.selectedEvents().isEmpty());
        QCOMPARE(selections.last().at(0).toBool(), false);
        QCOMPARE(panel->rowCount(), 0);
    }

    // Numbers, times and priorities are never cut, whichever page came first.
    void shortColumnsFitTheirValues()
    {
        FilterPack all;
        all.checkNameContains = true;
        all.nameContains = QStringLiteral("Event");
        const QString path = journal(QStringLiteral("wide"), events(5, QStringLiteral("w")));
        MainLogWidget widget(path, all, {});
        widget.show();
        widget.startFollowing();
        QTRY_VERIFY(!widget.isLoading() && widget.model()->rowCount() == 5);
        // Too much for an argument: the writer appends it from a file.
        writeFile(m_dir.filePath(QStringLiteral("more")), events(11995, QStringLiteral("w"), 5));
        writer(QStringLiteral("cat \"$1\" >> \"$2\""), {m_dir.filePath(QStringLiteral("more")), path});
        QTRY_VERIFY(!widget.isLoading() && widget.model()->rowCount() == 100);
        const QFontMetrics metrics(widget.view()->font());
        for (int column : {int(EventsModel::NumberColumn), int(EventsModel::TimeColumn), int(EventsModel::PriorityColumn)}) {
            // The widest value any page of this tab shows.
            const QString widest = widget.model()->index(0, column).data().toString().replace(QRegularExpression("\\d"), "0");
            const QString text = column == EventsModel::NumberColumn ? QStringLiteral("12000") : widest;
            QVERIFY2(widget.view()->columnWidth(column) >= metrics.horizontalAdvance(text) + 6, qPrintable(text));
        }
    }

    // A reader starts a page at its top, wherever the page before was scrolled to.
    void anotherPageOpensAtItsTop()
    {
        LogWidget widget(journal(QStringLiteral("scrolling"), events(300, QStringLiteral("p"))), {});
        widget.resize(900, 500);
        widget.show();
        widget.refresh();
        QTRY_VERIFY(!widget.isLoading() && widget.pageWidget()->page() == 3);
        QTest::mouseClick(button(widget, "buttonFirst"), Qt::LeftButton);
        QTRY_VERIFY(!widget.isLoading() && widget.model()->event(0)->number == 1);
        QScrollBar *bar = widget.view()->verticalScrollBar();
        QCOMPARE(bar->value(), 0);
        QTest::mouseClick(widget.view()->viewport(), Qt::LeftButton, {},
                          widget.view()->visualRect(widget.model()->index(0, 1)).center());
        QTest::keyClick(widget.view(), Qt::Key_End, Qt::ControlModifier);
        QVERIFY(bar->value() > 0 && bar->value() == bar->maximum());
        QTest::mouseClick(button(widget, "buttonNext"), Qt::LeftButton);
        QTRY_VERIFY(!widget.isLoading() && widget.model()->event(0)->number == 101);
        QCOMPARE(bar->value(), 0);
    }
};

NIMB_TEST_MAIN_WITH(TestLogWidget, QApplication, NIMB_TEST_DATA_DIR "/sysroot-engine")
#include "test_logwidget.moc"
