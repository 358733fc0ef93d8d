// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

// Qt reads a settings value written as "@Variant(...)" or "@DateTime(...)" by
// deserialising whatever type the bytes name: in a damaged or hand-made file that can be a list claiming billions
// of entries (an allocation that ends the process) or a picture, which cannot even be
// built without a display. The store itself writes only date-times that way.
//
// Before Qt sees the file, every line that could make Qt deserialise anything but a
// date-time is removed from it. The test errs on the safe side: any line that merely
// could start such a value (through escapes, quotes, list separators or continued
// lines) goes, while everything the store writes stays byte for byte.
class SettingsFileGuard
{
public:
    // Rewrites the file without its unsafe lines; true when it had any. A missing or
    // unreadable file is left alone.
    static bool dropUnsafeLines(const QString &path);
    // The file's bytes without the unsafe lines.
    static QByteArray safeContent(const QByteArray &content);
    // Whether one physical line could make Qt deserialise a value other than a date-time.
    static bool isUnsafeLine(const QByteArray &line);

    // The file's bytes; empty when it is missing or unreadable.
    static QByteArray readFile(const QString &path);
    // Replaces the file (and makes its folder): the content is written beside it and
    // renamed over it once complete, so that a failure leaves the earlier file whole.
    // False, with the system's reason, when that fails.
    static bool replaceFile(const QString &path, const QByteArray &content, QString *error = nullptr);
};
