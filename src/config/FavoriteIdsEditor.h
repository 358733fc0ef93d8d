// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QDialog>

#include <memory>

class ConfigHandler;

namespace Ui
{
class FavoriteIdsEditor;
}

// Edits the set of favourite message IDs. Accepted changes go to the store and are
// written to the settings file at once; cancelling leaves both untouched.
class FavoriteIdsEditor : public QDialog
{
    Q_OBJECT
public:
    // The handler (and its store) must outlive the dialog.
    explicit FavoriteIdsEditor(ConfigHandler &config, QWidget *parent = nullptr);
    ~FavoriteIdsEditor() override;

    // Fills the list from the store; call before showing the dialog.
    void load();

public slots:
    void selectionChanged();

private slots:
    void on_buttonBox_accepted();
    void on_buttonMinus_clicked();
    void on_buttonPlus_clicked();
    void on_lineEdit_textChanged(const QString &arg1);

protected:
    // Return and Enter would accept the dialog while the user is typing an ID.
    void keyPressEvent(QKeyEvent *event) override;

private:
    void setOkEnabled(bool enabled);

    std::unique_ptr<Ui::FavoriteIdsEditor> ui;
    ConfigHandler &m_config;
};
