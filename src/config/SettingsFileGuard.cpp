// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "SettingsFileGuard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace
{
// Values that start with '@' and that Qt reads as text.
const char *const kHarmlessHeads[] = {"@@", "@ByteArray(", "@Invalid()", "@Rect(", "@Size(", "@Point("};
// The two forms Qt deserialises, each allowed only for a date-time (type 16, with the
// next character not continuing the escape): the store writes "@DateTime(" and earlier
// versions "@Variant(".
const QByteArray kDateTimeHeads[] = {QByteArrayLiteral("@DateTime(\\0\\0\\0\\x10"),
                                     QByteArrayLiteral("@Variant(\\0\\0\\0\\x10")};

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

int hexValue(char c)
{
    return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
}

// Whether the escape starting at line[at] (a backslash) could stand for an '@'. Hex and
// octal escapes take as many digits as follow and keep the low 16 bits, as Qt reads
// them; text written by Qt uses them for every character beyond ASCII.
bool escapesAnAt(const QByteArray &line, int at)
{
    int i = at + 1;
    if (i >= line.size())
        return true; // a continued line: its start is looked at on its own, but be safe
    quint32 value = 0;
    if (line[i] == 'x') {
        if (++i >= line.size() || !isHexDigit(line[i]))
            return true;
        for (; i < line.size() && isHexDigit(line[i]); ++i)
            value = (value << 4) + quint32(hexValue(line[i]));
    } else if (line[i] >= '0' && line[i] <= '7') {
        for (; i < line.size() && line[i] >= '0' && line[i] <= '7'; ++i)
            value = (value << 3) + quint32(line[i] - '0');
    } else {
        return line[i] == '@';
    }
    return (value & 0xffff) == '@';
}

// Whether the element of a value starting at `from` could become a deserialised value
// other than a date-time.
bool unsafeHead(const QByteArray &line, int from)
{
    // Blanks and quotes may vanish before Qt looks at the element's first character.
    while (from < line.size() && (line[from] == ' ' || line[from] == '\t' || line[from] == '"'))
        ++from;
    if (from >= line.size())
        return false;
    const char first = line[from];
    if (first == '\\')
        return escapesAnAt(line, from);
    if (first != '@')
        return false;
    const QByteArray rest = QByteArray::fromRawData(line.constData() + from, line.size() - from);
    for (const char *head : kHarmlessHeads)
        if (rest.startsWith(head))
            return false;
    for (const QByteArray &head : kDateTimeHeads)
        if (rest.startsWith(head))
            return rest.size() > head.size() && isHexDigit(rest[head.size()]);
    return true;
}
}

bool SettingsFileGuard::isUnsafeLine(const QByteArray &line)
{
    // The line is looked at as a whole value and as what follows its first '=': a
    // continued line has no key, and which reading Qt takes does not matter here.
    const int equals = line.indexOf('=');
    if (unsafeHead(line, 0) || (equals >= 0 && unsafeHead(line, equals + 1)))
        return true;
    // Every list separator outside quotes starts an element of its own.
    bool quoted = false;
    for (int i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\') {
            ++i; // the escaped character neither quotes nor separates
        } else if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted && unsafeHead(line, i + 1)) {
            return true;
        }
    }
    return false;
}

QByteArray SettingsFileGuard::safeContent(const QByteArray &content)
{
    QByteArray kept;
    kept.reserve(content.size());
    int start = 0;
    while (start < content.size()) {
        // Qt ends lines at either kind of line break; so does the test, line by line.
        int end = start;
        while (end < content.size() && content[end] != '\n' && content[end] != '\r')
            ++end;
        int next = end;
        while (next < content.size() && (content[next] == '\n' || content[next] == '\r'))
            ++next;
        const QByteArray line = QByteArray::fromRawData(content.constData() + start, end - start);
        if (!isUnsafeLine(line))
            kept.append(content.constData() + start, next - start);
        start = next;
    }
    return kept;
}

bool SettingsFileGuard::dropUnsafeLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray content = file.readAll();
    file.close();
    const QByteArray kept = safeContent(content);
    if (kept.size() == content.size())
        return false;
    return replaceFile(path, kept);
}

QByteArray SettingsFileGuard::readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool SettingsFileGuard::replaceFile(const QString &path, const QByteArray &content, QString *error)
{
    // A failure to make the folder shows as the file's own failure, with its reason.
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile out(path);
    // Unbuffered: a write cut short (a full disk) shows in the count written, which a
    // buffered flush lets pass, and the cut file would replace the earlier one.
    bool written = out.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    for (qint64 done = 0; written && done < content.size();) {
        const qint64 now = out.write(content.constData() + done, content.size() - done);
        written = now > 0;
        done += now;
    }
    if (written && out.commit())
        return true;
    if (error)
        *error = out.errorString();
    out.cancelWriting();
    return false;
}
