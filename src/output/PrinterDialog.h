#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class PrinterDialog;
}

// Asks which events to print; choosing all of them first shows a warning.
class PrinterDialog : public QDialog
{
    Q_OBJECT
public:
    enum PrintFilter {
        AllEvents = 0,
        CurrentPage = 1,
        SelectedEvents = 2,
    };
    Q_ENUM(PrintFilter)

    explicit PrinterDialog(QWidget *parent = nullptr);
    ~PrinterDialog() override;

    // 0 checks "all", 2 "selected", any other value "current page".
    void setFilter(int filter);
    // Without a selection its choice is offered disabled; when it was the choice,
    // the current page is chosen instead.
    void setSelectionAvailable(bool available);
    PrintFilter filter() const;

Q_SIGNALS:
    void printEvents(PrinterDialog::PrintFilter filter);

private Q_SLOTS:
    void on_printButton_clicked();
    void on_cancelButton_clicked();
    void on_printAllButton_clicked();

private:
    std::unique_ptr<Ui::PrinterDialog> ui;
};

Q_DECLARE_METATYPE(PrinterDialog::PrintFilter)
