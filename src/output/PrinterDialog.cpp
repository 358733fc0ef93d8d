#include "PrinterDialog.h"

#include "ui_PrinterDialog.h"

#include <QMessageBox>

PrinterDialog::PrinterDialog(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::PrinterDialog>())
{
    ui->setupUi(this);
}

PrinterDialog::~PrinterDialog() = default;

void PrinterDialog::setFilter(int filter)
{
    if (filter == AllEvents)
        ui->printAllButton->setChecked(true);
    else if (filter == SelectedEvents)
        ui->printSelectedButton->setChecked(true);
    else
        ui->printCurrentPageButton->setChecked(true);
}

void PrinterDialog::setSelectionAvailable(bool available)
{
    ui->printSelectedButton->setEnabled(available);
    if (!available && ui->printSelectedButton->isChecked())
        ui->printCurrentPageButton->setChecked(true);
}

PrinterDialog::PrintFilter PrinterDialog::filter() const
{
    if (ui->printCurrentPageButton->isChecked())
        return CurrentPage;
    if (ui->printSelectedButton->isChecked())
        return SelectedEvents;
    return AllEvents;
}

void PrinterDialog::on_printButton_clicked()
{
    hide();
    Q_EMIT printEvents(filter());
}

void PrinterDialog::on_cancelButton_clicked()
{
    close();
}

void PrinterDialog::on_printAllButton_clicked()
{
    QMessageBox::warning(this, tr("Printing all messages"),
                         tr("Attention!\nTrying to print whole journal can cause lack of memory and undefined "
                            "behavior of printing subsystem, this application or other components."),
                         QMessageBox::Ok);
}
