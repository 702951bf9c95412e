# Run by CTest with cmake -P. Installs the main build into PREFIX, then proves
# that the installed tree alone is enough to build and run a program:
#   1. the installed files are those of data/installed-files.txt, no more, no fewer
#      (that none has the path of a file of the build against the other Qt is
#      for install.side-by-side, which installs both);
#   1a. the tool's run path is RUN_PATH (empty for none), and with one the tool
#      runs from the prefix, and from the prefix moved elsewhere, with no
#      environment at all;
#   2. the version file accepts the same major version and refuses another;
#   3. a separate CMake project finds the package in PREFIX, builds and runs;
#   4. pkg-config gives its version, and flags that name the prefix and
#      compile, link and run the same program.
# PACKAGE, TOOL and INCLUDE_ROOT are the names of this build (Qt QT_MAJOR).
cmake_minimum_required(VERSION 3.16)

foreach(var BUILD_DIR LIBRARY_FILE PREFIX LIBDIR GOLDEN CONSUMER_SOURCE CONSUMER_BUILD GENERATOR CXX_COMPILER
            EXPECTED_VERSION QT_MAJOR PACKAGE TOOL INCLUDE_ROOT READELF)
  if("${${var}}" STREQUAL "")
    message(FATAL_ERROR "install check: ${var} is not given")
  endif()
endforeach()

if(IS_ABSOLUTE "${LIBDIR}" OR IS_ABSOLUTE "${INCLUDE_ROOT}")
  message(FATAL_ERROR "install check: needs relative CMAKE_INSTALL_LIBDIR and CMAKE_INSTALL_INCLUDEDIR, got '${LIBDIR}' and '${INCLUDE_ROOT}'")
endif()
# The scratch prefix is the whole destination.
unset(ENV{DESTDIR})

set(CHECK_NAME "install check")
include(${CMAKE_CURRENT_LIST_DIR}/InstallSupport.cmake)

if(NOT EXISTS "${LIBRARY_FILE}")
  message(FATAL_ERROR "install check: ${LIBRARY_FILE} does not exist; build the project before running the tests")
endif()

# --- 1. install into a fresh prefix ------------------------------------------
set(moved_prefix "${PREFIX}-moved")
file(REMOVE_RECURSE "${PREFIX}" "${moved_prefix}" "${CONSUMER_BUILD}")
set(install_cmd ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${PREFIX}")
if(NOT "${CONFIG}" STREQUAL "")
  list(APPEND install_cmd --config "${CONFIG}")
endif()
run_step("cmake --install" ${install_cmd})

set(lib "${PREFIX}/${LIBDIR}")
string(REGEX MATCH "^[0-9]+" major "${EXPECTED_VERSION}")

# Every installed file, against the list in data/installed-files.txt: a header that
# slips into the installed tree or out of it is a visible difference. The list
# writes the library folder as @LIBDIR@, the folder that holds the
# EmitterDossierDoc/ header folder as @INCLUDEROOT@, the package and tool names
# as @PACKAGE@ and @TOOL@, the version as @VERSION@ and @MAJOR@, and the
# lower-case build type as @CONFIG@.
file(GLOB_RECURSE installed LIST_DIRECTORIES false RELATIVE "${PREFIX}" "${PREFIX}/*")
list(SORT installed)
string(TOLOWER "${CONFIG}" config_lower)
if(config_lower STREQUAL "")
  set(config_lower noconfig)
endif()
file(STRINGS "${GOLDEN}" expected REGEX "^[^#]")

set(expanded)
foreach(line ${expected})
  foreach(pair "@LIBDIR@|${LIBDIR}" "@INCLUDEROOT@|${INCLUDE_ROOT}" "@PACKAGE@|${PACKAGE}" "@TOOL@|${TOOL}"
               "@VERSION@|${EXPECTED_VERSION}" "@MAJOR@|${major}" "@CONFIG@|${config_lower}")
    string(REPLACE "|" ";" pair "${pair}")
    list(GET pair 0 name)
    list(GET pair 1 value)
    string(REPLACE "${name}" "${value}" line "${line}")
  endforeach()
  list(APPEND expanded "${line}")
endforeach()
set(extra ${installed})
list(REMOVE_ITEM extra ${expanded})
set(missing ${expanded})
list(REMOVE_ITEM missing ${installed})
if(extra OR missing)
  string(REPLACE ";" "\n  + " extra_text "${extra}")
  string(REPLACE ";" "\n  - " missing_text "${missing}")
  message(FATAL_ERROR "install check: the installed files differ from ${GOLDEN}\n"
                      "installed but not listed:\n  + ${extra_text}\n"
                      "listed but not installed:\n  - ${missing_text}")
endif()

# --- 1a. the tool finds the library by itself --------------------------------
read_run_path(tool_run_path "${READELF}" "${PREFIX}/bin/${TOOL}")
if(NOT tool_run_path STREQUAL "${RUN_PATH}")
  message(FATAL_ERROR "install check: the installed ${TOOL} has the run path '${tool_run_path}', not '${RUN_PATH}'")
endif()
if(NOT RUN_PATH STREQUAL "")
  check_tool_version("${PREFIX}/bin/${TOOL}")
  # Nothing in the tree names the prefix: moved as a whole, it still runs.
  file(RENAME "${PREFIX}" "${moved_prefix}")
  check_tool_version("${moved_prefix}/bin/${TOOL}")
  file(RENAME "${moved_prefix}" "${PREFIX}")
endif()

# --- 2. version compatibility ------------------------------------------------
macro(check_version requested expect_compatible)
  set(PACKAGE_FIND_VERSION "${requested}")
  string(REGEX MATCH "^[0-9]+" PACKAGE_FIND_VERSION_MAJOR "${requested}")
  set(PACKAGE_VERSION_COMPATIBLE FALSE)
  include("${lib}/cmake/${PACKAGE}/${PACKAGE}ConfigVersion.cmake")
  if(NOT PACKAGE_VERSION STREQUAL EXPECTED_VERSION)
    message(FATAL_ERROR "install check: the package says version ${PACKAGE_VERSION}, the project is ${EXPECTED_VERSION}")
  endif()
  if(${expect_compatible} AND NOT PACKAGE_VERSION_COMPATIBLE)
    message(FATAL_ERROR "install check: version ${requested} should be accepted by ${PACKAGE_VERSION}")
  elseif(NOT ${expect_compatible} AND PACKAGE_VERSION_COMPATIBLE)
    message(FATAL_ERROR "install check: version ${requested} should be refused by ${PACKAGE_VERSION}")
  endif()
endmacro()
math(EXPR next_major "${major} + 1")
check_version("${major}.0" TRUE)
check_version("${EXPECTED_VERSION}" TRUE)
check_version("${next_major}.0" FALSE)

# --- 3. a CMake consumer -----------------------------------------------------
set(ENV{LD_LIBRARY_PATH} "${lib}")
build_consumer("${PACKAGE}" "${QT_MAJOR}" "${PREFIX}" "${CONSUMER_BUILD}")
message(STATUS "CMake consumer: ${step_output}")
get_filename_component(real_prefix "${PREFIX}" REALPATH)

# --- 4. pkg-config -----------------------------------------------------------
if("${PKG_CONFIG}" STREQUAL "" OR PKG_CONFIG MATCHES "NOTFOUND$")
  message(FATAL_ERROR "install check: pkg-config was not found; install it (scripts/install-deps.sh does)")
endif()
if(DEFINED ENV{PKG_CONFIG_PATH} AND NOT "$ENV{PKG_CONFIG_PATH}" STREQUAL "")
  set(ENV{PKG_CONFIG_PATH} "${lib}/pkgconfig:$ENV{PKG_CONFIG_PATH}")
else()
  set(ENV{PKG_CONFIG_PATH} "${lib}/pkgconfig")
endif()
run_step("pkg-config --modversion" "${PKG_CONFIG}" --modversion ${PACKAGE})
string(STRIP "${step_output}" pc_version)
if(NOT pc_version STREQUAL EXPECTED_VERSION)
  message(FATAL_ERROR "install check: pkg-config says version '${pc_version}', the project is ${EXPECTED_VERSION}")
endif()
run_step("pkg-config --cflags --libs" "${PKG_CONFIG}" --cflags --libs ${PACKAGE})
string(STRIP "${step_output}" pc_flags)
message(STATUS "pkg-config flags: ${pc_flags}")
separate_arguments(pc_flag_list UNIX_COMMAND "${pc_flags}")

# The flags of ours name the prefix's include folder (not the one below it) and its library folder.
set(ours)
foreach(flag ${pc_flag_list})
  if(flag MATCHES "^-[IL](.*)$")
    get_filename_component(dir "${CMAKE_MATCH_1}" REALPATH)
    string(FIND "${dir}" "${real_prefix}/" at)
    if(at EQUAL 0)
      list(APPEND ours "${dir}")
    endif()
  endif()
endforeach()
if(NOT ours STREQUAL "${real_prefix}/${INCLUDE_ROOT};${real_prefix}/${LIBDIR}")
  message(FATAL_ERROR "install check: pkg-config should name the prefix's include and lib folders alone: ${pc_flags}")
endif()

# Qt on Debian is built with reduced relocations, so Qt code needs -fPIC.
set(pc_exe "${CONSUMER_BUILD}/edd_install_consumer_pkgconfig")
run_step("compiling the consumer with pkg-config flags"
  "${CXX_COMPILER}" -std=c++17 -fPIC -DEDD_EXPECTED_QT_MAJOR=${QT_MAJOR} "-DEDD_EXPECTED_VERSION=\"${EXPECTED_VERSION}\""
  "${CONSUMER_SOURCE}/main.cpp" -o "${pc_exe}"
  ${pc_flag_list})
run_step("running the consumer built with pkg-config" "${pc_exe}")
message(STATUS "pkg-config consumer: ${step_output}")
