#include "PulseConnection.h"

#include "ModuleArguments.h"
#include "PulseObjects.h"

#include <sys/time.h>

#include <algorithm>

#include <memory>
#include <thread>
#include <vector>

namespace orvanta::pulse {

// One write waiting for the server. The callback and the waiting thread meet here; the
// callback runs on the connection's thread with the loop's lock held.
struct PulseConnection::Pending
{
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    bool success = false;
    std::uint32_t index = PA_INVALID_INDEX;

    void complete(bool ok, std::uint32_t resultIndex = PA_INVALID_INDEX)
    {
        std::lock_guard lock(mutex);
        done = true;
        success = ok;
        index = resultIndex;
        finished.notify_all();
    }
};

struct PulseConnection::CallbackData
{
    CallbackData(std::shared_ptr<Pending> waiting, const char* name) : pending(std::move(waiting)), call(name) {}
    virtual ~CallbackData() = default;
    std::shared_ptr<Pending> pending; // keeps the Pending alive for the callback
    const char* call;                 // the libpulse call, for the log
};

// A module to unload once its successor plays.
struct PulseConnection::DelayedUnload
{
    PulseConnection* connection = nullptr;
    pa_time_event* timer = nullptr;
    std::uint64_t generation = 0;
    std::uint32_t index = PA_INVALID_INDEX;
};

// ---- lifetime ----

PulseConnection::PulseConnection(std::string name) : clientName(std::move(name)), loop(pa_threaded_mainloop_new())
{
    pa_threaded_mainloop_lock(loop.get());
    connectContext();
    pa_threaded_mainloop_unlock(loop.get());
    pa_threaded_mainloop_start(loop.get());
}

PulseConnection::~PulseConnection()
{
    // A loopback that was handing over goes now: left behind, its member would play twice.
    finishHandOvers();
    pa_threaded_mainloop_lock(loop.get());
    auto* api = pa_threaded_mainloop_get_api(loop.get());
    if (reconnectTimer) {
        api->time_free(reconnectTimer);
        reconnectTimer = nullptr;
    }
    for (const auto& unload : delayedUnloads) {
        api->time_free(unload->timer);
    }
    delayedUnloads.clear();
    dropContext();
    pa_threaded_mainloop_unlock(loop.get());
    pa_threaded_mainloop_stop(loop.get());
}

void PulseConnection::connectContext()
{
    ++contextGeneration;
    const Proplist properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, clientName.c_str());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "orvanta");
    context.reset(
        pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop.get()), clientName.c_str(), properties.get()));
    pa_context_set_state_callback(context.get(), &PulseConnection::onContextState, this);
    setState(State::Connecting);
    if (pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        logLostConnection();
        setState(State::Disconnected);
        scheduleReconnect();
    }
}

// Clears callbacks first, then disconnects, then lets go: nothing calls back into a dead object.
void PulseConnection::dropContext()
{
    if (!context) {
        return;
    }
    pa_context_set_state_callback(context.get(), nullptr, nullptr);
    pa_context_set_subscribe_callback(context.get(), nullptr, nullptr);
    pa_context_disconnect(context.get());
    context.reset();
    mirror.clear();
    reconcileDue = false;
    heldModules.clear();
}

void PulseConnection::scheduleReconnect()
{
    if (reconnectTimer) {
        return;
    }
    timeval when{};
    gettimeofday(&when, nullptr);
    pa_timeval_add(&when, static_cast<pa_usec_t>(kReconnectDelay.count()) * PA_USEC_PER_MSEC);
    auto* api = pa_threaded_mainloop_get_api(loop.get());
    reconnectTimer = api->time_new(api, &when, &PulseConnection::onReconnectTimer, this);
}

void PulseConnection::onReconnectTimer(pa_mainloop_api* api, pa_time_event* event, const timeval*, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    api->time_free(event);
    connection->reconnectTimer = nullptr;
    connection->dropContext();
    connection->connectContext();
}

// ---- state ----

void PulseConnection::setState(State newState)
{
    std::lock_guard lock(stateMutex);
    currentState = newState;
    stateChanged.notify_all();
    if (stateObserver) {
        stateObserver(newState);
    }
}

void PulseConnection::setStateObserver(StateObserver observer)
{
    std::lock_guard lock(stateMutex);
    stateObserver = std::move(observer);
    if (stateObserver) {
        stateObserver(currentState);
    }
}

PulseConnection::State PulseConnection::state() const
{
    std::lock_guard lock(stateMutex);
    return currentState;
}

bool PulseConnection::waitUntilReady(std::chrono::milliseconds bound)
{
    std::unique_lock lock(stateMutex);
    return stateChanged.wait_for(lock, bound, [this] { return currentState == State::Ready; });
}

void PulseConnection::setRestorePlan(RestorePlan plan)
{
    pa_threaded_mainloop_lock(loop.get());
    restorePlan = std::move(plan);
    pa_threaded_mainloop_unlock(loop.get());
}

// A restarted server has lost the modules we loaded; load them again, in their order, and make
// their sink the default again, unless an earlier instance of them is still there.
void PulseConnection::restore()
{
    if (restorePlan.modules.empty() || sinkNamed(mirror, restorePlan.defaultSink)) {
        return;
    }
    for (const auto& [name, arguments] : restorePlan.modules) {
        loadModuleAsync(name, arguments);
    }
    started(context.get(),
            pa_context_set_default_sink(context.get(), restorePlan.defaultSink.c_str(), &logIfFailed,
                                        callName("pa_context_set_default_sink")),
            "pa_context_set_default_sink");
}

// Once per loss, not at every try to reconnect while the server is away.
void PulseConnection::logLostConnection()
{
    if (!connectionLossLogged) {
        logFailure(context.get(), "pa_context_connect");
        connectionLossLogged = true;
    }
}

void PulseConnection::onContextState(pa_context* context, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    switch (pa_context_get_state(context)) {
    case PA_CONTEXT_READY:
        connection->connectionLossLogged = false;
        connection->requestInitialState();
        break;
    case PA_CONTEXT_FAILED:
        connection->logLostConnection();
        [[fallthrough]];
    case PA_CONTEXT_TERMINATED:
        // Everything the server had is gone with it; reads now see no devices.
        connection->mirror.clear();
        connection->setState(State::Disconnected);
        connection->scheduleReconnect();
        break;
    default:
        break;
    }
}

void PulseConnection::requestInitialState()
{
    auto* ctx = context.get();
    pa_context_set_subscribe_callback(ctx, &PulseConnection::onSubscription, this);
    const auto mask = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE |
                                                          PA_SUBSCRIPTION_MASK_MODULE | PA_SUBSCRIPTION_MASK_SERVER);
    started(ctx, pa_context_subscribe(ctx, mask, &logIfFailed, callName("pa_context_subscribe")),
            "pa_context_subscribe");
    initialRequests = 4;
    const auto request = [this, ctx](pa_operation* op, const char* call) {
        if (!started(ctx, op, call)) {
            finishInitialRequest();
        }
    };
    request(pa_context_get_sink_info_list(ctx, &PulseConnection::onSinkInfo, this), "pa_context_get_sink_info_list");
    request(pa_context_get_source_info_list(ctx, &PulseConnection::onSourceInfo, this),
            "pa_context_get_source_info_list");
    request(pa_context_get_module_info_list(ctx, &PulseConnection::onModuleInfo, this),
            "pa_context_get_module_info_list");
    request(pa_context_get_server_info(ctx, &PulseConnection::onServerInfo, this), "pa_context_get_server_info");
}

void PulseConnection::finishInitialRequest()
{
    if (initialRequests == 0 || --initialRequests > 0) {
        return;
    }
    const bool reconnected = everReady;
    everReady = true;
    setState(State::Ready);
    if (reconnected) {
        restore();
    }
}

// ---- the mirror ----

void PulseConnection::onSubscription(pa_context* context, pa_subscription_event_type_t type, std::uint32_t index,
                                     void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    connection->heardFromServer();
    const auto facility = type & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
    const auto kind = type & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
    const bool removed = kind == PA_SUBSCRIPTION_EVENT_REMOVE;
    if (kind == PA_SUBSCRIPTION_EVENT_NEW) {
        connection->mirror.announceNew(static_cast<pa_subscription_event_type_t>(facility), index);
    }
    pa_operation* op = nullptr;
    const char* call = "pa_context_get_server_info";
    switch (facility) {
    case PA_SUBSCRIPTION_EVENT_SINK:
        if (removed) {
            connection->mirror.removeSink(index);
        } else {
            op = pa_context_get_sink_info_by_index(context, index, &PulseConnection::onSinkInfo, self);
            call = "pa_context_get_sink_info_by_index";
        }
        break;
    case PA_SUBSCRIPTION_EVENT_SOURCE:
        if (removed) {
            connection->mirror.removeSource(index);
        } else {
            op = pa_context_get_source_info_by_index(context, index, &PulseConnection::onSourceInfo, self);
            call = "pa_context_get_source_info_by_index";
        }
        break;
    case PA_SUBSCRIPTION_EVENT_MODULE:
        if (removed) {
            connection->mirror.removeModule(index);
        } else {
            op = pa_context_get_module_info(context, index, &PulseConnection::onModuleInfo, self);
            call = "pa_context_get_module_info";
        }
        break;
    case PA_SUBSCRIPTION_EVENT_SERVER:
        op = pa_context_get_server_info(context, &PulseConnection::onServerInfo, self);
        break;
    default:
        return;
    }
    if (op || !removed) {
        started(context, op, call);
    }
}

void PulseConnection::onSinkInfo(pa_context* context, const pa_sink_info* info, int eol, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    if (info) {
        const bool arrived = info->name && !sinkNamed(connection->mirror, info->name);
        connection->mirror.update(*info);
        if (arrived && connection->state() == State::Ready) {
            connection->reattach(info->name);
        }
    } else if (eol != 0) {
        logFailedList(context, eol, "pa_context_get_sink_info");
        connection->finishInitialRequest();
    }
}

// A member of the stacked device that comes back (a Bluetooth speaker reconnecting) gets its
// loopback again, as the plan has it, unless one is there already.
void PulseConnection::reattach(const std::string& sinkName)
{
    if (!sinkNamed(mirror, restorePlan.defaultSink)) {
        return;
    }
    const auto attached = std::any_of(mirror.modules.begin(), mirror.modules.end(), [&](const auto& entry) {
        const auto loopback = loopbackOf(entry.second);
        return loopback && loopback->sink == sinkName && loopback->source == restorePlan.defaultSink + ".monitor";
    });
    for (const auto& [name, arguments] : restorePlan.modules) {
        const auto loopback = loopbackOf(ModuleRecord{PA_INVALID_INDEX, name, arguments});
        if (!attached && loopback && loopback->sink == sinkName) {
            loadModuleAsync(name, arguments);
        }
    }
}

void PulseConnection::onSourceInfo(pa_context* context, const pa_source_info* info, int eol, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    if (info) {
        connection->mirror.update(*info);
    } else if (eol != 0) {
        logFailedList(context, eol, "pa_context_get_source_info");
        connection->finishInitialRequest();
    }
}

void PulseConnection::onModuleInfo(pa_context* context, const pa_module_info* info, int eol, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    if (info) {
        connection->mirror.update(*info);
    } else if (eol != 0) {
        logFailedList(context, eol, "pa_context_get_module_info");
        connection->finishInitialRequest();
    }
}

void PulseConnection::onServerInfo(pa_context*, const pa_server_info* info, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    if (info && info->default_sink_name) {
        connection->mirror.defaultSinkName = info->default_sink_name;
    }
    if (info && info->default_source_name) {
        connection->mirror.defaultSourceName = info->default_source_name;
    }
    if (info && info->server_name) {
        connection->mirror.serverName = info->server_name;
    }
    connection->finishInitialRequest();
}

// ---- writes that wait ----

bool PulseConnection::run(const char* call, const Start& start, Pending& pending, CallbackData* userdata)
{
    ++actionsUnderway;
    pa_threaded_mainloop_lock(loop.get());
    pa_operation* op = state() == State::Ready && context ? start(context.get(), userdata) : nullptr;
    if (!op && context) {
        logFailure(context.get(), call);
    }
    pa_threaded_mainloop_unlock(loop.get());
    if (!op) {
        // Never sent: nothing the server could still carry out later.
        --actionsUnderway;
        delete userdata;
        pending.complete(false);
        return false;
    }
    const Operation owned(op);
    // Once a write has gone unanswered, the next ones wait only briefly until the server is heard
    // from again: one user action that chains several writes stays within about one bound.
    const auto bound = answering() ? kWriteBound : kUnansweredBound;
    const auto deadline = std::chrono::steady_clock::now() + bound;
    {
        std::unique_lock lock(pending.mutex);
        // Short slices, so a server that goes away ends the wait at once instead of at the bound.
        while (!pending.done && std::chrono::steady_clock::now() < deadline && state() == State::Ready) {
            pending.finished.wait_for(lock, std::chrono::milliseconds(20));
        }
    }
    pa_threaded_mainloop_lock(loop.get());
    std::unique_lock lock(pending.mutex);
    if (!pending.done) {
        // A cancelled operation never calls back: free what the callback would have freed. The
        // server may still carry the write out; the reconcile pass takes care of that.
        pa_operation_cancel(op);
        delete userdata;
        qCWarning(lcOrvantaSound, "%s(): no answer within %lld ms", call, static_cast<long long>(bound.count()));
        reconcileDue = true;
        unanswered = true;
    } else {
        heardFromServer();
    }
    const bool success = pending.done && pending.success;
    lock.unlock();
    --actionsUnderway;
    pa_threaded_mainloop_unlock(loop.get());
    return success;
}

namespace {

using CallbackData = PulseConnection::CallbackData;

void successCallback(pa_context* context, int success, void* userdata)
{
    auto* call = static_cast<CallbackData*>(userdata);
    logIfFailed(context, success, callName(call->call));
    call->pending->complete(success != 0);
    delete call;
}

void indexCallback(pa_context* context, std::uint32_t index, void* userdata)
{
    auto* call = static_cast<CallbackData*>(userdata);
    logIfRefused(context, index, callName(call->call));
    call->pending->complete(index != PA_INVALID_INDEX, index);
    delete call;
}

} // namespace

std::optional<std::uint32_t> PulseConnection::loadModule(const std::string& name, const std::string& arguments)
{
    auto pending = std::make_shared<Pending>();
    const char* call = "pa_context_load_module";
    const bool ok = run(
        call,
        [&](pa_context* ctx, void* userdata) {
            return pa_context_load_module(ctx, name.c_str(), arguments.c_str(), indexCallback, userdata);
        },
        *pending, new CallbackData(pending, call));
    if (!ok) {
        return std::nullopt;
    }
    pa_threaded_mainloop_lock(loop.get());
    // The server just gave out this index, whatever it meant before.
    mirror.announceNew(PA_SUBSCRIPTION_EVENT_MODULE, pending->index);
    mirror.addModule({pending->index, name, arguments});
    pa_threaded_mainloop_unlock(loop.get());
    return pending->index;
}

bool PulseConnection::unloadModule(std::uint32_t index)
{
    auto pending = std::make_shared<Pending>();
    const char* call = "pa_context_unload_module";
    const bool ok = run(
        call,
        [&](pa_context* ctx, void* userdata) {
            return pa_context_unload_module(ctx, index, successCallback, userdata);
        },
        *pending, new CallbackData(pending, call));
    if (ok) {
        // Forget the module and the sink it made now, not when the server's announcement arrives.
        pa_threaded_mainloop_lock(loop.get());
        mirror.removeModule(index);
        std::vector<std::uint32_t> ownedSinks;
        for (const auto& [sinkIndex, sink] : mirror.sinks) {
            if (sink.ownerModule == index) {
                ownedSinks.push_back(sinkIndex);
            }
        }
        for (const auto sinkIndex : ownedSinks) {
            mirror.removeSink(sinkIndex);
        }
        pa_threaded_mainloop_unlock(loop.get());
    }
    return ok;
}

bool PulseConnection::setSinkVolume(std::uint32_t sinkIndex, const pa_cvolume& volume)
{
    auto pending = std::make_shared<Pending>();
    const char* call = "pa_context_set_sink_volume_by_index";
    const bool ok = run(
        call,
        [&](pa_context* ctx, void* userdata) {
            return pa_context_set_sink_volume_by_index(ctx, sinkIndex, &volume, successCallback, userdata);
        },
        *pending, new CallbackData(pending, call));
    if (ok) {
        pa_threaded_mainloop_lock(loop.get());
        if (auto it = mirror.sinks.find(sinkIndex); it != mirror.sinks.end()) {
            it->second.volume = volume;
        }
        pa_threaded_mainloop_unlock(loop.get());
    }
    return ok;
}

bool PulseConnection::setDefaultSink(const std::string& sinkName)
{
    auto pending = std::make_shared<Pending>();
    const char* call = "pa_context_set_default_sink";
    const bool ok = run(
        call,
        [&](pa_context* ctx, void* userdata) {
            return pa_context_set_default_sink(ctx, sinkName.c_str(), successCallback, userdata);
        },
        *pending, new CallbackData(pending, call));
    if (ok) {
        pa_threaded_mainloop_lock(loop.get());
        mirror.defaultSinkName = sinkName;
        pa_threaded_mainloop_unlock(loop.get());
    }
    return ok;
}

namespace {

struct SinkFetch final : CallbackData
{
    SinkFetch(std::shared_ptr<PulseConnection::Pending> waiting, PulseMirror& target)
        : CallbackData(std::move(waiting), "pa_context_get_sink_info_by_name"), mirror(target)
    {}
    PulseMirror& mirror;
    bool found = false;
};

void sinkFetchCallback(pa_context*, const pa_sink_info* info, int eol, void* userdata)
{
    auto* fetch = static_cast<SinkFetch*>(static_cast<CallbackData*>(userdata));
    if (info) {
        fetch->mirror.update(*info);
        fetch->found = true;
        return;
    }
    // A sink that is not there is an answer, not a failure: it is not logged.
    fetch->pending->complete(eol > 0 && fetch->found);
    delete fetch;
}

} // namespace

bool PulseConnection::refreshSink(const std::string& sinkName)
{
    auto pending = std::make_shared<Pending>();
    return run(
        "pa_context_get_sink_info_by_name",
        [&](pa_context* ctx, void* userdata) {
            return pa_context_get_sink_info_by_name(ctx, sinkName.c_str(), sinkFetchCallback, userdata);
        },
        *pending, new SinkFetch(pending, mirror));
}
bool PulseConnection::waitUntilSinkGone(const std::string& sinkName)
{
    const auto deadline = std::chrono::steady_clock::now() + kWriteBound;
    while (std::chrono::steady_clock::now() < deadline) {
        if (state() != State::Ready) {
            return true; // a server that is gone has no sinks
        }
        if (!refreshSink(sinkName)) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

bool PulseConnection::waitUntilSinkPresent(const std::string& sinkName)
{
    const auto deadline = std::chrono::steady_clock::now() + kWriteBound;
    while (std::chrono::steady_clock::now() < deadline && state() == State::Ready) {
        if (refreshSink(sinkName)) {
            return true;
        }
        if (!answering()) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

// ---- writes that do not wait ----

void PulseConnection::unloadModuleLater(std::uint32_t index, std::chrono::milliseconds delay)
{
    pa_threaded_mainloop_lock(loop.get());
    mirror.retiringModules.insert(index);
    if (context) {
        timeval when{};
        gettimeofday(&when, nullptr);
        pa_timeval_add(&when, static_cast<pa_usec_t>(delay.count()) * PA_USEC_PER_MSEC);
        auto unload = std::make_unique<DelayedUnload>(DelayedUnload{this, nullptr, contextGeneration, index});
        auto* api = pa_threaded_mainloop_get_api(loop.get());
        unload->timer = api->time_new(api, &when, &PulseConnection::onDelayedUnload, unload.get());
        delayedUnloads.push_back(std::move(unload));
    }
    pa_threaded_mainloop_unlock(loop.get());
}

void PulseConnection::finishHandOvers()
{
    std::vector<std::uint32_t> pending;
    pa_threaded_mainloop_lock(loop.get());
    auto* api = pa_threaded_mainloop_get_api(loop.get());
    for (const auto& unload : delayedUnloads) {
        api->time_free(unload->timer);
        if (unload->generation == contextGeneration) {
            pending.push_back(unload->index);
        }
    }
    delayedUnloads.clear();
    pa_threaded_mainloop_unlock(loop.get());
    for (const auto index : pending) {
        unloadModule(index);
    }
}

bool PulseConnection::rescheduleUnload(std::uint32_t index, std::chrono::milliseconds delay)
{
    pa_threaded_mainloop_lock(loop.get());
    const auto it = std::find_if(delayedUnloads.begin(), delayedUnloads.end(), [&](const auto& pending) {
        return pending->index == index && pending->generation == contextGeneration;
    });
    const bool found = it != delayedUnloads.end();
    if (found) {
        timeval when{};
        gettimeofday(&when, nullptr);
        pa_timeval_add(&when, static_cast<pa_usec_t>(delay.count()) * PA_USEC_PER_MSEC);
        auto* api = pa_threaded_mainloop_get_api(loop.get());
        api->time_restart((*it)->timer, &when);
    }
    pa_threaded_mainloop_unlock(loop.get());
    return found;
}

void PulseConnection::onDelayedUnload(pa_mainloop_api* api, pa_time_event* event, const timeval*, void* userdata)
{
    auto* unload = static_cast<DelayedUnload*>(userdata);
    auto* connection = unload->connection;
    // Only on the connection the module was loaded on: a restarted server has its own modules.
    if (connection->contextGeneration == unload->generation && connection->state() == State::Ready) {
        connection->unloadModuleAsync(unload->index);
    }
    api->time_free(event);
    std::erase_if(connection->delayedUnloads, [unload](const auto& pending) { return pending.get() == unload; });
}

void PulseConnection::loadModuleAsync(const std::string& name, const std::string& arguments)
{
    started(context.get(),
            pa_context_load_module(context.get(), name.c_str(), arguments.c_str(), &logIfRefused,
                                   callName("pa_context_load_module")),
            "pa_context_load_module");
}

void PulseConnection::unloadModuleAsync(std::uint32_t index)
{
    started(context.get(),
            pa_context_unload_module(context.get(), index, &logIfFailed, callName("pa_context_unload_module")),
            "pa_context_unload_module");
}

// ---- after a write the server left unanswered ----

// The server is answering. If a write went unanswered before, the server may have carried it out
// late, or only part of an action: the modules it really holds are read back and reconciled.
void PulseConnection::heardFromServer()
{
    unanswered = false;
    if (!reconcileDue || !context) {
        return;
    }
    reconcileDue = false;
    heldModules.clear();
    started(context.get(), pa_context_get_module_info_list(context.get(), &PulseConnection::onHeldModule, this),
            "pa_context_get_module_info_list");
}

void PulseConnection::onHeldModule(pa_context* context, const pa_module_info* info, int eol, void* self)
{
    auto* connection = static_cast<PulseConnection*>(self);
    if (info) {
        connection->heldModules.push_back(
            {info->index, info->name ? info->name : "", info->argument ? info->argument : ""});
    } else if (eol < 0) {
        logFailedList(context, eol, "pa_context_get_module_info_list");
    } else {
        connection->reconcile();
    }
}

// Makes the stacked device's modules on the server what the plan holds: one of each planned
// module, nothing else (no loopback that was superseded or loaded twice, no stacked sink that
// was meant to be gone). A module on its way out after a hand-over is left to go, unless the plan
// still needs it; a planned loopback that is missing is loaded again.
void PulseConnection::reconcile()
{
    auto held = std::exchange(heldModules, {});
    const std::string& stacked = restorePlan.defaultSink;
    if (actionsUnderway > 0) {
        // An action is under way: what it loads is not in the plan yet. Its end runs the pass.
        reconcileDue = true;
        return;
    }
    if (stacked.empty()) {
        return;
    }
    const auto ours = [&](const ModuleRecord& module) {
        const auto loopback = loopbackOf(module);
        return (loopback && loopback->source == stacked + ".monitor") ||
               (module.name == kNullSinkModule && parseModuleArguments(module.argument)["sink_name"] == stacked);
    };
    std::erase_if(held, [&](const ModuleRecord& module) { return !ours(module); });
    // Modules that keep playing are matched to the plan before those on their way out.
    std::stable_partition(held.begin(), held.end(),
                          [&](const ModuleRecord& module) { return !mirror.retiringModules.contains(module.index); });
    auto wanted = restorePlan.modules;
    bool stackedSinkHeld = false;
    for (const auto& module : held) {
        const auto it = std::find(wanted.begin(), wanted.end(), std::pair{module.name, module.argument});
        const bool retiring = mirror.retiringModules.contains(module.index);
        if (it != wanted.end() && (!retiring || keepRetiring(module.index))) {
            stackedSinkHeld = stackedSinkHeld || module.name == kNullSinkModule;
            wanted.erase(it);
        } else if (!retiring) {
            qCWarning(lcOrvantaSound, "unloading module %u (%s %s): not what the program meant to leave", module.index,
                      module.name.c_str(), module.argument.c_str());
            unloadModuleAsync(module.index);
        }
    }
    for (const auto& [name, arguments] : wanted) {
        const auto loopback = loopbackOf(ModuleRecord{PA_INVALID_INDEX, name, arguments});
        if (stackedSinkHeld && loopback && sinkNamed(mirror, loopback->sink)) {
            loadModuleAsync(name, arguments);
        }
    }
}

// A module the plan still needs stays, though a hand-over meant to unload it; false when its
// unload has been sent already.
bool PulseConnection::keepRetiring(std::uint32_t index)
{
    auto* api = pa_threaded_mainloop_get_api(loop.get());
    const auto kept = std::erase_if(delayedUnloads, [&](const auto& unload) {
        if (unload->index != index || unload->generation != contextGeneration) {
            return false;
        }
        api->time_free(unload->timer);
        return true;
    });
    if (kept > 0) {
        mirror.retiringModules.erase(index);
    }
    return kept > 0;
}

PulseConnection::Action::Action(PulseConnection& server) : connection(server)
{
    ++connection.actionsUnderway;
}

PulseConnection::Action::~Action()
{
    pa_threaded_mainloop_lock(connection.loop.get());
    if (--connection.actionsUnderway == 0 && connection.answering()) {
        connection.heardFromServer();
    }
    pa_threaded_mainloop_unlock(connection.loop.get());
}

} // namespace orvanta::pulse
