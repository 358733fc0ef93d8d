// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "AuxPar.h"
#include "AuxParKindTable.h"

// The eight value families. Each sets a default value that makes a fresh parameter
// invalid, and implements validity, rendering and the filter editor; leaf kinds
// add only their identity (see AuxParKinds.h).

class AuxParFamilyBase : public AuxPar
{
public:
    using AuxPar::AuxPar;

protected:
    const AuxParKindInfo &kind() const { return kAuxParKinds[typeId()]; }
};

class AuxParBaseInteger : public AuxParFamilyBase
{
public:
    AuxParBaseInteger() : AuxParFamilyBase(QVariant(-1)) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;
};

class AuxParBaseLongLong : public AuxParFamilyBase
{
public:
    AuxParBaseLongLong() : AuxParFamilyBase(QVariant(-1)) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;

    // Shared with the journal reader, which must decide acceptance the same way.
    static bool carriesValue(const QVariant &value);
};

class AuxParBaseMac : public AuxParFamilyBase
{
public:
    AuxParBaseMac() : AuxParFamilyBase(QVariant(QString())) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;
};

class AuxParBaseSignal : public AuxParFamilyBase
{
public:
    AuxParBaseSignal() : AuxParFamilyBase(QVariant(-1)) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;
};

class AuxParBaseSource : public AuxParFamilyBase
{
public:
    AuxParBaseSource() : AuxParFamilyBase(QVariant(QString())) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;
};

class AuxParBaseString : public AuxParFamilyBase
{
public:
    AuxParBaseString() : AuxParFamilyBase(QVariant(QString())) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;
};

class AuxParBaseTime : public AuxParFamilyBase
{
public:
    AuxParBaseTime() : AuxParFamilyBase(QVariant()) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;

    static bool carriesValue(const QVariant &value);
};

class AuxParBaseBool : public AuxParFamilyBase
{
public:
    AuxParBaseBool() : AuxParFamilyBase(QVariant(-1)) {}
    bool isValid() const override;
    QString toString() const override;
    QWidget *createEditor() const override;
};
