# Finds ACE by pkg-config and makes the target ACE::ACE. Says which package brings it when it is missing.

find_package(PkgConfig QUIET)
if(NOT PKG_CONFIG_FOUND)
  message(FATAL_ERROR "pkg-config is missing: install the Debian package pkg-config")
endif()
pkg_check_modules(ACE QUIET IMPORTED_TARGET GLOBAL ACE>=7.0)
if(NOT ACE_FOUND)
  message(FATAL_ERROR "ACE 7.0 or newer is missing: install the Debian package libace-dev")
endif()
if(NOT TARGET ACE::ACE)
  add_library(ACE::ACE ALIAS PkgConfig::ACE)
endif()
