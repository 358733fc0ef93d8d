// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AuxParFamilies.h"

#include <QCoreApplication>
#include <type_traits>

// Leaf kinds: one class per row of the kind table, generated from the row so that
// the 55 kinds cannot drift apart. Each adds identity (type, key, label) and copying.

template<AuxParFamily F>
using AuxParFamilyClass = std::conditional_t<F == AuxParFamily::Integer, AuxParBaseInteger,
    std::conditional_t<F == AuxParFamily::LongLong, AuxParBaseLongLong,
    std::conditional_t<F == AuxParFamily::Mac, AuxParBaseMac,
    std::conditional_t<F == AuxParFamily::Signal, AuxParBaseSignal,
    std::conditional_t<F == AuxParFamily::Source, AuxParBaseSource,
    std::conditional_t<F == AuxParFamily::String, AuxParBaseString,
    std::conditional_t<F == AuxParFamily::Time, AuxParBaseTime, AuxParBaseBool>>>>>>>;

template<int Type>
class AuxParKind final : public AuxParFamilyClass<kAuxParKinds[Type].family>
{
public:
    int typeId() const override { return Type; }

    QString key() const override
    {
        static const QString key = QString::fromLatin1(kAuxParKinds[Type].key);
        return key;
    }

    QString label() const override
    {
        return QCoreApplication::translate("QObject", kAuxParKinds[Type].label);
    }

    AuxPar *clone() const override { return new AuxParKind(*this); }
};

// The named leaf classes, AuxParAccountType to AuxParVendorId.
#define NIMB_AUX_KIND(type, className, ...) using className = AuxParKind<type>;
#include "AuxParKinds.def"
#undef NIMB_AUX_KIND
