// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FavoriteIdsEditor.h"

#include "ui_FavoriteIdsEditor.h"

#include "ConfigHandler.h"
#include "NimbIcon.h"

#include <QKeyEvent>
#include <QPushButton>

FavoriteIdsEditor::FavoriteIdsEditor(ConfigHandler &config, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::FavoriteIdsEditor>()), m_config(config)
{
    ui->setupUi(this);
    // The form's texts stand in where the desktop has no icons.
    for (const auto &[button, name] : {std::pair<QToolButton *, const char *>{ui->buttonPlus, "list-add"},
                                       std::pair<QToolButton *, const char *>{ui->buttonMinus, "list-remove"}}) {
        const QIcon icon = NimbIcon::themeIcon(QLatin1String(name));
        if (!icon.isNull())
            button->setIcon(icon);
    }
    connect(ui->listWidget->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FavoriteIdsEditor::selectionChanged);
    load();
}

FavoriteIdsEditor::~FavoriteIdsEditor() = default;

void FavoriteIdsEditor::load()
{
    ui->listWidget->clear();
    for (const QString &id : m_config.store().favoriteEvents())
        ui->listWidget->addItem(id);
    ui->lineEdit->clear();
    ui->labelWarning->hide();
    ui->buttonPlus->setEnabled(false);
    ui->buttonMinus->setEnabled(false);
    setOkEnabled(false);
}

void FavoriteIdsEditor::setOkEnabled(bool enabled)
{
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(enabled);
}

void FavoriteIdsEditor::on_lineEdit_textChanged(const QString &arg1)
{
    if (arg1.isEmpty()) {
        ui->labelWarning->hide();
        ui->buttonPlus->setEnabled(false);
        return;
    }
    const QString id = arg1.simplified();
    bool listed = false;
    for (int row = 0; row < ui->listWidget->count() && !listed; ++row)
        listed = ui->listWidget->item(row)->text().simplified() == id;
    ui->labelWarning->setVisible(listed);
    ui->buttonPlus->setEnabled(!listed && !id.isEmpty());
}

void FavoriteIdsEditor::on_buttonPlus_clicked()
{
    const QString id = ui->lineEdit->text().simplified();
    if (id.isEmpty())
        return;
    ui->listWidget->addItem(id);
    ui->lineEdit->clear();
    setOkEnabled(true);
}

void FavoriteIdsEditor::on_buttonMinus_clicked()
{
    const QList<QListWidgetItem *> selected = ui->listWidget->selectedItems();
    if (selected.size() != 1)
        return;
    delete selected.first();
    setOkEnabled(true);
    ui->buttonMinus->setEnabled(false);
    // The removed ID may be the one being typed.
    on_lineEdit_textChanged(ui->lineEdit->text());
}

void FavoriteIdsEditor::selectionChanged()
{
    ui->buttonMinus->setEnabled(ui->listWidget->selectedItems().size() == 1);
}

void FavoriteIdsEditor::on_buttonBox_accepted()
{
    std::set<QString> &favorites = m_config.store().favoriteEvents();
    favorites.clear();
    for (int row = 0; row < ui->listWidget->count(); ++row)
        favorites.insert(ui->listWidget->item(row)->text());
    m_config.writeConfig();
    accept();
}

void FavoriteIdsEditor::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
