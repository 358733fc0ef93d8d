// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JournalSettings.h"

#include "ui_JournalSettings.h"

#include "ConfigHandler.h"
#include "NimbIcon.h"
#include "SystemPaths.h"

#include <QFileDialog>
#include <QPushButton>

JournalSettings::JournalSettings(ConfigHandler &config, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::JournalSettings>()), m_config(config)
{
    ui->setupUi(this);
    setWindowTitle(tr("Application settings"));
    ui->btnOpenFile->setIcon(NimbIcon::themeIcon(QStringLiteral("document-open")));
    // The same bounds the store accepts when it reads the settings file.
    ui->messagesPerPage->setRange(ConfigStore::kMinMessagesPerPage, ConfigStore::kMaxMessagesPerPage);
    connect(ui->mainLogPath, &QLineEdit::textChanged, this, &JournalSettings::checkSettings);
    connect(ui->messagesPerPage, QOverload<int>::of(&QSpinBox::valueChanged), this, &JournalSettings::checkSettings);
    load();
}

JournalSettings::~JournalSettings() = default;

void JournalSettings::load()
{
    const ConfigStore &store = m_config.store();
    ui->mainLogPath->setText(store.mainLogPath());
    ui->messagesPerPage->setValue(store.messagesPerPage());
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(false);
}

void JournalSettings::checkSettings()
{
    const ConfigStore &store = m_config.store();
    const QString path = ui->mainLogPath->text().trimmed();
    const bool changed = path != store.mainLogPath() || ui->messagesPerPage->value() != store.messagesPerPage();
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(changed && !path.isEmpty());
}

void JournalSettings::on_buttonBox_accepted()
{
    const QString path = ui->mainLogPath->text().trimmed();
    if (path.isEmpty())
        return;
    ConfigStore &store = m_config.store();
    const QString earlierPath = store.mainLogPath();
    const int earlierPerPage = store.messagesPerPage();
    store.mainLogPath() = path;
    store.messagesPerPage() = ui->messagesPerPage->value();
    if (!m_config.writeConfig()) {
        // What could not be saved is not applied either; the dialog stays open with
        // the values typed, to be tried again or cancelled.
        store.mainLogPath() = earlierPath;
        store.messagesPerPage() = earlierPerPage;
        return;
    }
    accept();
    emit settingsChanged();
}

void JournalSettings::on_btnOpenFile_clicked()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Main log file"), SystemPaths::journalDir());
    if (!path.isEmpty())
        ui->mainLogPath->setText(path);
}
