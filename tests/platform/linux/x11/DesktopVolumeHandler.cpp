// A stand-in for a desktop's own volume handler: holds the volume keys on the X display and
// answers each press by changing the default output's volume with pactl, 10 % a step, as GNOME,
// KDE or Xfce do. Says "held" on standard output once it has the keys, "step" after each
// change, and lets go when its standard input closes.

#include "X11VolumeKeys.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

extern char** environ;

namespace {

void changeDefaultVolume(const char* change)
{
    char program[] = "pactl";
    char command[] = "set-sink-volume";
    char sink[] = "@DEFAULT_SINK@";
    char amount[8] = {};
    std::snprintf(amount, sizeof amount, "%s", change);
    char* arguments[] = {program, command, sink, amount, nullptr};
    pid_t child = 0;
    if (posix_spawnp(&child, program, nullptr, nullptr, arguments, environ) == 0) {
        int status = 0;
        waitpid(child, &status, 0);
    }
}

} // namespace

int main()
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    orvanta::x11::X11VolumeKeys keys(connection);
    if (!keys.grab()) {
        std::puts("refused");
        return 1;
    }
    std::puts("held");
    std::fflush(stdout);
    pollfd watched[2] = {{xcb_get_file_descriptor(connection), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    while (poll(watched, 2, -1) >= 0) {
        if ((watched[1].revents & (POLLIN | POLLHUP)) != 0) {
            char ignored[64];
            if (read(STDIN_FILENO, ignored, sizeof ignored) <= 0) {
                break;
            }
        }
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection)) {
            if ((event->response_type & ~0x80) == XCB_KEY_PRESS) {
                const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event);
                if (const auto code = keys.mediaKeyCode(key->detail)) {
                    changeDefaultVolume(*code == 0 ? "+10%" : "-10%");
                    std::puts("step");
                    std::fflush(stdout);
                }
            }
            std::free(event);
        }
        if (xcb_connection_has_error(connection) != 0) {
            break;
        }
    }
    xcb_disconnect(connection);
    return 0;
}
