# A sample through every form. "convert - --to FORM -o -" between pipes writes
# each form: the XML is the sample itself, the others the bytes of GOLDEN.FORM
# if GOLDEN is given. Each of those converted into every form (-o FILE) gives
# the sample back as XML and its own bytes back; three tools in a pipe too.
#   cmake -DTOOL=... -DSAMPLE=file.xml -DWORKDIR=dir [-DGOLDEN=path/name] -P Forms.cmake
cmake_minimum_required(VERSION 3.16)

file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})
# The class of the raw form is the sample's root element.
file(STRINGS ${SAMPLE} root REGEX "^<[A-Za-z]" LIMIT_COUNT 1)
string(REGEX MATCH "^<([A-Za-z]+)" root "${root}")
set(from_raw --from raw --class ${CMAKE_MATCH_1})
set(expected_xml ${SAMPLE})
foreach(form tagged compressed raw)
  if(GOLDEN)
    set(expected_${form} ${GOLDEN}.${form})
  endif()
endforeach()

# run(OUTPUT EXPECTED COMMAND ...): standard output into OUTPUT, the bytes of
# EXPECTED if that is given; no command may fail or say a word.
function(run output expected)
  execute_process(${ARGN} OUTPUT_FILE ${output} RESULTS_VARIABLE results ERROR_VARIABLE err)
  if(expected)
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${expected} ${output} RESULT_VARIABLE differs)
  endif()
  if(NOT results MATCHES "^0(;0)*$" OR NOT err STREQUAL "" OR differs)
    message(FATAL_ERROR "${ARGN}\nfailed (${results}) or did not give the bytes of ${expected}:\n${err}")
  endif()
endfunction()

set(forms xml tagged compressed raw json)
foreach(first ${forms})
  set(a ${WORKDIR}/a.${first})
  run(${a} "${expected_${first}}" COMMAND cat ${SAMPLE} COMMAND ${TOOL} convert - --to ${first} -o -)
  foreach(second ${forms})
    set(b ${a}.${second})
    run(${b}.log "" COMMAND ${TOOL} convert ${a} --to ${second} -o ${b} ${from_${first}})
    run(${b}.xml ${SAMPLE} COMMAND ${TOOL} convert ${b} --to xml ${from_${second}})
    run(${b}.${first} ${a} COMMAND ${TOOL} convert ${b} --to ${first} -o - ${from_${second}})
  endforeach()
endforeach()
run(${WORKDIR}/round-trip.xml ${SAMPLE} COMMAND cat ${SAMPLE} COMMAND ${TOOL} convert - --to compressed -o -
  COMMAND ${TOOL} convert - --to tagged COMMAND ${TOOL} convert - --to xml -o -)
