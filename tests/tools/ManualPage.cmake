# The manual page of the tool, as the build writes it for installation:
#   1. groff renders it with all warnings on and gives none;
#   2. its NAME line and title name the tool as installed;
#   3. every command that `TOOL --help` lists has its own section (.SS), and
#      every option in the usage line of `TOOL COMMAND --help` stands in that
#      section, so that a command or option added to the tool without its
#      entry in the page fails here;
#   4. the options of the tool itself are in the section OPTIONS.
#
#   cmake -DTOOL=... -DTOOL_NAME=dossier -DPAGE=dossier.1 -DGROFF=groff -P ManualPage.cmake
cmake_minimum_required(VERSION 3.16)

if("${GROFF}" STREQUAL "" OR GROFF MATCHES "NOTFOUND$")
  message(FATAL_ERROR "groff was not found; install groff-base (scripts/install-deps.sh does)")
endif()

# --- 1. no warnings -------------------------------------------------------------
execute_process(COMMAND ${GROFF} -man -ww -z ${PAGE} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0 OR NOT err STREQUAL "")
  message(FATAL_ERROR "groff -man -ww -z ${PAGE} (exit code ${rc}) warns:\n${err}")
endif()

file(READ ${PAGE} page)
# --- 2. the tool's name ---------------------------------------------------------
# A hyphen in the name is written \-, as roff wants it in what is typed.
string(REPLACE "-" "\\-" roff_name "${TOOL_NAME}")
string(TOUPPER "${roff_name}" upper)
string(FIND "${page}" "\n.TH ${upper} 1 " title_at)
string(FIND "${page}" "\n.SH NAME\n${roff_name} \\- " name_at)
if(title_at EQUAL -1 OR name_at EQUAL -1)
  message(FATAL_ERROR "${PAGE} does not name ${TOOL_NAME} in its title and NAME line")
endif()

# The text of a section: from its heading line to the next heading (.SH or .SS).
function(section out_var heading)
  string(FIND "${page}" "\n${heading}\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${PAGE} has no section '${heading}'")
  endif()
  string(LENGTH "\n${heading}\n" skip)
  math(EXPR at "${at} + ${skip}")
  string(SUBSTRING "${page}" ${at} -1 rest)
  string(LENGTH "${rest}" end)
  foreach(next "\n.SH " "\n.SS ")
    string(FIND "${rest}" "${next}" found)
    if(NOT found EQUAL -1 AND found LESS end)
      set(end ${found})
    endif()
  endforeach()
  string(SUBSTRING "${rest}" 0 ${end} body)
  set(${out_var} "${body}" PARENT_SCOPE)
endfunction()

# An option as roff writes it, each hyphen escaped: --max-size is \-\-max\-size.
function(expect_option text option where)
  string(REPLACE "-" "\\-" roff "${option}")
  string(FIND "${text}" "${roff}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${PAGE}: ${where} does not mention ${option} (written ${roff})")
  endif()
endfunction()

# --- 3. each command and its options ----------------------------------------------
execute_process(COMMAND ${TOOL} --help RESULT_VARIABLE rc OUTPUT_VARIABLE help)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${TOOL} --help failed (${rc})")
endif()
string(REGEX MATCH "\ncommands:\n(  [^\n]*\n)+" listed "${help}")
string(REGEX MATCHALL "\n  [a-z]+" commands "${listed}")
list(LENGTH commands count)
if(count EQUAL 0)
  message(FATAL_ERROR "${TOOL} --help lists no commands:\n${help}")
endif()
foreach(command ${commands})
  string(STRIP "${command}" command)
  section(text ".SS ${command}")
  execute_process(COMMAND ${TOOL} ${command} --help RESULT_VARIABLE rc OUTPUT_VARIABLE usage)
  if(NOT rc EQUAL 0 OR NOT usage MATCHES "^usage: [^\n]*")
    message(FATAL_ERROR "${TOOL} ${command} --help failed (${rc}): ${usage}")
  endif()
  string(REGEX MATCH "^usage: [^\n]*" usage "${usage}")
  # Brackets would group the items of a CMake list: blanks do as well here.
  string(REGEX REPLACE "[][]" " " usage "${usage}")
  string(REGEX MATCHALL " --?[a-z][a-z-]*" options "${usage}")
  foreach(option ${options})
    string(STRIP "${option}" option)
    expect_option("${text}" "${option}" "the section of ${command}")
  endforeach()
endforeach()

# --- 4. the tool's own options ------------------------------------------------------
section(options ".SH OPTIONS")
foreach(option --help -h --version -V)
  expect_option("${options}" "${option}" "OPTIONS")
endforeach()
