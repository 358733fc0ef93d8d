// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "EventsChoiceDialog.h"

// Asks which events to export.
class ExportDialog : public EventsChoiceDialog
{
    Q_OBJECT
public:
    enum ExportFilter {
        AllEvents = EventsChoiceDialog::AllEvents,
        CurrentPage = EventsChoiceDialog::CurrentPage,
        SelectedEvents = EventsChoiceDialog::SelectedEvents,
    };
    Q_ENUM(ExportFilter)

    explicit ExportDialog(QWidget *parent = nullptr);

    ExportFilter filter() const { return ExportFilter(choice()); }

Q_SIGNALS:
    void exportEvents(ExportDialog::ExportFilter filter);

protected:
    void chosen(Choice choice) override;
};

Q_DECLARE_METATYPE(ExportDialog::ExportFilter)
