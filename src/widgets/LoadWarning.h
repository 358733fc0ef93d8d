// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QWidget>

#include <memory>

namespace Ui
{
class LoadWarning;
}

// The busy overlay laid over the events table while a count or a page load runs.
class LoadWarning : public QWidget
{
    Q_OBJECT
public:
    explicit LoadWarning(QWidget *parent = nullptr);
    ~LoadWarning() override;

    void setPercent(int percent);
    // Says what holds the tab instead of the loading text, without a percentage of
    // its own; an empty text brings the loading text back.
    void setText(const QString &text);

public Q_SLOTS:
    void placeOver(int x, int y, int width, int height);

private:
    std::unique_ptr<Ui::LoadWarning> ui;
    QString m_loadingText;
};
