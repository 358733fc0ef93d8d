// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "BottomWidget.h"

#include "ui_BottomWidget.h"

#include "AuxParRegistry.h"
#include "Dictionary.h"
#include "Event.h"
#include "FilterPack.h"
#include "HighlightDelegate.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QLocale>

#include <algorithm>
#include <memory>

namespace
{
// The bounds in the user's own way of writing dates, to the minute as the filter window sets them.
QString boundText(const QDateTime &bound)
{
    return QLocale().toString(bound, QLocale::ShortFormat);
}

using Row = QPair<QString, QString>;

void fillTable(QTableWidget *table, const QVector<Row> &rows)
{
    table->setRowCount(rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        table->setItem(i, 0, new QTableWidgetItem(rows.at(i).first));
        auto *value = new QTableWidgetItem(rows.at(i).second);
        value->setToolTip(rows.at(i).second);
        table->setItem(i, 1, value);
    }
}

void sortByLabel(QVector<Row> &rows)
{
    std::stable_sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) { return a.first < b.first; });
}

// A condition's value as the user chose it: the kind's own words for a yes/no
// parameter, names for signals and sources, the entered text for the rest.
QString conditionText(int type, const QVariant &value)
{
    const AuxParKindInfo &kind = kAuxParKinds[type];
    switch (kind.family) {
    case AuxParFamily::Bool:
        return QCoreApplication::translate("QObject", value.toBool() ? kind.trueWord : kind.falseWord);
    case AuxParFamily::Signal:
    case AuxParFamily::Source: {
        std::unique_ptr<AuxPar> parameter = AuxParRegistry::instance().create(type);
        parameter->setValue(value);
        if (parameter->isValid())
            return parameter->toString();
        return value.toString();
    }
    default:
        return value.toString();
    }
}

QString priorityList(QVector<int> priorities)
{
    std::sort(priorities.begin(), priorities.end());
    QStringList words;
    for (int priority : priorities) {
        const QString word = Dictionary::instance().priorityText(static_cast<Event::Priority>(priority));
        words.append(word.isEmpty() ? QString::number(priority) : word);
    }
    return words.join(QStringLiteral(", "));
}
}

BottomWidget::BottomWidget(QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::BottomWidget>()), m_highlight(new HighlightDelegate(this))
{
    ui->setupUi(this);
    // Labels are not searched by the filter; only the values can hold its keyword.
    ui->tableWidget->setItemDelegateForColumn(1, m_highlight);
    for (QTableWidget *table : {ui->tableWidget, ui->filtersTable}) {
        table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
        table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    }
    ui->tableWidget->hide();
    ui->filtersTable->hide();
}

BottomWidget::~BottomWidget() = default;

void BottomWidget::showEventDetails(const Event *event)
{
    ui->placeholderLabel->hide();
    ui->tableWidget->show();
    ui->tableWidget->clear();
    ui->tableWidget->setHorizontalHeaderLabels({tr("Event parameter"), tr("Value")});
    ui->tableWidget->setRowCount(0);
    if (!event)
        return;
    QVector<Row> rows = event->parameterList();
    sortByLabel(rows);
    fillTable(ui->tableWidget, rows);
}

void BottomWidget::showFilter(const FilterPack &filter)
{
    m_highlight->setMatcher(KeywordMatcher(filter));
    ui->tableWidget->viewport()->update();
    QVector<Row> rows;
    if (filter.checkFrom)
        rows.append({tr("From"), boundText(filter.from)});
    if (filter.checkTo)
        rows.append({tr("To"), boundText(filter.to)});
    if (filter.checkId)
        rows.append({tr("Message ID"), filter.id});
    if (filter.checkEventTypes) {
        // Custom events carry no type of their own: the dictionary lists their group
        // with an empty display text, and that text is what the filter holds for them.
        const QString customText = Dictionary::instance().eventTypeText(QStringLiteral("custom-events"));
        QStringList types;
        bool custom = false;
        for (const QString &type : filter.eventTypes) {
            if (type == customText)
                custom = true;
            else
                types.append(type);
        }
        if (!types.isEmpty() || !custom)
            rows.append({tr("Event type"), types.join(QStringLiteral(", "))});
        if (custom)
            rows.append({tr("Custom events"), QCoreApplication::translate("QObject", "yes")});
    }
    if (filter.checkTypeExcludes)
        rows.append({tr("Event type doesn't contain"), filter.typeExcludes});
    if (filter.checkNameContains)
        rows.append({tr("Event name contains text"), filter.nameContains});
    if (filter.checkNameExcludes)
        rows.append({tr("Event name doesn't contain"), filter.nameExcludes});
    if (filter.checkPriorities)
        rows.append({tr("Priorities"), priorityList(filter.priorities)});

    const AuxParRegistry &registry = AuxParRegistry::instance();
    QVector<Row> conditions;
    for (auto it = filter.auxConditions.cbegin(); it != filter.auxConditions.cend(); ++it) {
        if (const AuxPar *prototype = registry.prototype(it.key()))
            conditions.append({prototype->label(), conditionText(it.key(), it.value())});
    }
    for (auto it = filter.customConditions.cbegin(); it != filter.customConditions.cend(); ++it)
        conditions.append({registry.customLabel(it.key()), it.value().toString()});
    // The maps have no order of their own.
    std::sort(conditions.begin(), conditions.end());
    rows += conditions;

    if (filter.checkSearch) {
        // One text per combination of options, so that a translation words each as a whole.
        QString text = filter.search;
        if (filter.caseSensitive && filter.wholeWord)
            text = tr("%1 (case sensitive, only whole words)", "searched keyword").arg(filter.search);
        else if (filter.caseSensitive)
            text = tr("%1 (case sensitive)", "searched keyword").arg(filter.search);
        else if (filter.wholeWord)
            text = tr("%1 (only whole words)", "searched keyword").arg(filter.search);
        rows.append({tr("Search"), text});
    }

    ui->filtersTable->clearContents();
    fillTable(ui->filtersTable, rows);
    ui->filtersTable->setVisible(!rows.isEmpty());
    // A hidden filters table leaves its share of the width to the parameters.
    ui->horizontalLayout->setStretch(0, 3);
    ui->horizontalLayout->setStretch(1, rows.isEmpty() ? 0 : 2);
}
