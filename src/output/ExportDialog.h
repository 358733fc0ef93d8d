#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class ExportDialog;
}

// Asks which events to export. Created once by the main window and reused; it
// keeps the last choice.
class ExportDialog : public QDialog
{
    Q_OBJECT
public:
    enum ExportFilter {
        AllEvents = 0,
        CurrentPage = 1,
        SelectedEvents = 2,
    };
    Q_ENUM(ExportFilter)

    explicit ExportDialog(QWidget *parent = nullptr);
    ~ExportDialog() override;

    // 0 checks "all", 2 "selected", any other value "current page".
    void setFilter(int filter);
    // Without a selection its choice is offered disabled; when it was the choice,
    // the current page is chosen instead.
    void setSelectionAvailable(bool available);
    ExportFilter filter() const;

Q_SIGNALS:
    void exportEvents(ExportDialog::ExportFilter filter);

private Q_SLOTS:
    void on_exportButton_clicked();
    void on_cancelButton_clicked();

private:
    std::unique_ptr<Ui::ExportDialog> ui;
};

Q_DECLARE_METATYPE(ExportDialog::ExportFilter)
