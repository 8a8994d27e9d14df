# For a Debian architecture other than the machine's own, which DEBIAN_ARCH names: Debian's cross compiler builds
# against the sysroot that tools/sysroot lays out, and qemu runs what was built with the libraries there.
set(triple_armhf arm-linux-gnueabihf)
set(triple_arm64 aarch64-linux-gnu)
set(triple_i386 i686-linux-gnu)
set(processor_armhf arm)
set(processor_arm64 aarch64)
set(processor_i386 i386)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${processor_${DEBIAN_ARCH}})
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DEBIAN_ARCH)
cmake_path(SET CMAKE_SYSROOT NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot/${DEBIAN_ARCH})
set(CMAKE_CXX_COMPILER ${triple_${DEBIAN_ARCH}}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L ${CMAKE_SYSROOT})

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
file(GLOB pkg_config_dirs ${CMAKE_SYSROOT}/usr/lib/*/pkgconfig)
list(JOIN pkg_config_dirs : pkg_config_dirs)
set(ENV{PKG_CONFIG_LIBDIR} ${pkg_config_dirs}:${CMAKE_SYSROOT}/usr/share/pkgconfig)
