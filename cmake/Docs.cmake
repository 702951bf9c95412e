# The API reference: `cmake --build <build> --target docs` writes the HTML
# reference to <build>/docs/html/ with Doxygen, from the public headers (the
# hand-written ones of EDD_PUBLIC_HEADERS and the generated classes) and the
# pages in docs/. A warning of Doxygen fails the target and stands in the
# build's output. Without Doxygen there is no target, and the configure goes
# on.
#
# Needs EDD_PUBLIC_HEADERS (source|folder pairs), EDD_GENERATED_HEADERS,
# EDD_VERSION_HEADER and EDD_INCLUDE_DIR.

find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
  message(STATUS "Doxygen was not found: no target docs for the API reference (Debian: apt-get install doxygen)")
  return()
endif()

set(EDD_DOCS_OUTPUT_DIR ${CMAKE_CURRENT_BINARY_DIR}/docs)
# The hand-written public headers are copied below docs/include under the
# names a user includes, so that the reference shows <EmitterDossierDoc/...>
# (their forwarding headers in the build tree hold only an #include). A
# warning names the copy; its line is that of the source file.
set(edd_docs_include_dir ${EDD_DOCS_OUTPUT_DIR}/include)
set(edd_docs_input)
foreach(entry ${EDD_PUBLIC_HEADERS})
  edd_public_header(${entry} source folder)
  get_filename_component(name ${source} NAME)
  set(copy ${edd_docs_include_dir}/EmitterDossierDoc/${folder}/${name})
  configure_file(${CMAKE_CURRENT_SOURCE_DIR}/${source} ${copy} COPYONLY)
  list(APPEND edd_docs_input ${copy})
endforeach()
set(EDD_DOCS_MAIN_PAGE ${CMAKE_CURRENT_SOURCE_DIR}/docs/mainpage.md)
list(APPEND edd_docs_input ${EDD_UMBRELLA_HEADER} ${EDD_VERSION_HEADER} ${EDD_GENERATED_HEADERS}
  ${EDD_DOCS_MAIN_PAGE} ${CMAKE_CURRENT_SOURCE_DIR}/docs/subsystems.dox)
# Doxygen takes a list as words; the paths have no blanks in a sane tree,
# and quoting keeps the others whole.
set(EDD_DOCS_INPUT)
foreach(path ${edd_docs_input})
  string(APPEND EDD_DOCS_INPUT " \\\n    \"${path}\"")
endforeach()
set(EDD_DOCS_STRIP_PATHS "\"${edd_docs_include_dir}\" \"${EDD_INCLUDE_DIR}\"")
configure_file(${CMAKE_CURRENT_SOURCE_DIR}/docs/Doxyfile.in ${EDD_DOCS_OUTPUT_DIR}/Doxyfile @ONLY)

# Pages of classes that are gone must not stay behind, so each run starts
# from an empty html/.
add_custom_target(docs
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${EDD_DOCS_OUTPUT_DIR}/html
  COMMAND Doxygen::doxygen ${EDD_DOCS_OUTPUT_DIR}/Doxyfile
  DEPENDS ${EDD_GENERATED_HEADERS} ${edd_docs_input}
  WORKING_DIRECTORY ${EDD_DOCS_OUTPUT_DIR}
  COMMENT "Writing the API reference to ${EDD_DOCS_OUTPUT_DIR}/html"
  VERBATIM)
