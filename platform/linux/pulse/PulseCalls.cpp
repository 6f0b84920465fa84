#include "PulseCalls.h"

Q_LOGGING_CATEGORY(lcOrvantaSound, "orvanta.sound", QtWarningMsg)

namespace orvanta::pulse {

void logFailure(pa_context* context, const char* call)
{
    const char* reason = context ? pa_strerror(pa_context_errno(context)) : "no connection";
    qCWarning(lcOrvantaSound, "%s() failed: %s", call, reason);
}

void logFailedList(pa_context* context, int eol, const char* call)
{
    if (eol < 0 && pa_context_errno(context) != PA_ERR_NOENTITY) {
        logFailure(context, call);
    }
}

Operation started(pa_context* context, pa_operation* operation, const char* call)
{
    if (!operation) {
        logFailure(context, call);
    }
    return Operation(operation);
}

void logIfFailed(pa_context* context, int success, void* call)
{
    if (!success) {
        logFailure(context, static_cast<const char*>(call));
    }
}

void logIfRefused(pa_context* context, std::uint32_t index, void* call)
{
    if (index == PA_INVALID_INDEX) {
        logFailure(context, static_cast<const char*>(call));
    }
}

} // namespace orvanta::pulse
