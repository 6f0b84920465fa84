# Every project target gets the same strict warning set through this interface target.
add_library(orvanta_warnings INTERFACE)
target_compile_options(orvanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
    -Wunused -Woverloaded-virtual -Wconversion -Wsign-conversion -Wnull-dereference
    -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough)
if(ORVANTA_WERROR)
    target_compile_options(orvanta_warnings INTERFACE -Werror)
endif()
# GCC 12 reports impossible overlaps in inlined std::string concatenation at -O2 and above
# (GCC bug 105329); the warning is fixed in GCC 13.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(orvanta_warnings INTERFACE -Wno-restrict)
endif()
