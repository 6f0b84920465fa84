// Another program that holds the volume keys, as a desktop's own volume handler would: grabs
// them, says "held" on standard output, and keeps them until its standard input closes.

#include "x11/X11VolumeKeys.h"

#include <cstdio>

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
    while (std::getchar() != EOF) {
    }
    xcb_disconnect(connection);
    return 0;
}
