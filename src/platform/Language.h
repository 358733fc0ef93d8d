#pragma once

#include <QString>

// The system language decides which of the journal's two name sets is shown.
// It is read from the system locale once per process and never changes after.
namespace Language
{
// English name of the system locale's language, e.g. "English" or "Russian".
const QString &systemLanguageName();
bool isRussian();
}
