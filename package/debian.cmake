# What only the Debian packages hold: Debian's own files. Without the bench there is one package, the plug-in's.
find_program(GZIP gzip REQUIRED)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "Media Proxy Maintainers <maintainers@mediaproxy.example>")
set(CPACK_COMPONENTS_ALL mediaproxy-driver)
if(MEDIAPROXY_BENCH)
  list(APPEND CPACK_COMPONENTS_ALL mediaproxy mediaproxy-dev)
endif()
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_MEDIAPROXY-DRIVER_PACKAGE_NAME mediaproxy-driver)
set(CPACK_DEBIAN_MEDIAPROXY-DRIVER_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_MEDIAPROXY-DRIVER_DESCRIPTION "media proxy driver
media.so is a plug-in for a home-automation controller's driver host. It
stands between a music player and the controller's user interfaces.")
if(CMAKE_CROSSCOMPILING)
  # Debian's tools find the libraries' packages only on the machine itself: tools/package names them.
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${DEBIAN_ARCH})
else()
  set(CPACK_DEBIAN_MEDIAPROXY-DRIVER_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_NAME mediaproxy)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/triggers)
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_DEPENDS "mediaproxy-driver (= ${PROJECT_VERSION}-1), python3")
set(CPACK_DEBIAN_MEDIAPROXY_PACKAGE_SUGGESTS "mpd, webp-pixbuf-loader")
set(CPACK_DEBIAN_MEDIAPROXY_DESCRIPTION "bench host for the media proxy driver
driverhost loads the media proxy driver, or another driver, on a desk, with
a stand-in for the controller: it plays sessions, checks cases, binds a
running player and serves a page that shows what user interfaces see.
mpd-player is a player that speaks for MPD.")

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
foreach(component ${CPACK_COMPONENTS_ALL})
  install(FILES copyright ${changelogs} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${component} COMPONENT ${component})
endforeach()
