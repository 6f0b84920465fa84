#pragma once

// The volume-up and volume-down keys of an X11 display, taken for this program with a passive
// grab on the root window. A grab is refused while another client (a desktop's own volume
// handler, say) holds it, which is how this program learns whether it may have the keys.

#include <xcb/xcb.h>

#include <array>
#include <optional>

namespace orvanta::x11 {

inline constexpr xcb_keysym_t kRaiseVolumeKeysym = 0x1008FF13; // XF86AudioRaiseVolume
inline constexpr xcb_keysym_t kLowerVolumeKeysym = 0x1008FF11; // XF86AudioLowerVolume

class X11VolumeKeys
{
public:
    // connection: the display the program runs on; null when there is none (Wayland without
    // X11 access, no display at all).
    explicit X11VolumeKeys(xcb_connection_t* connection);

    bool hasDisplay() const { return connection != nullptr && root != XCB_NONE; }
    // Whether the keyboard map has both volume keys.
    bool hasVolumeKeys() const { return raise.has_value() && lower.has_value(); }

    // Grabs both keys under every combination of the lock modifiers; false, and nothing held,
    // when another client holds any of them.
    bool grab();
    void ungrab();
    bool isGrabbed() const { return grabbed; }
    // Whether grab() would succeed now, without keeping anything.
    bool canGrab();

    // 0 for volume up, 1 for volume down (the media key codes), or nothing for another key.
    std::optional<int> mediaKeyCode(xcb_keycode_t keycode) const;

    xcb_connection_t* xcbConnection() const { return connection; }
    xcb_window_t rootWindow() const { return root; }

private:
    bool grabAll(bool keep);
    std::optional<xcb_keycode_t> keycodeFor(xcb_keysym_t keysym) const;

    xcb_connection_t* connection = nullptr;
    xcb_window_t root = XCB_NONE;
    std::optional<xcb_keycode_t> raise;
    std::optional<xcb_keycode_t> lower;
    bool grabbed = false;
};

} // namespace orvanta::x11
