# Installation of the library: the shared object, its public headers under
# include/EmitterDossierDoc/, a CMake package (find_package(EmitterDossierDoc)
# gives EmitterDossierDoc::EmitterDossierDoc and finds Qt5 Core for the
# consumer) and a pkg-config file.
#
# Included from the top-level CMakeLists.txt once the target EmitterDossierDoc
# and the header lists EDD_RECORDKIT_HEADERS, EDD_FRAME_HEADERS,
# EDD_GENERATED_HEADERS, EDD_UMBRELLA_HEADER and EDD_GENERATED_DIR exist.

include(CMakePackageConfigHelpers)

foreach(required_var EDD_RECORDKIT_HEADERS EDD_FRAME_HEADERS EDD_GENERATED_HEADERS EDD_GENERATED_DIR)
  if(NOT DEFINED ${required_var})
    message(FATAL_ERROR "Packaging.cmake: ${required_var} must be set before it is included")
  endif()
endforeach()
if(NOT TARGET EmitterDossierDoc)
  message(FATAL_ERROR "Packaging.cmake: the target EmitterDossierDoc must exist before it is included")
endif()

set(EDD_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/EmitterDossierDoc)
set(EDD_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/EmitterDossierDoc)
set(EDD_INSTALL_PKGCONFIGDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Installs each header below include/EmitterDossierDoc/ in the folder it has
# below `base_dir`, so that "schema/values/AgeOutTime.h" keeps its path.
function(edd_install_headers base_dir)
  foreach(header ${ARGN})
    if(IS_ABSOLUTE "${header}")
      set(abs_header "${header}")
    else()
      set(abs_header "${base_dir}/${header}")
    endif()
    file(RELATIVE_PATH rel_header "${base_dir}" "${abs_header}")
    if(rel_header MATCHES "^\\.\\./")
      message(FATAL_ERROR "Packaging.cmake: header ${abs_header} lies outside ${base_dir}")
    endif()
    get_filename_component(rel_dir "${rel_header}" DIRECTORY)
    install(FILES "${abs_header}"
      DESTINATION "${EDD_INSTALL_INCLUDEDIR}/${rel_dir}"
      COMPONENT Development)
  endforeach()
endfunction()

edd_install_headers(${PROJECT_SOURCE_DIR} ${EDD_RECORDKIT_HEADERS} ${EDD_FRAME_HEADERS})
edd_install_headers(${EDD_GENERATED_DIR} ${EDD_GENERATED_HEADERS})
# The umbrella header sits in its own folder of the generated tree, so that
# <EmitterDossierDoc/EmitterDossierDoc.h> works in the build tree as installed.
install(FILES
    ${EDD_GENERATED_DIR}/EmitterDossierDoc/EmitterDossierDoc.h
    ${EDD_GENERATED_DIR}/edd_export.h
  DESTINATION ${EDD_INSTALL_INCLUDEDIR}
  COMPONENT Development)

install(TARGETS EmitterDossierDoc
  EXPORT EmitterDossierDocTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT Runtime
    NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)

install(EXPORT EmitterDossierDocTargets
  NAMESPACE EmitterDossierDoc::
  FILE EmitterDossierDocTargets.cmake
  DESTINATION ${EDD_INSTALL_CMAKEDIR}
  COMPONENT Development)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/EmitterDossierDocConfig.cmake.in
  ${PROJECT_BINARY_DIR}/EmitterDossierDocConfig.cmake
  INSTALL_DESTINATION ${EDD_INSTALL_CMAKEDIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/EmitterDossierDocConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/EmitterDossierDocConfig.cmake
    ${PROJECT_BINARY_DIR}/EmitterDossierDocConfigVersion.cmake
  DESTINATION ${EDD_INSTALL_CMAKEDIR}
  COMPONENT Development)

# The pkg-config file finds the prefix from its own place, so the installed
# tree can be moved (or installed with `cmake --install --prefix`) as a whole.
# An absolute library or include dir is written as it is.
if(IS_ABSOLUTE "${EDD_INSTALL_PKGCONFIGDIR}")
  set(EDD_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH edd_pc_up "/edd-prefix/${EDD_INSTALL_PKGCONFIGDIR}" "/edd-prefix")
  string(REGEX REPLACE "/$" "" edd_pc_up "${edd_pc_up}")
  set(EDD_PC_PREFIX "\${pcfiledir}/${edd_pc_up}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(EDD_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
else()
  set(EDD_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(EDD_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")
else()
  set(EDD_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/EmitterDossierDoc.pc.in
  ${PROJECT_BINARY_DIR}/EmitterDossierDoc.pc
  @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/EmitterDossierDoc.pc
  DESTINATION ${EDD_INSTALL_PKGCONFIGDIR}
  COMPONENT Development)
