// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParCheckBox.h"

#include "AuxParRegistry.h"
#include "ComboBoxDelegate.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

AuxParCheckBox::AuxParCheckBox(int type, QWidget *parent)
    : QCheckBox(parent), m_type(type), m_usable(!AuxParRegistry::isExcludedFromMatching(type))
{
    const AuxPar *prototype = AuxParRegistry::instance().prototype(type);
    setText(prototype->label());
    setObjectName(QStringLiteral("check_") + prototype->key());
    setToolTip(prototype->key());
    m_editor = prototype->createEditor();
    if (m_editor) {
        m_editor->setParent(parent);
        m_editor->setObjectName(prototype->key());
        m_editor->setToolTip(prototype->label());
    }
    if (auto *combo = qobject_cast<QComboBox *>(m_editor)) {
        ComboBoxDelegate::prepare(combo);
        connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &AuxParCheckBox::valueChanged);
    } else if (auto *spin = qobject_cast<QSpinBox *>(m_editor)) {
        connect(spin, &QSpinBox::textChanged, this, &AuxParCheckBox::valueChanged);
    } else if (auto *line = qobject_cast<QLineEdit *>(m_editor)) {
        connect(line, &QLineEdit::textChanged, this, &AuxParCheckBox::valueChanged);
    }
    if (!m_usable) {
        setEnabled(false);
        setToolTip(tr("%1: not used for filtering").arg(prototype->key()));
        if (m_editor)
            m_editor->setEnabled(false);
    }
}

QString AuxParCheckBox::key() const
{
    return AuxParRegistry::instance().prototype(m_type)->key();
}

QVariant AuxParCheckBox::value() const
{
    if (auto *combo = qobject_cast<QComboBox *>(m_editor))
        return ComboBoxDelegate::isNotSelected(combo) ? QVariant() : combo->currentData();
    if (auto *spin = qobject_cast<QSpinBox *>(m_editor))
        return spin->cleanText().isEmpty() ? QVariant() : QVariant(spin->value());
    const QString text = AuxPar::editorValue(m_editor).toString();
    if (text.isEmpty())
        return QVariant();
    if (kAuxParKinds[m_type].family == AuxParFamily::LongLong) {
        // Events carry these as numbers; text that is no number can match nothing anyway.
        bool ok = false;
        const qlonglong number = text.toLongLong(&ok);
        if (ok)
            return QVariant(number);
    }
    return QVariant(text);
}

void AuxParCheckBox::setValue(const QVariant &value)
{
    if (auto *combo = qobject_cast<QComboBox *>(m_editor)) {
        const int index = value.isValid() ? combo->findData(value) : -1;
        combo->setCurrentIndex(index > 0 ? index : 0);
    } else if (auto *spin = qobject_cast<QSpinBox *>(m_editor)) {
        spin->setValue(value.toInt());
    } else {
        AuxPar::setEditorValue(m_editor, value);
    }
}

void AuxParCheckBox::clearValue()
{
    if (auto *combo = qobject_cast<QComboBox *>(m_editor))
        combo->setCurrentIndex(0);
    else if (auto *spin = qobject_cast<QSpinBox *>(m_editor))
        spin->setValue(spin->minimum());
    else
        AuxPar::setEditorValue(m_editor, QString());
}
