# A short fuzz run of one target, as a CTest test: the seeds from the samples,
# the dictionary, a time limit, and a limit on any one allocation, so that an
# input that makes a reader reserve without bound is a finding.
#
#   cmake -DTARGET=... -DSEEDS=dir -DCORPUS=name -DDICT=file -DWORK=dir -DSECONDS=60 -P RunFuzz.cmake
cmake_minimum_required(VERSION 3.16)

file(MAKE_DIRECTORY ${WORK}/corpus ${WORK}/findings)
execute_process(COMMAND ${TARGET}
    -max_total_time=${SECONDS}
    -malloc_limit_mb=64
    -rss_limit_mb=2048
    -timeout=10
    -max_len=65536
    -dict=${DICT}
    -artifact_prefix=${WORK}/findings/
    -print_final_stats=1
    ${WORK}/corpus ${SEEDS}/${CORPUS}
  RESULT_VARIABLE rc
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err)
string(REGEX MATCH "stat::number_of_executed_units: *[0-9]+" runs "${err}")
string(REGEX MATCH "stat::peak_rss_mb: *[0-9]+" rss "${err}")
message(STATUS "${runs}; ${rss}")
if(NOT rc EQUAL 0)
  string(LENGTH "${err}" length)
  if(length GREATER 6000)
    math(EXPR from "${length} - 6000")
    string(SUBSTRING "${err}" ${from} 6000 err)
  endif()
  message(FATAL_ERROR "the fuzzer found a fault (exit ${rc}); the input is in ${WORK}/findings\n${err}")
endif()
