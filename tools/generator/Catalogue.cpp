// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "Catalogue.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

static void initCatalogueResource()
{
    // The library is static: without an explicit reference the linker drops the resource.
    Q_INIT_RESOURCE(catalogue);
}

namespace nimbgen
{

namespace
{
// Events of this group carry no type: the viewer lists type-less events as custom events.
const char kUntypedGroup[] = "custom-events";

QJsonDocument readJson(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll());
}

QByteArray utf8(const QJsonValue &value)
{
    return value.toString().toUtf8();
}
}

int levelOfPriorityWord(const QString &word)
{
    static const char *const words[][2] = {
        {"emergency", "emerg"}, {"alert", nullptr}, {"critical", "crit"}, {"error", "err"},
        {"warning", nullptr}, {"notice", nullptr}, {"info", "informational"}, {"debug", nullptr}};
    for (int i = 0; i < 8; ++i) {
        if (word == QLatin1String(words[i][0]) || (words[i][1] && word == QLatin1String(words[i][1])))
            return i + 1;
    }
    return 0;
}

Catalogue Catalogue::load(const QString &root)
{
    Catalogue catalogue;

    const QDir groupsDir(root + QStringLiteral("/usr/share/syslog-ng-mod-velmo/event-settings"));
    const QStringList groupNames = groupsDir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : groupNames) {
        const QJsonObject object = readJson(groupsDir.filePath(name + QLatin1Char('/') + name)).object();
        const QJsonObject params = object.value(QLatin1String("group-params")).toObject();
        CatalogueGroup group;
        group.directory = name;
        group.typeEn = utf8(params.value(QLatin1String("name_en")));
        group.typeRu = utf8(params.value(QLatin1String("name_ru")));
        group.source = utf8(params.value(QLatin1String("source")));
        group.facility = utf8(params.value(QLatin1String("facility")));
        group.typed = name != QLatin1String(kUntypedGroup);
        if (group.source.isEmpty())
            group.source = "velmo-" + name.toUtf8();
        if (group.facility.isEmpty())
            group.facility = "user";

        const QJsonArray events = object.value(QLatin1String("events")).toArray();
        for (const QJsonValue &value : events) {
            const QJsonObject e = value.toObject();
            CatalogueEvent event;
            event.messageId = utf8(e.value(QLatin1String("message_id")));
            if (event.messageId.isEmpty())
                continue;
            event.nameEn = utf8(e.value(QLatin1String("name_en")));
            event.nameRu = utf8(e.value(QLatin1String("name_ru")));
            const int level = levelOfPriorityWord(e.value(QLatin1String("priority")).toString());
            event.level = level ? level : 7;
            const QJsonArray parameters = e.value(QLatin1String("parameters")).toArray();
            for (const QJsonValue &p : parameters)
                event.parameters.append(p.toString());
            group.events.push_back(event);
        }
        if (!group.events.empty())
            catalogue.groups.push_back(group);
    }

    const QDir sourcesDir(root + QStringLiteral("/etc/nimb-event-viewer/sources"));
    const QStringList sourceFiles = sourcesDir.entryList(QDir::Files, QDir::Name);
    for (const QString &file : sourceFiles) {
        const QJsonArray array = readJson(sourcesDir.filePath(file)).array();
        for (const QJsonValue &value : array) {
            const QString name = value.toObject().value(QLatin1String("name")).toString();
            if (!name.isEmpty())
                catalogue.sources.append(name);
        }
    }

    const QDir empDir(root + QStringLiteral("/etc/nimb-event-viewer/emp"));
    const QStringList empFiles = empDir.entryList(QDir::Files, QDir::Name);
    for (const QString &file : empFiles) {
        const QJsonArray array = readJson(empDir.filePath(file)).array();
        for (const QJsonValue &value : array) {
            const QString name = value.toObject().value(QLatin1String("name")).toString().simplified();
            if (!name.isEmpty())
                catalogue.customParameters.append(name);
        }
    }
    return catalogue;
}

Catalogue Catalogue::builtIn()
{
    initCatalogueResource();
    return load(QStringLiteral(":/nimb-gen/sysroot"));
}

bool Catalogue::isEmpty() const
{
    return groups.empty();
}

}
