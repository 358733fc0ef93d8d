// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilterHandler.h"

#include "ui_FilterHandler.h"

#include <QPushButton>

FilterHandler::FilterHandler(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::FilterHandler>())
{
    ui->setupUi(this);
    on_filterName_textChanged();
}

FilterHandler::~FilterHandler() = default;

void FilterHandler::setFilterName(const QString &name)
{
    ui->filterName->setText(name);
    ui->filterName->selectAll();
    ui->filterName->setFocus();
}

QString FilterHandler::filterName() const
{
    return ui->filterName->text().trimmed();
}

void FilterHandler::on_buttonBox_accepted()
{
    const QString name = filterName();
    if (name.isEmpty())
        return;
    accept();
    emit saveFilter(name);
}

void FilterHandler::on_filterName_textChanged()
{
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(!filterName().isEmpty());
}
