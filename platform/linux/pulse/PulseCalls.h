#pragma once

// How the backend holds libpulse's objects and reports its failed calls. Each object is held by
// a move-only owner that releases it once; a failed call is logged once, naming the call and the
// server's reason, through one logging category ("orvanta.sound").

#include <pulse/pulseaudio.h>

#include <QLoggingCategory>

#include <memory>

Q_DECLARE_LOGGING_CATEGORY(lcOrvantaSound)

namespace orvanta::pulse {

template <auto Release> struct Releaser
{
    template <typename T> void operator()(T* object) const { Release(object); }
};

using Operation = std::unique_ptr<pa_operation, Releaser<&pa_operation_unref>>;
using Proplist = std::unique_ptr<pa_proplist, Releaser<&pa_proplist_free>>;
using Context = std::unique_ptr<pa_context, Releaser<&pa_context_unref>>;
using ThreadedLoop = std::unique_ptr<pa_threaded_mainloop, Releaser<&pa_threaded_mainloop_free>>;

// Logs "call() failed: reason", the reason being the context's last error.
void logFailure(pa_context* context, const char* call);

// For the end of an info reply (eol): logs a failed request, but not an object that was gone.
void logFailedList(pa_context* context, int eol, const char* call);

// Takes what a call that starts an operation gave; a call that gave none is logged as failed.
Operation started(pa_context* context, pa_operation* operation, const char* call);

// Callbacks for requests nobody waits for: a failure the server reports is logged. The
// userdata is the name of the call, a string literal.
void logIfFailed(pa_context* context, int success, void* call);
void logIfRefused(pa_context* context, std::uint32_t index, void* call);

// The userdata those callbacks expect.
inline void* callName(const char* call)
{
    return const_cast<char*>(call);
}

} // namespace orvanta::pulse
