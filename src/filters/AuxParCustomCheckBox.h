// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QCheckBox>
#include <QPointer>
#include <QVariant>

#include <QLineEdit>

// The check box of one site-declared custom parameter, with a line edit for its
// value; custom values are compared as the text the journal gives them.
class AuxParCustomCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    AuxParCustomCheckBox(const QString &name, const QString &label, QWidget *parent);

    QString name() const { return m_name; }
    QLineEdit *editor() const { return m_editor; }

    // The text as a variant; null when empty.
    QVariant value() const;
    void setValue(const QVariant &value);
    void clearValue();
    bool valueIsEmpty() const { return !value().isValid(); }

signals:
    void valueChanged();

private:
    QString m_name;
    QPointer<QLineEdit> m_editor;
};
