# Runs edd-codegen on one description and checks its exit code and message.
#   -DCODEGEN=<exe> -DSCHEMA=<file> -DOUT=<dir> -DEXPECT=<text or empty for success>
execute_process(
  COMMAND ${CODEGEN} --source-root ${CMAKE_CURRENT_LIST_DIR} --out ${OUT} ${SCHEMA}
  RESULT_VARIABLE result
  ERROR_VARIABLE errors
  OUTPUT_VARIABLE output)
if(EXPECT STREQUAL "")
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "edd-codegen refused a valid description: ${errors}")
  endif()
  foreach(generated include/EmitterDossierDoc/cases/One.h src/cases/One.cpp include/EmitterDossierDoc/cases/Two.h src/cases/Two.cpp include/EmitterDossierDoc/EmitterDossierDoc.h)
    if(NOT EXISTS ${OUT}/${generated})
      message(FATAL_ERROR "edd-codegen did not write ${generated}")
    endif()
  endforeach()
  file(READ ${OUT}/src/cases/Two.cpp two)
  string(FIND "${two}" "QString::fromLatin1(\"dB\\xb5\"\"V\")" micro)
  if(micro EQUAL -1)
    message(FATAL_ERROR "the name dBµV is not written as 8-bit text:\n${two}")
  endif()
  # The header carries the docs of the description for the API reference.
  file(READ ${OUT}/include/EmitterDossierDoc/cases/One.h one)
  foreach(doc "/// A number with its unit.\n" "/// \\ingroup cases\n" "    /// \\name Value: text content, mandatory, bit 1, tag 0x8aff57b3\n    /** @{ */\n    /// The number.\n")
    string(FIND "${one}" "${doc}" found)
    if(found EQUAL -1)
      message(FATAL_ERROR "the header of One lacks\n${doc}\nin:\n${one}")
    endif()
  endforeach()
else()
  if(result EQUAL 0)
    message(FATAL_ERROR "edd-codegen accepted a broken description: ${SCHEMA}")
  endif()
  string(FIND "${errors}" "${EXPECT}" found)
  if(found EQUAL -1)
    message(FATAL_ERROR "expected the message\n  ${EXPECT}\nbut edd-codegen said\n  ${errors}")
  endif()
endif()
