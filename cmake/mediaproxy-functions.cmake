# mediaproxy_add_driver(NAME SOURCE...): NAME.so, a plug-in that exports GetCreationFunc alone, binds all its symbols when
# it is loaded, and leaves the process when it is closed. The host's operations stay undefined in it: the host has them.
function(mediaproxy_add_driver name)
  set(exports ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/driver.map)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    LINK_DEPENDS ${exports})
  target_link_libraries(${name} PRIVATE mediaproxy::host)
  # A unique symbol would keep the library in the process after dlclose.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  target_link_options(${name} PRIVATE
    LINKER:-z,relro LINKER:-z,now LINKER:--as-needed LINKER:--version-script=${exports})
endfunction()

# mediaproxy_add_cases(NAME CASE... [OPTIONS OPTION...]): a test for each case, case_NAME_STEM, which plays it into that
# driver, with these options of `driverhost check`. None where the bench is not installed.
function(mediaproxy_add_cases name)
  if(NOT TARGET mediaproxy::driverhost)
    message(STATUS "There is no driverhost: the cases of ${name} are not played.")
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" OPTIONS)
  foreach(case ${arg_UNPARSED_ARGUMENTS})
    cmake_path(GET case STEM stem)
    cmake_path(ABSOLUTE_PATH case)
    add_test(NAME case_${name}_${stem}
      COMMAND mediaproxy::driverhost check ${arg_OPTIONS} --driver $<TARGET_FILE:${name}> ${case})
  endforeach()
endfunction()
