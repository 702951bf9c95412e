# Installation of the library: the shared object, its public headers under
# <include root>/EmitterDossierDoc/ (a consumer needs the include root alone and
# writes #include <EmitterDossierDoc/...>), a CMake package
# (find_package(<package>) gives EmitterDossierDoc::EmitterDossierDoc and finds
# Qt Core for the consumer) and a pkg-config module of the same name.
#
# The package name is EmitterDossierDoc for the Qt 5 build, whose include root
# is include/, and EmitterDossierDocQt6 for the Qt 6 build, whose include root
# is include/EmitterDossierDocQt6/: no file of one build has the path of a file
# of the other, so both install into one prefix.
#
# Included from the top-level CMakeLists.txt once the target EmitterDossierDoc,
# EDD_PUBLIC_HEADERS (source|folder pairs), EDD_GENERATED_HEADERS,
# EDD_INCLUDE_DIR, EDD_PACKAGE_NAME, EDD_INSTALL_INCLUDE_ROOT and EDD_QT_MAJOR
# exist. Internal headers (*_p.h) are never installed.

include(CMakePackageConfigHelpers)

foreach(required_var EDD_PUBLIC_HEADERS EDD_GENERATED_HEADERS EDD_INCLUDE_DIR EDD_PACKAGE_NAME
                     EDD_INSTALL_INCLUDE_ROOT EDD_QT_MAJOR)
  if(NOT DEFINED ${required_var})
    message(FATAL_ERROR "Packaging.cmake: ${required_var} must be set before it is included")
  endif()
endforeach()
if(NOT TARGET EmitterDossierDoc)
  message(FATAL_ERROR "Packaging.cmake: the target EmitterDossierDoc must exist before it is included")
endif()

set(EDD_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/${EDD_PACKAGE_NAME})
set(EDD_INSTALL_PKGCONFIGDIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Hand-written public headers go where their forwarding headers stand.
foreach(entry ${EDD_PUBLIC_HEADERS})
  edd_public_header(${entry} source folder)
  install(FILES ${PROJECT_SOURCE_DIR}/${source}
    DESTINATION ${EDD_INSTALL_INCLUDE_ROOT}/EmitterDossierDoc/${folder}
    COMPONENT Development)
endforeach()
# Generated headers, the export and version headers among them, keep the folder
# they have below the build's include directory.
foreach(header ${EDD_GENERATED_HEADERS}
               ${EDD_INCLUDE_DIR}/EmitterDossierDoc/EmitterDossierDoc.h
               ${EDD_INCLUDE_DIR}/EmitterDossierDoc/edd_export.h
               ${EDD_INCLUDE_DIR}/EmitterDossierDoc/Version.h)
  file(RELATIVE_PATH rel_header ${EDD_INCLUDE_DIR} ${header})
  get_filename_component(rel_dir ${rel_header} DIRECTORY)
  install(FILES ${header}
    DESTINATION ${EDD_INSTALL_INCLUDE_ROOT}/${rel_dir}
    COMPONENT Development)
endforeach()

install(TARGETS EmitterDossierDoc
  EXPORT EmitterDossierDocTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT Runtime
    NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)

install(EXPORT EmitterDossierDocTargets
  NAMESPACE EmitterDossierDoc::
  FILE ${EDD_PACKAGE_NAME}Targets.cmake
  DESTINATION ${EDD_INSTALL_CMAKEDIR}
  COMPONENT Development)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/EmitterDossierDocConfig.cmake.in
  ${PROJECT_BINARY_DIR}/${EDD_PACKAGE_NAME}Config.cmake
  INSTALL_DESTINATION ${EDD_INSTALL_CMAKEDIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/${EDD_PACKAGE_NAME}ConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/${EDD_PACKAGE_NAME}Config.cmake
    ${PROJECT_BINARY_DIR}/${EDD_PACKAGE_NAME}ConfigVersion.cmake
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
if(IS_ABSOLUTE "${EDD_INSTALL_INCLUDE_ROOT}")
  set(EDD_PC_INCLUDEDIR "${EDD_INSTALL_INCLUDE_ROOT}")
else()
  set(EDD_PC_INCLUDEDIR "\${prefix}/${EDD_INSTALL_INCLUDE_ROOT}")
endif()
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/EmitterDossierDoc.pc.in
  ${PROJECT_BINARY_DIR}/${EDD_PACKAGE_NAME}.pc
  @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${EDD_PACKAGE_NAME}.pc
  DESTINATION ${EDD_INSTALL_PKGCONFIGDIR}
  COMPONENT Development)
