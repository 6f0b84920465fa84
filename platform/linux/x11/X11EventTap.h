#pragma once

// The volume-key tap on X11. An enabled tap grabs the volume keys and turns each of their key
// events, read through Qt's native event filter on the main thread, into a system-defined
// event word (key code in bits 16 to 31, 0x0A down or 0x0B up in bits 8 to 15, repeat in bit
// 0). A dropped event goes no further; one that is passed on is sent to the window that has
// the keyboard focus, where it would have gone without the grab.

#include "X11VolumeKeys.h"
#include "services/EventTap.h"

namespace orvanta::x11 {

class X11EventTap final : public services::EventTap
{
public:
    explicit X11EventTap(X11VolumeKeys& keys) : volumeKeys(keys) {}

    // Null when the keys cannot be taken on this display.
    std::unique_ptr<services::EventTapPort> create(quint64 eventMask, services::TapCallback callback) override;

private:
    X11VolumeKeys& volumeKeys;
};

// The event word for a key event, or nothing when the key is not a volume key. pressedBefore
// says whether the key was already down (an auto-repeat).
std::optional<services::TapEvent> tapEventFor(const X11VolumeKeys& keys, xcb_keycode_t keycode, bool press,
                                              bool pressedBefore);

} // namespace orvanta::x11
