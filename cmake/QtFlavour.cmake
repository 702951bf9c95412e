# The names under which a build against Qt <major> installs. The Qt 5 build
# keeps the library's own names; a build against another Qt adds "Qt<major>"
# to the library, the CMake package and the pkg-config module, "-qt<major>" to
# the tool, and puts its headers in a folder of their own below the include
# directory, so that the builds install side by side into one prefix.
#
#   edd_flavour_names(<major> <package var> <tool var> <include root var>)
function(edd_flavour_names major package_var tool_var include_root_var)
  if(major EQUAL 5)
    set(package EmitterDossierDoc)
    set(tool dossier)
    set(include_root ${CMAKE_INSTALL_INCLUDEDIR})
  else()
    set(package EmitterDossierDocQt${major})
    set(tool dossier-qt${major})
    set(include_root ${CMAKE_INSTALL_INCLUDEDIR}/${package})
  endif()
  set(${package_var} ${package} PARENT_SCOPE)
  set(${tool_var} ${tool} PARENT_SCOPE)
  set(${include_root_var} ${include_root} PARENT_SCOPE)
endfunction()
