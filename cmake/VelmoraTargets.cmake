# The targets' common ground: compiler options, object libraries, and how a program is put together from them.

# Every target of ours links project_options.
add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_features(project_options INTERFACE cxx_std_20)
# The flags are those of GCC and clang; another compiler configures without them.
set(gnu_flags OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT MSVC)
  set(gnu_flags ON)
endif()
if(gnu_flags)
  target_compile_options(project_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Wnon-virtual-dtor;-Werror>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler sees overlaps in the concatenation of strings that are not there (its bug 105651).
  target_compile_options(project_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()

if(WIN32)
  target_compile_definitions(project_options INTERFACE
    UNICODE _UNICODE _WIN32_WINNT=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN)
endif()
if(WIN32 AND gnu_flags)
  # Text is char16_t for us and wchar_t for the system, both 16 bits wide: the one helper that turns pointers to
  # the one into pointers to the other needs -fno-strict-aliasing.
  target_compile_options(project_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-strict-aliasing;-fstack-protector-strong;-ffunction-sections;-fdata-sections>)
  # Made for Windows 10 and later; Windows refuses it on older ones instead of missing a function.
  target_link_options(project_options INTERFACE
    -static -fstack-protector-strong -Wl,--gc-sections -Wl,--no-insert-timestamp
    -Wl,--major-os-version,10 -Wl,--minor-os-version,0
    -Wl,--major-subsystem-version,10 -Wl,--minor-subsystem-version,0
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VELMORA_KEEPS_SYMBOLS>>>:-s>)
endif()

if(VELMORA_SANITIZE AND gnu_flags)
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
  target_compile_options(project_options INTERFACE ${sanitizers} -fno-omit-frame-pointer)
  target_compile_definitions(project_options INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(project_options INTERFACE ${sanitizers})
endif()
if(VELMORA_FUZZ)
  # Lets the fuzz targets see which ways their inputs take through our code.
  target_compile_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# velmora_objects(name source...): an object library of ours. The system libraries that its code calls are named
# with target_link_libraries(name PUBLIC ...).
function(velmora_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PUBLIC project_options)
endfunction()

# velmora_use(target objects...): puts the object files of the named object libraries into an executable or a
# DLL, with project_options and the system libraries that they name. Object files do not travel on from one
# object library to the next, so each program lists every library that it consists of: two back ends that define
# the same function then clash at link time, where with static libraries the first one would win silently.
function(velmora_use target)
  target_link_libraries(${target} PRIVATE project_options)
  foreach(objects IN LISTS ARGN)
    get_target_property(type ${objects} TYPE)
    if(NOT type STREQUAL "OBJECT_LIBRARY")
      message(FATAL_ERROR "velmora_use(${target}): ${objects} is no object library")
    endif()
    target_link_libraries(${target} PRIVATE ${objects})
  endforeach()
endfunction()
