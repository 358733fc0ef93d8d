#include "NimbInit.h"

#include <KAboutData>

#include <QCoreApplication>
#include <QGuiApplication>

namespace {
const char kComponentName[] = "nimb-event-viewer";
const char kOrganisation[] = "trelvik";
}

void nimbInit(const QString &version, const QString &displayName)
{
    const QString component = QString::fromLatin1(kComponentName);
    const QString organisation = QString::fromLatin1(kOrganisation);

    // No bug address: the stock one points at the desktop's own bug tracker, and
    // with none set the help menu leaves out its "Report Bug" entry.
    KAboutData about(component, displayName, version, QString(), KAboutLicense::Unknown,
                     QString(), QString(), QString(), QString());
    about.setOrganizationDomain(organisation.toLatin1());
    about.setDesktopFileName(component);
    KAboutData::setApplicationData(about);

    // setApplicationData only touches the application object when one exists;
    // the static setters also work before it is constructed.
    QCoreApplication::setApplicationName(component);
    QCoreApplication::setApplicationVersion(version);
    QCoreApplication::setOrganizationName(organisation);
    QCoreApplication::setOrganizationDomain(organisation);
    QGuiApplication::setApplicationDisplayName(displayName);
    QGuiApplication::setDesktopFileName(component);
}
