// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParCustomCheckBox.h"

#include <QLineEdit>

AuxParCustomCheckBox::AuxParCustomCheckBox(const QString &name, const QString &label, QWidget *parent)
    : QCheckBox(label.isEmpty() ? name : label, parent), m_name(name), m_editor(new QLineEdit(parent))
{
    setObjectName(QStringLiteral("check_") + name);
    setToolTip(name);
    m_editor->setObjectName(name);
    m_editor->setToolTip(text());
    connect(m_editor, &QLineEdit::textChanged, this, &AuxParCustomCheckBox::valueChanged);
}

QVariant AuxParCustomCheckBox::value() const
{
    const QString text = m_editor->text();
    return text.isEmpty() ? QVariant() : QVariant(text);
}

void AuxParCustomCheckBox::setValue(const QVariant &value)
{
    m_editor->setText(value.toString());
}

void AuxParCustomCheckBox::clearValue()
{
    m_editor->clear();
}
