#include "PriorityItem.h"

PriorityItem::PriorityItem(Event::Priority priority, const QString &text, QListWidget *parent)
    : QListWidgetItem(text, parent, Type), m_priority(priority)
{
    setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    setCheckState(Qt::Unchecked);
}
