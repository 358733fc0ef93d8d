// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QComboBox>
#include <QSet>
#include <QString>

class QStandardItemModel;

// The toolbar's drop-down of optional table columns. Its first row is the caption
// "Show columns", which is all the closed box ever shows; every other row is one
// auxiliary-parameter column with a check mark. Clicking a row toggles its mark and
// leaves the list open, so several columns can be picked in one go; the click that
// opens the list toggles nothing. From the keyboard Space does what the click does,
// and Return closes the list as Escape does.
class ColumnChooser : public QComboBox
{
    Q_OBJECT
public:
    enum Role {
        TypeRole = Qt::UserRole + 1, // built-in parameter type number, -1 for a custom parameter
        NameRole,                    // journal key, or the custom parameter's name
    };

    explicit ColumnChooser(QWidget *parent = nullptr);

    // One column; its dataChanged() tells when a mark changes.
    QStandardItemModel *columnModel() const { return m_model; }

    QSet<int> checkedTypes() const;
    QSet<QString> checkedCustomNames() const;
    // Marks exactly these columns.
    void setChecked(const QSet<int> &types, const QSet<QString> &customNames);

    void showPopup() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addColumns();
    void toggle(int row);

    QStandardItemModel *m_model;
    // The row a button went down on inside the open list; -1 when none did.
    int m_pressedRow = -1;
};
