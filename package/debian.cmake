# What only the Debian packages hold: manual pages, made of the programs' own help, and Debian's files.
find_program(HELP2MAN help2man REQUIRED)
find_program(GZIP gzip REQUIRED)

function(add_manual_page page about program)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${page}.1)
  separate_arguments(words UNIX_COMMAND "${program}")
  list(POP_FRONT words target)
  list(JOIN words " " words)
  add_custom_command(OUTPUT ${file}.gz
    COMMAND ${HELP2MAN} --no-info --name "${about}" --version-string "${page} ${PROJECT_VERSION}"
      --include ${CMAKE_CURRENT_SOURCE_DIR}/see_also.man --output ${file} "$<TARGET_FILE:${target}> ${words}"
    COMMAND ${GZIP} -9nf ${file}
    DEPENDS ${target} see_also.man
    VERBATIM)
  add_custom_target(manual_${page} ALL DEPENDS ${file}.gz)
  install(FILES ${file}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()
add_manual_page(driverhost "the bench host for driver plug-ins" driverhost)
add_manual_page(driverhost-replay "play a session into a driver" "driverhost replay")
add_manual_page(driverhost-live "bind a running player to a driver" "driverhost live")
add_manual_page(driverhost-check "play cases, compare the traffic with theirs" "driverhost check")
add_manual_page(mpd-player "a music player (MPD) as a device that driverhost binds" mpd-player)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "Media Proxy Maintainers <maintainers@mediaproxy.example>")
set(CPACK_COMPONENTS_ALL mediaproxy mediaproxy-dev)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_NAME mediaproxy)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/triggers)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_SUGGESTS "mpd, python3")
set(CPACK_DEBIAN_MEDIAPROXY_DESCRIPTION "media proxy driver and its bench host
media.so is a plug-in for a home-automation controller's driver host. It
stands between a music player and the controller's user interfaces.
.
driverhost loads it, or another driver, on a desk, with a stand-in for the
controller: it plays sessions, checks cases, binds a running player and
serves a page that shows what user interfaces see. mpd-player is a player
that speaks for MPD.")

set(CPACK_DEBIAN_MEDIAPROXY-DEV_PACKAGE_NAME mediaproxy-dev)
set(CPACK_DEBIAN_MEDIAPROXY-DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_MEDIAPROXY-DEV_PACKAGE_DEPENDS "mediaproxy (= ${PROJECT_VERSION}-1), cmake, g++, libboost-dev, make")
set(CPACK_DEBIAN_MEDIAPROXY-DEV_PACKAGE_SUGGESTS "gdb, ninja-build, pkg-config, valgrind")
set(CPACK_DEBIAN_MEDIAPROXY-DEV_DESCRIPTION "headers and template for drivers of one's own
What is needed to write a driver for a home-automation controller's driver
host: the headers of the host framework and of its stand-in, a CMake package,
pkg-config files, and a driver to copy, with its cases.")
include(CPack)

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(changelog.in changelog.Debian @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog COPYONLY)
foreach(file changelog changelog.Debian)
  add_custom_command(OUTPUT ${file}.gz COMMAND ${GZIP} -9nkf ${file} DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${file})
  list(APPEND changelogs ${CMAKE_CURRENT_BINARY_DIR}/${file}.gz)
endforeach()
add_custom_target(changelogs ALL DEPENDS ${changelogs})
foreach(component mediaproxy mediaproxy-dev)
  install(FILES copyright ${changelogs} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${component} COMPONENT ${component})
endforeach()
