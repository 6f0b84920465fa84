#pragma once

// PipeWire's C interface is largely macros that expand, in the caller, to C-style casts and
// compound literals; files that call it include this header last to accept those.

#include <pipewire/pipewire.h>

#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wpedantic"
