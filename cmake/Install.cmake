# Rules of `cmake --install`, in three components: `runtime` (the bundle, the recorder, the host's library, a sample svc.conf
# and the bill of materials), `development` (headers, CMake package, pkg-config files, pages) and `tools` (programs, their
# manual pages and completions). Also gives a project that adds this one as a subdirectory the same target names that the
# installed CMake package has.

include(CMakePackageConfigHelpers)

# Headers for callers that fetch the interface at run time and do not link the bundle.
add_library(ascii_util_caller_headers INTERFACE)
target_link_libraries(ascii_util_caller_headers INTERFACE ascii_util_headers ACE::ACE)
target_include_directories(ascii_util_headers INTERFACE $<INSTALL_INTERFACE:${ASCII_UTIL_INSTALL_HEADERDIR}>)

add_library(ii_ascii_util::headers ALIAS ascii_util_caller_headers)
add_library(ii_ascii_util::ii_ascii_util ALIAS ii_ascii_util)
set_target_properties(ascii_util_headers PROPERTIES EXPORT_NAME include_directories)
set_target_properties(ascii_util_caller_headers PROPERTIES EXPORT_NAME headers)

set(exported ii_ascii_util ascii_util_headers ascii_util_caller_headers)
if(TARGET bundle_host_lib)
  add_library(ii_ascii_util::platform ALIAS bundle_host_lib)
  set_target_properties(bundle_host_lib PROPERTIES EXPORT_NAME platform)
  # The bundle finds the platform in its own directory, so that the two can be moved together.
  set_target_properties(ii_ascii_util PROPERTIES INSTALL_RPATH "$ORIGIN")
  list(APPEND exported bundle_host_lib)
endif()
if(TARGET ii_ascii_recorder)
  # Loaded by name and never linked against, so it is not exported.
  set_target_properties(ii_ascii_recorder PROPERTIES INSTALL_RPATH "$ORIGIN")
endif()
set(programs)
foreach(program bundle_host almcfg)
  if(TARGET ${program})
    add_executable(ii_ascii_util::${program} ALIAS ${program})
    list(APPEND programs ${program})
  endif()
endforeach()

option(ASCII_UTIL_INSTALL "Install the project" ${PROJECT_IS_TOP_LEVEL})
if(NOT ASCII_UTIL_INSTALL)
  return()
endif()

# ascii_util_absolute(OUT DIR): DIR below the prefix, as an absolute path; an absolute DIR is returned unchanged.
function(ascii_util_absolute out dir)
  cmake_path(ABSOLUTE_PATH dir BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE OUTPUT_VARIABLE path)
  set(${out} ${path} PARENT_SCOPE)
endfunction()

ascii_util_absolute(bindir ${CMAKE_INSTALL_BINDIR})
ascii_util_absolute(libdir ${CMAKE_INSTALL_LIBDIR})
cmake_path(RELATIVE_PATH libdir BASE_DIRECTORY ${bindir} OUTPUT_VARIABLE bin_to_lib)
if(TARGET bundle_host)
  set_target_properties(bundle_host PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
endif()

install(TARGETS ${exported} EXPORT ii_ascii_util LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)
if(TARGET ii_ascii_recorder)
  install(TARGETS ii_ascii_recorder LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)
endif()
if(programs)
  install(TARGETS ${programs} EXPORT ii_ascii_util-tools
          RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
install(DIRECTORY framework include/ascii_util DESTINATION ${ASCII_UTIL_INSTALL_HEADERDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h")

# --- CMake package ------------------------------------------------------------------------------------------------------
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ii_ascii_util)
configure_package_config_file(cmake/ii_ascii_utilConfig.cmake.in ${PROJECT_BINARY_DIR}/ii_ascii_utilConfig.cmake
                              INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ii_ascii_utilConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ii_ascii_utilConfig.cmake ${PROJECT_BINARY_DIR}/ii_ascii_utilConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)
install(EXPORT ii_ascii_util NAMESPACE ii_ascii_util:: FILE ii_ascii_util-targets.cmake
        DESTINATION ${package_dir} COMPONENT development)
if(programs)
  install(EXPORT ii_ascii_util-tools NAMESPACE ii_ascii_util:: FILE ii_ascii_util-tools.cmake
          DESTINATION ${package_dir} COMPONENT tools)
endif()

# --- pkg-config ---------------------------------------------------------------------------------------------------------
# Paths below the prefix are written relative to the file, so that the tree can be moved; absolute paths are written
# unchanged. A tree below /usr is not moved, and compilers and linkers search there without options.
function(ascii_util_pc_path out dir)
  if(NOT IS_ABSOLUTE ${dir})
    set(dir "\${prefix}/${dir}")
  endif()
  set(${out} ${dir} PARENT_SCOPE)
endfunction()

set(PC_LIBS "-L\${libdir} -Wl,-rpath-link,\${libdir} -lii_ascii_util")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(PC_PREFIX /usr)
  set(PC_LIBS -lii_ascii_util)
elseif(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${libdir}/pkgconfig OUTPUT_VARIABLE up)
  string(REGEX REPLACE "/$" "" up ${up})
  set(PC_PREFIX "\${pcfiledir}/${up}")
endif()
ascii_util_pc_path(PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
ascii_util_pc_path(PC_HEADERDIR ${ASCII_UTIL_INSTALL_HEADERDIR})
ascii_util_pc_path(PC_ARCHDIR ${ASCII_UTIL_INSTALL_ARCHDIR})
foreach(package ii_ascii_util ii_ascii_util-headers)
  configure_file(cmake/${package}.pc.in ${PROJECT_BINARY_DIR}/${package}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

# --- sample svc.conf ----------------------------------------------------------------------------------------------------
# Names the installed file, so it is written at installation, when the prefix is final.
install(CODE "
  set(libdir \"${CMAKE_INSTALL_LIBDIR}\")
  set(archdir \"${ASCII_UTIL_INSTALL_ARCHDIR}\")
  foreach(dir libdir archdir)
    cmake_path(ABSOLUTE_PATH \${dir} BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
  endforeach()
  configure_file(\"${PROJECT_SOURCE_DIR}/cmake/svc.conf.in\" \"${PROJECT_BINARY_DIR}/svc.conf\" @ONLY)
  file(INSTALL \"${PROJECT_BINARY_DIR}/svc.conf\" DESTINATION \"\${archdir}\")
" COMPONENT runtime)

# --- pages --------------------------------------------------------------------------------------------------------------
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN man EXCLUDE)
file(GLOB manual_pages CONFIGURE_DEPENDS docs/man/*.1)
install(FILES ${manual_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
