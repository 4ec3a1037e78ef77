# Run by cpack between installation and packing: makes of each staged component what Debian expects of a package. Run paths
# go (the libraries are on the dynamic linker's path), manual pages and changelog are compressed, and each package has its
# own documentation directory.

set(gzip gzip --best --no-name --force)

# debian_changelog(OUT): CHANGELOG.md as a Debian changelog, one entry for each "## VERSION - DATE" heading.
function(debian_changelog out)
  file(STRINGS ${CPACK_ASCII_UTIL_SOURCE_DIR}/CHANGELOG.md lines)
  set(text "")
  set(trailer "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^## ([0-9.]+) - ([0-9]+-[0-9]+-[0-9]+)$")
      set(version ${CMAKE_MATCH_1})
      execute_process(COMMAND date --utc --date=${CMAKE_MATCH_2} --rfc-email
                      OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
      string(APPEND text "${trailer}ii-ascii-util (${version}) unstable; urgency=medium\n\n")
      set(trailer "\n -- ${CPACK_PACKAGE_CONTACT}  ${date}\n\n")
    elseif(trailer AND line MATCHES "^- (.*)$")
      string(APPEND text "  * ${CMAKE_MATCH_1}\n")
    elseif(trailer AND line MATCHES "^  (.*)$")
      string(APPEND text "    ${CMAKE_MATCH_1}\n")
    endif()
  endforeach()
  set(${out} "${text}${trailer}" PARENT_SCOPE)
endfunction()

# Why the libraries of the runtime package break the habit that a library's name carries a version.
function(write_overrides root package)
  file(WRITE ${root}/share/lintian/overrides/${package}
    "# Plug-ins: hosts and callers load them by these names, and the binary contract is\n"
    "# kept for good instead of being versioned.\n"
    "${package}: shared-library-lacks-version *\n")
endfunction()

debian_changelog(changelog)
file(READ ${CPACK_ASCII_UTIL_SOURCE_DIR}/cmake/copyright copyright)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
  string(TOUPPER ${component} upper)
  set(doc ${root}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})

  file(GLOB binaries ${root}/bin/* ${root}/lib/*/*.so)
  foreach(binary IN LISTS binaries)
    file(RPATH_REMOVE FILE ${binary})
  endforeach()

  file(GLOB pages ${root}/share/man/man1/*.1)
  foreach(page IN LISTS pages)
    execute_process(COMMAND ${gzip} ${page} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()

  if(EXISTS ${root}/${CPACK_ASCII_UTIL_DOCDIR})
    file(RENAME ${root}/${CPACK_ASCII_UTIL_DOCDIR} ${doc})
  endif()
  file(WRITE ${doc}/copyright "${copyright}")
  file(WRITE ${doc}/changelog "${changelog}")
  execute_process(COMMAND ${gzip} ${doc}/changelog COMMAND_ERROR_IS_FATAL ANY)
  if(component STREQUAL "runtime")
    write_overrides(${root} ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  endif()
endforeach()
