#pragma once

#include <QString>

// Registers the application with the desktop: component and desktop file name
// "nimb-event-viewer", organisation "trelvik", the given version and display name.
// Call once, right after the QApplication is constructed and before any settings
// are read, since the settings file is located by these names.
void nimbInit(const QString &version, const QString &displayName);
