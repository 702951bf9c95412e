# Runs edd-codegen on SCHEMAS (a|b|...), in cases/, writing to OUT. With EXPECT
# it must refuse them with exactly the message EXPECT; else each file under
# GOLDEN must be the bytes it wrote in the same place under OUT, so that a
# change of the generated code shows in review (with -DUPDATE=ON, those bytes
# are copied to GOLDEN). -DCODEGEN=exe -DSOURCE_ROOT=dir and the above.
cmake_minimum_required(VERSION 3.16)

string(REPLACE "|" ";" schemas "${SCHEMAS}")
file(REMOVE_RECURSE ${OUT})
execute_process(COMMAND ${CODEGEN} --source-root ${SOURCE_ROOT} --out ${OUT} ${schemas}
  WORKING_DIRECTORY ${CMAKE_CURRENT_LIST_DIR}/cases RESULT_VARIABLE rc OUTPUT_VARIABLE said ERROR_VARIABLE said)
if(DEFINED EXPECT)
  if(rc EQUAL 0 OR NOT said STREQUAL "edd-codegen: ${EXPECT}\n")
    message(FATAL_ERROR "edd-codegen should refuse ${SCHEMAS} with\n  edd-codegen: ${EXPECT}\nbut said (exit code ${rc})\n  ${said}")
  endif()
  return()
elseif(NOT rc EQUAL 0 OR NOT said STREQUAL "")
  message(FATAL_ERROR "edd-codegen refused ${SCHEMAS} (exit code ${rc}): ${said}")
endif()

file(GLOB_RECURSE goldens RELATIVE ${GOLDEN} ${GOLDEN}/*)
foreach(name ${goldens})
  if(UPDATE)
    configure_file(${OUT}/${name} ${GOLDEN}/${name} COPYONLY)
    continue()
  endif()
  execute_process(COMMAND diff -u ${GOLDEN}/${name} ${OUT}/${name} RESULT_VARIABLE differs OUTPUT_VARIABLE text)
  if(differs)
    list(APPEND differences ${name})
    message("${text}")
  endif()
endforeach()
if(differences OR NOT goldens)
  message(FATAL_ERROR "the generated code differs from the goldens in ${GOLDEN}: ${differences}\nIf the change is "
    "meant, refresh them with\n  cmake --build <build dir> --target codegen_update_goldens\nand commit them.")
endif()
