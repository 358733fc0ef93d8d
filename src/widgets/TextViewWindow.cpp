// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "TextViewWindow.h"

#include "ui_TextViewWindow.h"

TextViewWindow::TextViewWindow(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::TextViewWindow>())
{
    ui->setupUi(this);
    connect(ui->closeButton, &QDialogButtonBox::accepted, this, &QWidget::close);
    connect(ui->closeButton, &QDialogButtonBox::rejected, this, &QWidget::close);
}

TextViewWindow::~TextViewWindow() = default;

void TextViewWindow::showText(const QString &text)
{
    // Journal values are data, never markup.
    ui->dataText->setPlainText(text);
    show();
    raise();
    activateWindow();
}
