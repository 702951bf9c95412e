# Runs the dossier tool once, as CTest does with a process, and checks what it
# gives: the exit code, and regular expressions on standard output and error.
#
#   cmake -DTOOL=... -DARGS=a|b|c -DRC=0 [-DOUT=regex] [-DERR=regex] [-DNO_OUT=regex]
#         [-DWORKDIR=dir] [-DCOPY=from|to] [-DSTDIN=file] [-DERR_USAGE=ON] -P RunTool.cmake
#
# Every line on standard error must be one "dossier: " message, except with
# ERR_USAGE, for a call whose standard error is the usage text.
#
# COPY copies a file to the name `to` in WORKDIR first, for names that the
# source tree should not hold. STDIN sends a file to the tool's standard input
# through a pipe. In ARGS and COPY, <ESC> and <LF> stand for an escape
# character and a newline.
cmake_minimum_required(VERSION 3.16)

string(ASCII 27 esc)
foreach(var ARGS COPY)
  string(REPLACE "<ESC>" "${esc}" ${var} "${${var}}")
  string(REPLACE "<LF>" "\n" ${var} "${${var}}")
endforeach()
string(REPLACE "|" ";" args "${ARGS}")
if(NOT WORKDIR)
  set(WORKDIR ${CMAKE_CURRENT_BINARY_DIR})
endif()
if(COPY)
  string(REPLACE "|" ";" copy "${COPY}")
  list(GET copy 0 from)
  list(GET copy 1 to)
  configure_file(${from} "${WORKDIR}/${to}" COPYONLY)
endif()
set(writer)
if(STDIN)
  # A pipe, not the file itself: the tool must not need to open its input twice.
  if(CMAKE_VERSION VERSION_LESS 3.18)
    set(writer COMMAND cat ${STDIN})
  else()
    set(writer COMMAND ${CMAKE_COMMAND} -E cat ${STDIN})
  endif()
endif()
execute_process(${writer} COMMAND ${TOOL} ${args}
  WORKING_DIRECTORY ${WORKDIR}
  RESULT_VARIABLE rc
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err)

set(report "command: ${TOOL} ${args}\nexit code: ${rc}\n--- stdout ---\n${out}\n--- stderr ---\n${err}")
if(NOT rc STREQUAL RC)
  message(FATAL_ERROR "expected exit code ${RC}\n${report}")
endif()
if(DEFINED OUT AND NOT out MATCHES "${OUT}")
  message(FATAL_ERROR "standard output does not match '${OUT}'\n${report}")
endif()
if(DEFINED NO_OUT AND out MATCHES "${NO_OUT}")
  message(FATAL_ERROR "standard output matches '${NO_OUT}'\n${report}")
endif()
if(DEFINED ERR AND NOT err MATCHES "${ERR}")
  message(FATAL_ERROR "standard error does not match '${ERR}'\n${report}")
endif()
# Errors come one to a line, in the tool's own words, never as a crash.
if(ERR_USAGE)
  return()
endif()
string(REGEX MATCHALL "\n" newlines "${err}")
list(LENGTH newlines lines)
string(REGEX MATCHALL "dossier: " prefixes "${err}")
list(LENGTH prefixes errors)
if(NOT lines EQUAL errors)
  message(FATAL_ERROR "every line on standard error must be one 'dossier: ' message\n${report}")
endif()
