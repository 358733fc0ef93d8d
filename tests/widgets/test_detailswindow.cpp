// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AsyncLoader.h"
#include "DetailsWindow.h"
#include "EventGenerator.h"
#include "FilterPack.h"
#include "HighlightProbe.h"
#include "LogParser.h"
#include "NimbTestMain.h"
#include "TextViewWindow.h"
#include "TsanDefaults.h"
#include "ViewsFixture.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextEdit>

namespace
{
// Longer than any page of the table and with broken lines in between, so that
// positions are those of the counted events, not of the file's lines.
constexpr int kEvents = 260;
constexpr int kLongValueEvent = 7;

QString longValue()
{
    QStringList words{QStringLiteral("HEADMARK")};
    for (int i = 0; i < 1500; ++i)
        words.append(QStringLiteral("word%1").arg(i));
    words.append(QStringLiteral("TAILMARK"));
    return words.join(QLatin1Char(' '));
}

QByteArray journal()
{
    QByteArray bytes;
    for (int i = 0; i < kEvents; ++i) {
        if (i % 50 == 10)
            bytes += "{\"MSG\": broken line\n";
        QJsonObject extra{{QStringLiteral("user"), QStringLiteral("user%1").arg(i)},
                          {QStringLiteral("success"), i % 2 == 0}};
        if (i == kLongValueEvent)
            extra.insert(QStringLiteral("args"), longValue());
        bytes += views::line(QStringLiteral("ev-%1").arg(i), QStringLiteral("notice"), extra) + '\n';
    }
    return bytes;
}

QString run(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.start(tool, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return QString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

int pageCount(const QString &pdf)
{
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("^Pages:\\s+(\\d+)"), QRegularExpression::MultilineOption)
            .match(run(QStringLiteral("pdfinfo"), {pdf}));
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}
}

class TestDetailsWindow : public QObject
{
    Q_OBJECT

    // A tab's event source over a real loader thread, counted as a tab counts.
    struct Source {
        LogParser parser;
        AsyncLoader loader;
        QThread thread;
        EventGenerator generator;

        explicit Source(const QString &path) : parser(path), loader(&parser), generator(&loader)
        {
            loader.moveToThread(&thread);
            connect(&loader, &AsyncLoader::countFinished, &generator, [this](int count) { generator.setCount(count); });
            thread.start();
            QMetaObject::invokeMethod(&loader, "asyncCount", Qt::QueuedConnection);
        }
        ~Source()
        {
            thread.quit();
            thread.wait();
        }
    };

    struct Window {
        DetailsWindow dialog;
        QTableWidget *table;
        QPushButton *prev;
        QPushButton *next;
        QSignalSpy shown;

        Window()
            : table(dialog.findChild<QTableWidget *>(QStringLiteral("eventTable"))),
              prev(dialog.findChild<QPushButton *>(QStringLiteral("prev"))),
              next(dialog.findChild<QPushButton *>(QStringLiteral("next"))),
              shown(&dialog, &DetailsWindow::eventShown)
        {
            dialog.show();
        }

        QString value(const QString &label) const
        {
            const views::Rows rows = views::tableRows(table);
            const int row = views::rowOf(rows, label);
            return row < 0 ? QString() : rows.at(row).second;
        }
        QString shownId() const { return value(QStringLiteral("Message ID")); }

        // Loads and waits for the answer.
        bool show(const EventGenerator &source, int position)
        {
            shown.clear();
            dialog.load(&source, position);
            return waitFor(position);
        }
        bool click(QPushButton *button, int expected)
        {
            shown.clear();
            QTest::mouseClick(button, Qt::LeftButton);
            return waitFor(expected);
        }
        bool waitFor(int position)
        {
            if (shown.isEmpty() && !shown.wait(10000))
                return false;
            return shown.size() == 1 && shown.at(0).at(0).toInt() == position && dialog.position() == position;
        }
    };

    QTemporaryDir m_dir;
    QString m_path;
    std::unique_ptr<Source> m_source;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_path = m_dir.filePath(QStringLiteral("events"));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(journal());
        file.close();
        m_source = std::make_unique<Source>(m_path);
        QTRY_COMPARE(m_source->generator.count(), kEvents);
    }

    void cleanupTestCase() { m_source.reset(); }

    void rowsInLabelOrder()
    {
        Window window;
        QVERIFY(window.table && window.prev && window.next);
        auto *close = window.dialog.findChild<QPushButton *>(QStringLiteral("closeButton"));
        QVERIFY(close);

        QVERIFY(window.show(m_source->generator, 3));
        QCOMPARE(window.shownId(), QStringLiteral("ev-3"));
        QCOMPARE(window.value(QStringLiteral("User")), QStringLiteral("user3"));
        QCOMPARE(window.value(QStringLiteral("Operation success status")), QStringLiteral("failed"));
        const views::Rows rows = views::tableRows(window.table);
        for (int i = 1; i < rows.size(); ++i)
            QVERIFY2(rows.at(i - 1).first <= rows.at(i).first, qPrintable(rows.at(i).first));
        QVERIFY(views::rowOf(rows, QStringLiteral("Event name")) < views::rowOf(rows, QStringLiteral("Message ID")));
        for (int row = 0; row < window.table->rowCount(); ++row) {
            QCOMPARE(window.table->item(row, 0)->textAlignment(), int(Qt::AlignHCenter | Qt::AlignTop));
            QCOMPARE(window.table->item(row, 1)->textAlignment(), int(Qt::AlignLeft | Qt::AlignTop));
        }
        QCOMPARE(window.table->editTriggers(), QAbstractItemView::NoEditTriggers);

        QTest::mouseClick(close, Qt::LeftButton);
        QVERIFY(!window.dialog.isVisible());
    }

    void navigationCrossesPages()
    {
        Window window;
        // Rows 99 and 100 lie on two pages of a hundred.
        QVERIFY(window.show(m_source->generator, 99));
        QCOMPARE(window.shownId(), QStringLiteral("ev-99"));
        QVERIFY(window.prev->isEnabled() && window.next->isEnabled());
        QVERIFY(window.click(window.next, 100));
        QCOMPARE(window.shownId(), QStringLiteral("ev-100"));
        QVERIFY(window.click(window.next, 101));
        QCOMPARE(window.shownId(), QStringLiteral("ev-101"));
        QVERIFY(window.click(window.prev, 100));
        QVERIFY(window.click(window.prev, 99));
        QCOMPARE(window.shownId(), QStringLiteral("ev-99"));
        QCOMPARE(window.value(QStringLiteral("User")), QStringLiteral("user99"));
    }

    void navigationStopsAtBothEnds()
    {
        Window window;
        QVERIFY(window.show(m_source->generator, 1));
        QVERIFY(window.click(window.prev, 0));
        QCOMPARE(window.shownId(), QStringLiteral("ev-0"));
        QVERIFY(!window.prev->isEnabled());
        QVERIFY(window.next->isEnabled());
        window.shown.clear();
        QTest::mouseClick(window.prev, Qt::LeftButton);
        QCOMPARE(window.dialog.position(), 0);
        QCOMPARE(window.shownId(), QStringLiteral("ev-0"));

        QVERIFY(window.show(m_source->generator, kEvents - 2));
        QVERIFY(window.next->isEnabled());
        QVERIFY(window.click(window.next, kEvents - 1));
        QCOMPARE(window.shownId(), QStringLiteral("ev-%1").arg(kEvents - 1));
        QVERIFY(!window.next->isEnabled());
        QVERIFY(window.prev->isEnabled());
        window.shown.clear();
        QTest::mouseClick(window.next, Qt::LeftButton);
        QCOMPARE(window.dialog.position(), kEvents - 1);
        QCOMPARE(window.shownId(), QStringLiteral("ev-%1").arg(kEvents - 1));
        QVERIFY(window.shown.isEmpty());
    }

    void positionsOutsideShowNothing()
    {
        Window window;
        QVERIFY(window.show(m_source->generator, 5));
        QVERIFY(window.table->rowCount() > 0);
        QVERIFY(window.show(m_source->generator, kEvents));
        QCOMPARE(window.table->rowCount(), 0);
        QVERIFY(!window.next->isEnabled());
        QVERIFY(window.show(m_source->generator, -1));
        QCOMPARE(window.table->rowCount(), 0);
        QVERIFY(!window.prev->isEnabled());

        // A source without events.
        EventGenerator empty(&m_source->loader);
        QVERIFY(window.show(empty, 0));
        QCOMPARE(window.table->rowCount(), 0);
        QVERIFY(!window.prev->isEnabled() && !window.next->isEnabled());
    }

    void onlyTheLatestRequestIsShown()
    {
        Window window;
        window.dialog.load(&m_source->generator, 20);
        window.dialog.load(&m_source->generator, 21);
        QVERIFY(window.waitFor(21));
        // Answers come back in the order asked: the one for 20 came first and was
        // dropped (waitFor() saw a single signal).
        QCOMPARE(window.shownId(), QStringLiteral("ev-21"));
    }

    void doubleClickShowsTheWholeValue()
    {
        Window window;
        QVERIFY(window.show(m_source->generator, kLongValueEvent));
        const views::Rows rows = views::tableRows(window.table);
        const int args = views::rowOf(rows, QStringLiteral("Arguments"));
        QVERIFY(args >= 0);
        QVERIFY(!window.dialog.findChild<TextViewWindow *>());
        // The cell shows the start of the value without crowding out the other rows.
        const int user = views::rowOf(rows, QStringLiteral("User"));
        QVERIFY(window.table->rowHeight(args) > 2 * window.table->rowHeight(user));
        QVERIFY(window.table->rowHeight(args) < window.table->viewport()->height() / 2);

        const auto doubleClick = [&window](int row, int column) {
            const QPoint centre = window.table->visualRect(window.table->model()->index(row, column)).center();
            QTest::mouseClick(window.table->viewport(), Qt::LeftButton, {}, centre);
            QTest::mouseDClick(window.table->viewport(), Qt::LeftButton, {}, centre);
        };
        window.table->scrollToItem(window.table->item(args, 1));
        doubleClick(args, 1);
        auto *view = window.dialog.findChild<TextViewWindow *>();
        QVERIFY(view);
        QTRY_VERIFY(view->isVisible());
        QCOMPARE(view->windowTitle(), QStringLiteral("Text view"));
        auto *text = view->findChild<QTextEdit *>(QStringLiteral("dataText"));
        QVERIFY(text && text->isReadOnly());
        QCOMPARE(text->toPlainText(), longValue());

        auto *buttons = view->findChild<QDialogButtonBox *>(QStringLiteral("closeButton"));
        QVERIFY(buttons);
        QTest::mouseClick(buttons->button(QDialogButtonBox::Close), Qt::LeftButton);
        QVERIFY(!view->isVisible());

        // A click on the label cell opens the same window with that row's value.
        window.table->scrollToItem(window.table->item(user, 0));
        doubleClick(user, 0);
        QTRY_VERIFY(view->isVisible());
        QCOMPARE(text->toPlainText(), QStringLiteral("user%1").arg(kLongValueEvent));
        QCOMPARE(window.dialog.findChildren<TextViewWindow *>().size(), 1);
    }

    void keywordIsMarkedInValuesOnly()
    {
        Window window;
        window.dialog.resize(700, 900);
        highlight::usePlainPalette(window.table);
        FilterPack filter;
        filter.checkSearch = true;
        filter.search = QStringLiteral("USER2");
        filter.wholeWord = true;
        window.dialog.setHighlight(filter);
        QVERIFY(window.show(m_source->generator, 2));
        const int user = views::rowOf(views::tableRows(window.table), QStringLiteral("User"));
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>{user});
        QCOMPARE(highlight::markedRows(window.table, 0), QVector<int>());
        QVERIFY(window.click(window.next, 3));
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>());
        QVERIFY(window.click(window.prev, 2));
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>{user});
        // "user2" is not a whole word of "user20".
        QVERIFY(window.show(m_source->generator, 20));
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>());

        filter.wholeWord = false;
        window.dialog.setHighlight(filter);
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>{user});
        filter.caseSensitive = true;
        window.dialog.setHighlight(filter);
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>());
        filter.caseSensitive = false;
        filter.checkSearch = false;
        window.dialog.setHighlight(filter);
        QCOMPARE(highlight::markedRows(window.table, 1), QVector<int>());
    }

    void printsTheEventToPdf()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty()
            || QStandardPaths::findExecutable(QStringLiteral("pdfinfo")).isEmpty())
            QSKIP("pdftotext and pdfinfo (poppler-utils) are needed to read the printout");
        Window window;
        QVERIFY(window.show(m_source->generator, 42));

        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        const QString pdf = m_dir.filePath(QStringLiteral("one.pdf"));
        printer.setOutputFileName(pdf);
        QVERIFY(window.dialog.printTo(&printer));
        QCOMPARE(pageCount(pdf), 1);
        const QString text = run(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")});
        for (const QString &expected : {QStringLiteral("EVENT DETAILS"), QStringLiteral("Message ID"), QStringLiteral("ev-42"),
                                        QStringLiteral("Operation success status"), QStringLiteral("success"),
                                        QStringLiteral("User"), QStringLiteral("user42"), QStringLiteral("Remote shell")})
            QVERIFY2(text.contains(expected), qPrintable(expected + QStringLiteral(" not in:\n") + text));
        // The title comes first.
        QVERIFY(text.trimmed().startsWith(QStringLiteral("EVENT DETAILS")));

        // A value longer than a page goes on over the next pages, to its last word.
        QVERIFY(window.show(m_source->generator, kLongValueEvent));
        const QString longPdf = m_dir.filePath(QStringLiteral("long.pdf"));
        printer.setOutputFileName(longPdf);
        QVERIFY(window.dialog.printTo(&printer));
        QVERIFY(pageCount(longPdf) >= 2);
        const QString longText = run(QStringLiteral("pdftotext"), {longPdf, QStringLiteral("-")});
        for (const QString &expected : {QStringLiteral("HEADMARK"), QStringLiteral("word750"), QStringLiteral("word1499"),
                                        QStringLiteral("TAILMARK"), QStringLiteral("user%1").arg(kLongValueEvent)})
            QVERIFY2(longText.contains(expected), qPrintable(expected));
    }

    void printerFailureGoesToTheDebugLog()
    {
        Window window;
        QVERIFY(window.show(m_source->generator, 0));
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(m_dir.filePath(QStringLiteral("missing/dir/out.pdf")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("QPainter::begin")));
        QTest::ignoreMessage(QtDebugMsg, "Printer Error: Could not link painter to printer. ");
        QVERIFY(!window.dialog.printTo(&printer));
        QVERIFY(window.dialog.isVisible());
    }
};

NIMB_TEST_MAIN_WITH(TestDetailsWindow, QApplication, NIMB_TEST_DATA_DIR "/model/sysroot")
#include "test_detailswindow.moc"
