// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "NimbInit.h"

#include <KAboutData>

#include <QByteArray>
#include <QCoreApplication>
#include <QGuiApplication>

namespace {
const char kComponentName[] = "nimb-event-viewer";
const char kOrganisation[] = "trelvik";

// The display name's source text, kept for translating it once a catalogue is installed.
struct DisplayNameSource {
    QByteArray context;
    QByteArray text;
};

DisplayNameSource &displayNameSource()
{
    static DisplayNameSource source;
    return source;
}
}

void nimbInit(const QString &version, const char *context, const char *displayName)
{
    const QString component = QString::fromLatin1(kComponentName);
    const QString organisation = QString::fromLatin1(kOrganisation);
    displayNameSource() = {context, displayName};

    // No bug address: the stock one points at the desktop's own bug tracker, and
    // with none set the help menu leaves out its "Report Bug" entry.
    KAboutData about(component, QString::fromUtf8(displayName), version, QString(), KAboutLicense::Unknown,
                     QString(), QString(), QString(), QString());
    about.setLicense(KAboutLicense::GPL_V2, KAboutLicense::OrLaterVersions);
    about.setOrganizationDomain(organisation.toLatin1());
    about.setDesktopFileName(component);
    KAboutData::setApplicationData(about);

    // setApplicationData only touches the application object when one exists;
    // the static setters also work before it is constructed.
    QCoreApplication::setApplicationName(component);
    QCoreApplication::setApplicationVersion(version);
    QCoreApplication::setOrganizationName(organisation);
    QCoreApplication::setOrganizationDomain(organisation);
    QGuiApplication::setApplicationDisplayName(QString::fromUtf8(displayName));
    QGuiApplication::setDesktopFileName(component);
}

void nimbRetranslateDisplayName()
{
    const DisplayNameSource &source = displayNameSource();
    if (source.text.isEmpty())
        return;
    const QString displayName = QCoreApplication::translate(source.context.constData(), source.text.constData());
    // The desktop reads the name from both places: window titles from the application,
    // the about dialog and the help menu from the about data.
    KAboutData about = KAboutData::applicationData();
    about.setDisplayName(displayName);
    KAboutData::setApplicationData(about);
    QGuiApplication::setApplicationDisplayName(displayName);
}
