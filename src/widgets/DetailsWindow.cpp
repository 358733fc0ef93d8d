// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "DetailsWindow.h"

#include "PrintedFile.h"

#include "ui_DetailsWindow.h"

#include "Event.h"
#include "EventGenerator.h"
#include "HighlightDelegate.h"
#include "TextViewWindow.h"

#include <QDebug>
#include <QHeaderView>
#include <QPainter>
#include <QDir>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>

#include <algorithm>

namespace
{
constexpr int kTextFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;

int textHeight(QPainter &painter, int width, const QString &text)
{
    return painter.boundingRect(QRect(0, 0, width, 1), kTextFlags, text).height();
}

// The longest start of `text` that fits into `width` x `height` when wrapped, ending
// after white space where one is near, so that a word is not cut between pages.
int fittingLength(QPainter &painter, const QString &text, int width, int height)
{
    int low = 0;
    int high = text.size();
    while (low < high) {
        const int middle = (low + high + 1) / 2;
        if (textHeight(painter, width, text.left(middle)) <= height)
            low = middle;
        else
            high = middle - 1;
    }
    if (low == text.size())
        return low;
    for (int i = low; i > low / 2; --i) {
        if (text.at(i - 1).isSpace())
            return i;
    }
    return low;
}
}

DetailsWindow::DetailsWindow(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::DetailsWindow>()), m_highlight(new HighlightDelegate(this))
{
    ui->setupUi(this);
    // Labels are not searched by the filter; only the values can hold its keyword.
    ui->eventTable->setItemDelegateForColumn(1, m_highlight);
    ui->eventTable->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    connect(ui->eventTable->horizontalHeader(), &QHeaderView::sectionResized, this, &DetailsWindow::fitRows);
    updateButtons();
}

DetailsWindow::~DetailsWindow() = default;

void DetailsWindow::load(const EventGenerator *source, int position)
{
    m_source = source;
    m_position = position;
    const quint64 request = ++m_request;
    updateButtons();

    ui->eventTable->clearContents();
    ui->eventTable->setRowCount(0);
    m_rows.clear();

    const int count = source ? source->count() : 0;
    if (position < 0 || position >= count) {
        Q_EMIT eventShown(position);
        return;
    }
    source->requestEvent(position, this, [this, request](int loaded, std::unique_ptr<Event> event) {
        if (request == m_request)
            fill(loaded, std::move(event));
    });
}

void DetailsWindow::setHighlight(const FilterPack &filter)
{
    m_highlight->setMatcher(KeywordMatcher(filter));
    ui->eventTable->viewport()->update();
}

void DetailsWindow::fill(int position, std::unique_ptr<Event> event)
{
    if (event) {
        QVector<QPair<QString, QString>> rows = event->parameterList();
        event.reset();
        std::stable_sort(rows.begin(), rows.end(),
                         [](const QPair<QString, QString> &a, const QPair<QString, QString> &b) {
                             return a.first < b.first;
                         });
        ui->eventTable->setRowCount(rows.size());
        for (int i = 0; i < rows.size(); ++i) {
            auto *label = new QTableWidgetItem(rows.at(i).first);
            label->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
            auto *value = new QTableWidgetItem(rows.at(i).second);
            value->setTextAlignment(Qt::AlignLeft | Qt::AlignTop);
            ui->eventTable->setItem(i, 0, label);
            ui->eventTable->setItem(i, 1, value);
        }
        m_rows = std::move(rows);
        fitRows();
    }
    Q_EMIT eventShown(position);
}

void DetailsWindow::fitRows()
{
    // A value of many lines would fill the window; the rest of it is a double click away.
    constexpr int kMaxLines = 6;
    QTableWidget *table = ui->eventTable;
    const int maxHeight = kMaxLines * table->fontMetrics().lineSpacing() + 8;
    table->resizeRowsToContents();
    for (int row = 0; row < table->rowCount(); ++row) {
        const bool cut = table->rowHeight(row) > maxHeight;
        if (cut)
            table->setRowHeight(row, maxHeight);
        if (QTableWidgetItem *value = table->item(row, 1))
            value->setToolTip(cut ? tr("Double-click to read the whole value") : QString());
    }
}

void DetailsWindow::updateButtons()
{
    const int count = m_source ? m_source->count() : 0;
    ui->prev->setEnabled(m_position >= 1);
    ui->next->setEnabled(m_position < count - 1);
}

void DetailsWindow::on_prev_clicked()
{
    if (m_source && m_position >= 1)
        load(m_source, m_position - 1);
}

void DetailsWindow::on_next_clicked()
{
    if (m_source && m_position < m_source->count() - 1)
        load(m_source, m_position + 1);
}

void DetailsWindow::on_buttonPrint_clicked()
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    // A file is written whole or not at all, and a failure is told.
    QString error;
    if (!PrintedFile::print(printer, [&] { return printTo(&printer); }, &error) && !error.isEmpty())
        QMessageBox::critical(this, windowTitle(),
                              tr("The event could not be printed to %1.").arg(QDir::toNativeSeparators(printer.outputFileName())),
                              QMessageBox::Ok);
}

void DetailsWindow::on_closeButton_clicked()
{
    close();
}

void DetailsWindow::on_eventTable_cellDoubleClicked(int row, int column)
{
    Q_UNUSED(column)
    const QTableWidgetItem *value = ui->eventTable->item(row, 1);
    if (!value)
        return;
    if (!m_textView)
        m_textView = new TextViewWindow(this);
    m_textView->showText(value->text());
}

bool DetailsWindow::printTo(QPrinter *printer) const
{
    QPainter painter;
    if (!painter.begin(printer)) {
        qDebug("Printer Error: Could not link painter to printer. ");
        return false;
    }
    // The painter's origin is the top left corner of the printable area.
    const QRectF page = printer->pageRect(QPrinter::DevicePixel);
    const int width = int(page.width());
    const int height = int(page.height());

    painter.setFont(QFont(QStringLiteral("Times New Roman"), 14, QFont::Bold));
    const QString title = tr("EVENT DETAILS");
    const QRect titleRect = painter.boundingRect(QRect(0, 0, width, height), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, title);
    painter.drawText(QRect(0, 0, width, titleRect.height()), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, title);

    painter.setFont(QFont(QStringLiteral("Times New Roman"), 14, QFont::Normal));
    const int lineSpacing = painter.fontMetrics().lineSpacing();
    const int rowSpacing = lineSpacing / 3;
    const int labelWidth = width * 35 / 100;
    const int valueLeft = labelWidth + lineSpacing;
    const int valueWidth = std::max(1, width - valueLeft);
    int y = titleRect.height() + lineSpacing;

    for (const auto &row : m_rows) {
        const int labelHeight = textHeight(painter, labelWidth, row.first);
        const int valueHeight = textHeight(painter, valueWidth, row.second);
        const int rowHeight = std::max(labelHeight, valueHeight);
        // A row that fits on a page is not split; a longer one starts where it is,
        // unless only a few lines are left.
        const bool fitsOnPage = rowHeight <= height;
        if (y > 0 && y + rowHeight > height && (fitsOnPage || y + 3 * lineSpacing > height)) {
            printer->newPage();
            y = 0;
        }
        painter.drawText(QRect(0, y, labelWidth, labelHeight), kTextFlags, row.first);
        if (y + valueHeight <= height) {
            painter.drawText(QRect(valueLeft, y, valueWidth, valueHeight), kTextFlags, row.second);
            y += rowHeight + rowSpacing;
            continue;
        }
        // A value longer than a page goes on over the following pages.
        QString rest = row.second;
        while (!rest.isEmpty()) {
            int length = fittingLength(painter, rest, valueWidth, height - y);
            if (length == 0 && y > 0) {
                printer->newPage();
                y = 0;
                continue;
            }
            length = std::max(length, 1);
            const QString part = rest.left(length);
            const int partHeight = textHeight(painter, valueWidth, part);
            painter.drawText(QRect(valueLeft, y, valueWidth, partHeight), kTextFlags, part);
            rest.remove(0, length);
            if (rest.isEmpty()) {
                y += std::max(partHeight, labelHeight) + rowSpacing;
            } else {
                printer->newPage();
                y = 0;
            }
        }
    }
    return painter.end();
}
