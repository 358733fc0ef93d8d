// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "LoadWarning.h"

#include "ui_LoadWarning.h"

LoadWarning::LoadWarning(QWidget *parent) : QWidget(parent), ui(std::make_unique<Ui::LoadWarning>())
{
    ui->setupUi(this);
    m_loadingText = ui->label->text();
    // Covers the table, so it paints its own background.
    setAutoFillBackground(true);
    hide();
}

LoadWarning::~LoadWarning() = default;

void LoadWarning::setPercent(int percent)
{
    ui->percentLabel->setText(percent > 0 && percent < 100 ? tr("%1% read").arg(percent) : QString());
}

void LoadWarning::setText(const QString &text)
{
    ui->label->setText(text.isEmpty() ? m_loadingText : text);
    ui->percentLabel->clear();
}

void LoadWarning::placeOver(int x, int y, int width, int height)
{
    setGeometry(x, y, width, height);
    raise();
}
