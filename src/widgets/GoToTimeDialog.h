// SPDX-FileCopyrightText: 2026 The trelvik developers
// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDateTime>
#include <QDialog>

#include <memory>

namespace Ui
{
class GoToTimeDialog;
}

// Asks for the date and time whose first event the tab is to show.
class GoToTimeDialog : public QDialog
{
    Q_OBJECT
public:
    explicit GoToTimeDialog(QWidget *parent = nullptr);
    ~GoToTimeDialog() override;

    // Local time, to the second.
    QDateTime dateTime() const;
    void setDateTime(const QDateTime &time);

private:
    std::unique_ptr<Ui::GoToTimeDialog> ui;
};
