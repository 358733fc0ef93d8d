// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "EventsChoiceDialog.h"

// Asks which events to print; choosing all of them first shows a warning.
class PrinterDialog : public EventsChoiceDialog
{
    Q_OBJECT
public:
    enum PrintFilter {
        AllEvents = EventsChoiceDialog::AllEvents,
        CurrentPage = EventsChoiceDialog::CurrentPage,
        SelectedEvents = EventsChoiceDialog::SelectedEvents,
    };
    Q_ENUM(PrintFilter)

    explicit PrinterDialog(QWidget *parent = nullptr);

    PrintFilter filter() const { return PrintFilter(choice()); }

Q_SIGNALS:
    void printEvents(PrinterDialog::PrintFilter filter);

protected:
    void chosen(Choice choice) override;

private Q_SLOTS:
    void on_printAllButton_clicked();
};

Q_DECLARE_METATYPE(PrinterDialog::PrintFilter)
