// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDialog>

#include <memory>

class QRadioButton;

namespace Ui
{
class EventsChoiceDialog;
}

// Asks which events an output command covers: all of them, the current page or the
// selected ones. Window-modal; created once by the main window and reused, it keeps
// the last choice. The export and print dialogs are this dialog under names of their
// own.
class EventsChoiceDialog : public QDialog
{
    Q_OBJECT
public:
    // The values of ExportDialog::ExportFilter and PrinterDialog::PrintFilter.
    enum Choice {
        AllEvents = 0,
        CurrentPage = 1,
        SelectedEvents = 2,
    };

    ~EventsChoiceDialog() override;

    // 0 checks "all", 2 "selected", any other value "current page".
    void setFilter(int filter);
    // Without a selection its choice is offered disabled; when it was the choice,
    // the current page is chosen instead.
    void setSelectionAvailable(bool available);
    Choice choice() const;

protected:
    // The controls are named after `command` ("export": exportAllButton,
    // exportCurrentPageButton, exportSelectedButton, exportButton); `acceptText` is
    // the accepting button's text.
    EventsChoiceDialog(const QString &command, const QString &acceptText, QWidget *parent);

    QRadioButton *allButton() const;
    // The accepting button was clicked; the dialog has hidden itself.
    virtual void chosen(Choice choice) = 0;

private Q_SLOTS:
    void on_acceptButton_clicked();
    void on_cancelButton_clicked();

private:
    std::unique_ptr<Ui::EventsChoiceDialog> ui;
};
