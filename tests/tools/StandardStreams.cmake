# "dossier convert - --to FORM -o -" between pipes: the bytes of each form of
# the sample are those committed in GOLDEN (and the XML is the sample itself),
# and a tool that reads what another one writes gives the sample back.
#
#   cmake -DTOOL=... -DSAMPLE=dossier.xml -DGOLDEN=dir -DWORKDIR=dir -P StandardStreams.cmake
cmake_minimum_required(VERSION 3.16)

file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})

# Runs the commands as one pipeline, the sample on the first one's standard
# input through a pipe, the last one's standard output into `output`.
function(pipeline output)
  if(CMAKE_VERSION VERSION_LESS 3.18)
    set(writer COMMAND cat ${SAMPLE})
  else()
    set(writer COMMAND ${CMAKE_COMMAND} -E cat ${SAMPLE})
  endif()
  execute_process(${writer} ${ARGN}
    OUTPUT_FILE ${output}
    RESULTS_VARIABLE results
    ERROR_VARIABLE err)
  foreach(rc ${results})
    if(NOT rc EQUAL 0)
      message(FATAL_ERROR "a step of the pipeline into ${output} failed (${results}): ${err}")
    endif()
  endforeach()
  if(NOT err STREQUAL "")
    message(FATAL_ERROR "the pipeline into ${output} wrote to standard error: ${err}")
  endif()
endfunction()

function(expect_same expected actual)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${expected} ${actual} RESULT_VARIABLE differs)
  if(differs)
    message(FATAL_ERROR "${actual} is not the bytes of ${expected}")
  endif()
endfunction()

foreach(form xml tagged compressed raw)
  pipeline(${WORKDIR}/sample.${form} COMMAND ${TOOL} convert - --to ${form} -o -)
  if(form STREQUAL "xml")
    expect_same(${SAMPLE} ${WORKDIR}/sample.${form})
  else()
    expect_same(${GOLDEN}/dossier.${form} ${WORKDIR}/sample.${form})
  endif()
endforeach()

pipeline(${WORKDIR}/round-trip.xml
  COMMAND ${TOOL} convert - --to compressed -o -
  COMMAND ${TOOL} convert - --to tagged
  COMMAND ${TOOL} convert - --to xml -o -)
expect_same(${SAMPLE} ${WORKDIR}/round-trip.xml)
