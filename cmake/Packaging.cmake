# Debian packages, made by `cpack` from what `cmake --install` puts into its three components (see scripts/package.sh):
# libii-ascii-util, libii-ascii-util-dev, ii-ascii-util-tools.

if(NOT ASCII_UTIL_INSTALL)
  return()
endif()
set(ASCII_UTIL_MAINTAINER "ii_ascii_util maintainers <maintainers@ii-ascii-util.example>" CACHE STRING
    "Maintainer that the packages name")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ii-ascii-util)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${ASCII_UTIL_MAINTAINER})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# Installed below a staging directory with the final prefix, so that files that name their place name the right one.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageTidy.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageRepack.cmake)

set(CPACK_COMPONENTS_ALL runtime development)
if(programs)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
# cpack puts the summary in front of each of these.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "string work and alarm configuration for text alarm agents")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "\
A bundle for an ACE-based service framework. It publishes one interface that a
text-based alarm agent calls for every alarm, and answers from the operators'
alarm configuration. With it comes the open provider of the framework that it
is linked to.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "\
Headers, CMake package, pkg-config files and documentation for callers of the
bundle and for libraries that link its text functions.")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "\
The programs: bundle_host loads bundles without the closed framework, drives
and inspects them; almcfg tells operators what an alarm configuration does
before it runs.")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libii-ascii-util)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libii-ascii-util-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libii-ascii-util (= ${PROJECT_VERSION}), libace-dev (>= 7.0)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS ii-ascii-util-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ii-ascii-util-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libii-ascii-util (= ${PROJECT_VERSION})")
# The tools need a library that is in another of the packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/host)

# What PackageTidy.cmake needs to know.
set(CPACK_ASCII_UTIL_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_ASCII_UTIL_DOCDIR ${CMAKE_INSTALL_DOCDIR})

include(CPack)
