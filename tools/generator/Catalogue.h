// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace nimbgen
{

// One kind of event as the installed event descriptions declare it.
struct CatalogueEvent {
    QByteArray messageId;
    QByteArray nameEn;
    QByteArray nameRu;
    int level = 7;              // 1 emergency .. 8 debug, the usual severity of the event
    QStringList parameters;     // journal keys the event carries, in the order they are written
};

struct CatalogueGroup {
    QString directory;
    QByteArray typeEn;          // the group's display names double as the events' type texts
    QByteArray typeRu;
    QByteArray source;          // member name of "MSG"
    QByteArray facility;
    bool typed = true;
    std::vector<CatalogueEvent> events;
};

// The events, message sources and custom parameters of one system tree. The demo tree
// is compiled in, so the generated journal always matches the demo descriptions.
class Catalogue
{
public:
    // Reads <root>/usr/share/syslog-ng-mod-velmo/event-settings, <root>/etc/nimb-event-viewer/sources
    // and <root>/etc/nimb-event-viewer/emp. Unreadable pieces are left out.
    static Catalogue load(const QString &root);
    static Catalogue builtIn();

    bool isEmpty() const;

    std::vector<CatalogueGroup> groups;
    QStringList sources;
    QStringList customParameters;
};

// Severity level of a word of the "PRIORITY" key; 0 for anything else.
int levelOfPriorityWord(const QString &word);

}
