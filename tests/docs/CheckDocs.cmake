# Builds the target docs and checks what it wrote.
#   -DBUILD_DIR=<build> -DCONFIG=<config> -DHTML_DIR=<dir>
#   -DSUBSYSTEMS_FILE=<schema/subsystems.txt> -DGENERATED_HEADERS=<a|b|...>

cmake_minimum_required(VERSION 3.16)

function(fail message)
  message(FATAL_ERROR "docs.reference: ${message}")
endfunction()

# The page must hold every text given, as Doxygen writes it into the HTML.
function(expect_texts page)
  if(NOT EXISTS ${HTML_DIR}/${page})
    fail("no page ${page}")
  endif()
  file(READ ${HTML_DIR}/${page} html)
  foreach(text ${ARGN})
    string(FIND "${html}" "${text}" found)
    if(found EQUAL -1)
      fail("${page} lacks the text\n  ${text}")
    endif()
  endforeach()
endfunction()

set(config_args)
if(CONFIG)
  set(config_args --config ${CONFIG})
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --target docs ${config_args}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
# Doxygen fails on a warning; the test also refuses one that it let pass.
string(REGEX MATCH "(warning|error): [^\n]*" warning "${output}")
if(NOT result EQUAL 0 OR warning)
  fail("the build of the reference failed or warned:\n${output}")
endif()

# The main page.
expect_texts(index.html "EmitterDossierDoc API reference" "Where to start" "EmitterDossierDoc.h")

# A page per subsystem, and every generated class on the page of its folder.
file(STRINGS ${SUBSYSTEMS_FILE} subsystems REGEX "^[A-Za-z]")
foreach(subsystem ${subsystems})
  set(classes_of_${subsystem})
endforeach()
string(REPLACE "|" ";" headers "${GENERATED_HEADERS}")
foreach(header ${headers})
  get_filename_component(class ${header} NAME_WE)
  get_filename_component(folder ${header} DIRECTORY)
  get_filename_component(subsystem ${folder} NAME)
  if(NOT subsystem IN_LIST subsystems)
    fail("${header} is in no subsystem of ${SUBSYSTEMS_FILE}")
  endif()
  list(APPEND classes_of_${subsystem} "classEMITTERDOSSIERDOC_1_1${class}.html")
endforeach()
foreach(subsystem ${subsystems})
  if(NOT classes_of_${subsystem})
    fail("the subsystem ${subsystem} has no generated class")
  endif()
  expect_texts(group__${subsystem}.html ${classes_of_${subsystem}})
endforeach()
expect_texts(group__values.html "Measured values" "Numbers with their units.")

# A class page carries the class's doc, element and id, and its fields' docs
# grouped under the property's name.
expect_texts(classEMITTERDOSSIERDOC_1_1Bearing.html
  "The direction to the emitter: azimuth and elevation with their tolerances, in one unit."
  "Element \"Bearing\", class id 0x84cf0557."
  "The azimuth of the direction to the emitter."
  "unit: attribute, mandatory, bit 4, tag 0xa5b3acfc"
  "GetAzimuth"
  "IsElevationTolSet")
# A family member carries the family's docs.
expect_texts(classEMITTERDOSSIERDOC_1_1AgeOutTime.html
  "A number with its unit: an element with a unit attribute and a decimal text."
  "The measured number, in the unit.")
# A hand-written header, under the name a user includes.
expect_texts(classRECORDKIT_1_1IRKObject.html "EmitterDossierDoc/recordkit/IRKObject.h")
