# The bundle and a caller, built by a compiler other than the project's, so that each side of the contract is tested with
# code of the other compiler. Sets
#   contract_other_name    clang or gcc; empty when there is none
#   contract_other_bundle  the bundle that compiler built; empty when there is none
# and adds the tests of the callers.

set(contract_other_name "")
set(contract_other_bundle "")

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(name clang)
  set(compilers clang++ clang++-14)
else()
  set(name gcc)
  set(compilers g++ g++-12)
endif()
set(ASCII_UTIL_OTHER_CXX "" CACHE STRING
  "Another C++ compiler, to test the binary contract with (default: found; 'none': leave these tests out)")

if(NOT ascii_util_framework STREQUAL "bundle_host_lib")
  message(STATUS "tests/contract: not the open host's platform, so callers and bundles of another compiler are not "
                 "tested")
  return()
endif()
if(ASCII_UTIL_OTHER_CXX STREQUAL "none")
  message(STATUS "tests/contract: no other compiler wanted, so callers and bundles of another one are not tested")
  return()
endif()
if(ASCII_UTIL_SANITIZE OR ASCII_UTIL_COVERAGE)
  message(STATUS "tests/contract: an instrumented build, so it is not mixed with another compiler's")
  return()
endif()
if(ASCII_UTIL_OTHER_CXX STREQUAL "")
  find_program(CONTRACT_OTHER_CXX NAMES ${compilers})
  if(NOT CONTRACT_OTHER_CXX)
    message(FATAL_ERROR "${name} is missing: install the Debian package ${name} (scripts/setup.sh check), or leave "
                        "the tests with another compiler out with -DASCII_UTIL_OTHER_CXX=none")
  endif()
else()
  set(CONTRACT_OTHER_CXX ${ASCII_UTIL_OTHER_CXX})
endif()

set(contract_other_name ${name})
set(other_flags -std=c++17 -O2 -fPIC -fvisibility=hidden -fvisibility-inlines-hidden -Wall -Wextra
  -I${PROJECT_SOURCE_DIR} -I${PROJECT_SOURCE_DIR}/include ${ACE_CFLAGS})
if(name STREQUAL "gcc")
  list(APPEND other_flags -fno-gnu-unique)
endif()
set(contract_platform_library $<TARGET_FILE:bundle_host_lib>)
file(GLOB_RECURSE contract_headers ${PROJECT_SOURCE_DIR}/src/*.h ${PROJECT_SOURCE_DIR}/framework/*.h
     ${PROJECT_SOURCE_DIR}/include/*.h)

# --- The bundle ---

get_target_property(other_sources ascii_util_objects SOURCES)
get_target_property(other_source_dir ascii_util_objects SOURCE_DIR)
list(TRANSFORM other_sources PREPEND ${other_source_dir}/)
set(contract_other_bundle ${CMAKE_CURRENT_BINARY_DIR}/${name}/libii_ascii_util.so)
set(exports ${PROJECT_SOURCE_DIR}/src/exports.map)
add_custom_command(OUTPUT ${contract_other_bundle}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/${name}
  COMMAND ${CONTRACT_OTHER_CXX} ${other_flags} -shared ${other_sources} -o ${contract_other_bundle}
          -Wl,--version-script=${exports} -Wl,--no-undefined -Wl,-soname,libii_ascii_util.so
          ${contract_platform_library} -Wl,-rpath,$<TARGET_FILE_DIR:bundle_host_lib> ${ACE_LDFLAGS}
  DEPENDS ${other_sources} ${contract_headers} ${exports} bundle_host_lib
  COMMENT "Building the bundle with ${name}" VERBATIM)
add_custom_target(contract_other_bundle ALL DEPENDS ${contract_other_bundle})

# --- The callers ---

add_executable(contract_caller caller.cpp)
ascii_util_target(contract_caller)
target_link_libraries(contract_caller PRIVATE ascii_util_headers ii_ascii_util bundle_host_lib ACE::ACE)

set(other_caller ${CMAKE_CURRENT_BINARY_DIR}/${name}/contract_caller)
add_custom_command(OUTPUT ${other_caller}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/${name}
  COMMAND ${CONTRACT_OTHER_CXX} ${other_flags} ${CMAKE_CURRENT_SOURCE_DIR}/caller.cpp -o ${other_caller}
          $<TARGET_FILE:ii_ascii_util> ${contract_platform_library} ${ACE_LDFLAGS}
  DEPENDS caller.cpp ${contract_headers} ii_ascii_util bundle_host_lib
  COMMENT "Building the caller with ${name}" VERBATIM)
add_custom_target(contract_other_caller ALL DEPENDS ${other_caller})

# The order of the loader's directories decides which bundle a caller uses.
function(contract_caller_test test caller bundle)
  add_test(NAME contract.caller.${test} COMMAND ${caller} ${bundle})
  cmake_path(GET bundle PARENT_PATH directory)
  set_tests_properties(contract.caller.${test} PROPERTIES TIMEOUT 600 ENVIRONMENT
    "LD_LIBRARY_PATH=${directory}:$<TARGET_FILE_DIR:bundle_host_lib>")
endfunction()
set(own_bundle $<TARGET_FILE_DIR:ii_ascii_util>/$<TARGET_FILE_NAME:ii_ascii_util>)
contract_caller_test(own_caller_own_bundle contract_caller ${own_bundle})
contract_caller_test(${name}_caller_own_bundle ${other_caller} ${own_bundle})
contract_caller_test(own_caller_${name}_bundle contract_caller ${contract_other_bundle})
