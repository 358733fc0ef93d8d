// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AuxPar.h"
#include "AuxParKindTable.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <array>
#include <memory>

// One declared custom parameter: its journal key and its label in the system language.
struct CustomParameter {
    QString name;
    QString label;
};

// The prototypes of the 55 built-in kinds and the site's custom parameters.
// Built once on first use and read-only afterwards, so worker threads share it freely.
class AuxParRegistry
{
public:
    static const AuxParRegistry &instance();

    // A registry reading custom parameters from the given directory (tests use this).
    explicit AuxParRegistry(const QString &customParametersDir);
    ~AuxParRegistry();
    AuxParRegistry(const AuxParRegistry &) = delete;
    AuxParRegistry &operator=(const AuxParRegistry &) = delete;

    static constexpr int count() { return kAuxParKindCount; }
    const AuxPar *prototype(int type) const;
    // Type number of a journal key, or -1 when no built-in kind has that key.
    int typeOf(const QString &key) const;
    std::unique_ptr<AuxPar> create(int type) const;

    // Kinds that take no part in conditions or keyword search (times and types).
    static bool isExcludedFromMatching(int type);

    const QVector<CustomParameter> &customParameters() const { return m_custom; }
    bool isCustom(const QString &name) const { return m_customLabels.contains(name); }
    QString customLabel(const QString &name) const;

private:
    std::array<std::unique_ptr<AuxPar>, kAuxParKindCount> m_prototypes;
    QHash<QString, int> m_types;
    QVector<CustomParameter> m_custom;
    QHash<QString, QString> m_customLabels;
};
