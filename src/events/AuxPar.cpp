// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxPar.h"

#include <QLineEdit>

AuxPar::AuxPar(const QVariant &value)
    : m_value(value)
{
}

AuxPar::~AuxPar() = default;

QVariant AuxPar::editorValue(const QWidget *editor)
{
    if (const auto *lineEdit = qobject_cast<const QLineEdit *>(editor))
        return QVariant(lineEdit->text());
    return QVariant();
}

void AuxPar::setEditorValue(QWidget *editor, const QVariant &value)
{
    if (auto *lineEdit = qobject_cast<QLineEdit *>(editor))
        lineEdit->setText(value.toString());
}
