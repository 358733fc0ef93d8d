// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "FilterPack.h"

#include <QDialog>
#include <QVector>

#include <memory>

class AuxParCheckBox;
class AuxParCustomCheckBox;
class ComboBoxScrollEater;
class ConfigStore;
class EventTypeItem;
class FilterHandler;
class PriorityItem;
class QAbstractButton;
class QAction;
class QGridLayout;
class QPushButton;
class QTreeWidgetItem;

namespace Ui
{
class FilterWindow;
}

// The "Message filter" dialog: composes a FilterPack from its controls, checks it as
// the user edits, keeps named filters in the configuration store and hands the pack
// out when the user applies it.
class FilterWindow : public QDialog
{
    Q_OBJECT
public:
    // Works on the process-wide configuration store.
    explicit FilterWindow(QWidget *parent = nullptr);
    // Works on the given store, which must outlive the window.
    explicit FilterWindow(ConfigStore &store, QWidget *parent = nullptr);
    ~FilterWindow() override;

    // The pack the controls describe (unnamed).
    FilterPack currentFilter() const;
    // Sets every control from a pack at once.
    void loadFilter(const FilterPack &pack);
    // Makes the window ready to be shown for a tab: the saved filters are reread and
    // time bounds that are not in use start from today.
    void prepare();
    // "Event_Log_Filter_" followed by the smallest number no saved filter uses.
    QString proposedFilterName() const;

signals:
    void applyFilters(const FilterPack &filter);
    // The list of saved filters in the store changed and should be written.
    void saveConfig();

public slots:
    // Rereads the saved filters from the store, keeping the chosen one if it is still there.
    void updateSavedFilters();
    // Saves the controls' pack under `name`, asking before it replaces a filter.
    void saveFilter(const QString &name);

private slots:
    void on_saveButton_clicked();
    void on_saveAsButton_clicked();
    void on_removeButton_clicked();
    void on_buttonBox_clicked(QAbstractButton *button);
    void on_savedFilters_currentTextChanged(const QString &name);
    void validate();
    void focusSearch();
    void showAuxRows(const QString &filterText);

private:
    void buildEventTypes();
    void buildPriorities();
    void buildAuxParameters();
    void connectValidation();
    void resetTimes();
    // The first failed check's message, or an empty text when the controls are valid.
    QString validationMessage() const;
    int savedFilterIndex(const QString &name) const;
    int chosenFilterIndex() const;
    void fillSavedFilters(const QString &select);
    bool confirm(const QString &title, const QString &question);

    std::unique_ptr<Ui::FilterWindow> ui;
    ConfigStore &m_store;
    FilterHandler *m_handler = nullptr;
    ComboBoxScrollEater *m_scrollEater = nullptr;
    QAction *m_searchAction = nullptr;
    QPushButton *m_applyButton = nullptr;
    QTreeWidgetItem *m_selectAllTypes = nullptr;
    QVector<EventTypeItem *> m_typeItems;
    QVector<PriorityItem *> m_priorityItems;
    QVector<AuxParCheckBox *> m_auxBoxes;           // in type-number order
    QVector<AuxParCheckBox *> m_auxBoxesShown;      // in the order they are laid out
    QVector<AuxParCustomCheckBox *> m_customBoxes;
    bool m_loading = false;
};
