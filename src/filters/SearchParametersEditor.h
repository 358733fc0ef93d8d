// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QWidget>

#include <memory>

namespace Ui
{
class SearchParametersEditor;
}

// The two options of the keyword search.
class SearchParametersEditor : public QWidget
{
    Q_OBJECT
public:
    explicit SearchParametersEditor(QWidget *parent = nullptr);
    ~SearchParametersEditor() override;

    bool caseSensitive() const;
    bool wholeWords() const;
    void setCaseSensitive(bool on);
    void setWholeWords(bool on);

signals:
    void optionsChanged();

private:
    std::unique_ptr<Ui::SearchParametersEditor> ui;
};
