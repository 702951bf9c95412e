# Validates documents with xmllint against the schema that `dossier schema --xsd`
# prints, and checks that they validate, or that they are refused for the
# reason given.
#
#   cmake -DTOOL=dossier -DXMLLINT=xmllint -DWORKDIR=dir -DNAME=name
#         -DDOCUMENTS=a.xml|b.xml|dir/*.xml [-DCHANGES=from|to|from|to...] -DEXPECT=valid|refused
#         [-DERR=regex] -P Validate.cmake
#
# CHANGES makes a broken document out of the one document given: each `from`
# text is replaced by its `to`, and each must occur in it. ERR is matched
# against what xmllint says of a refused document.
cmake_minimum_required(VERSION 3.16)

if(NOT XMLLINT)
  message(FATAL_ERROR "xmllint was not found: scripts/install-deps.sh installs it (Debian: libxml2-utils)")
endif()
file(MAKE_DIRECTORY ${WORKDIR})

set(schema ${WORKDIR}/${NAME}.xsd)
execute_process(COMMAND ${TOOL} schema --xsd
  OUTPUT_FILE ${schema} RESULT_VARIABLE rc ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "dossier schema --xsd exited with ${rc}: ${err}")
endif()

string(REPLACE "|" ";" documents "${DOCUMENTS}")
if(DOCUMENTS MATCHES "[*]")
  file(GLOB documents ${DOCUMENTS})
  if(NOT documents)
    message(FATAL_ERROR "no document matches ${DOCUMENTS}")
  endif()
endif()
if(DEFINED CHANGES)
  list(LENGTH documents count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "CHANGES apply to one document, not ${count}")
  endif()
  file(READ ${documents} text)
  string(REPLACE "|" ";" changes "${CHANGES}")
  list(LENGTH changes count)
  math(EXPR last "${count} - 1")
  foreach(i RANGE 0 ${last} 2)
    math(EXPR j "${i} + 1")
    list(GET changes ${i} from)
    list(GET changes ${j} to)
    string(FIND "${text}" "${from}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "'${from}' does not occur in ${documents}")
    endif()
    string(REPLACE "${from}" "${to}" text "${text}")
  endforeach()
  set(documents ${WORKDIR}/${NAME}.xml)
  file(WRITE ${documents} "${text}")
endif()

execute_process(COMMAND ${XMLLINT} --noout --schema ${schema} ${documents}
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(report "command: ${XMLLINT} --noout --schema ${schema} ${documents}\nexit code: ${rc}\n--- stdout ---\n${out}\n--- stderr ---\n${err}")

# xmllint exits with 3 when a document does not validate and with 5 when the
# schema itself cannot be used; it says "validates" of each valid document.
if(err MATCHES "Schemas parser error|WXS schema .* failed to compile")
  message(FATAL_ERROR "the schema does not load\n${report}")
endif()
if(EXPECT STREQUAL "valid")
  list(LENGTH documents expected)
  string(REGEX MATCHALL " validates\n" valid "${err}")
  list(LENGTH valid validated)
  if(NOT rc EQUAL 0 OR NOT validated EQUAL expected)
    message(FATAL_ERROR "expected ${expected} valid documents, ${validated} validate\n${report}")
  endif()
elseif(EXPECT STREQUAL "refused")
  if(NOT rc EQUAL 3 OR NOT err MATCHES " fails to validate\n")
    message(FATAL_ERROR "expected the document to be refused\n${report}")
  endif()
  if(NOT err MATCHES "${ERR}")
    message(FATAL_ERROR "xmllint does not say '${ERR}'\n${report}")
  endif()
else()
  message(FATAL_ERROR "EXPECT is valid or refused, not '${EXPECT}'")
endif()
