# What the install checks share; included by CheckInstall.cmake,
# CheckSideBySide.cmake and CheckWithoutRunPath.cmake, which set CHECK_NAME (for
# messages) and the variables that build_consumer reads: CONSUMER_SOURCE,
# GENERATOR, MAKE_PROGRAM, CXX_COMPILER, CONFIG and EXPECTED_VERSION.

# Runs a command and stops with its output when it fails; leaves its standard
# output in step_output.
function(run_step what)
  execute_process(COMMAND ${ARGN}
    RESULT_VARIABLE rc
    OUTPUT_VARIABLE out
    ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${CHECK_NAME}: ${what} failed (${rc})\n"
                        "command: ${ARGN}\n--- stdout ---\n${out}\n--- stderr ---\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
endfunction()

# Configures the consumer project in `build_dir` against `package` (built with
# Qt `major`) installed in `prefix`, proves that the package came from there,
# builds the consumer and runs it with the prefix's libraries. Leaves what it
# printed in step_output.
function(build_consumer package major prefix build_dir)
  set(configure_cmd ${CMAKE_COMMAND}
    -S "${CONSUMER_SOURCE}" -B "${build_dir}" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}"
    "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    -DCMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON
    "-DEDD_PACKAGE=${package}"
    "-DEDD_EXPECTED_VERSION=${EXPECTED_VERSION}"
    "-DEDD_EXPECTED_QT_MAJOR=${major}")
  if(NOT "${MAKE_PROGRAM}" STREQUAL "")
    list(APPEND configure_cmd "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}")
  endif()
  if(NOT "${CONFIG}" STREQUAL "")
    list(APPEND configure_cmd "-DCMAKE_BUILD_TYPE=${CONFIG}")
  endif()
  run_step("configuring the consumer of ${package}" ${configure_cmd})

  # The package must come from the prefix, not from a build tree or the system.
  file(STRINGS "${build_dir}/CMakeCache.txt" found_dir REGEX "^${package}_DIR:")
  string(REGEX REPLACE "^[^=]*=" "" found_dir "${found_dir}")
  get_filename_component(found_dir "${found_dir}" REALPATH)
  get_filename_component(real_prefix "${prefix}" REALPATH)
  string(FIND "${found_dir}/" "${real_prefix}/" at)
  if(NOT at EQUAL 0)
    message(FATAL_ERROR "${CHECK_NAME}: the consumer found ${package} in '${found_dir}', not below ${real_prefix}")
  endif()

  set(build_cmd ${CMAKE_COMMAND} --build "${build_dir}")
  if(NOT "${CONFIG}" STREQUAL "")
    list(APPEND build_cmd --config "${CONFIG}")
  endif()
  run_step("building the consumer of ${package}" ${build_cmd})

  file(GLOB_RECURSE consumer_exe "${build_dir}/edd_install_consumer")
  if(NOT consumer_exe)
    message(FATAL_ERROR "${CHECK_NAME}: the consumer of ${package} was not built in ${build_dir}")
  endif()
  list(GET consumer_exe 0 consumer_exe)
  run_step("running the consumer of ${package}" "${consumer_exe}")
  set(step_output "${step_output}" PARENT_SCOPE)
endfunction()

# The run path written into an ELF file (RUNPATH or, from an older linker,
# RPATH), as readelf -d shows it; empty when it has none.
function(read_run_path out_var readelf file)
  if("${readelf}" STREQUAL "" OR readelf MATCHES "NOTFOUND$")
    message(FATAL_ERROR "${CHECK_NAME}: readelf was not found; it comes with binutils (build-essential)")
  endif()
  run_step("readelf -d ${file}" "${readelf}" -d "${file}")
  set(found "")
  if(step_output MATCHES "\\((RUNPATH|RPATH)\\)[^\n]*\\[([^]\n]*)\\]")
    set(found "${CMAKE_MATCH_2}")
  endif()
  set(${out_var} "${found}" PARENT_SCOPE)
endfunction()

# Runs the installed tool's --version with no environment at all (no
# LD_LIBRARY_PATH, no PATH) and checks its one line.
function(check_tool_version tool_file)
  run_step("env -i ${tool_file} --version" env -i "${tool_file}" --version)
  set(line "^dossier ${EXPECTED_VERSION} \\(EmitterDossierDoc ${EXPECTED_VERSION}, Qt [0-9]+\\.[0-9]+\\.[0-9]+\\)\n$")
  if(NOT step_output MATCHES "${line}")
    message(FATAL_ERROR "${CHECK_NAME}: ${tool_file} --version printed '${step_output}'")
  endif()
endfunction()
