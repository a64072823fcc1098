# Like mingw-w64.cmake, but with clang as the compiler: it takes the headers and libraries of the GNU one.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
  OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
cmake_path(GET libgcc PARENT_PATH gcc)

set(CMAKE_C_COMPILER clang)
set(CMAKE_C_COMPILER_TARGET ${triple})
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET ${triple})
# It does not find them where Debian keeps them, and would look among the headers of the machine that builds.
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  --start-no-unused-arguments -nostdlibinc --end-no-unused-arguments
  -isystem ${gcc}/include/c++ -isystem ${gcc}/include/c++/${triple} -isystem /usr/${triple}/include)
# GNU's linker would remark on type information that the two compilers pad differently.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-B${gcc} -L${gcc} -pthread -fuse-ld=lld")
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
