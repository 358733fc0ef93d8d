#include "ExportDialog.h"

#include "ui_ExportDialog.h"

ExportDialog::ExportDialog(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::ExportDialog>())
{
    ui->setupUi(this);
}

ExportDialog::~ExportDialog() = default;

void ExportDialog::setFilter(int filter)
{
    if (filter == AllEvents)
        ui->exportAllButton->setChecked(true);
    else if (filter == SelectedEvents)
        ui->exportSelectedButton->setChecked(true);
    else
        ui->exportCurrentPageButton->setChecked(true);
}

void ExportDialog::setSelectionAvailable(bool available)
{
    ui->exportSelectedButton->setEnabled(available);
    if (!available && ui->exportSelectedButton->isChecked())
        ui->exportCurrentPageButton->setChecked(true);
}

ExportDialog::ExportFilter ExportDialog::filter() const
{
    if (ui->exportCurrentPageButton->isChecked())
        return CurrentPage;
    if (ui->exportSelectedButton->isChecked())
        return SelectedEvents;
    return AllEvents;
}

void ExportDialog::on_exportButton_clicked()
{
    hide();
    Q_EMIT exportEvents(filter());
}

void ExportDialog::on_cancelButton_clicked()
{
    close();
}
