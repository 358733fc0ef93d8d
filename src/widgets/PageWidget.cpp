// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "PageWidget.h"

#include "ui_PageWidget.h"

PageWidget::PageWidget(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::PageWidget>())
{
    ui->setupUi(this);
    connect(ui->pageNumber, qOverload<int>(&QSpinBox::valueChanged), this, &PageWidget::pageChanged);
    connect(ui->pageNumber, qOverload<int>(&QSpinBox::valueChanged), this, &PageWidget::updateButtons);
    updateButtons();
}

PageWidget::~PageWidget() = default;

void PageWidget::setPagesCount(int n)
{
    if (ui->pageNumber->maximum() == n)
        return;
    ui->pageNumber->setMaximum(n);
    ui->pagesTotal->setText(tr(" of %1").arg(n));
    updateButtons();
}

int PageWidget::pagesCount() const
{
    return ui->pageNumber->maximum();
}

void PageWidget::setPage(int p)
{
    if (ui->pageNumber->value() == p)
        return;
    ui->pageNumber->setValue(p);
    updateButtons();
}

int PageWidget::page() const
{
    return ui->pageNumber->value();
}

void PageWidget::on_buttonFirst_clicked()
{
    if (ui->pageNumber->value() != ui->pageNumber->minimum())
        ui->pageNumber->setValue(ui->pageNumber->minimum());
}

void PageWidget::on_buttonPrev_clicked()
{
    if (ui->pageNumber->value() != ui->pageNumber->minimum())
        ui->pageNumber->setValue(ui->pageNumber->value() - 1);
}

void PageWidget::on_buttonNext_clicked()
{
    if (ui->pageNumber->value() != ui->pageNumber->maximum())
        ui->pageNumber->setValue(ui->pageNumber->value() + 1);
}

void PageWidget::on_buttonLast_clicked()
{
    // One past the end on purpose: the spin box clamps it to the last page.
    if (ui->pageNumber->value() != ui->pageNumber->maximum())
        ui->pageNumber->setValue(ui->pageNumber->maximum() + 1);
}

void PageWidget::updateButtons()
{
    const int value = ui->pageNumber->value();
    ui->pageNumber->setEnabled(true);
    const bool atFirst = value == ui->pageNumber->minimum();
    const bool atLast = value == ui->pageNumber->maximum();
    ui->buttonFirst->setEnabled(!atFirst);
    ui->buttonPrev->setEnabled(!atFirst);
    ui->buttonNext->setEnabled(!atLast);
    ui->buttonLast->setEnabled(!atLast);
}
