# A Debian package: `cpack --config build/release/CPackConfig.cmake`. The tree as `cmake --install` makes it goes to
# /usr/lib/ostmake, where the programs find what belongs to them; PATH gets wrappers.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ostmake)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Builder for embedded C and assembly projects on MSP430 microcontrollers")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr/lib/ostmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/StageSystemFiles.cmake)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The ostmake developers <ostmake@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "clang-19 | clang")
include(CPack)
