# Run by CTest with cmake -P. Configures a build of the sources in BUILD with
# EDD_INSTALL_RPATH=OFF, as a distribution that installs into /usr does, builds
# the tool and installs it into PREFIX; the installed tool must have no run
# path, and still run once the library is on the loader's path.
cmake_minimum_required(VERSION 3.16)

foreach(var SOURCE_DIR BUILD PREFIX LIBDIR TOOL QT_MAJOR GENERATOR CXX_COMPILER READELF EXPECTED_VERSION)
  if("${${var}}" STREQUAL "")
    message(FATAL_ERROR "run path check: ${var} is not given")
  endif()
endforeach()
unset(ENV{DESTDIR})
set(CHECK_NAME "run path check")
include(${CMAKE_CURRENT_LIST_DIR}/InstallSupport.cmake)

# The library and the tool only; the build folder stays for the next run.
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
set(build_cmd ${CMAKE_COMMAND} --build "${BUILD}" --target dossier --parallel 2)
set(install_cmd ${CMAKE_COMMAND} --install "${BUILD}" --prefix "${PREFIX}")
if(NOT "${CONFIG}" STREQUAL "")
  list(APPEND build_cmd --config "${CONFIG}")
  list(APPEND install_cmd --config "${CONFIG}")
endif()
run_step("building the tool in ${BUILD}" ${build_cmd})
file(REMOVE_RECURSE "${PREFIX}")
run_step("installing ${BUILD}" ${install_cmd})

set(tool_file "${PREFIX}/bin/${TOOL}")
read_run_path(run_path "${READELF}" "${tool_file}")
if(NOT run_path STREQUAL "")
  message(FATAL_ERROR "run path check: ${tool_file}, built with EDD_INSTALL_RPATH=OFF, has the run path '${run_path}'")
endif()
set(ENV{LD_LIBRARY_PATH} "${PREFIX}/${LIBDIR}")
run_step("${tool_file} --version" "${tool_file}" --version)
if(NOT step_output MATCHES "^dossier ${EXPECTED_VERSION} ")
  message(FATAL_ERROR "run path check: ${tool_file} --version printed '${step_output}'")
endif()
