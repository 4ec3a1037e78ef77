# ascii_util_require(FOUND WHAT PACKAGE...): stops the configure step, with one line that names the Debian packages, unless the
# variable FOUND is true.
function(ascii_util_require found what)
  if(NOT ${found})
    list(JOIN ARGN " and " packages)
    set(kind package)
    if(packages MATCHES " and ")
      set(kind packages)
    endif()
    message(FATAL_ERROR "${what} is missing: install the Debian ${kind} ${packages}")
  endif()
endfunction()
