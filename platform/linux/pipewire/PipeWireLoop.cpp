#include "PipeWireLoop.h"

#include "PipeWireApi.h"
#include <cstdio>
#include <cstring>

namespace orvanta::pipewire {

namespace {

const pw_core_events kCoreEvents = [] {
    pw_core_events events{};
    events.version = PW_VERSION_CORE_EVENTS;
    return events;
}();

} // namespace

std::unique_ptr<PipeWireLoop> PipeWireLoop::connect()
{
    pw_init(nullptr, nullptr);
    std::unique_ptr<PipeWireLoop> session(new PipeWireLoop);
    session->loop = pw_thread_loop_new("orvanta-pipewire", nullptr);
    if (!session->loop) {
        return nullptr;
    }
    // The client configuration that lets the data thread run with real-time priority where the
    // system allows it, as players do: a stacked device must not miss cycles when the machine is busy.
    session->pwContext = pw_context_new(pw_thread_loop_get_loop(session->loop),
                                        pw_properties_new(PW_KEY_CONFIG_NAME, "client-rt.conf", nullptr), 0);
    if (!session->pwContext || pw_thread_loop_start(session->loop) < 0) {
        return nullptr;
    }
    Lock lock(*session);
    if (!session->connectCore()) {
        return nullptr;
    }
    return session;
}

bool PipeWireLoop::connectCore()
{
    pwCore = pw_context_connect(pwContext, nullptr, 0);
    if (!pwCore) {
        return false;
    }
    static pw_core_events events = kCoreEvents;
    events.error = &PipeWireLoop::onCoreError;
    pw_core_add_listener(pwCore, &coreListener, &events, this);
    lost = false;
    return true;
}

void PipeWireLoop::dropCore()
{
    if (pwCore) {
        spa_hook_remove(&coreListener);
        pw_core_disconnect(pwCore);
        pwCore = nullptr;
    }
}

bool PipeWireLoop::reconnect()
{
    dropCore();
    return connectCore();
}

void PipeWireLoop::onCoreError(void* self, std::uint32_t id, int, int res, const char* message)
{
    auto* session = static_cast<PipeWireLoop*>(self);
    if (id == PW_ID_CORE && res == -EPIPE) {
        session->lost = true;
        pw_thread_loop_signal(session->loop, false);
        return;
    }
    if (id == PW_ID_CORE) {
        std::fprintf(stderr, "orvanta: PipeWire: %s\n", message ? message : std::strerror(-res));
    }
}

void PipeWireLoop::waitSignal(std::chrono::milliseconds bound)
{
    timespec deadline{};
    pw_thread_loop_get_time(loop, &deadline, static_cast<std::int64_t>(bound.count()) * SPA_NSEC_PER_MSEC);
    pw_thread_loop_timed_wait_full(loop, &deadline);
}

PipeWireLoop::~PipeWireLoop()
{
    if (loop) {
        pw_thread_loop_lock(loop);
        dropCore();
        pw_thread_loop_unlock(loop);
        pw_thread_loop_stop(loop);
    }
    if (pwContext) {
        pw_context_destroy(pwContext);
    }
    if (loop) {
        pw_thread_loop_destroy(loop);
    }
}

} // namespace orvanta::pipewire
