// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDialog>
#include <QPair>
#include <QPointer>
#include <QString>
#include <QVector>

#include <memory>

class Event;
class EventGenerator;
class FilterPack;
class HighlightDelegate;
class QPrinter;
class TextViewWindow;

namespace Ui
{
class DetailsWindow;
}

// One event with all its parameters; steps through the whole counted log of the
// tab it was opened from and prints the event.
class DetailsWindow : public QDialog
{
    Q_OBJECT
public:
    explicit DetailsWindow(QWidget *parent = nullptr);
    ~DetailsWindow() override;

    // Shows the event at a 0-based position of the source's log. The rows arrive
    // when the tab's loader has read the line (eventShown()).
    void load(const EventGenerator *source, int position);
    int position() const { return m_position; }
    // Marks the keyword of the filter of the tab the event comes from.
    void setHighlight(const FilterPack &filter);

    // Paints the shown event onto a printer that is ready; false when the painter
    // could not be attached to it.
    bool printTo(QPrinter *printer) const;

Q_SIGNALS:
    // The rows of the event at `position` are in the table (empty when none came back).
    void eventShown(int position);

private Q_SLOTS:
    void on_prev_clicked();
    void on_next_clicked();
    void on_buttonPrint_clicked();
    void on_closeButton_clicked();
    void on_eventTable_cellDoubleClicked(int row, int column);

private:
    void updateButtons();
    void fill(int position, std::unique_ptr<Event> event);
    // Rows as high as their wrapped text, up to a few lines.
    void fitRows();

    std::unique_ptr<Ui::DetailsWindow> ui;
    QPointer<const EventGenerator> m_source;
    int m_position = -1;
    // Answers to earlier requests are dropped: only the latest one is shown.
    quint64 m_request = 0;
    // The shown event's rows in display order, for printing.
    QVector<QPair<QString, QString>> m_rows;
    TextViewWindow *m_textView = nullptr;
    HighlightDelegate *m_highlight;
};
