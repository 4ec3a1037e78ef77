# The bill of materials, built with the rest and installed beside it: which Debian packages, in which versions, the built
# files are linked to. It needs the package database, so elsewhere there is none.

find_package(Python3 QUIET COMPONENTS Interpreter)
find_program(DPKG_QUERY dpkg-query)
if(NOT ASCII_UTIL_INSTALL OR NOT Python3_FOUND OR NOT DPKG_QUERY OR NOT TARGET bundle_host_lib)
  return()
endif()

set(sbom ${PROJECT_BINARY_DIR}/ii_ascii_util.cdx.json)
set(sbom_targets ii_ascii_util bundle_host_lib ${programs})
list(TRANSFORM sbom_targets REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE sbom_files)
# Libraries of headers leave no trace in a file.
set(sbom_headers --compiled-in libcli11-dev --compiled-in nlohmann-json3-dev)
add_custom_command(
  OUTPUT ${sbom}
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/cmake/sbom.py --name ${PROJECT_NAME} --version ${PROJECT_VERSION}
          --output ${sbom} ${sbom_headers} ${sbom_files}
  DEPENDS cmake/sbom.py ${sbom_targets}
  VERBATIM)
add_custom_target(sbom ALL DEPENDS ${sbom})
install(FILES ${sbom} DESTINATION ${ASCII_UTIL_INSTALL_DATADIR} COMPONENT runtime)
