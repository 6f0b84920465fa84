#pragma once

// One client connection to the sound server (PulseAudio, or PipeWire's pulse server), run on
// libpulse's own thread. It mirrors sinks, sources, modules and the default sink by
// subscription, reconnects on its own when the server goes away and comes back, and offers
// the few writes the program needs as calls that wait for the server's answer, with a bound.
// Nothing here blocks longer than that bound, and a server that is gone answers at once.

#include "PulseCalls.h"
#include "PulseMirror.h"

#include <pulse/pulseaudio.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvanta::pulse {

class PulseConnection
{
public:
    enum class State
    {
        Connecting,
        Ready,
        Disconnected,
    };

    static constexpr std::chrono::milliseconds kWriteBound{2000};
    // How long a write waits while the server has left an earlier one unanswered.
    static constexpr std::chrono::milliseconds kUnansweredBound{100};
    static constexpr std::chrono::milliseconds kReconnectDelay{1000};

    explicit PulseConnection(std::string clientName = "Orvanta");
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    // Waits until the mirror holds the server's objects, or the bound passes.
    bool waitUntilReady(std::chrono::milliseconds bound);
    State state() const;
    // False from a write the server left unanswered until the server is heard from again.
    bool answering() const { return !unanswered; }

    // Told every state the connection enters, at once with the current one. It runs on the
    // connection's thread or the caller's, with an internal lock held: it must only hand the
    // state on (queue it for another thread) and never call back into the connection. An empty
    // function removes the observer.
    using StateObserver = std::function<void(State)>;
    void setStateObserver(StateObserver observer);

    // Runs read with the mirror, the loop's lock held: keep it short.
    template <typename Read> auto withMirror(Read&& read) const
    {
        pa_threaded_mainloop_lock(loop.get());
        auto result = read(mirror);
        pa_threaded_mainloop_unlock(loop.get());
        return result;
    }

    // Writes. Each waits for the server at most kWriteBound.
    // A loaded module is entered in the mirror at once.
    std::optional<std::uint32_t> loadModule(const std::string& name, const std::string& arguments);
    bool unloadModule(std::uint32_t index);
    bool setSinkVolume(std::uint32_t sinkIndex, const pa_cvolume& volume);
    bool setDefaultSink(const std::string& sinkName);
    // Fetches one sink into the mirror now, rather than when its announcement arrives.
    bool refreshSink(const std::string& sinkName);
    // Waits until the server no longer has a sink of that name. A server may take a moment to
    // let go of a removed sink, and a new one of the same name must not meet the old one.
    bool waitUntilSinkGone(const std::string& sinkName);
    // Waits until the server lists a sink of that name, made by another client, in the mirror.
    bool waitUntilSinkPresent(const std::string& sinkName);
    // Unloads a module after a delay, on the connection's thread, without waiting for it.
    void unloadModuleLater(std::uint32_t index, std::chrono::milliseconds delay);
    // Unloads at once, waiting as a write does, every module whose unloadModuleLater is pending.
    void finishHandOvers();
    // Moves a pending unloadModuleLater of that module to delay from now; false when there is
    // none (it has run already).
    bool rescheduleUnload(std::uint32_t index, std::chrono::milliseconds delay);

    // What the server is meant to hold of the stacked device, which is loaded again, in order,
    // when the server restarts without it: the stacked sink and its loopbacks, and the sink to
    // make the default. A plan without modules restores nothing; its sink names the stacked sink
    // that must then not be on the server at all.
    struct RestorePlan
    {
        std::vector<std::pair<std::string, std::string>> modules; // name, arguments
        std::string defaultSink;
    };
    void setRestorePlan(RestorePlan plan);

    // Held by the backend across an action of several writes (making, re-timing or taking down
    // the stacked device): the reconcile pass after an unanswered write waits for its end, so it
    // never takes away a module that the action loaded but has not entered in the plan yet.
    class Action
    {
    public:
        explicit Action(PulseConnection& server);
        ~Action();
        Action(const Action&) = delete;
        Action& operator=(const Action&) = delete;

    private:
        PulseConnection& connection;
    };

    // One write waiting for the server, and what its callback receives.
    struct Pending;
    struct CallbackData;

private:
    using Start = std::function<pa_operation*(pa_context*, void* userdata)>;

    bool run(const char* call, const Start& start, Pending& pending, CallbackData* userdata);
    void connectContext();
    void dropContext();
    void setState(State newState);
    void requestInitialState();
    void finishInitialRequest();
    void scheduleReconnect();
    void logLostConnection();
    void restore();
    void reattach(const std::string& sinkName);
    void loadModuleAsync(const std::string& name, const std::string& arguments);
    void unloadModuleAsync(std::uint32_t index);
    void heardFromServer();
    void reconcile();
    bool keepRetiring(std::uint32_t index);

    static void onContextState(pa_context* context, void* self);
    static void onSubscription(pa_context* context, pa_subscription_event_type_t type, std::uint32_t index, void* self);
    static void onSinkInfo(pa_context* context, const pa_sink_info* info, int eol, void* self);
    static void onSourceInfo(pa_context* context, const pa_source_info* info, int eol, void* self);
    static void onModuleInfo(pa_context* context, const pa_module_info* info, int eol, void* self);
    static void onServerInfo(pa_context* context, const pa_server_info* info, void* self);
    static void onHeldModule(pa_context* context, const pa_module_info* info, int eol, void* self);
    struct DelayedUnload;
    static void onDelayedUnload(pa_mainloop_api* api, pa_time_event* event, const struct timeval* tv, void* userdata);
    static void onReconnectTimer(pa_mainloop_api* api, pa_time_event* event, const struct timeval* tv, void* self);

    std::string clientName;
    ThreadedLoop loop;
    Context context;
    pa_time_event* reconnectTimer = nullptr;
    PulseMirror mirror;
    int initialRequests = 0;
    bool everReady = false;
    bool connectionLossLogged = false;
    RestorePlan restorePlan;
    std::uint64_t contextGeneration = 0;
    std::vector<std::unique_ptr<DelayedUnload>> delayedUnloads;
    // Set when a write went unanswered: once the server answers again, the modules it really
    // holds are read back (into heldModules) and made to match the plan.
    bool reconcileDue = false;
    std::vector<ModuleRecord> heldModules;
    std::atomic<int> actionsUnderway{0};

    mutable std::mutex stateMutex;
    std::condition_variable stateChanged;
    State currentState = State::Connecting;
    std::atomic<bool> unanswered{false};
    StateObserver stateObserver;
};

} // namespace orvanta::pulse
