# The test build runs under AddressSanitizer and UndefinedBehaviorSanitizer; any report aborts.
if(ORVANTA_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
