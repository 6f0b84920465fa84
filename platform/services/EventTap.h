#pragma once

// An event tap: a filter that sees the session's input events of the kinds in its mask before
// anything else does, and decides for each one whether it goes on or is dropped. Callbacks run
// on the main thread.

#include <QtGlobal>

#include <functional>
#include <memory>
#include <optional>

namespace orvanta::services {

// A system-defined event as the tap sees it. data1 carries a media key: key code in bits 16 to
// 31, key state in bits 8 to 15 (0x0A down, 0x0B up), flags in bits 0 to 7 (bit 0: repeat).
struct TapEvent
{
    quint32 type = 0;
    qint64 data1 = 0;
    bool readable = true; // false when the event cannot be decoded at all

    friend bool operator==(const TapEvent&, const TapEvent&) = default;
};

inline constexpr quint32 kSystemDefinedEventType = 14;
inline constexpr quint64 kSystemDefinedEventMask = quint64{1} << kSystemDefinedEventType;

// Gives the event to pass on, or nothing to drop it.
using TapCallback = std::function<std::optional<TapEvent>(const TapEvent&)>;

// One created tap. It sees nothing until it is added to the main loop and enabled.
class EventTapPort
{
public:
    virtual ~EventTapPort() = default;
    virtual void addToMainLoop() = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;

protected:
    EventTapPort() = default;
    EventTapPort(const EventTapPort&) = default;
    EventTapPort& operator=(const EventTapPort&) = default;
};

class EventTap
{
public:
    virtual ~EventTap() = default;
    // A tap ahead of the existing ones for events in eventMask, or null when this process may
    // not tap the session's events.
    virtual std::unique_ptr<EventTapPort> create(quint64 eventMask, TapCallback callback) = 0;

protected:
    EventTap() = default;
    EventTap(const EventTap&) = default;
    EventTap& operator=(const EventTap&) = default;
};

} // namespace orvanta::services
