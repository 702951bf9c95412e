# Run by CTest with cmake -P. Installs the builds against Qt 5 and Qt 6 into
# one PREFIX and proves that they live there side by side:
#   1. no file that one build installs is also installed by the other;
#   2. each build's tool runs from the prefix on the bundled sample;
#   3. a separate CMake project builds and runs against each package there.
# BUILDS, PACKAGES, TOOLS and MAJORS hold one entry per build, joined by '|'.
cmake_minimum_required(VERSION 3.16)

foreach(var PREFIX LIBDIR BUILDS PACKAGES TOOLS MAJORS CONSUMER_SOURCE CONSUMER_BUILD SAMPLE GENERATOR CXX_COMPILER
            EXPECTED_VERSION)
  if("${${var}}" STREQUAL "")
    message(FATAL_ERROR "side-by-side check: ${var} is not given")
  endif()
endforeach()
foreach(var BUILDS PACKAGES TOOLS MAJORS)
  string(REPLACE "|" ";" ${var} "${${var}}")
endforeach()
unset(ENV{DESTDIR})

set(CHECK_NAME "side-by-side check")
include(${CMAKE_CURRENT_LIST_DIR}/InstallSupport.cmake)

# --- 1. both builds into one prefix ------------------------------------------
file(REMOVE_RECURSE "${PREFIX}" "${CONSUMER_BUILD}")
set(all_installed)
foreach(build ${BUILDS})
  set(install_cmd ${CMAKE_COMMAND} --install "${build}" --prefix "${PREFIX}")
  if(NOT "${CONFIG}" STREQUAL "")
    list(APPEND install_cmd --config "${CONFIG}")
  endif()
  run_step("installing ${build}" ${install_cmd})
  # What this install wrote, as the install itself lists it.
  file(STRINGS "${build}/install_manifest.txt" written)
  foreach(path ${written})
    if(path IN_LIST all_installed)
      message(FATAL_ERROR "side-by-side check: ${build} installs ${path}, which the other build installs too")
    endif()
  endforeach()
  list(APPEND all_installed ${written})
endforeach()
list(LENGTH all_installed count)
message(STATUS "${count} files installed, none by both builds")

set(ENV{LD_LIBRARY_PATH} "${PREFIX}/${LIBDIR}")
list(LENGTH TOOLS build_count)
math(EXPR last "${build_count} - 1")
foreach(i RANGE ${last})
  list(GET TOOLS ${i} tool)
  list(GET PACKAGES ${i} package)
  list(GET MAJORS ${i} major)
  # --- 2. the tool -------------------------------------------------------------
  run_step("${tool} check on the sample" "${PREFIX}/bin/${tool}" check "${SAMPLE}")

  # --- 3. a consumer of the package ----------------------------------------------
  build_consumer("${package}" "${major}" "${PREFIX}" "${CONSUMER_BUILD}/${package}")
  message(STATUS "${package}: ${step_output}")
endforeach()
