# Compares the generated header and source of a few classes with the copies
# committed in golden/, byte for byte, so that a change of the generated code
# shows in review. With -DUPDATE=ON it copies the generated files there instead.
#   -DCODEGEN=<exe> -DSOURCE_ROOT=<dir> -DSCHEMAS=<file|file|...> -DOUT=<dir> [-DUPDATE=ON]
set(golden_dir ${CMAKE_CURRENT_LIST_DIR}/golden)
set(compared
  include/EmitterDossierDoc/modulation/ModulationItem.h
  src/modulation/ModulationItem.cpp
  include/EmitterDossierDoc/values/AgeOutTime.h
  src/values/AgeOutTime.cpp)

string(REPLACE "|" ";" schema_files "${SCHEMAS}")
file(REMOVE_RECURSE ${OUT})
execute_process(
  COMMAND ${CODEGEN} --source-root ${SOURCE_ROOT} --out ${OUT} ${schema_files}
  RESULT_VARIABLE result
  ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "edd-codegen refused the description: ${errors}")
endif()

set(refresh "cmake --build <build dir> --target codegen_update_goldens")
set(differences)
foreach(generated ${compared})
  get_filename_component(name ${generated} NAME)
  if(UPDATE)
    configure_file(${OUT}/${generated} ${golden_dir}/${name} COPYONLY)
    message(STATUS "refreshed golden/${name}")
    continue()
  endif()
  if(NOT EXISTS ${golden_dir}/${name})
    list(APPEND differences ${name})
    message("golden/${name} is missing")
    continue()
  endif()
  file(READ ${OUT}/${generated} actual HEX)
  file(READ ${golden_dir}/${name} expected HEX)
  if(NOT actual STREQUAL expected)
    list(APPEND differences ${name})
    find_program(diff_program diff)
    if(diff_program)
      execute_process(COMMAND ${diff_program} -u ${golden_dir}/${name} ${OUT}/${generated}
        OUTPUT_VARIABLE diff_text)
      message("${diff_text}")
    else()
      message("golden/${name} differs from ${OUT}/${generated}")
    endif()
  endif()
endforeach()
if(differences)
  message(FATAL_ERROR "the generated code differs from the goldens: ${differences}\n"
    "If the change is meant, refresh them with\n  ${refresh}\nor\n"
    "  cmake -DUPDATE=ON -DCODEGEN=${CODEGEN} -DSOURCE_ROOT=${SOURCE_ROOT} \"-DSCHEMAS=${SCHEMAS}\" "
    "-DOUT=${OUT} -P ${CMAKE_CURRENT_LIST_FILE}\nand commit tests/codegen/golden/.")
endif()
