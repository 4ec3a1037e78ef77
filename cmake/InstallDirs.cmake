# Where files are installed. On Debian, libraries go to the directory of their architecture for every prefix, not only for
# /usr: the dynamic linker, pkg-config and CMake look there below /usr/local too.

if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_INSTALL_LIBDIR AND CMAKE_LIBRARY_ARCHITECTURE
   AND EXISTS /etc/debian_version)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Object code libraries")
endif()
include(GNUInstallDirs)
set(ASCII_UTIL_INSTALL_HEADERDIR ${CMAKE_INSTALL_INCLUDEDIR}/ii_ascii_util)
# The directory of files that differ between architectures. It is in the library directory, so that the packages of
# several architectures can be installed together.
set(ASCII_UTIL_INSTALL_ARCHDIR ${CMAKE_INSTALL_LIBDIR}/ii_ascii_util)
