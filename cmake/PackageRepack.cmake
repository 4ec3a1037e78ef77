# Run by cpack on the finished packages. cpack writes scripts that call ldconfig, where Debian wants the trigger, and packs
# with the time of day; dpkg-deb, which goes by SOURCE_DATE_EPOCH, packs the same contents to the same file every time.

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree ${package}.tree)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${tree}/DEBIAN/postinst)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    file(WRITE ${tree}/DEBIAN/triggers "activate-noawait ldconfig\n")
  endif()
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${tree} ${package}
                  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
