# ModpBase64::ModpBase64, the base64 library, which has no package file of its own.
find_path(ModpBase64_INCLUDE_DIR modp_b64.h)
find_library(ModpBase64_LIBRARY modpbase64)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(ModpBase64 REQUIRED_VARS ModpBase64_LIBRARY ModpBase64_INCLUDE_DIR)
if(ModpBase64_FOUND AND NOT TARGET ModpBase64::ModpBase64)
  add_library(ModpBase64::ModpBase64 UNKNOWN IMPORTED)
  set_target_properties(ModpBase64::ModpBase64 PROPERTIES
    IMPORTED_LOCATION ${ModpBase64_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${ModpBase64_INCLUDE_DIR})
endif()
