// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// A filter built from the input's first line, matched against the event of its second.
// Whatever the criteria, matching must not fail, an empty filter passes everything,
// and dropping a criterion never turns a pass into a rejection.

#include "FuzzTarget.h"

#include "AuxParRegistry.h"
#include "Event.h"
#include "FilterPack.h"
#include "LineParser.h"

#include <climits>
#include <cstring>

namespace
{
using fuzzsupport::FuzzInput;

QString text(FuzzInput &input, int maxLength = 24)
{
    return input.takeText(maxLength);
}

QDateTime time(FuzzInput &input)
{
    const qint64 seconds = input.takeInt(-100000000000LL, 100000000000LL);
    const int offset = int(input.takeInt(-14 * 3600, 14 * 3600));
    return input.takeBool() ? QDateTime::fromSecsSinceEpoch(seconds, Qt::OffsetFromUTC, offset)
                            : QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QVariant value(FuzzInput &input)
{
    switch (input.takeInt(0, 5)) {
    case 0: return QVariant(input.takeBool());
    case 1: return QVariant(int(input.takeInt(INT_MIN, INT_MAX)));
    case 2: return QVariant(qlonglong(input.takeInt(LLONG_MIN, LLONG_MAX)));
    case 3: return QVariant(input.takeDouble());
    case 4: return QVariant(time(input));
    default: return QVariant(text(input));
    }
}

FilterPack pack(FuzzInput &input)
{
    FilterPack pack;
    pack.name = text(input);
    pack.from = time(input);
    pack.to = time(input);
    pack.id = text(input);
    for (int n = int(input.takeInt(0, 3)); n > 0; --n)
        pack.eventTypes.append(text(input));
    pack.typeExcludes = text(input);
    pack.nameContains = text(input);
    pack.nameExcludes = text(input);
    for (int n = int(input.takeInt(0, 4)); n > 0; --n)
        pack.priorities.append(int(input.takeInt(-1, 9)));
    pack.search = text(input, 40);
    for (bool FilterPack::*flag : {&FilterPack::checkFrom, &FilterPack::checkTo, &FilterPack::checkId,
                                   &FilterPack::checkEventTypes, &FilterPack::checkTypeExcludes,
                                   &FilterPack::checkNameContains, &FilterPack::checkNameExcludes,
                                   &FilterPack::checkPriorities, &FilterPack::checkSearch, &FilterPack::caseSensitive,
                                   &FilterPack::wholeWord})
        pack.*flag = input.takeBool();
    const AuxParRegistry &registry = AuxParRegistry::instance();
    for (int n = int(input.takeInt(0, 3)); n > 0; --n)
        pack.auxConditions.insert(int(input.takeInt(0, registry.count() - 1)), value(input));
    const QVector<CustomParameter> &custom = registry.customParameters();
    for (int n = int(input.takeInt(0, 2)); n > 0; --n) {
        const QString name = custom.isEmpty() || input.takeBool()
            ? text(input)
            : custom.at(int(input.takeInt(0, custom.size() - 1))).name;
        pack.customConditions.insert(name, value(input));
    }
    return pack;
}
}

NIMB_FUZZ_TARGET(filtermatch)
{
    fuzzsupport::setUp();
    const char *bytes = reinterpret_cast<const char *>(data);
    const char *feed = static_cast<const char *>(std::memchr(bytes, '\n', size));
    const size_t criteria = feed ? size_t(feed - bytes) : size;
    const QByteArray line = feed ? QByteArray(feed + 1, int(size - criteria - 1)) : QByteArray();
    const std::unique_ptr<Event> event = LineParser::parseLine(line);
    if (!event)
        return 0;

    FuzzInput input(data, criteria);
    const FilterPack filter = pack(input);
    const bool passes = filter.match(*event);
    const bool found = filter.searchMatch(*event);
    if (filter.checkSearch && passes)
        FUZZ_CHECK(found);

    FilterPack copy = filter;
    FUZZ_CHECK(copy == filter);
    FUZZ_CHECK(copy.match(*event) == passes);

    if (passes) {
        // Every criterion dropped in turn: the event still passes.
        for (bool FilterPack::*flag : {&FilterPack::checkFrom, &FilterPack::checkTo, &FilterPack::checkId,
                                       &FilterPack::checkEventTypes, &FilterPack::checkTypeExcludes,
                                       &FilterPack::checkNameContains, &FilterPack::checkNameExcludes,
                                       &FilterPack::checkPriorities, &FilterPack::checkSearch}) {
            FilterPack looser = filter;
            looser.*flag = false;
            FUZZ_CHECK(looser.match(*event));
        }
        FilterPack looser = filter;
        looser.auxConditions.clear();
        looser.customConditions.clear();
        FUZZ_CHECK(looser.match(*event));
    }
    FUZZ_CHECK(FilterPack().match(*event));
    return 0;
}
