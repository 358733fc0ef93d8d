// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "ExportDialog.h"

ExportDialog::ExportDialog(QWidget *parent)
    : EventsChoiceDialog(QStringLiteral("export"), tr("Export"), parent)
{
    setWindowTitle(tr("Export events"));
}

void ExportDialog::chosen(Choice choice)
{
    Q_EMIT exportEvents(ExportFilter(choice));
}
