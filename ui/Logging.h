#pragma once

// The interface's own diagnostics (beyond the program's fixed lines on standard output): off
// unless asked for, e.g. QT_LOGGING_RULES="orvanta.ui.info=true".

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcOrvantaUi)
