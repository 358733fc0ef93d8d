// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "PrinterDialog.h"

#include <QMessageBox>
#include <QRadioButton>

PrinterDialog::PrinterDialog(QWidget *parent)
    : EventsChoiceDialog(QStringLiteral("print"), tr("Print"), parent)
{
    setWindowTitle(tr("Print events"));
    connect(allButton(), &QRadioButton::clicked, this, &PrinterDialog::on_printAllButton_clicked);
}

void PrinterDialog::chosen(Choice choice)
{
    Q_EMIT printEvents(PrintFilter(choice));
}

void PrinterDialog::on_printAllButton_clicked()
{
    QMessageBox::warning(this, tr("Printing all messages"),
                         tr("Attention!\nTrying to print whole journal can cause lack of memory and undefined "
                            "behavior of printing subsystem, this application or other components."),
                         QMessageBox::Ok);
}
