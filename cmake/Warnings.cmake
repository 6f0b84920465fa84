# Every project target gets the same strict warning set through this interface target.
add_library(orvanta_warnings INTERFACE)
target_compile_options(orvanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
    -Wunused -Woverloaded-virtual -Wconversion -Wsign-conversion -Wnull-dereference
    -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough)
if(ORVANTA_WERROR)
    target_compile_options(orvanta_warnings INTERFACE -Werror)
endif()
