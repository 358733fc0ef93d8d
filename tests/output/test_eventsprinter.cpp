// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsPrinter.h"
#include "EventsSelection.h"
#include "FailingTargets.h"
#include "JournalRows.h"
#include "LogParser.h"
#include "NimbTestMain.h"
#include "OutputFixture.h"
#include "OutputProgress.h"

#include <QApplication>
#include <QDir>
#include <QPrinter>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QThread>

namespace
{
// Every event carries tokens in its first and last lines of additional information
// and in its name; every 40th has a parameter of many lines, taller than what is
// left of most pages.
QByteArray reportJournal(int events)
{
    QByteArray bytes;
    for (int i = 0; i < events; ++i) {
        QByteArray args = "word " + QByteArray::number(i);
        if (i % 40 == 7) {
            for (int k = 0; k < 28; ++k)
                args += "\\ntall line " + QByteArray::number(k);
        }
        bytes += output::line("\"message_id\":\"m" + QByteArray::number(i) + "\",\"name_en\":\"N" + QByteArray::number(i)
                                  + "x\",\"account_type\":\"FIRST" + QByteArray::number(i) + "X\",\"args\":\"" + args
                                  + "\",\"user\":\"u\",\"vendor_id\":\"LAST" + QByteArray::number(i) + "X\"",
                              i % 3 ? "notice" : "error", "velmo-auth", i)
            + '\n';
    }
    return bytes;
}

struct Pdf {
    int pages = 0;
    QStringList pageTexts;
};

Pdf readPdf(const QString &path)
{
    Pdf pdf;
    const output::Run info = output::run(QStringLiteral("pdfinfo"), {path});
    const QRegularExpressionMatch pages = QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)")).match(QString::fromUtf8(info.out));
    pdf.pages = pages.hasMatch() ? pages.captured(1).toInt() : -1;
    const output::Run text = output::run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    pdf.pageTexts = QString::fromUtf8(text.out).split(QLatin1Char('\f'));
    // pdftotext ends the last page with a form feed too.
    if (!pdf.pageTexts.isEmpty() && pdf.pageTexts.last().trimmed().isEmpty())
        pdf.pageTexts.removeLast();
    return pdf;
}

QString lastLine(const QString &page)
{
    QStringList lines = page.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    return lines.isEmpty() ? QString() : lines.last();
}

// The page (0-based) whose text holds the token as a whole word; -1 when none, -2
// when several do.
int pageOf(const Pdf &pdf, const QString &token)
{
    const QRegularExpression word(QStringLiteral("\\b%1\\b").arg(token));
    int found = -1;
    for (int i = 0; i < pdf.pageTexts.size(); ++i) {
        if (pdf.pageTexts[i].contains(word))
            found = found == -1 ? i : -2;
    }
    return found;
}

// Runs the job on a thread of its own, as the main window does.
int printOnThread(EventsPrinter &printer, const EventsSelection &selection, OutputProgress *progress = nullptr)
{
    int pages = -1;
    std::unique_ptr<QThread> thread(QThread::create([&] { pages = printer.print(selection, progress); }));
    thread->start();
    thread->wait();
    return pages;
}
}

class TestEventsPrinter : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    void toPdf(EventsPrinter &printer, const QString &path)
    {
        printer.printer()->setOutputFormat(QPrinter::PdfFormat);
        printer.printer()->setOutputFileName(path);
    }

private slots:
    void printerSetUp()
    {
        EventsPrinter printer;
        QPrinter *device = printer.printer();
        QCOMPARE(device->pageLayout().pageSize().id(), QPageSize::A4);
        QCOMPARE(device->pageLayout().orientation(), QPageLayout::Landscape);
        QCOMPARE(device->pageLayout().margins(QPageLayout::Millimeter), QMarginsF(30, 20, 15, 20));
        QCOMPARE(printer.columnTitles(),
                 QStringList({"№", "Date and time", "Source", "Severity", "Event name", "Additional info"}));
    }

    void aReportOfHundredsOfEvents()
    {
        const int count = 300;
        const QString journal = m_dir.filePath("report.log");
        output::write(journal, reportJournal(count));
        LogParser parser(journal);
        QCOMPARE(parser.count(), count);
        auto loaded = parser.loadAll();
        EventsPrinter printer;
        const QString listPdf = m_dir.filePath("list.pdf");
        toPdf(printer, listPdf);
        const QDate before = QDate::currentDate();
        const int drawn =
            printOnThread(printer, EventsSelection::loaded(std::vector<Event *>(loaded.second), nullptr));
        qDeleteAll(loaded.second);
        const QDate after = QDate::currentDate();

        // Looked at by eye: the build tree keeps the first page.
        const QString shots = QStringLiteral(QT_TESTCASE_BUILDDIR "/screenshots");
        QDir().mkpath(shots);
        const output::Run png = output::run(QStringLiteral("pdftoppm"),
                                            {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("110"),
                                             QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
                                             QStringLiteral("1"), QStringLiteral("-singlefile"), listPdf,
                                             shots + QStringLiteral("/report-page1")});
        QVERIFY(png.finished && png.exitCode == 0);
        QVERIFY(QFile::exists(shots + QStringLiteral("/report-page1.png")));

        const Pdf pdf = readPdf(listPdf);
        QVERIFY2(pdf.pages > 5, qPrintable(QString::number(pdf.pages)));
        QCOMPARE(pdf.pages, drawn);
        QCOMPARE(pdf.pageTexts.size(), pdf.pages);
        QVERIFY(pdf.pageTexts[0].contains(QLatin1String("LOG REPORT")));
        const QString format = QStringLiteral("dd MMMM yyyy");
        QVERIFY(pdf.pageTexts[0].contains(before.toString(format)) || pdf.pageTexts[0].contains(after.toString(format)));
        for (int page = 0; page < pdf.pages; ++page) {
            // The number alone on the last line, at the right.
            const QString last = lastLine(pdf.pageTexts[page]);
            QCOMPARE(last.trimmed(), QString::number(page + 1));
            int widest = 0;
            for (const QString &line : pdf.pageTexts[page].split(QLatin1Char('\n')))
                widest = std::max(widest, line.size());
            QVERIFY2(last.indexOf(last.trimmed()) > widest * 8 / 10, qPrintable(last));
            QVERIFY(pdf.pageTexts[page].contains(QLatin1String("Additional info")));
        }
        int lastPage = 0;
        for (int i = 0; i < count; ++i) {
            const int page = pageOf(pdf, QStringLiteral("FIRST%1X").arg(i));
            QVERIFY2(page >= 0, qPrintable(QString::number(i)));
            QCOMPARE(pageOf(pdf, QStringLiteral("LAST%1X").arg(i)), page);
            QCOMPARE(pageOf(pdf, QStringLiteral("N%1x").arg(i)), page);
            QVERIFY(page >= lastPage);
            lastPage = page;
        }

        // The whole journal, streamed from its rows, gives the same report.
        const QString streamPdf = m_dir.filePath("stream.pdf");
        toPdf(printer, streamPdf);
        OutputProgress progress;
        QSignalSpy percent(&progress, &OutputProgress::percentChanged);
        QCOMPARE(printOnThread(printer, EventsSelection::journalRows(JournalRows(journal, parser.positions())), &progress),
                 drawn);
        QVERIFY(!percent.isEmpty() && percent.last().at(0).toInt() == 100);
        QCOMPARE(progress.outcome(), count);
        const Pdf streamed = readPdf(streamPdf);
        QCOMPARE(streamed.pages, pdf.pages);
        // Apart from the title's time.
        for (int page = 1; page < pdf.pages; ++page)
            QCOMPARE(streamed.pageTexts[page], pdf.pageTexts[page]);
    }

    void anEmptyReport()
    {
        EventsPrinter printer;
        const QString path = m_dir.filePath("empty.pdf");
        toPdf(printer, path);
        QCOMPARE(printOnThread(printer, EventsSelection::loaded(QList<const Event *>(), nullptr)), 1);
        const Pdf pdf = readPdf(path);
        QCOMPARE(pdf.pages, 1);
        QVERIFY(pdf.pageTexts[0].contains(QLatin1String("LOG REPORT")));
        QVERIFY(pdf.pageTexts[0].contains(QLatin1String("Date and time")));
        QCOMPARE(lastLine(pdf.pageTexts[0]).trimmed(), QStringLiteral("1"));
    }

    // A printout into a file that cannot be written leaves the file as it was and
    // nothing beside it, and the job has the reason; a complete one replaces the file.
    void printingIntoAFileThatFails()
    {
        const QString folder = m_dir.filePath("targets");
        QVERIFY(QDir().mkpath(folder + "/folder.pdf/inside"));
        const QString earlier = folder + "/earlier.pdf";
        output::write(earlier, "earlier printout");
        const struct {
            QString target;
            QString reason;
            bool cutShort;
        } cases[] = {
            {folder + "/folder.pdf", QSaveFile::tr("Filename refers to a directory"), false},
            {earlier, QStringLiteral("The printout was cut short while it was being drawn."), true},
        };
        for (const auto &c : cases) {
            EventsPrinter printer;
            toPdf(printer, c.target);
            const QByteArray state = failing::stateOf(c.target);
            const QStringList beside = failing::besides(c.target);
            if (!c.cutShort)
                QCOMPARE(printer.print(std::vector<const Event *>()), 0);
            OutputProgress progress;
            {
                std::unique_ptr<failing::FileSizeLimit> limit;
                if (c.cutShort)
                    limit = std::make_unique<failing::FileSizeLimit>(2000);
                QCOMPARE(printOnThread(printer, EventsSelection::loaded(QList<const Event *>(), nullptr), &progress), 0);
            }
            QCOMPARE(progress.outcome(), -1);
            QCOMPARE(progress.failure(), c.reason);
            QCOMPARE(failing::stateOf(c.target), state);
            QCOMPARE(failing::besides(c.target), beside);
            QCOMPARE(printer.printer()->outputFileName(), c.target);
        }

        EventsPrinter printer;
        toPdf(printer, earlier);
        QCOMPARE(printOnThread(printer, EventsSelection::loaded(QList<const Event *>(), nullptr)), 1);
        QCOMPARE(readPdf(earlier).pages, 1);
        QCOMPARE(failing::besides(earlier), QStringList({"earlier.pdf"}));
    }
};

NIMB_TEST_MAIN_WITH(TestEventsPrinter, QApplication, NIMB_DEMO_DIR "/sysroot")
#include "test_eventsprinter.moc"
