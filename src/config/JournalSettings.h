// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDialog>

#include <memory>

class ConfigHandler;

namespace Ui
{
class JournalSettings;
}

// Edits the main log path and the page size of the configuration store; modal.
// Accepted values are written to the settings file at once, and only values that
// were saved are taken.
class JournalSettings : public QDialog
{
    Q_OBJECT
public:
    // The handler (and its store) must outlive the dialog.
    explicit JournalSettings(ConfigHandler &config, QWidget *parent = nullptr);
    ~JournalSettings() override;

    // Fills the controls from the store; call before showing the dialog.
    void load();

signals:
    void settingsChanged();

public slots:
    // OK is offered only for a changed value and a path that is not empty.
    void checkSettings();

private slots:
    void on_buttonBox_accepted();
    void on_btnOpenFile_clicked();

private:
    std::unique_ptr<Ui::JournalSettings> ui;
    ConfigHandler &m_config;
};
