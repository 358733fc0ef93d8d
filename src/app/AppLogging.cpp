#include "AppLogging.h"

Q_LOGGING_CATEGORY(nimbApp, "nimb.app", QtWarningMsg)
