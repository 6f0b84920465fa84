#include "Logging.h"

Q_LOGGING_CATEGORY(lcOrvantaUi, "orvanta.ui", QtWarningMsg)
