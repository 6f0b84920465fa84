#include "X11VolumeKeys.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace orvanta::x11 {

namespace {

// Caps Lock, Num Lock (Mod2) and Scroll Lock (Mod5) must not stop the keys from reaching us.
constexpr std::array<std::uint16_t, 8> kLockCombinations{
    0,
    XCB_MOD_MASK_LOCK,
    XCB_MOD_MASK_2,
    XCB_MOD_MASK_5,
    XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2,
    XCB_MOD_MASK_LOCK | XCB_MOD_MASK_5,
    XCB_MOD_MASK_2 | XCB_MOD_MASK_5,
    XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 | XCB_MOD_MASK_5,
};

template <typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

} // namespace

X11VolumeKeys::X11VolumeKeys(xcb_connection_t* xcb) : connection(xcb)
{
    if (!connection || xcb_connection_has_error(connection)) {
        connection = nullptr;
        return;
    }
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const auto screen = xcb_setup_roots_iterator(setup);
    root = screen.rem > 0 ? screen.data->root : XCB_NONE;
    raise = keycodeFor(kRaiseVolumeKeysym);
    lower = keycodeFor(kLowerVolumeKeysym);
}

std::optional<xcb_keycode_t> X11VolumeKeys::keycodeFor(xcb_keysym_t keysym) const
{
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const auto first = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
    Reply<xcb_get_keyboard_mapping_reply_t> reply(
        xcb_get_keyboard_mapping_reply(connection, xcb_get_keyboard_mapping(connection, first, count), nullptr),
        &std::free);
    if (!reply) {
        return std::nullopt;
    }
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    const int perKeycode = reply->keysyms_per_keycode;
    const int total = xcb_get_keyboard_mapping_keysyms_length(reply.get());
    for (int i = 0; i < total; ++i) {
        if (symbols[i] == keysym) {
            return static_cast<xcb_keycode_t>(first + i / perKeycode);
        }
    }
    return std::nullopt;
}

bool X11VolumeKeys::grabAll(bool keep)
{
    if (!hasDisplay() || !raise || !lower) {
        return false;
    }
    std::vector<xcb_void_cookie_t> cookies;
    for (const auto keycode : {*raise, *lower}) {
        for (const auto modifiers : kLockCombinations) {
            cookies.push_back(xcb_grab_key_checked(connection, 1, root, modifiers, keycode, XCB_GRAB_MODE_ASYNC,
                                                   XCB_GRAB_MODE_ASYNC));
        }
    }
    bool allGranted = true;
    for (const auto cookie : cookies) {
        if (xcb_generic_error_t* error = xcb_request_check(connection, cookie)) {
            allGranted = false; // BadAccess: another client holds this combination
            std::free(error);
        }
    }
    if (!allGranted || !keep) {
        for (const auto keycode : {*raise, *lower}) {
            for (const auto modifiers : kLockCombinations) {
                xcb_ungrab_key(connection, keycode, root, modifiers);
            }
        }
        xcb_flush(connection);
    }
    return allGranted;
}

bool X11VolumeKeys::grab()
{
    grabbed = grabAll(true);
    return grabbed;
}

void X11VolumeKeys::ungrab()
{
    if (grabbed) {
        grabAll(false);
        grabbed = false;
    }
}

bool X11VolumeKeys::canGrab()
{
    // Our own grab stands in for the answer: probing would release it.
    return grabbed || grabAll(false);
}

std::optional<int> X11VolumeKeys::mediaKeyCode(xcb_keycode_t keycode) const
{
    if (raise && keycode == *raise) {
        return 0;
    }
    if (lower && keycode == *lower) {
        return 1;
    }
    return std::nullopt;
}

} // namespace orvanta::x11
