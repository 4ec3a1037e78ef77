# The bill of materials, built and installed with the other files: the Debian packages, with their versions, that the built
# files are linked to. It is made from Debian's package database, so on other systems it is left out.

find_package(Python3 QUIET COMPONENTS Interpreter)
find_program(DPKG_QUERY dpkg-query)
if(NOT ASCII_UTIL_INSTALL OR NOT Python3_FOUND OR NOT DPKG_QUERY OR NOT TARGET bundle_host_lib)
  return()
endif()

set(sbom ${PROJECT_BINARY_DIR}/ii_ascii_util.cdx.json)
set(sbom_targets ii_ascii_util bundle_host_lib ${programs})
if(TARGET ii_ascii_recorder)
  list(APPEND sbom_targets ii_ascii_recorder)
endif()
list(TRANSFORM sbom_targets REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE sbom_files)
# Header libraries cannot be found in the built files, so they are named here.
set(sbom_headers --compiled-in libcli11-dev --compiled-in nlohmann-json3-dev)
# Where the target's libraries are; a cross build's target is not the build machine. The first two precede the compiler's list,
# in which a cross compiler's own copies come first.
set(sbom_directories)
foreach(dir /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE} /lib/${CMAKE_LIBRARY_ARCHITECTURE}
            ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES} ${ACE_LIBRARY_DIRS})
  list(APPEND sbom_directories --directory ${dir})
endforeach()
add_custom_command(
  OUTPUT ${sbom}
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/cmake/sbom.py --name ${PROJECT_NAME} --version ${PROJECT_VERSION}
          --output ${sbom} ${sbom_headers} ${sbom_directories} ${sbom_files}
  DEPENDS cmake/sbom.py ${sbom_targets}
  VERBATIM)
add_custom_target(sbom ALL DEPENDS ${sbom})
install(FILES ${sbom} DESTINATION ${ASCII_UTIL_INSTALL_ARCHDIR} COMPONENT runtime)
