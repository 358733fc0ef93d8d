// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class FilterHandler;
}

// Asks for the name under which the filter window saves a filter.
class FilterHandler : public QDialog
{
    Q_OBJECT
public:
    explicit FilterHandler(QWidget *parent = nullptr);
    ~FilterHandler() override;

    // Puts a name in the field, selected so that typing replaces it.
    void setFilterName(const QString &name);
    QString filterName() const;

signals:
    void saveFilter(const QString &name);

private slots:
    void on_buttonBox_accepted();
    void on_filterName_textChanged();

private:
    std::unique_ptr<Ui::FilterHandler> ui;
};
