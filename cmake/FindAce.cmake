# Finds ACE by pkg-config and makes the target ACE::ACE. When ACE is missing, the message names the Debian package.

find_package(PkgConfig QUIET)
ascii_util_require(PKG_CONFIG_FOUND "pkg-config" pkgconf)
pkg_check_modules(ACE QUIET IMPORTED_TARGET GLOBAL ACE>=7.0)
ascii_util_require(ACE_FOUND "ACE 7.0 or newer" libace-dev)
if(NOT TARGET ACE::ACE)
  add_library(ACE::ACE ALIAS PkgConfig::ACE)
endif()
