# `cpack` builds a Debian package of what `cmake --install` puts in place: the program, its
# desktop entry and its icon. The autostart entry is written per user when Launch at Login is
# switched on, from the installed program's path.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvanta)
set(CPACK_PACKAGE_VENDOR "Orvanta")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Play the computer's sound through two speakers at once, in sync")
set(CPACK_PACKAGE_DESCRIPTION
    "Orvanta builds one combined output from two speakers, makes it the default output and gives each speaker a delay so a late Bluetooth speaker plays in step. Both volumes follow the volume keys.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Orvanta developers <dev@orvanta.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Library dependencies are worked out from the binary; the sound server is what it talks to.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pulseaudio | pipewire-pulse")
include(CPack)
