// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include "FilterPack.h"

#include <QString>
#include <QVariant>

class QCommandLineParser;

// Command-line options that describe a FilterPack. Kept on their own so that any tool
// taking a filter on its command line reads it the same way as nimb-events.
namespace FilterOptions
{
void addTo(QCommandLineParser &parser);

// Whether any filter option was given at all (then a filtering parser is needed).
bool anyGiven(const QCommandLineParser &parser);

// Fills the pack from the parsed options; false with a message naming the bad option.
bool build(const QCommandLineParser &parser, FilterPack *pack, QString *error);

// A priority given as a journal word ("err", "warning", "informational"...) or a number 1-8;
// Event::Unknown when the text is neither.
Event::Priority parsePriority(const QString &text);

// "key=value" for a built-in parameter: the type number and the value in the form the
// parsed parameter carries it (number, boolean or text). False with a message otherwise.
bool parseParameterCondition(const QString &assignment, int *type, QVariant *value, QString *error);
}
