// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsPrinter.h"

#include "Dictionary.h"
#include "Event.h"
#include "EventsSelection.h"
#include "JournalRows.h"
#include "LineParser.h"
#include "OutputProgress.h"
#include "PrintedFile.h"

#include <QDateTime>
#include <QDebug>
#include <QPainter>
#include <QPrinter>
#include <QTextOption>

#include <algorithm>
#include <array>

namespace
{
constexpr qreal kPaddingX = 5;
constexpr qreal kPaddingY = 3;
// Between the title and the table.
constexpr qreal kSpacing = 20;
constexpr int kColumnCount = 6;
constexpr qint64 kBatchBytes = 1024 * 1024;

using Cells = std::array<QString, kColumnCount>;

Cells cellsOf(const Event &event)
{
    QStringList details;
    event.parameters.forEach([&details](const AuxPar &parameter) {
        if (parameter.isValid())
            details << parameter.label() + QStringLiteral(": ") + parameter.toString();
    });
    return {QString::number(event.number),
            event.time.toString(Qt::ISODate),
            event.sourceText(),
            Dictionary::instance().priorityText(event.priority),
            event.eventName(),
            details.join(QLatin1Char('\n'))};
}
}

// One report being drawn: the painter, where the next row goes and the page count.
class EventsPrinter::Report
{
public:
    Report(QPrinter &printer, const QStringList &titles)
        : m_printer(printer)
        , m_titles(titles)
    {
        // Long words (paths, times) break where they must instead of running out of the cell.
        m_wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        m_wrap.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    }

    // `largestNumber` is the highest row number to come, for the width of its column.
    bool begin(quint32 largestNumber)
    {
        if (!m_painter.begin(&m_printer)) {
            qDebug() << "Printer Error: Could not link painter to printer.";
            return false;
        }
        m_painter.setPen(QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        const QRect page = m_printer.pageLayout().paintRectPixels(m_printer.resolution());
        m_width = page.width();
        m_height = page.height();
        m_pages = 1;

        QFont titleFont(QStringLiteral("Times New Roman"), 10);
        titleFont.setBold(true);
        m_painter.setFont(titleFont);
        const QString title = QDateTime::currentDateTime().toString(QStringLiteral("dd MMMM yyyy hh:mm:ss"))
            + QLatin1Char('\n') + EventsPrinter::tr("LOG REPORT");
        const QRectF titleArea(0, 0, m_width, m_height);
        const QRectF titleRect = m_painter.boundingRect(titleArea, Qt::AlignHCenter | Qt::AlignTop, title);
        m_painter.drawText(titleArea, Qt::AlignHCenter | Qt::AlignTop, title);

        m_painter.setFont(QFont(QStringLiteral("Times New Roman"), 8));
        const QFontMetricsF metrics(m_painter.font(), &m_printer);
        const std::array<qreal, kColumnCount> wanted = contentWidths(metrics, largestNumber);
        qreal used = 0;
        for (int i = 0; i + 1 < kColumnCount; ++i) {
            const QRectF title = metrics.boundingRect(QRectF(), Qt::AlignLeft | Qt::AlignVCenter, m_titles.value(i));
            m_columns[i] = std::max(title.width(), wanted[i]) + 2 * kPaddingX;
            used += m_columns[i];
        }
        m_columns[kColumnCount - 1] = std::max<qreal>(m_width - used, 2 * kPaddingX + 1);
        // The page number stands below the rows, never over one.
        m_footer = metrics.height() + kPaddingY;
        m_y = titleRect.height() + kSpacing;
        drawHeader();
        return true;
    }

    void add(const Event &event)
    {
        const Cells cells = cellsOf(event);
        const qreal height = rowHeight(cells);
        const qreal bottom = m_height - m_footer;
        // A row taller than a whole page stays where it starts, cut at the foot: moving
        // it would not make it fit, only leave an empty page behind.
        const bool fitsOnFreshPage = height <= bottom - m_headerHeight;
        if (m_y + height > bottom && (m_rowsOnPage > 0 || (m_pages == 1 && fitsOnFreshPage))) {
            newPage();
            drawHeader();
        }
        drawRow(cells, height);
        ++m_rowsOnPage;
        ++m_events;
    }

    int events() const { return m_events; }

    int end()
    {
        drawPageNumber();
        m_painter.end();
        return m_pages;
    }

private:
    // What the columns need besides their titles: a title alone leaves a time or a
    // source name broken into pieces of a few letters. Free texts get a share of the
    // page and wrap at word boundaries.
    std::array<qreal, kColumnCount> contentWidths(const QFontMetricsF &metrics, quint32 largestNumber) const
    {
        auto widest = [&metrics](const QStringList &texts) {
            qreal width = 0;
            for (const QString &text : texts)
                width = std::max(width, metrics.horizontalAdvance(text));
            return width;
        };
        const Dictionary &dictionary = Dictionary::instance();
        QStringList sources = dictionary.sources().values();
        sources << dictionary.unrecognizedSourceText();
        std::array<qreal, kColumnCount> widths{};
        widths[0] = widest({QString(QString::number(largestNumber).size(), QLatin1Char('0'))});
        widths[1] = widest({QStringLiteral("0000-00-00T00:00:00+00:00")});
        widths[2] = std::min(widest(sources), m_width * 0.16);
        widths[3] = widest(dictionary.priorities().values());
        widths[4] = m_width * 0.16;
        return widths;
    }

    Cells headerCells() const
    {
        Cells cells;
        for (int i = 0; i < kColumnCount; ++i)
            cells[i] = m_titles.value(i);
        return cells;
    }

    QRectF textRect(qreal x, qreal column, qreal height) const
    {
        return QRectF(x + kPaddingX, m_y + kPaddingY, column - 2 * kPaddingX, height - 2 * kPaddingY);
    }

    qreal rowHeight(const Cells &cells)
    {
        qreal tallest = 0;
        for (int i = 0; i < kColumnCount; ++i) {
            const QRectF measured =
                m_painter.boundingRect(QRectF(0, 0, m_columns[i] - 2 * kPaddingX, 1e6), cells[i], m_wrap);
            tallest = std::max(tallest, measured.height());
        }
        return tallest + 2 * kPaddingY;
    }

    void drawHeader()
    {
        const QFont body = m_painter.font();
        QFont bold = body;
        bold.setBold(true);
        m_painter.setFont(bold);
        const Cells titles = headerCells();
        m_headerHeight = rowHeight(titles);
        drawRow(titles, m_headerHeight);
        m_painter.setFont(body);
    }

    void drawRow(const Cells &cells, qreal height)
    {
        // A row taller than a whole page is cut at the page's foot.
        const qreal visible = std::min(height, m_height - m_footer - m_y);
        m_painter.save();
        m_painter.setClipRect(QRectF(0, m_y, m_width, visible));
        qreal x = 0;
        for (int i = 0; i < kColumnCount; ++i) {
            m_painter.drawText(textRect(x, m_columns[i], height), cells[i], m_wrap);
            m_painter.drawRect(QRectF(x, m_y, m_columns[i], visible));
            x += m_columns[i];
        }
        m_painter.restore();
        m_y += visible;
    }

    void drawPageNumber()
    {
        m_painter.drawText(QRectF(0, m_height - m_footer, m_width, m_footer), Qt::AlignRight | Qt::AlignBottom,
                           QString::number(m_pages));
    }

    void newPage()
    {
        drawPageNumber();
        m_printer.newPage();
        ++m_pages;
        m_y = 0;
        m_rowsOnPage = 0;
    }

    QPrinter &m_printer;
    const QStringList &m_titles;
    QPainter m_painter;
    QTextOption m_wrap;
    std::array<qreal, kColumnCount> m_columns{};
    qreal m_width = 0;
    qreal m_height = 0;
    qreal m_footer = 0;
    qreal m_headerHeight = 0;
    qreal m_y = 0;
    int m_pages = 0;
    int m_rowsOnPage = 0;
    int m_events = 0;
};

EventsPrinter::EventsPrinter(QObject *parent)
    : QObject(parent)
    , m_printer(std::make_unique<QPrinter>(QPrinter::ScreenResolution))
    , m_titles{tr("№"), tr("Date and time"), tr("Source"), tr("Severity"), tr("Event name"), tr("Additional info")}
{
    m_printer->setPageSize(QPageSize(QPageSize::A4));
    m_printer->setPageOrientation(QPageLayout::Landscape);
    m_printer->setPageMargins(QMarginsF(30, 20, 15, 20), QPageLayout::Millimeter);
}

EventsPrinter::~EventsPrinter() = default;

namespace
{
// Marks the printer busy for the lifetime of one job.
class PrintingFlag
{
public:
    explicit PrintingFlag(std::atomic<bool> &flag)
        : m_flag(flag)
    {
        m_flag.store(true);
    }
    ~PrintingFlag() { m_flag.store(false); }
    PrintingFlag(const PrintingFlag &) = delete;
    PrintingFlag &operator=(const PrintingFlag &) = delete;

private:
    std::atomic<bool> &m_flag;
};
}

int EventsPrinter::print(const std::vector<const Event *> &events)
{
    return runJob(nullptr, [&](int *printed) { return drawList(events, printed); });
}

int EventsPrinter::print(const JournalRows &rows, OutputProgress *progress)
{
    return runJob(progress, [&](int *printed) { return drawRows(rows, progress, printed); });
}

int EventsPrinter::print(const EventsSelection &selection, OutputProgress *progress)
{
    return runJob(progress, [&](int *printed) {
        return selection.isJournal() ? drawRows(selection.rows(), progress, printed)
                                     : drawList(selection.events(), printed);
    });
}

int EventsPrinter::runJob(OutputProgress *progress, const std::function<int(int *)> &draw)
{
    std::lock_guard<std::mutex> job(m_jobMutex);
    PrintingFlag printing(m_printing);
    PrintedFile file(*m_printer);
    int printed = 0;
    int pages = file.begin() ? draw(&printed) : 0;
    // A stopped report is one cut short: a file keeps what it held before.
    const bool complete = pages > 0 && !(progress && progress->stopRequested());
    if (!file.finish(complete) && file.toFile())
        pages = 0;
    if (progress) {
        progress->report(1, 1);
        progress->setFailure(file.errorString());
        progress->setOutcome(pages > 0 ? printed : -1);
    }
    return pages;
}

int EventsPrinter::drawList(const std::vector<const Event *> &events, int *printed)
{
    quint32 largest = 0;
    for (const Event *event : events)
        largest = std::max(largest, event ? event->number : 0);
    Report report(*m_printer, m_titles);
    if (!report.begin(largest))
        return 0;
    for (const Event *event : events) {
        if (event)
            report.add(*event);
    }
    *printed = report.events();
    return report.end();
}

int EventsPrinter::drawRows(const JournalRows &rows, OutputProgress *progress, int *printed)
{
    Report report(*m_printer, m_titles);
    if (!report.begin(static_cast<quint32>(rows.size())))
        return 0;
    rows.read(kBatchBytes, [&](JournalRows::Batch &&batch) {
        for (std::size_t i = 0; i < batch.lineCount(); ++i) {
            const std::unique_ptr<Event> event = LineParser::parseLine(batch.line(i));
            if (!event)
                continue;
            event->number = static_cast<quint32>(batch.rows[i]) + 1;
            report.add(*event);
        }
        if (progress)
            progress->report(qint64(batch.rows.back()) + 1, qint64(rows.size()));
        return !(progress && progress->stopRequested());
    });
    *printed = report.events();
    return report.end();
}
