# The manual page as built: no groff warning; title and NAME line name the tool
# as installed; each command of `TOOL --help` has a section (.SS) that mentions
# each option of `TOOL COMMAND --help`; OPTIONS has the tool's own options.
#   cmake -DTOOL=... -DTOOL_NAME=dossier -DPAGE=dossier.1 -DGROFF=groff -P ManualPage.cmake
cmake_minimum_required(VERSION 3.16)

if(NOT GROFF)
  message(FATAL_ERROR "groff was not found; install groff-base (scripts/install-deps.sh does)")
endif()
execute_process(COMMAND ${GROFF} -man -ww -z ${PAGE} RESULT_VARIABLE rc ERROR_VARIABLE err)
file(READ ${PAGE} page)
# roff writes each hyphen that is typed as \-; here as a regular expression.
string(REPLACE "-" "\\\\-" name "${TOOL_NAME}")
string(TOUPPER "${name}" upper)
if(NOT rc EQUAL 0 OR NOT err STREQUAL "" OR NOT page MATCHES "\n\\.TH ${upper} 1 .*\n\\.SH NAME\n${name} \\\\- ")
  message(FATAL_ERROR "${PAGE} does not name ${TOOL_NAME} in its title and NAME line, or groff warns:\n${err}")
endif()

# expect_options(HEADING OPTION...): the section under the line HEADING (a
# regular expression), up to the next heading, mentions each OPTION.
function(expect_options heading)
  string(REGEX MATCH "\n${heading}\n.*" text "${page}")
  string(REGEX REPLACE "^\n[^\n]*\n" "" text "${text}")
  string(REGEX REPLACE "\n\\.S[HS] .*" "" text "${text}")
  foreach(option ${ARGN})
    string(REPLACE "-" "\\-" roff "${option}")
    string(FIND "${text}" "${roff}" found)
    if(found EQUAL -1)
      message(FATAL_ERROR "${PAGE}: no section '${heading}' mentions ${option} (written ${roff})")
    endif()
  endforeach()
endfunction()

execute_process(COMMAND ${TOOL} --help OUTPUT_VARIABLE help)
string(REGEX MATCH "\ncommands:\n(  [^\n]*\n)+" listed "${help}")
string(REGEX MATCHALL "\n  [a-z]+" commands "${listed}")
if(NOT commands)
  message(FATAL_ERROR "${TOOL} --help lists no commands:\n${help}")
endif()
foreach(command ${commands})
  string(STRIP "${command}" command)
  execute_process(COMMAND ${TOOL} ${command} --help OUTPUT_VARIABLE usage)
  # The options of the first line; brackets would group the items of a list.
  string(REGEX MATCH "^usage: [^\n]*" usage "${usage}")
  string(REGEX REPLACE "[][]" " " usage "${usage}")
  string(REGEX MATCHALL " --?[a-z][a-z-]*" options "${usage}")
  string(REPLACE " " "" options "${options}")
  expect_options("\\.SS ${command}" "${command}" ${options})
endforeach()
expect_options("\\.SH OPTIONS" --help -h --version -V)
