# How every target of the project is compiled. Targets opt in with ascii_util_target(NAME), so that a project that
# adds this one as a subdirectory keeps its own flags.

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

add_library(ascii_util_options INTERFACE)
target_compile_features(ascii_util_options INTERFACE cxx_std_17)
target_compile_options(ascii_util_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(ASCII_UTIL_WERROR)
  target_compile_options(ascii_util_options INTERFACE -Werror)
endif()

# A symbol of unique binding keeps a library mapped; an unload must unmap it. Only GCC makes such symbols.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(ascii_util_options INTERFACE -fno-gnu-unique)
else()
  # Rejects uses of data without the lock that it is declared with (host/base/mutex.h).
  target_compile_options(ascii_util_options INTERFACE -Wthread-safety -Werror=thread-safety)
endif()

# Release files do not contain the path of the build, so that builds in different directories give the same files. Builds
# for a debugger or for coverage keep the full paths.
target_compile_options(ascii_util_options INTERFACE
  $<$<CONFIG:Release,MinSizeRel,RelWithDebInfo>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>
  $<$<CONFIG:Release,MinSizeRel,RelWithDebInfo>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>)
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
endif()

if(ASCII_UTIL_SANITIZE)
  target_compile_options(ascii_util_options INTERFACE
    -fsanitize=${ASCII_UTIL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(ascii_util_options INTERFACE -fsanitize=${ASCII_UTIL_SANITIZE})
  # With its sanitizers, GCC reports variables of the standard library as uninitialised that are initialised.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(ascii_util_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(ASCII_UTIL_COVERAGE)
  # Atomic, because tests count on several threads; other counters would lose counts.
  target_compile_options(ascii_util_options INTERFACE --coverage -fprofile-abs-path -fprofile-update=atomic)
  # Links the function with which a process writes its counters before it aborts.
  target_link_options(ascii_util_options INTERFACE --coverage -Wl,--undefined=__gcov_dump)
endif()

# For shared libraries: every symbol must be found when the library is linked. Clang links a sanitizer's run time into
# programs only, so a library that Clang instruments has undefined symbols.
set(ascii_util_no_undefined -Wl,--no-undefined)
if(ASCII_UTIL_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  set(ascii_util_no_undefined "")
endif()

# Where sources include from: the repository root for framework/ and src/, include/ for what callers include.
add_library(ascii_util_headers INTERFACE)
target_include_directories(ascii_util_headers INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)

function(ascii_util_target name)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:ascii_util_options>)
  set_target_properties(${name} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
endfunction()
