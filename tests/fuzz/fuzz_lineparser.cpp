// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

// One journal line: the full parse and the quick acceptance used by counting must
// always agree, and an accepted event must be printable in every way the views use.

#include "FuzzTarget.h"

#include "Event.h"
#include "LineParser.h"

NIMB_FUZZ_TARGET(lineparser)
{
    fuzzsupport::setUp();
    // Borrowed, not copied: reading past the end is then the sanitizer's to catch.
    const QByteArray line = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    const bool accepted = LineParser::acceptsLine(line);
    const std::unique_ptr<Event> event = LineParser::parseLine(line);
    FUZZ_CHECK(accepted == (event != nullptr));
    if (event) {
        FUZZ_CHECK(event->parameters.contains(AuxParId::Host));
        FUZZ_CHECK(event->parameters.contains(AuxParId::Source));
        FUZZ_CHECK(event->parameters.contains(AuxParId::Undefined));
        event->parameterList();
        event->copyLine();
        event->typeText();
        event->eventName();
        event->sourceText();
        event->priorityText();
        event->time.toString(Qt::ISODate);
    }
    if (size < 64)
        LineParser::parseLegacyDate(QString::fromUtf8(line));
    return 0;
}
