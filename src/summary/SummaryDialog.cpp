// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SummaryDialog.h"

#include "ui_SummaryDialog.h"

#include "AsyncLoader.h"
#include "AuxParKindTable.h"
#include "Dictionary.h"
#include "SummaryParser.h"

#include <QHeaderView>
#include <QStandardItemModel>

#include <algorithm>

namespace
{
// Most severe first: emergency is 1 and debug 8, and the unknown priority, 0, goes after them.
int severityRank(Event::Priority priority)
{
    return priority == Event::Unknown ? Event::Debug + 1 : int(priority);
}

struct NamedSource {
    QString name; // as the dictionary shows it; empty for a key it does not know
    QString key;
};

// By the name shown; sources without one come last.
QVector<NamedSource> sourcesByName(const QHash<QString, WindowCounts> &sources, const Dictionary &dictionary)
{
    QVector<NamedSource> named;
    for (auto it = sources.cbegin(); it != sources.cend(); ++it)
        named.append({dictionary.sourceText(it.key()), it.key()});
    std::sort(named.begin(), named.end(), [](const NamedSource &a, const NamedSource &b) {
        if (a.name.isEmpty() != b.name.isEmpty())
            return b.name.isEmpty();
        const int byName = a.name.localeAwareCompare(b.name);
        return byName != 0 ? byName < 0 : a.key < b.key;
    });
    return named;
}
}

SummaryDialog::SummaryDialog(const QString &logPath, QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::SummaryDialog>())
    , m_logPath(logPath)
    , m_parser(std::make_unique<SummaryParser>(logPath))
{
    ui->setupUi(this);
    ui->progressBar->hide();

    m_loader = new AsyncLoader(m_parser.get());
    m_loader->moveToThread(&m_thread);
    connect(m_loader, &AsyncLoader::countsForSummaryFinished, this, &SummaryDialog::setCountsForSummary);
    connect(m_loader, &AsyncLoader::percentRead, this, &SummaryDialog::onPercentRead);
    connect(this, &SummaryDialog::countRequestForSummary, this, &SummaryDialog::onCountRequested);
    connect(this, &SummaryDialog::countRequestForSummary, m_loader, &AsyncLoader::asyncCountForSummary);
    connect(&m_thread, &QThread::finished, m_loader, &QObject::deleteLater);
    m_thread.start(QThread::InheritPriority);

    connect(ui->treeView, &QTreeView::doubleClicked, this, &SummaryDialog::onDoubleClicked);
}

SummaryDialog::~SummaryDialog()
{
    // A count still running ends at its next line.
    m_parser->setStopFlag(true);
    m_thread.quit();
    m_thread.wait();
}

bool SummaryDialog::requestSummary()
{
    if (!isReady())
        return false;
    Q_EMIT countRequestForSummary();
    return true;
}

FilterPack SummaryDialog::filterFor(Event::Priority priority, const QString &source)
{
    FilterPack filter;
    filter.checkPriorities = true;
    filter.priorities = {static_cast<int>(priority)};
    if (!source.isEmpty())
        filter.auxConditions.insert(AuxParId::Source, source);
    return filter;
}

void SummaryDialog::onCountRequested()
{
    m_counting = true;
    // A busy bar until the scan reports how far it got.
    ui->progressBar->setRange(0, 0);
    ui->progressBar->show();
    show();
}

void SummaryDialog::onPercentRead(int percent)
{
    if (!m_counting)
        return;
    ui->progressBar->setRange(0, 100);
    ui->progressBar->setValue(percent);
}

void SummaryDialog::setCountsForSummary(MapForCounts counts)
{
    m_counting = false;
    ui->progressBar->hide();
    m_priorities.clear();
    m_sources.clear();

    const Dictionary &dictionary = Dictionary::instance();
    struct Sums {
        Event::Priority priority;
        WindowCounts total;
    };
    QVector<Sums> priorities;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        Sums sums{it.key(), {}};
        for (const WindowCounts &source : it.value()) {
            sums.total.hour += source.hour;
            sums.total.day += source.day;
            sums.total.week += source.week;
        }
        priorities.append(sums);
    }
    std::sort(priorities.begin(), priorities.end(),
              [](const Sums &a, const Sums &b) { return severityRank(a.priority) < severityRank(b.priority); });

    auto *model = new QStandardItemModel(priorities.size(), ColumnCount, this);
    const QStringList headers{tr("Priority"), tr("Source"), tr("Hour"), tr("Day"), tr("Week")};
    for (int column = 0; column < ColumnCount; ++column)
        model->setHeaderData(column, Qt::Horizontal, headers[column], Qt::EditRole);

    auto setCounts = [model](const QModelIndex &parent, int row, const WindowCounts &values) {
        const quint32 counts[] = {values.hour, values.day, values.week};
        for (int i = 0; i < 3; ++i) {
            const QModelIndex index = model->index(row, HourColumn + i, parent);
            model->setData(index, counts[i]);
            model->setData(index, int(Qt::AlignRight | Qt::AlignVCenter), Qt::TextAlignmentRole);
        }
    };
    for (int row = 0; row < priorities.size(); ++row) {
        const Event::Priority priority = priorities[row].priority;
        const QModelIndex priorityIndex = model->index(row, PriorityColumn);
        model->setData(priorityIndex, dictionary.priorityText(priority));
        m_priorities.insert(priorityIndex, priority);

        const QHash<QString, WindowCounts> &sources = counts[priority];
        model->insertRows(0, sources.size(), priorityIndex);
        model->insertColumns(0, ColumnCount, priorityIndex);
        const QVector<NamedSource> named = sourcesByName(sources, dictionary);
        for (int child = 0; child < named.size(); ++child) {
            const QModelIndex sourceIndex = model->index(child, SourceColumn, priorityIndex);
            model->setData(sourceIndex, named[child].name);
            setCounts(priorityIndex, child, sources.value(named[child].key));
            m_sources.insert(sourceIndex, named[child].key);
        }
        model->setData(model->index(row, SourceColumn), QStringLiteral("-"));
        setCounts(QModelIndex(), row, priorities[row].total);
    }

    QStandardItemModel *old = m_model;
    m_model = model;
    ui->treeView->setModel(model);
    delete old;
    ui->treeView->expandAll();
    for (int column = 0; column < ColumnCount; ++column)
        ui->treeView->resizeColumnToContents(column);
    // Spare width goes to the names, so that the counts stay next to them.
    QHeaderView *header = ui->treeView->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(SourceColumn, QHeaderView::Stretch);
    show();
}

void SummaryDialog::onDoubleClicked(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    const QModelIndex parent = index.parent();
    if (parent.isValid()) {
        Q_EMIT filterRequest(m_priorities.value(parent.sibling(parent.row(), PriorityColumn)),
                             m_sources.value(index.sibling(index.row(), SourceColumn)));
    } else {
        Q_EMIT filterRequest(m_priorities.value(index.sibling(index.row(), PriorityColumn)), QString());
    }
}
