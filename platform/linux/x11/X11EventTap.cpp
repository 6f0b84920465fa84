#include "X11EventTap.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>

#include <cstdlib>
#include <set>

namespace orvanta::x11 {

namespace {

constexpr qint64 kKeyDownState = 0x0A;
constexpr qint64 kKeyUpState = 0x0B;
constexpr qint64 kRepeatFlag = 0x1;

class X11TapPort final : public services::EventTapPort, public QAbstractNativeEventFilter
{
public:
    X11TapPort(X11VolumeKeys& keys, quint64 mask, services::TapCallback tapCallback)
        : volumeKeys(keys), eventMask(mask), callback(std::move(tapCallback))
    {}

    ~X11TapPort() override
    {
        if (onMainLoop) {
            QCoreApplication::instance()->removeNativeEventFilter(this);
        }
        setEnabled(false);
    }

    void addToMainLoop() override
    {
        if (!onMainLoop) {
            QCoreApplication::instance()->installNativeEventFilter(this);
            onMainLoop = true;
        }
    }

    void setEnabled(bool enable) override
    {
        if (enable && !volumeKeys.isGrabbed()) {
            volumeKeys.grab();
        } else if (!enable) {
            volumeKeys.ungrab();
        }
        enabled = enable && volumeKeys.isGrabbed();
    }

    bool isEnabled() const override { return enabled; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) override
    {
        if (!enabled || eventType != "xcb_generic_event_t") {
            return false;
        }
        const auto* generic = static_cast<const xcb_generic_event_t*>(message);
        const auto type = generic->response_type & ~0x80;
        if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) {
            return false;
        }
        const auto* key = static_cast<const xcb_key_press_event_t*>(message);
        const bool press = type == XCB_KEY_PRESS;
        const bool wasDown = down.contains(key->detail);
        const auto event = tapEventFor(volumeKeys, key->detail, press, wasDown);
        if (!event || (eventMask & (quint64{1} << event->type)) == 0) {
            return false;
        }
        if (press) {
            down.insert(key->detail);
        } else {
            down.erase(key->detail);
        }
        if (callback(*event)) {
            passOn(*key);
        }
        return true;
    }

private:
    // Sends the event on to the focused window, as if no grab had caught it.
    void passOn(const xcb_key_press_event_t& key)
    {
        auto* connection = volumeKeys.xcbConnection();
        auto* focus = xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr);
        if (!focus) {
            return;
        }
        xcb_key_press_event_t copy = key;
        copy.event = focus->focus;
        if (copy.event != XCB_NONE && copy.event != XCB_INPUT_FOCUS_POINTER_ROOT) {
            const auto mask =
                (copy.response_type & ~0x80) == XCB_KEY_PRESS ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE;
            xcb_send_event(connection, 1, copy.event, mask, reinterpret_cast<const char*>(&copy));
            xcb_flush(connection);
        }
        std::free(focus);
    }

    X11VolumeKeys& volumeKeys;
    quint64 eventMask;
    services::TapCallback callback;
    bool onMainLoop = false;
    bool enabled = false;
    std::set<xcb_keycode_t> down;
};

} // namespace

std::optional<services::TapEvent> tapEventFor(const X11VolumeKeys& keys, xcb_keycode_t keycode, bool press,
                                              bool pressedBefore)
{
    const auto code = keys.mediaKeyCode(keycode);
    if (!code) {
        return std::nullopt;
    }
    const qint64 state = press ? kKeyDownState : kKeyUpState;
    const qint64 repeat = press && pressedBefore ? kRepeatFlag : 0;
    return services::TapEvent{services::kSystemDefinedEventType, (qint64{*code} << 16) | (state << 8) | repeat, true};
}

std::unique_ptr<services::EventTapPort> X11EventTap::create(quint64 eventMask, services::TapCallback callback)
{
    if (!volumeKeys.canGrab()) {
        return nullptr;
    }
    return std::make_unique<X11TapPort>(volumeKeys, eventMask, std::move(callback));
}

} // namespace orvanta::x11
