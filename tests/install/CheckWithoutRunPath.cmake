# Run by CTest with cmake -P. Configures a build of the sources in BUILD with
# EDD_INSTALL_RPATH=OFF, as a distribution that installs into /usr does; the
# tool it would install must have no run path.
cmake_minimum_required(VERSION 3.16)

foreach(var SOURCE_DIR BUILD TOOL QT_MAJOR GENERATOR CXX_COMPILER)
  if("${${var}}" STREQUAL "")
    message(FATAL_ERROR "run path check: ${var} is not given")
  endif()
endforeach()
set(CHECK_NAME "run path check")
include(${CMAKE_CURRENT_LIST_DIR}/InstallSupport.cmake)

set(configure_cmd ${CMAKE_COMMAND} -S "${SOURCE_DIR}" -B "${BUILD}" -G "${GENERATOR}"
  "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
  -DEDD_INSTALL_RPATH=OFF
  -DBUILD_TESTING=OFF -DEDD_BUILD_BENCH=OFF -DEDD_BUILD_EXAMPLES=OFF
  "-DEDD_QT_MAJOR=${QT_MAJOR}")
foreach(pass QT_DIR:Qt${QT_MAJOR}_DIR MAKE_PROGRAM:CMAKE_MAKE_PROGRAM COMPILER_LAUNCHER:CMAKE_CXX_COMPILER_LAUNCHER
             CONFIG:CMAKE_BUILD_TYPE)
  string(REPLACE ":" ";" pass "${pass}")
  list(GET pass 0 from)
  list(GET pass 1 to)
  if(NOT "${${from}}" STREQUAL "")
    list(APPEND configure_cmd "-D${to}=${${from}}")
  endif()
endforeach()
run_step("configuring ${BUILD}" ${configure_cmd})

# What the install does with the tool's run path is fixed by the configure, in
# the tool's install script: the run path of the build is changed to none, and
# $ORIGIN appears nowhere. Building and installing would show no more, at the
# cost of a second build of the library.
file(READ "${BUILD}/tools/dossier/cmake_install.cmake" script)
if(script MATCHES "ORIGIN" OR NOT script MATCHES "/bin/${TOOL}\"\n *OLD_RPATH \"[^\"]*\"\n *NEW_RPATH \"\"\\)")
  message(FATAL_ERROR "run path check: with EDD_INSTALL_RPATH=OFF the install of ${TOOL} keeps a run path:\n${script}")
endif()
