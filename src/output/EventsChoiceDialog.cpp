// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsChoiceDialog.h"

#include "ui_EventsChoiceDialog.h"

EventsChoiceDialog::EventsChoiceDialog(const QString &command, const QString &acceptText, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::EventsChoiceDialog>())
{
    // The form's slots are bound by its own names; the names the dialog is known by
    // come after.
    ui->setupUi(this);
    ui->allButton->setObjectName(command + QStringLiteral("AllButton"));
    ui->currentPageButton->setObjectName(command + QStringLiteral("CurrentPageButton"));
    ui->selectedButton->setObjectName(command + QStringLiteral("SelectedButton"));
    ui->acceptButton->setObjectName(command + QStringLiteral("Button"));
    ui->acceptButton->setText(acceptText);
}

EventsChoiceDialog::~EventsChoiceDialog() = default;

void EventsChoiceDialog::setFilter(int filter)
{
    if (filter == AllEvents)
        ui->allButton->setChecked(true);
    else if (filter == SelectedEvents)
        ui->selectedButton->setChecked(true);
    else
        ui->currentPageButton->setChecked(true);
}

void EventsChoiceDialog::setSelectionAvailable(bool available)
{
    ui->selectedButton->setEnabled(available);
    if (!available && ui->selectedButton->isChecked())
        ui->currentPageButton->setChecked(true);
}

EventsChoiceDialog::Choice EventsChoiceDialog::choice() const
{
    if (ui->currentPageButton->isChecked())
        return CurrentPage;
    if (ui->selectedButton->isChecked())
        return SelectedEvents;
    return AllEvents;
}

QRadioButton *EventsChoiceDialog::allButton() const
{
    return ui->allButton;
}

void EventsChoiceDialog::on_acceptButton_clicked()
{
    hide();
    chosen(choice());
}

void EventsChoiceDialog::on_cancelButton_clicked()
{
    close();
}
