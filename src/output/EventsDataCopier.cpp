// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "EventsDataCopier.h"

#include "AuxParKindTable.h"
#include "Dictionary.h"
#include "EventsSelection.h"
#include "JournalRows.h"
#include "Language.h"
#include "LineParser.h"
#include "OutputFile.h"
#include "OutputProgress.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <deque>
#include <future>
#include <thread>

namespace
{
// Journal bytes parsed by one thread at a time: large enough that starting the
// threads is lost in the work, small enough that memory stays flat.
constexpr qint64 kParseBatchBytes = 1024 * 1024;
constexpr qint64 kRawBatchBytes = 4 * 1024 * 1024;

// The journal's own priority words (not the display words).
const char *priorityWord(Event::Priority priority)
{
    static const char *const words[] = {"", "emergency", "alert", "crit", "error", "warning", "notice", "info", "debug"};
    const int value = static_cast<int>(priority);
    return value >= 0 && value <= 8 ? words[value] : "";
}

// Appends the text as UTF-8, passing each ASCII character through `ascii(c, cursor)`,
// which writes it (escaped or not) and returns the new cursor. One pass, no temporary
// byte array: formatting every value of a large journal is a hot path.
template<typename Ascii>
void appendUtf8(QByteArray &out, const QString &text, Ascii ascii)
{
    const int size = text.size();
    const int start = out.size();
    // The longest escape takes six bytes for one character.
    out.resize(start + 6 * size);
    char *cursor = out.data() + start;
    const QChar *chars = text.constData();
    for (int i = 0; i < size; ++i) {
        const char16_t c = chars[i].unicode();
        if (c < 0x80) {
            cursor = ascii(static_cast<char>(c), cursor);
        } else if (c < 0x800) {
            *cursor++ = static_cast<char>(0xc0 | (c >> 6));
            *cursor++ = static_cast<char>(0x80 | (c & 0x3f));
        } else if (QChar::isHighSurrogate(c) && i + 1 < size && chars[i + 1].isLowSurrogate()) {
            const char32_t code = QChar::surrogateToUcs4(c, chars[++i].unicode());
            *cursor++ = static_cast<char>(0xf0 | (code >> 18));
            *cursor++ = static_cast<char>(0x80 | ((code >> 12) & 0x3f));
            *cursor++ = static_cast<char>(0x80 | ((code >> 6) & 0x3f));
            *cursor++ = static_cast<char>(0x80 | (code & 0x3f));
        } else {
            // A lone surrogate has no UTF-8 form: the replacement character stands for it.
            const char16_t code = QChar::isSurrogate(c) ? char16_t(0xfffd) : c;
            *cursor++ = static_cast<char>(0xe0 | (code >> 12));
            *cursor++ = static_cast<char>(0x80 | ((code >> 6) & 0x3f));
            *cursor++ = static_cast<char>(0x80 | (code & 0x3f));
        }
    }
    out.resize(static_cast<int>(cursor - out.constData()));
}

char *jsonAscii(char c, char *cursor)
{
    static const char hex[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && c != '"' && c != '\\') {
        *cursor++ = c;
        return cursor;
    }
    *cursor++ = '\\';
    switch (c) {
    case '"':
    case '\\':
        *cursor++ = c;
        break;
    case '\n':
        *cursor++ = 'n';
        break;
    case '\r':
        *cursor++ = 'r';
        break;
    case '\t':
        *cursor++ = 't';
        break;
    case '\b':
        *cursor++ = 'b';
        break;
    case '\f':
        *cursor++ = 'f';
        break;
    default:
        *cursor++ = 'u';
        *cursor++ = '0';
        *cursor++ = '0';
        *cursor++ = hex[byte >> 4];
        *cursor++ = hex[byte & 0xf];
    }
    return cursor;
}

void appendJsonText(QByteArray &out, const QString &text)
{
    appendUtf8(out, text, jsonAscii);
}

// Every family finds an empty value invalid; testing for one first spares the
// family's conversions for the many kinds an event does not carry.
bool carriesValue(const AuxPar &parameter)
{
    return parameter.value().isValid() && parameter.isValid();
}

// `"key":"value",`
void appendJsonMember(QByteArray &out, const QString &key, const QString &value)
{
    out.append('"');
    appendJsonText(out, key);
    out.append("\":\"");
    appendJsonText(out, value);
    out.append("\",");
}

void appendJsonEvent(QByteArray &out, const Event &event)
{
    out.append("{\"PRIORITY\":\"");
    out.append(priorityWord(event.priority));
    out.append("\",\"MSG\":{\"");
    appendJsonText(out, event.source());
    out.append("\":{");
    if (!event.messageId.isEmpty())
        appendJsonMember(out, QStringLiteral("message_id"), event.messageId);
    if (!event.nameEn.isEmpty())
        appendJsonMember(out, QStringLiteral("name_en"), event.nameEn);
    if (Language::isRussian() && !event.nameRu.isEmpty())
        appendJsonMember(out, QStringLiteral("name_ru"), event.nameRu);
    event.parameters.forEach([&out](const AuxPar &parameter) {
        const int type = parameter.typeId();
        if (type == AuxParId::Host || type == AuxParId::Source || !carriesValue(parameter))
            return;
        // Built-in keys are plain identifiers: nothing to escape.
        out.append('"');
        out.append(kAuxParKinds[type].key);
        out.append("\":\"");
        appendJsonText(out, parameter.toString());
        out.append("\",");
    });
    for (auto it = event.customParameters.cbegin(); it != event.customParameters.cend(); ++it) {
        if (!it.value().isEmpty())
            appendJsonMember(out, it.key(), it.value());
    }
    if (out.endsWith(','))
        out.chop(1);
    out.append("}},\"ISODATE\":\"");
    appendJsonText(out, event.time.toString(Qt::ISODate));
    out.append("\",\"HOST\":\"");
    appendJsonText(out, event.host());
    out.append("\",\"FACILITY\":\"");
    appendJsonText(out, event.facility);
    out.append("\"}");
}

// The quotation marks around every field stay; one inside a field is doubled.
void appendCsvField(QByteArray &out, const QString &text)
{
    out.append('"');
    appendUtf8(out, text, [](char c, char *cursor) {
        if (c == '"')
            *cursor++ = '"';
        *cursor++ = c;
        return cursor;
    });
    out.append('"');
}

QByteArray csvHeader(const Event *first)
{
    QByteArray out;
    appendCsvField(out, EventsDataCopier::tr("Date and time"));
    out.append(',');
    appendCsvField(out, EventsDataCopier::tr("Severity"));
    out.append(',');
    appendCsvField(out, EventsDataCopier::tr("Source"));
    out.append(',');
    appendCsvField(out, EventsDataCopier::tr("Event name"));
    if (first) {
        first->parameters.forEach([&out](const AuxPar &parameter) {
            if (parameter.typeId() == AuxParId::Source)
                return;
            out.append(',');
            appendCsvField(out, parameter.label());
        });
    }
    out.append('\n');
    return out;
}

void appendCsvRow(QByteArray &out, const Event &event)
{
    appendCsvField(out, event.time.toString(Qt::ISODate));
    out.append(',');
    appendCsvField(out, event.priorityText());
    out.append(',');
    appendCsvField(out, event.sourceText());
    out.append(',');
    appendCsvField(out, event.eventName());
    event.parameters.forEach([&out](const AuxPar &parameter) {
        if (parameter.typeId() == AuxParId::Source)
            return;
        if (carriesValue(parameter)) {
            out.append(',');
            appendCsvField(out, parameter.toString());
        } else {
            out.append(",\"\"");
        }
    });
    out.append('\n');
}

// How one format lays events out. Events are written one after the other; what goes
// before the first and after the last depends on whether there was any.
struct Layout {
    // One event, with whatever separates it from the one before.
    void (*event)(QByteArray &out, const Event &event);
    // Bytes before the first event, given it (null: there is none).
    QByteArray (*head)(const Event *first);
    // Leading bytes of the first event's text that are dropped.
    int firstEventSkip;
    // Bytes after the last event, given whether there was any.
    QByteArray (*tail)(bool anyEvent);
};

const Layout kJsonLayout{
    [](QByteArray &out, const Event &event) {
        // A separator before every event; the first one's is dropped.
        out.append(",\n");
        appendJsonEvent(out, event);
    },
    [](const Event *) { return QByteArray("[\n"); },
    2,
    [](bool anyEvent) { return QByteArray(anyEvent ? "\n]\n" : "]\n"); },
};

const Layout kCsvLayout{
    appendCsvRow,
    csvHeader,
    0,
    [](bool) { return QByteArray(); },
};

// The formatted events of one batch.
struct Formatted {
    QByteArray text;
    QByteArray head;
    bool anyEvent = false;
    int events = 0;
    // Rows up to the end of the batch.
    std::size_t rowsRead = 0;
};

void formatBatch(const Layout &layout, const JournalRows::Batch &batch, bool needHead, Formatted &result)
{
    result.text.reserve(batch.text.size() + batch.text.size() / 2);
    for (std::size_t i = 0; i < batch.lineCount(); ++i) {
        const std::unique_ptr<Event> event = LineParser::parseLine(batch.line(i));
        if (!event)
            continue;
        event->number = static_cast<quint32>(batch.rows[i]) + 1;
        if (needHead && !result.anyEvent)
            result.head = layout.head(event.get());
        result.anyEvent = true;
        ++result.events;
        layout.event(result.text, *event);
    }
    if (!batch.rows.empty())
        result.rowsRead = batch.rows.back() + 1;
}

// Writes formatted text in order, with the layout's head before the first event and
// its tail at the end.
class LayoutWriter
{
public:
    LayoutWriter(const Layout &layout, OutputFile &file)
        : m_layout(layout)
        , m_file(file)
    {
    }

    bool needsHead() const { return !m_headWritten; }

    bool write(const Formatted &formatted)
    {
        if (!formatted.anyEvent)
            return true;
        m_events += formatted.events;
        if (m_headWritten)
            return m_file.write(formatted.text);
        m_headWritten = true;
        return m_file.write(formatted.head)
            && m_file.write(formatted.text.constData() + m_layout.firstEventSkip,
                            formatted.text.size() - m_layout.firstEventSkip);
    }

    // The number of events written, or -1 when the file failed.
    int finish()
    {
        const bool anyEvent = m_headWritten;
        if (!m_headWritten)
            m_file.write(m_layout.head(nullptr));
        m_file.write(m_layout.tail(anyEvent));
        return m_file.failed() ? -1 : m_events;
    }

private:
    const Layout &m_layout;
    OutputFile &m_file;
    bool m_headWritten = false;
    int m_events = 0;
};

int writeEvents(const Layout &layout, const std::vector<const Event *> &events, OutputFile &file)
{
    LayoutWriter writer(layout, file);
    Formatted formatted;
    for (const Event *event : events) {
        if (!event)
            continue;
        if (!formatted.anyEvent)
            formatted.head = layout.head(event);
        formatted.anyEvent = true;
        ++formatted.events;
        layout.event(formatted.text, *event);
    }
    writer.write(formatted);
    return writer.finish();
}

// Parsing dominates: every batch is parsed and formatted on a thread of its own, one
// per processor at a time, while this thread reads ahead and writes the finished
// batches in their order. No batch waits for a slower neighbour.
int streamEvents(const Layout &layout, const JournalRows &rows, OutputFile &file, OutputProgress *progress)
{
    LayoutWriter writer(layout, file);
    const std::size_t inFlight = std::max(1u, std::thread::hardware_concurrency());
    std::deque<std::future<Formatted>> pending;

    auto writeOldest = [&] {
        const Formatted formatted = pending.front().get();
        pending.pop_front();
        writer.write(formatted);
        if (progress)
            progress->report(qint64(formatted.rowsRead), qint64(rows.size()));
    };

    rows.read(kParseBatchBytes, [&](JournalRows::Batch &&batch) {
        if (pending.size() == inFlight)
            writeOldest();
        // Until some event is written, every batch brings the head of its first one.
        const bool needHead = writer.needsHead();
        pending.push_back(std::async(std::launch::async, [&layout, needHead, batch = std::move(batch)] {
            Formatted formatted;
            formatBatch(layout, batch, needHead, formatted);
            return formatted;
        }));
        return !file.failed() && !(progress && progress->stopRequested());
    });
    while (!pending.empty())
        writeOldest();
    return writer.finish();
}

int streamRawLines(const JournalRows &rows, OutputFile &file, OutputProgress *progress)
{
    int written = 0;
    rows.read(kRawBatchBytes, [&](JournalRows::Batch &&batch) {
        if (!file.write(batch.text))
            return false;
        written += static_cast<int>(batch.lineCount());
        if (progress)
            progress->report(qint64(batch.rows.back()) + 1, qint64(rows.size()));
        return !(progress && progress->stopRequested());
    });
    return file.failed() ? -1 : written;
}

// One file written by `write`, which returns the number of events it wrote or -1. The
// file takes the earlier one's place only when complete: a failure or a stop leaves
// the earlier file as it was, and a failure's reason goes to the progress.
template<typename Write>
int writeFile(const QString &path, OutputProgress *progress, Write write)
{
    OutputFile file(path);
    int written = file.open() ? write(file) : -1;
    if (written >= 0 && progress && progress->stopRequested()) {
        file.discard();
        written = -1;
    } else if (written >= 0 && !file.commit()) {
        written = -1;
    }
    if (progress && file.failed())
        progress->setFailure(file.errorString());
    return written;
}
}

EventsDataCopier::EventsDataCopier(QObject *parent)
    : QObject(parent)
{
}

bool EventsDataCopier::formatOfFile(const QString &fileName, Format *format)
{
    static const struct {
        const char *ending;
        Format format;
    } endings[] = {{".json", Json}, {".csv", Csv}, {".log", RawLines}};
    for (const auto &candidate : endings) {
        if (fileName.endsWith(QLatin1String(candidate.ending), Qt::CaseSensitive)) {
            *format = candidate.format;
            return true;
        }
    }
    return false;
}

int EventsDataCopier::writeJson(const std::vector<const Event *> &events, const QString &path) const
{
    return writeFile(path, nullptr, [&](OutputFile &file) { return writeEvents(kJsonLayout, events, file); });
}

int EventsDataCopier::writeCsv(const std::vector<const Event *> &events, const QString &path) const
{
    return writeFile(path, nullptr, [&](OutputFile &file) { return writeEvents(kCsvLayout, events, file); });
}

int EventsDataCopier::writeJson(const JournalRows &rows, const QString &path, OutputProgress *progress) const
{
    return writeFile(path, progress, [&](OutputFile &file) { return streamEvents(kJsonLayout, rows, file, progress); });
}

int EventsDataCopier::writeCsv(const JournalRows &rows, const QString &path, OutputProgress *progress) const
{
    return writeFile(path, progress, [&](OutputFile &file) { return streamEvents(kCsvLayout, rows, file, progress); });
}

int EventsDataCopier::writeRawLines(const JournalRows &rows, const QString &path, OutputProgress *progress) const
{
    return writeFile(path, progress, [&](OutputFile &file) { return streamRawLines(rows, file, progress); });
}

void EventsDataCopier::write(const EventsSelection &selection, Format format, const QString &path,
                             OutputProgress *progress) const
{
    // The target is opened before the rows are gathered: a file that cannot be
    // written is told at once, however large the journal.
    const int written = writeFile(path, progress, [&](OutputFile &file) {
        if (format == RawLines)
            return streamRawLines(selection.rows(), file, progress);
        const Layout &layout = format == Json ? kJsonLayout : kCsvLayout;
        if (selection.isJournal())
            return streamEvents(layout, selection.rows(), file, progress);
        return writeEvents(layout, selection.events(), file);
    });
    if (progress) {
        progress->report(1, 1);
        progress->setOutcome(written);
    }
}

QString EventsDataCopier::copyText(const QList<const Event *> &events, const QSet<int> &auxTypes,
                                   const QSet<QString> &customNames)
{
    const bool russian = Language::systemLanguageName().compare(QLatin1String("Russian"), Qt::CaseInsensitive) == 0;
    const Dictionary &dictionary = Dictionary::instance();
    QStringList lines;
    lines.reserve(events.size());
    for (const Event *event : events) {
        if (!event)
            continue;
        QStringList fields;
        fields << event->time.toString(Qt::ISODate) << event->messageId;
        const AuxPar *type = event->parameters.value(russian ? AuxParId::TypeRu : AuxParId::TypeEn);
        fields << (type ? type->toString() : QString());
        if (dictionary.hasPriority(event->priority))
            fields << dictionary.priorityText(event->priority);
        fields << event->eventName();
        event->parameters.forEach([&fields, &auxTypes](const AuxPar &parameter) {
            if (parameter.isValid() && auxTypes.contains(parameter.typeId()))
                fields << parameter.toString();
        });
        for (auto it = event->customParameters.cbegin(); it != event->customParameters.cend(); ++it) {
            if (!it.value().isEmpty() && customNames.contains(it.key()))
                fields << it.value();
        }
        lines << fields.join(QLatin1Char('\t'));
    }
    return lines.join(QLatin1Char('\n'));
}

void EventsDataCopier::copyToClipboard(const QList<const Event *> &events, const QSet<int> &auxTypes,
                                       const QSet<QString> &customNames) const
{
    if (QClipboard *clipboard = QGuiApplication::clipboard())
        clipboard->setText(copyText(events, auxTypes, customNames));
}
