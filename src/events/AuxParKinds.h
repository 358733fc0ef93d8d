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

using AuxParAccountType = AuxParKind<0>;
using AuxParAction = AuxParKind<1>;
using AuxParArgs = AuxParKind<2>;
using AuxParAuid = AuxParKind<3>;
using AuxParCategories = AuxParKind<4>;
using AuxParCmdArgs = AuxParKind<5>;
using AuxParCommand = AuxParKind<6>;
using AuxParConnection = AuxParKind<7>;
using AuxParDeny = AuxParKind<8>;
using AuxParDirectory = AuxParKind<9>;
using AuxParEndTime = AuxParKind<10>;
using AuxParExe = AuxParKind<11>;
using AuxParFile = AuxParKind<12>;
using AuxParGateway = AuxParKind<13>;
using AuxParGid = AuxParKind<14>;
using AuxParGroup = AuxParKind<15>;
using AuxParHost = AuxParKind<16>;
using AuxParInterface = AuxParKind<17>;
using AuxParIpAddress = AuxParKind<18>;
using AuxParIpAddressOld = AuxParKind<19>;
using AuxParKey = AuxParKind<20>;
using AuxParLevel = AuxParKind<21>;
using AuxParManufacturer = AuxParKind<22>;
using AuxParMode = AuxParKind<23>;
using AuxParModule = AuxParKind<24>;
using AuxParNameServer = AuxParKind<25>;
using AuxParNetMask = AuxParKind<26>;
using AuxParObj = AuxParKind<27>;
using AuxParObjNew = AuxParKind<28>;
using AuxParOnSudoBool = AuxParKind<29>;
using AuxParPackage = AuxParKind<30>;
using AuxParPath = AuxParKind<31>;
using AuxParPid = AuxParKind<32>;
using AuxParPpid = AuxParKind<33>;
using AuxParProductId = AuxParKind<34>;
using AuxParProductName = AuxParKind<35>;
using AuxParResultBool = AuxParKind<36>;
using AuxParSerialNumber = AuxParKind<37>;
using AuxParSignal = AuxParKind<38>;
using AuxParSource = AuxParKind<39>;
using AuxParStartTime = AuxParKind<40>;
using AuxParStateBool = AuxParKind<41>;
using AuxParSubj = AuxParKind<42>;
using AuxParSuccessBool = AuxParKind<43>;
using AuxParTally = AuxParKind<44>;
using AuxParTerminal = AuxParKind<45>;
using AuxParTime = AuxParKind<46>;
using AuxParTypeEn = AuxParKind<47>;
using AuxParTypeRu = AuxParKind<48>;
using AuxParUid = AuxParKind<49>;
using AuxParUndefined = AuxParKind<50>;
using AuxParUniqueId = AuxParKind<51>;
using AuxParUnixTime = AuxParKind<52>;
using AuxParUser = AuxParKind<53>;
using AuxParVendorId = AuxParKind<54>;
