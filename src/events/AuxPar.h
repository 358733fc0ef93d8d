// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QString>
#include <QVariant>

class QWidget;

// One typed auxiliary parameter of an event. The family classes decide how a value
// is validated, rendered and edited; the leaf classes only name the kind.
class AuxPar
{
public:
    explicit AuxPar(const QVariant &value = QVariant());
    virtual ~AuxPar();

    virtual bool isValid() const = 0;
    virtual int typeId() const = 0;
    virtual QString key() const = 0;
    virtual QString label() const = 0;
    virtual QString toString() const = 0;
    virtual AuxPar *clone() const = 0;
    virtual QWidget *createEditor() const = 0;

    const QVariant &value() const { return m_value; }
    void setValue(const QVariant &value) { m_value = value; }

    // Line-edit editors: the text as a variant, or a null variant for other widgets.
    static QVariant editorValue(const QWidget *editor);
    static void setEditorValue(QWidget *editor, const QVariant &value);

protected:
    AuxPar(const AuxPar &) = default;
    AuxPar &operator=(const AuxPar &) = default;

    QVariant m_value;
};
