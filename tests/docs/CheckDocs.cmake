# Builds the target docs and checks the API reference: no Doxygen warning, the
# main page, a page per subsystem listing its generated classes, class pages with
# the docs of the description, a hand-written header under its include name.
#   -DBUILD_DIR=<build> -DCONFIG=<config> -DHTML_DIR=<dir>
#   -DSUBSYSTEMS_FILE=<schema/subsystems.txt> -DGENERATED_HEADERS=<a|b|...>
cmake_minimum_required(VERSION 3.16)

# expect(PAGE TEXT...): the page holds every text, as Doxygen writes it into the HTML.
function(expect page)
  file(READ ${HTML_DIR}/${page} html)
  foreach(text ${ARGN})
    string(FIND "${html}" "${text}" found)
    if(found EQUAL -1)
      message(FATAL_ERROR "docs.reference: ${page} lacks the text\n  ${text}")
    endif()
  endforeach()
endfunction()

execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --target docs --config "${CONFIG}"
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
# Doxygen fails on a warning; the test also refuses one that it let pass.
if(NOT result EQUAL 0 OR output MATCHES "(warning|error): ")
  message(FATAL_ERROR "docs.reference: the build of the reference failed or warned:\n${output}")
endif()

expect(index.html "EmitterDossierDoc API reference" "Where to start" "EmitterDossierDoc.h")
file(STRINGS ${SUBSYSTEMS_FILE} subsystems REGEX "^[A-Za-z]")
string(REPLACE "|" ";" headers "${GENERATED_HEADERS}")
foreach(header ${headers})
  string(REGEX MATCH "([^/]+)/([^/]+)\\.h$" matched "${header}")
  if(NOT CMAKE_MATCH_1 IN_LIST subsystems)
    message(FATAL_ERROR "docs.reference: ${header} is in no subsystem of ${SUBSYSTEMS_FILE}")
  endif()
  list(APPEND classes_of_${CMAKE_MATCH_1} "classEMITTERDOSSIERDOC_1_1${CMAKE_MATCH_2}.html")
endforeach()
foreach(subsystem ${subsystems})
  expect(group__${subsystem}.html "classEMITTERDOSSIERDOC_1_1" ${classes_of_${subsystem}})
endforeach()
expect(group__values.html "Measured values" "Numbers with their units.")
# A class page: the class's doc, element and id, its fields' docs grouped under
# the property's name; a family member carries the family's docs.
expect(classEMITTERDOSSIERDOC_1_1Bearing.html
  "The direction to the emitter: azimuth and elevation with their tolerances, in one unit."
  "Element \"Bearing\", class id 0x84cf0557." "The azimuth of the direction to the emitter."
  "unit: attribute, mandatory, bit 4, tag 0xa5b3acfc" "GetAzimuth" "IsElevationTolSet")
expect(classEMITTERDOSSIERDOC_1_1AgeOutTime.html
  "A number with its unit: an element with a unit attribute and a decimal text." "The measured number, in the unit.")
expect(classRECORDKIT_1_1IRKObject.html "EmitterDossierDoc/recordkit/IRKObject.h")
