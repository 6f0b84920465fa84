# orvanta_export_headers(target PREFIX DIR [PREFIX DIR ...])
# Each library publishes only its own headers, under the prefix its users write in #include
# ("pulse/PulseConnection.h"). The prefix is a link in the build tree to the library's folder,
# so a target sees the headers of the libraries it links and no others.
function(orvanta_export_headers target)
    set(root ${CMAKE_BINARY_DIR}/include/${target})
    set(pairs ${ARGN})
    while(pairs)
        list(POP_FRONT pairs prefix dir)
        cmake_path(GET prefix PARENT_PATH parent)
        file(MAKE_DIRECTORY ${root}/${parent})
        file(CREATE_LINK ${dir} ${root}/${prefix} SYMBOLIC)
    endwhile()
    target_include_directories(${target} PUBLIC ${root})
endfunction()
