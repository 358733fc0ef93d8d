// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "FilterWindow.h"

#include "ui_FilterWindow.h"

#include "AuxParCheckBox.h"
#include "AuxParCustomCheckBox.h"
#include "AuxParRegistry.h"
#include "ComboBoxScrollEater.h"
#include "ConfigStore.h"
#include "Dictionary.h"
#include "EventTypeItem.h"
#include "FilterHandler.h"
#include "NimbIcon.h"
#include "PriorityItem.h"

#include <QAction>
#include <QComboBox>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>

#include <algorithm>

namespace
{
const QString kCustomEventsGroup = QStringLiteral("custom-events");

bool fullyChecked(const QCheckBox *box)
{
    return box->checkState() == Qt::Checked;
}

QString emptyFieldMessage(const QString &field)
{
    return FilterWindow::tr("\"%1\" is empty.", "a field's value").arg(field);
}

// Rows of check box and editor in two columns, filled top to bottom, so that the
// long list of parameters needs half the scrolling.
template<typename Box>
void layOutRows(QGridLayout *grid, const QVector<Box *> &boxes, const QString &filterText)
{
    QVector<Box *> shown;
    for (Box *box : boxes) {
        grid->removeWidget(box);
        if (box->editor())
            grid->removeWidget(box->editor());
        const bool matches = filterText.isEmpty() || box->text().contains(filterText, Qt::CaseInsensitive)
                             || box->toolTip().contains(filterText, Qt::CaseInsensitive);
        box->setVisible(matches);
        if (box->editor())
            box->editor()->setVisible(matches);
        if (matches)
            shown.append(box);
    }
    const int half = (shown.size() + 1) / 2;
    for (int i = 0; i < shown.size(); ++i) {
        const int row = i < half ? i : i - half;
        const int column = i < half ? 0 : 3;
        grid->addWidget(shown.at(i), row, column);
        if (shown.at(i)->editor())
            grid->addWidget(shown.at(i)->editor(), row, column + 1);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(4, 1);
    grid->setColumnMinimumWidth(2, 10);
}

void prepareEditor(QWidget *editor, const QString &label, ComboBoxScrollEater *eater)
{
    if (!editor)
        return;
    // The check box beside the editor is its label on screen, but only a QLabel can
    // be a buddy: without a name of its own a screen reader would announce the title
    // of the group box for every editor alike.
    editor->setAccessibleName(label);
    // Narrow enough for two columns of parameters on a small screen; the editors take
    // whatever room the labels leave.
    editor->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    editor->setMinimumWidth(100);
    if (auto *combo = qobject_cast<QComboBox *>(editor)) {
        // Long source names should not widen the whole page, but "Not selected" must show.
        combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        combo->setMinimumContentsLength(8);
        combo->setMinimumWidth(std::max(100, combo->fontMetrics().horizontalAdvance(combo->itemText(0)) + 30));
    }
    eater->watch(editor);
}
}

FilterWindow::FilterWindow(QWidget *parent) : FilterWindow(ConfigStore::instance(), parent)
{
}

FilterWindow::FilterWindow(ConfigStore &store, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::FilterWindow>()), m_store(store)
{
    ui->setupUi(this);
    ui->savedFilters->setPlaceholderText(tr("Saved filters"));
    // Through the desktop's icon loader: the platform alone may know no icon theme.
    ui->saveButton->setIcon(NimbIcon::themeIcon(QStringLiteral("document-save")));
    ui->saveAsButton->setIcon(NimbIcon::themeIcon(QStringLiteral("document-save-as")));
    ui->removeButton->setIcon(NimbIcon::themeIcon(QStringLiteral("edit-delete")));
    // Sources are filtered through the source parameter on the second tab.
    ui->checkBoxSources->hide();
    ui->sourcesFilter->hide();
    m_applyButton = ui->buttonBox->button(QDialogButtonBox::Apply);

    m_handler = new FilterHandler(this);
    connect(m_handler, &FilterHandler::saveFilter, this, &FilterWindow::saveFilter);
    m_scrollEater = new ComboBoxScrollEater(this);

    m_searchAction = new QAction(NimbIcon::withEmblems(QStringLiteral("edit-find-symbolic"), QStringLiteral("go-top"),
                                                       Qt::BottomLeftCorner),
                                 tr("Go to the keyword search"), this);
    m_searchAction->setObjectName(QStringLiteral("searchAction"));
    m_searchAction->setShortcut(QKeySequence::Find);
    ui->searchLine->addAction(m_searchAction, QLineEdit::LeadingPosition);
    // Also on the window, so that the shortcut works from the second tab.
    addAction(m_searchAction);
    connect(m_searchAction, &QAction::triggered, this, &FilterWindow::focusSearch);

    buildEventTypes();
    buildPriorities();
    buildAuxParameters();
    resetTimes();
    connectValidation();
    fillSavedFilters(QString());
    validate();
}

FilterWindow::~FilterWindow() = default;

void FilterWindow::buildEventTypes()
{
    const Dictionary &dictionary = Dictionary::instance();
    QTreeWidget *tree = ui->eventTypesFilter;
    m_selectAllTypes = new QTreeWidgetItem(tree, {tr("Select all")});
    m_selectAllTypes->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
    m_selectAllTypes->setCheckState(0, Qt::Unchecked);

    const QMap<QString, QString> &types = dictionary.eventTypes();
    if (types.contains(kCustomEventsGroup))
        m_typeItems.append(new EventTypeItem(tr("Custom events"), types.value(kCustomEventsGroup), m_selectAllTypes));
    auto *groups = new QTreeWidgetItem(m_selectAllTypes, {tr("Event types")});
    groups->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
    groups->setCheckState(0, Qt::Unchecked);
    for (auto it = types.cbegin(); it != types.cend(); ++it) {
        if (it.key() == kCustomEventsGroup)
            continue;
        m_typeItems.append(new EventTypeItem(it.value().isEmpty() ? it.key() : it.value(), it.value(), groups));
    }
    tree->expandAll();
}

void FilterWindow::buildPriorities()
{
    const QMap<Event::Priority, QString> &priorities = Dictionary::instance().priorities();
    for (auto it = priorities.cbegin(); it != priorities.cend(); ++it)
        m_priorityItems.append(new PriorityItem(it.key(), it.value(), ui->priorityFilter));
    // Tall enough for every priority: a scroll bar on an eight-row list only gets in the way.
    QListWidget *list = ui->priorityFilter;
    const int rows = list->count();
    if (rows > 0) {
        const int height = list->sizeHintForRow(0) * rows + 2 * list->frameWidth() + 2;
        list->setMinimumHeight(height);
        list->setMaximumHeight(height);
    }
}

void FilterWindow::buildAuxParameters()
{
    const AuxParRegistry &registry = AuxParRegistry::instance();
    for (int type = 0; type < registry.count(); ++type) {
        auto *box = new AuxParCheckBox(type, ui->groupBoxAux);
        prepareEditor(box->editor(), box->text(), m_scrollEater);
        m_auxBoxes.append(box);
    }
    // Laid out by label, the way the user looks for them; those that cannot take
    // part in a filter go last.
    m_auxBoxesShown = m_auxBoxes;
    std::stable_sort(m_auxBoxesShown.begin(), m_auxBoxesShown.end(), [](const AuxParCheckBox *a, const AuxParCheckBox *b) {
        if (a->isUsable() != b->isUsable())
            return a->isUsable();
        return a->text().localeAwareCompare(b->text()) < 0;
    });

    for (const CustomParameter &custom : registry.customParameters()) {
        auto *box = new AuxParCustomCheckBox(custom.name, custom.label, ui->groupBoxCustom);
        prepareEditor(box->editor(), box->text(), m_scrollEater);
        m_customBoxes.append(box);
    }
    ui->groupBoxCustom->setVisible(!m_customBoxes.isEmpty());
    showAuxRows(QString());
    connect(ui->auxFind, &QLineEdit::textChanged, this, &FilterWindow::showAuxRows);
}

void FilterWindow::showAuxRows(const QString &filterText)
{
    const QString text = filterText.trimmed();
    layOutRows(ui->auxGrid, m_auxBoxesShown, text);
    layOutRows(ui->customGrid, m_customBoxes, text);
}

void FilterWindow::connectValidation()
{
    for (QCheckBox *box : {ui->checkBoxFrom, ui->checkBoxTo, ui->checkBoxId, ui->checkBoxTypeContains,
                           ui->checkBoxNameContains, ui->checkBoxNameExcludes, ui->checkBoxPriority,
                           ui->checkBoxSources, ui->checkBoxSearch})
        connect(box, &QCheckBox::stateChanged, this, &FilterWindow::validate);
    for (QDateTimeEdit *edit : {ui->dateTimeFrom, ui->dateTimeTo})
        connect(edit, &QDateTimeEdit::dateTimeChanged, this, &FilterWindow::validate);
    for (QLineEdit *edit : {ui->id, ui->nameContains, ui->nameExcludes, ui->searchLine})
        connect(edit, &QLineEdit::textChanged, this, &FilterWindow::validate);
    connect(ui->eventTypesFilter, &QTreeWidget::itemChanged, this, &FilterWindow::validate);
    connect(ui->priorityFilter, &QListWidget::itemChanged, this, &FilterWindow::validate);
    connect(ui->searchParameters, &SearchParametersEditor::optionsChanged, this, &FilterWindow::validate);
    for (AuxParCheckBox *box : qAsConst(m_auxBoxes)) {
        connect(box, &QCheckBox::stateChanged, this, &FilterWindow::validate);
        connect(box, &AuxParCheckBox::valueChanged, this, &FilterWindow::validate);
    }
    for (AuxParCustomCheckBox *box : qAsConst(m_customBoxes)) {
        connect(box, &QCheckBox::stateChanged, this, &FilterWindow::validate);
        connect(box, &AuxParCustomCheckBox::valueChanged, this, &FilterWindow::validate);
    }
}

void FilterWindow::resetTimes()
{
    // Whole minutes, as the edits show them.
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime minute(now.date(), QTime(now.time().hour(), now.time().minute()));
    if (!fullyChecked(ui->checkBoxFrom))
        ui->dateTimeFrom->setDateTime(QDateTime(now.date(), QTime(0, 0)));
    if (!fullyChecked(ui->checkBoxTo))
        ui->dateTimeTo->setDateTime(minute);
}

void FilterWindow::prepare()
{
    updateSavedFilters();
    resetTimes();
    validate();
}

FilterPack FilterWindow::currentFilter() const
{
    FilterPack pack;
    pack.checkFrom = fullyChecked(ui->checkBoxFrom);
    pack.checkTo = fullyChecked(ui->checkBoxTo);
    pack.checkId = fullyChecked(ui->checkBoxId);
    pack.checkEventTypes = fullyChecked(ui->checkBoxTypeContains);
    pack.checkNameContains = fullyChecked(ui->checkBoxNameContains);
    pack.checkNameExcludes = fullyChecked(ui->checkBoxNameExcludes);
    pack.checkPriorities = fullyChecked(ui->checkBoxPriority);
    pack.checkSearch = fullyChecked(ui->checkBoxSearch);
    pack.caseSensitive = ui->searchParameters->caseSensitive();
    pack.wholeWord = ui->searchParameters->wholeWords();

    pack.from = ui->dateTimeFrom->dateTime();
    // The edit shows minutes; its upper bound takes in the whole of the last one.
    const QDateTime to = ui->dateTimeTo->dateTime();
    pack.to = to.addSecs(59 - to.time().second());

    pack.id = ui->id->text();
    pack.nameContains = ui->nameContains->text();
    pack.nameExcludes = ui->nameExcludes->text();
    pack.search = ui->searchLine->text();

    for (const EventTypeItem *item : m_typeItems) {
        if (item->isChecked() && !pack.eventTypes.contains(item->typeText()))
            pack.eventTypes.append(item->typeText());
    }
    for (const PriorityItem *item : m_priorityItems) {
        if (item->isChecked())
            pack.priorities.append(int(item->priority()));
    }
    for (const AuxParCheckBox *box : m_auxBoxes) {
        const QVariant value = box->value();
        if (box->isUsable() && fullyChecked(box) && value.isValid())
            pack.auxConditions.insert(box->type(), value);
    }
    for (const AuxParCustomCheckBox *box : m_customBoxes) {
        const QVariant value = box->value();
        if (fullyChecked(box) && value.isValid())
            pack.customConditions.insert(box->name(), value);
    }
    return pack;
}

void FilterWindow::loadFilter(const FilterPack &pack)
{
    m_loading = true;
    ui->checkBoxFrom->setChecked(pack.checkFrom);
    ui->checkBoxTo->setChecked(pack.checkTo);
    ui->checkBoxId->setChecked(pack.checkId);
    ui->checkBoxTypeContains->setChecked(pack.checkEventTypes);
    ui->checkBoxNameContains->setChecked(pack.checkNameContains);
    ui->checkBoxNameExcludes->setChecked(pack.checkNameExcludes);
    ui->checkBoxPriority->setChecked(pack.checkPriorities);
    ui->checkBoxSearch->setChecked(pack.checkSearch);
    ui->searchParameters->setCaseSensitive(pack.caseSensitive);
    ui->searchParameters->setWholeWords(pack.wholeWord);
    if (pack.from.isValid())
        ui->dateTimeFrom->setDateTime(pack.from);
    if (pack.to.isValid())
        ui->dateTimeTo->setDateTime(pack.to);
    ui->id->setText(pack.id);
    ui->nameContains->setText(pack.nameContains);
    ui->nameExcludes->setText(pack.nameExcludes);
    ui->searchLine->setText(pack.search);
    for (EventTypeItem *item : qAsConst(m_typeItems))
        item->setChecked(pack.eventTypes.contains(item->typeText()));
    for (PriorityItem *item : qAsConst(m_priorityItems))
        item->setChecked(pack.priorities.contains(int(item->priority())));
    for (AuxParCheckBox *box : qAsConst(m_auxBoxes)) {
        const auto condition = pack.auxConditions.constFind(box->type());
        const bool present = box->isUsable() && condition != pack.auxConditions.cend();
        if (present)
            box->setValue(condition.value());
        else
            box->clearValue();
        box->setChecked(present);
    }
    for (AuxParCustomCheckBox *box : qAsConst(m_customBoxes)) {
        const auto condition = pack.customConditions.constFind(box->name());
        const bool present = condition != pack.customConditions.cend();
        if (present)
            box->setValue(condition.value());
        else
            box->clearValue();
        box->setChecked(present);
    }
    m_loading = false;
    validate();
}

QString FilterWindow::validationMessage() const
{
    const bool anyAux = std::any_of(m_auxBoxes.cbegin(), m_auxBoxes.cend(), fullyChecked)
                        || std::any_of(m_customBoxes.cbegin(), m_customBoxes.cend(), fullyChecked);
    const QCheckBox *mainBoxes[] = {ui->checkBoxFrom,         ui->checkBoxTo,           ui->checkBoxId,
                                    ui->checkBoxTypeContains, ui->checkBoxNameContains, ui->checkBoxNameExcludes,
                                    ui->checkBoxPriority,     ui->checkBoxSources,      ui->checkBoxSearch};
    if (!anyAux && std::none_of(std::begin(mainBoxes), std::end(mainBoxes), fullyChecked))
        return tr("No filters selected.");

    const bool from = fullyChecked(ui->checkBoxFrom);
    if (from && QDateTime::currentDateTime() < ui->dateTimeFrom->dateTime())
        return tr("Start time is greater than current.");
    if (from && fullyChecked(ui->checkBoxTo) && ui->dateTimeTo->dateTime() < ui->dateTimeFrom->dateTime())
        return tr("Start time is greater than end time.");
    if (fullyChecked(ui->checkBoxId) && ui->id->text().isEmpty())
        return tr("Message ID is empty");
    if (fullyChecked(ui->checkBoxTypeContains)
        && std::none_of(m_typeItems.cbegin(), m_typeItems.cend(), [](const EventTypeItem *item) { return item->isChecked(); }))
        return tr("No event types selected.");

    // Each message is one sentence, so that a translation may put the field's name where its
    // language wants it.
    const bool contains = fullyChecked(ui->checkBoxNameContains);
    const bool excludes = fullyChecked(ui->checkBoxNameExcludes);
    if (contains && ui->nameContains->text().isEmpty())
        return emptyFieldMessage(ui->checkBoxNameContains->text());
    if (excludes && ui->nameExcludes->text().isEmpty())
        return emptyFieldMessage(ui->checkBoxNameExcludes->text());
    // No name could contain the one text and lack a part of it.
    if (contains && excludes && ui->nameContains->text().contains(ui->nameExcludes->text(), Qt::CaseSensitive))
        return tr("\"%1\" is a part of \"%2\".", "the first field's text occurs in the second's")
            .arg(ui->checkBoxNameExcludes->text(), ui->checkBoxNameContains->text());

    if (fullyChecked(ui->checkBoxPriority)
        && std::none_of(m_priorityItems.cbegin(), m_priorityItems.cend(), [](const PriorityItem *item) { return item->isChecked(); }))
        return tr("No message priorities selected.");
    if (fullyChecked(ui->checkBoxSearch) && ui->searchLine->text().isEmpty())
        return tr("The search field is empty");

    static const QRegularExpression labelPattern(QStringLiteral("\\d+:\\d+:\\d+:\\d+:\\d+"));
    for (const AuxParCheckBox *box : m_auxBoxes) {
        if (!fullyChecked(box))
            continue;
        if (box->valueIsEmpty())
            return emptyFieldMessage(box->text());
        const QString key = box->key();
        if ((key == QLatin1String("obj") || key == QLatin1String("subj"))
            && !labelPattern.match(box->value().toString()).hasMatch())
            return tr("\"%1\" is incorrect.", "a field's value").arg(box->text());
    }
    for (const AuxParCustomCheckBox *box : m_customBoxes) {
        if (fullyChecked(box) && box->valueIsEmpty())
            return emptyFieldMessage(box->text());
    }
    return QString();
}

void FilterWindow::validate()
{
    if (m_loading)
        return;
    const QString message = validationMessage();
    const bool valid = message.isEmpty();
    ui->warningLabel->setText(message);
    m_applyButton->setEnabled(valid);
    ui->saveAsButton->setEnabled(valid);
    const int chosen = chosenFilterIndex();
    const bool unchanged = chosen >= 0 && m_store.savedFilters().at(chosen) == currentFilter();
    ui->saveButton->setEnabled(valid && !unchanged);
    ui->removeButton->setEnabled(chosen >= 0);
}

int FilterWindow::savedFilterIndex(const QString &name) const
{
    const QList<FilterPack> &filters = m_store.savedFilters();
    for (int i = 0; i < filters.size(); ++i) {
        if (filters.at(i).name == name)
            return i;
    }
    return -1;
}

int FilterWindow::chosenFilterIndex() const
{
    if (ui->savedFilters->currentIndex() < 0)
        return -1;
    return savedFilterIndex(ui->savedFilters->currentText());
}

QString FilterWindow::proposedFilterName() const
{
    // The number is a placeholder, so that a language may put it elsewhere in the name.
    const QString pattern = tr("Event_Log_Filter_%1", "proposed name of a saved filter");
    for (int n = 0;; ++n) {
        const QString name = pattern.arg(n);
        if (savedFilterIndex(name) < 0)
            return name;
    }
}

void FilterWindow::fillSavedFilters(const QString &select)
{
    const QSignalBlocker blocker(ui->savedFilters);
    ui->savedFilters->clear();
    for (const FilterPack &filter : m_store.savedFilters())
        ui->savedFilters->addItem(filter.name);
    ui->savedFilters->setCurrentIndex(select.isEmpty() ? -1 : ui->savedFilters->findText(select));
}

void FilterWindow::updateSavedFilters()
{
    const QString chosen = ui->savedFilters->currentIndex() >= 0 ? ui->savedFilters->currentText() : QString();
    fillSavedFilters(chosen);
    validate();
}

void FilterWindow::on_savedFilters_currentTextChanged(const QString &name)
{
    const int index = savedFilterIndex(name);
    if (ui->savedFilters->currentIndex() >= 0 && index >= 0)
        loadFilter(m_store.savedFilters().at(index));
    else
        validate();
}

bool FilterWindow::confirm(const QString &title, const QString &question)
{
    return QMessageBox::question(this, title, question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
           == QMessageBox::Yes;
}

void FilterWindow::saveFilter(const QString &name)
{
    if (name.isEmpty())
        return;
    FilterPack pack = currentFilter();
    pack.name = name;
    QList<FilterPack> &filters = m_store.savedFilters();
    const int existing = savedFilterIndex(name);
    if (existing >= 0) {
        if (!confirm(tr("Filter saving"), tr("Filter with this name already exists. Do you want to rewrite selected filter?")))
            return;
        filters[existing] = pack;
    } else {
        filters.append(pack);
    }
    fillSavedFilters(name);
    validate();
    emit saveConfig();
}

void FilterWindow::on_saveButton_clicked()
{
    const int chosen = chosenFilterIndex();
    if (chosen < 0) {
        // Nothing to overwrite: the filter needs a name first.
        on_saveAsButton_clicked();
        return;
    }
    if (!confirm(tr("Filter saving"), tr("Do you want to rewrite selected filter?")))
        return;
    FilterPack pack = currentFilter();
    pack.name = m_store.savedFilters().at(chosen).name;
    m_store.savedFilters()[chosen] = pack;
    validate();
    emit saveConfig();
}

void FilterWindow::on_saveAsButton_clicked()
{
    m_handler->setFilterName(proposedFilterName());
    m_handler->open();
}

void FilterWindow::on_removeButton_clicked()
{
    const int chosen = chosenFilterIndex();
    if (chosen < 0)
        return;
    if (!confirm(tr("Filter deleting"), tr("Do you want to delete selected filter?")))
        return;
    m_store.savedFilters().removeAt(chosen);
    fillSavedFilters(QString());
    validate();
    emit saveConfig();
}

void FilterWindow::on_buttonBox_clicked(QAbstractButton *button)
{
    switch (ui->buttonBox->buttonRole(button)) {
    case QDialogButtonBox::ApplyRole:
        if (!m_applyButton->isEnabled())
            return;
        emit applyFilters(currentFilter());
        accept();
        break;
    case QDialogButtonBox::RejectRole:
        reject();
        break;
    default:
        break;
    }
}

void FilterWindow::focusSearch()
{
    ui->tabWidget->setCurrentWidget(ui->tabMain);
    ui->searchLine->setFocus(Qt::ShortcutFocusReason);
    ui->searchLine->selectAll();
}
