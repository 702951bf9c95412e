# Converts a sample into every form, each of those into every form, and each
# result back to XML, which must equal the XML of the sample byte for byte.
#
#   cmake -DTOOL=... -DSAMPLE=file.xml -DCLASS=Name -DWORKDIR=dir -P ConvertMatrix.cmake
cmake_minimum_required(VERSION 3.16)

set(forms xml tagged compressed raw json)
file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})

function(convert input to output)
  set(from)
  if(input MATCHES "\\.raw$")
    set(from --from raw --class ${CLASS})
  endif()
  execute_process(COMMAND ${TOOL} convert ${input} --to ${to} -o ${output} ${from}
    RESULT_VARIABLE rc ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "convert ${input} --to ${to} failed (${rc}): ${err}")
  endif()
endfunction()

convert(${SAMPLE} xml ${WORKDIR}/sample.xml)
foreach(first ${forms})
  convert(${WORKDIR}/sample.xml ${first} ${WORKDIR}/a.${first})
  foreach(second ${forms})
    convert(${WORKDIR}/a.${first} ${second} ${WORKDIR}/a.${first}.${second})
    convert(${WORKDIR}/a.${first}.${second} xml ${WORKDIR}/a.${first}.${second}.back.xml)
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files
      ${WORKDIR}/sample.xml ${WORKDIR}/a.${first}.${second}.back.xml RESULT_VARIABLE same)
    if(NOT same EQUAL 0)
      message(FATAL_ERROR "${first} -> ${second} -> xml differs from the sample")
    endif()
    # The binary forms also come back the same bytes.
    convert(${WORKDIR}/a.${first}.${second} ${first} ${WORKDIR}/a.${first}.${second}.${first})
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files
      ${WORKDIR}/a.${first} ${WORKDIR}/a.${first}.${second}.${first} RESULT_VARIABLE same)
    if(NOT same EQUAL 0)
      message(FATAL_ERROR "${first} -> ${second} -> ${first} differs")
    endif()
  endforeach()
endforeach()
# The sample itself is what the library writes.
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${SAMPLE} ${WORKDIR}/sample.xml RESULT_VARIABLE same)
if(NOT same EQUAL 0)
  message(FATAL_ERROR "${SAMPLE} is not as the library writes it")
endif()
