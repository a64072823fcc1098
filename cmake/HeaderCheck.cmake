# velmora_header_check(name [FOLDERS pattern...] [EXCLUDE regex] [LIBRARIES target...]): registers a test which
# compiles every header below the folders alone, twice included, with the flags of the build. Headers are found,
# not listed: one that is forgotten here would be one that nobody checks.
function(velmora_header_check name)
  cmake_parse_arguments(PARSE_ARGV 1 CHECK "" "EXCLUDE" "FOLDERS;LIBRARIES")
  set(patterns ${CHECK_FOLDERS})
  list(TRANSFORM patterns PREPEND ${PROJECT_SOURCE_DIR}/)
  list(TRANSFORM patterns APPEND /*.h)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${patterns})
  if(CHECK_EXCLUDE)
    list(FILTER headers EXCLUDE REGEX "${CHECK_EXCLUDE}")
  endif()
  if(NOT headers)
    message(FATAL_ERROR "${name}: no headers found")
  endif()

  foreach(header IN LISTS headers)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}/${header}.cpp)
    file(CONFIGURE OUTPUT ${source} @ONLY CONTENT
      "#include \"@header@\"\n// Once more: the guard must hold.\n#include \"@header@\"\n")
    list(APPEND sources ${source})
  endforeach()

  # Not part of the default build: the test compiles it, so that a bad header is a failed test with its name.
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${sources})
  target_link_libraries(${name} PRIVATE project_options ${CHECK_LIBRARIES})
  add_test(NAME check.${name}
    COMMAND ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --target ${name})
  # A whole machine's work, by its PROCESSORS: the tests with time limits do not run beside it.
  cmake_host_system_information(RESULT cores QUERY NUMBER_OF_LOGICAL_CORES)
  set_tests_properties(check.${name} PROPERTIES PROCESSORS ${cores} TIMEOUT 600)
endfunction()
