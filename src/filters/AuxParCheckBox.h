// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QCheckBox>
#include <QPointer>
#include <QVariant>

// The check box of one built-in parameter kind on the filter window, paired with the
// input widget that the kind offers for its value. Kinds that take no part in
// matching (times and type texts) are shown but cannot be checked.
class AuxParCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    // The editor is created for `type` and given the same parent as the box; the
    // caller lays both out.
    AuxParCheckBox(int type, QWidget *parent);

    int type() const { return m_type; }
    QString key() const;
    // The kind's input widget, or null for kinds without one.
    QWidget *editor() const { return m_editor; }
    // Whether the box can take part in a filter at all.
    bool isUsable() const { return m_usable; }

    // The value in the form events carry it (number, bool or text); null when the
    // editor holds nothing.
    QVariant value() const;
    void setValue(const QVariant &value);
    // Clears the editor back to no value (first spin value, "Not selected", empty).
    void clearValue();
    bool valueIsEmpty() const { return !value().isValid(); }

signals:
    // The editor's value changed.
    void valueChanged();

private:
    int m_type;
    bool m_usable;
    QPointer<QWidget> m_editor;
};
