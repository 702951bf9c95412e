# The run path that lets an installed program find the library wherever the
# prefix is: $ORIGIN (the program's own folder) followed by the way from the
# binary folder to the library folder, so that the installed tree can be moved,
# or installed with `cmake --install --prefix` anywhere.
#
#   edd_relative_run_path(<out var> <bindir> <libdir>)
#
# <bindir> and <libdir> are CMAKE_INSTALL_BINDIR and CMAKE_INSTALL_LIBDIR. When
# both are relative to the prefix (bin, lib/x86_64-linux-gnu, ...), or both
# absolute, the way between them does not depend on the prefix. When only one
# is absolute it does, and the run path is the library folder itself, below
# CMAKE_INSTALL_PREFIX if it is relative.
function(edd_relative_run_path out_var bindir libdir)
  if(IS_ABSOLUTE "${bindir}" AND IS_ABSOLUTE "${libdir}")
    file(RELATIVE_PATH way "${bindir}" "${libdir}")
  elseif(NOT IS_ABSOLUTE "${bindir}" AND NOT IS_ABSOLUTE "${libdir}")
    file(RELATIVE_PATH way "/edd-prefix/${bindir}" "/edd-prefix/${libdir}")
  elseif(IS_ABSOLUTE "${libdir}")
    set(${out_var} "${libdir}" PARENT_SCOPE)
    return()
  else()
    set(${out_var} "${CMAKE_INSTALL_PREFIX}/${libdir}" PARENT_SCOPE)
    return()
  endif()
  string(REGEX REPLACE "/$" "" way "${way}")
  if(way STREQUAL "")
    set(${out_var} "$ORIGIN" PARENT_SCOPE)
  else()
    set(${out_var} "$ORIGIN/${way}" PARENT_SCOPE)
  endif()
endfunction()
