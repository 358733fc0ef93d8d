// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SearchParametersEditor.h"

#include "ui_SearchParametersEditor.h"

SearchParametersEditor::SearchParametersEditor(QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::SearchParametersEditor>())
{
    ui->setupUi(this);
    connect(ui->registerCheckBox, &QCheckBox::toggled, this, &SearchParametersEditor::optionsChanged);
    connect(ui->wholewordCheckBox, &QCheckBox::toggled, this, &SearchParametersEditor::optionsChanged);
}

SearchParametersEditor::~SearchParametersEditor() = default;

bool SearchParametersEditor::caseSensitive() const
{
    return ui->registerCheckBox->isChecked();
}

bool SearchParametersEditor::wholeWords() const
{
    return ui->wholewordCheckBox->isChecked();
}

void SearchParametersEditor::setCaseSensitive(bool on)
{
    ui->registerCheckBox->setChecked(on);
}

void SearchParametersEditor::setWholeWords(bool on)
{
    ui->wholewordCheckBox->setChecked(on);
}
