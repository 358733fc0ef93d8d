// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParRegistry.h"

#include "AuxParKinds.h"
#include "Language.h"
#include "SystemPaths.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace
{
template<int... Types>
void fillPrototypes(std::array<std::unique_ptr<AuxPar>, kAuxParKindCount> &prototypes,
                    std::integer_sequence<int, Types...>)
{
    ((prototypes[Types] = std::make_unique<AuxParKind<Types>>()), ...);
}

QVector<CustomParameter> readCustomParameters(const QString &dirPath)
{
    QVector<CustomParameter> result;
    QDir dir(dirPath);
    if (!dir.exists())
        return result;
    // Sorted so that the order does not depend on the file system.
    const QStringList files = dir.entryList(QDir::Files, QDir::Name);
    for (const QString &fileName : files) {
        QFile file(dir.filePath(fileName));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
        if (!document.isArray())
            continue;
        const QJsonArray array = document.array();
        for (const QJsonValue &element : array) {
            const QJsonObject object = element.toObject();
            if (object.isEmpty() || !object.contains(QLatin1String("name")))
                continue;
            CustomParameter parameter;
            parameter.name = object.value(QLatin1String("name")).toString().simplified();
            if (parameter.name.isEmpty())
                continue;
            const QString language = Language::textLanguageName();
            // Without a label in that language the key itself is the most honest label.
            parameter.label = object.contains(language) ? object.value(language).toString() : parameter.name;
            result.append(parameter);
        }
    }
    return result;
}
}

const AuxParRegistry &AuxParRegistry::instance()
{
    static const AuxParRegistry registry(SystemPaths::customParametersDir());
    return registry;
}

AuxParRegistry::AuxParRegistry(const QString &customParametersDir)
{
    fillPrototypes(m_prototypes, std::make_integer_sequence<int, kAuxParKindCount>());
    for (const auto &prototype : m_prototypes)
        m_types.insert(prototype->key(), prototype->typeId());
    const QVector<CustomParameter> custom = readCustomParameters(customParametersDir);
    for (const CustomParameter &parameter : custom) {
        if (m_customLabels.contains(parameter.name))
            continue;
        m_custom.append(parameter);
        m_customLabels.insert(parameter.name, parameter.label);
    }
}

AuxParRegistry::~AuxParRegistry() = default;

const AuxPar *AuxParRegistry::prototype(int type) const
{
    if (type < 0 || type >= kAuxParKindCount)
        return nullptr;
    return m_prototypes[type].get();
}

int AuxParRegistry::typeOf(const QString &key) const
{
    return m_types.value(key, -1);
}

std::unique_ptr<AuxPar> AuxParRegistry::create(int type) const
{
    const AuxPar *proto = prototype(type);
    return std::unique_ptr<AuxPar>(proto ? proto->clone() : nullptr);
}

bool AuxParRegistry::isExcludedFromMatching(int type)
{
    switch (type) {
    case AuxParId::EndTime:
    case AuxParId::StartTime:
    case AuxParId::Time:
    case AuxParId::TypeEn:
    case AuxParId::TypeRu:
    case AuxParId::UnixTime:
        return true;
    default:
        return false;
    }
}

QString AuxParRegistry::customLabel(const QString &name) const
{
    return m_customLabels.value(name, name);
}
