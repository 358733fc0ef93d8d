#include "NotificationHelper.h"

#include <KAuth/HelperSupport>

KAUTH_HELPER_MAIN(NIMB_KAUTH_HELPER_ID, NotificationHelper)
