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

# A unique-binding symbol would pin a library for ever; an unload must really unmap it. Only GCC makes them.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(ascii_util_options INTERFACE -fno-gnu-unique)
endif()

# What is shipped shall not tell where it was built, so that two builds anywhere give the same file. Builds for a
# debugger or for coverage keep the full paths.
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
  # GCC loses sight of what is initialised once its sanitizers have been at it, and then blames the standard library.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(ascii_util_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(ASCII_UTIL_COVERAGE)
  # Atomic, because tests count on several threads; the counts would otherwise come out torn.
  target_compile_options(ascii_util_options INTERFACE --coverage -fprofile-abs-path -fprofile-update=atomic)
  # The function by which a process that is about to abort writes its counters.
  target_link_options(ascii_util_options INTERFACE --coverage -Wl,--undefined=__gcov_dump)
endif()

# For shared libraries: every symbol must be found when the library is linked. Clang links a sanitizer's run time into
# programs only, so an instrumented library of its has open ends.
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
