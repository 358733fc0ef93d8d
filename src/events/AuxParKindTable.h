// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QtGlobal>

// The 55 built-in auxiliary parameter kinds in one table. Type numbers follow the
// alphabetical order of the journal keys, so the row index is the type number.

enum class AuxParFamily { Integer, LongLong, Mac, Signal, Source, String, Time, Bool };

enum class AuxParEditor {
    FamilyDefault,
    Spin,        // spin box 0..spinMax
    MacLabel,    // line edit with the label placeholder
    Categories,  // line edit for a category set
};

struct AuxParKindInfo {
    int type;
    const char *key;
    const char *label;     // translated in the QObject context
    AuxParFamily family;
    AuxParEditor editor;
    int spinMax;
    const char *trueWord;  // boolean kinds only, QObject context
    const char *falseWord;
};

inline constexpr AuxParKindInfo kAuxParKinds[] = {
#define NIMB_AUX_KIND(type, className, key, label, family, editor, spinMax, trueWord, falseWord) \
    {type, key, label, AuxParFamily::family, AuxParEditor::editor, spinMax, trueWord, falseWord},
#include "AuxParKinds.def"
#undef NIMB_AUX_KIND
};

inline constexpr int kAuxParKindCount = int(sizeof(kAuxParKinds) / sizeof(kAuxParKinds[0]));
static_assert(kAuxParKindCount == 55, "every built-in parameter kind has a row");

constexpr bool auxParRowsInOrder(int i = 0)
{
    return i == kAuxParKindCount || (kAuxParKinds[i].type == i && auxParRowsInOrder(i + 1));
}
static_assert(auxParRowsInOrder(), "a row's index is its type number");

// Type numbers that other code addresses directly.
namespace AuxParId
{
enum : int {
    OnSudo = 29,
    EndTime = 10,
    Host = 16,
    Result = 36,
    Signal = 38,
    Source = 39,
    StartTime = 40,
    State = 41,
    Success = 43,
    Time = 46,
    TypeEn = 47,
    TypeRu = 48,
    Undefined = 50,
    UnixTime = 52,
};
}
