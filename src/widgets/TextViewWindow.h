// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class TextViewWindow;
}

// A read-only text too long for a table cell.
class TextViewWindow : public QDialog
{
    Q_OBJECT
public:
    explicit TextViewWindow(QWidget *parent = nullptr);
    ~TextViewWindow() override;

    // Sets the text and shows the window.
    void showText(const QString &text);

private:
    std::unique_ptr<Ui::TextViewWindow> ui;
};
