// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "Event.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>

// The process-wide name tables that turn journal codes into display texts.
// Complete after construction and never changed, so any thread may read it.
class Dictionary : public QObject
{
    Q_OBJECT
public:
    // Built on first call from the installed event descriptions and sources.
    static const Dictionary &instance();

    // A dictionary built from the given directories (tests use this).
    Dictionary(const QString &eventSettingsDir, const QString &sourcesDir, QObject *parent = nullptr);

    const QMap<Event::Priority, QString> &priorities() const { return m_priorities; }
    QString priorityText(Event::Priority priority) const { return m_priorities.value(priority); }
    bool hasPriority(Event::Priority priority) const { return m_priorities.contains(priority); }

    const QHash<QString, int> &months() const { return m_months; }
    int month(const QString &abbreviation) const { return m_months.value(abbreviation, 0); }

    const QMap<int, QString> &signalNames() const { return m_signals; }
    QString signalName(int number) const { return m_signals.value(number); }

    // Group directory name -> group display name in the system language.
    const QMap<QString, QString> &eventTypes() const { return m_eventTypes; }
    QString eventTypeText(const QString &group) const { return m_eventTypes.value(group); }

    // Source key -> display text in the system language.
    const QMap<QString, QString> &sources() const { return m_sources; }
    QString sourceText(const QString &source) const { return m_sources.value(source); }
    bool hasSource(const QString &source) const { return m_sources.contains(source); }

    // The key under which events of unknown sources are counted.
    static QString unrecognizedSource() { return QStringLiteral("unrecognized"); }
    // What an unknown source is shown as: the table's own entry when it has one.
    QString unrecognizedSourceText() const;

private:
    void fillPriorities();
    void fillMonths();
    void fillSignals();
    void readEventTypes(const QString &dirPath, const QString &languageKey);
    void readSources(const QString &dirPath);

    QMap<Event::Priority, QString> m_priorities;
    QHash<QString, int> m_months;
    QMap<int, QString> m_signals;
    QMap<QString, QString> m_eventTypes;
    QMap<QString, QString> m_sources;
};
