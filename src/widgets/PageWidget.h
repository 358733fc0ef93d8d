// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QWidget>

#include <memory>

namespace Ui
{
class PageWidget;
}

// The pager under the table: first, previous, page number, next, last.
class PageWidget : public QWidget
{
    Q_OBJECT
public:
    explicit PageWidget(QWidget *parent = nullptr);
    ~PageWidget() override;

    void setPagesCount(int n);
    int pagesCount() const;
    void setPage(int p);
    int page() const;

Q_SIGNALS:
    void pageChanged(int page);

private Q_SLOTS:
    void on_buttonFirst_clicked();
    void on_buttonPrev_clicked();
    void on_buttonNext_clicked();
    void on_buttonLast_clicked();

private:
    void updateButtons();

    std::unique_ptr<Ui::PageWidget> ui;
};
