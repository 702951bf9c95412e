# Run by CTest with cmake -P: the run path of the installed tool for the
# binary and library folders a build may be given, relative or absolute.
cmake_minimum_required(VERSION 3.16)
include(${RUN_PATH_MODULE})

set(CMAKE_INSTALL_PREFIX /opt/edd)
# bindir | libdir | run path
set(cases
  "bin|lib|$ORIGIN/../lib"
  "bin|lib64|$ORIGIN/../lib64"
  "bin|lib/x86_64-linux-gnu|$ORIGIN/../lib/x86_64-linux-gnu"
  "bin/|lib/|$ORIGIN/../lib"
  "bin|bin|$ORIGIN"
  "libexec/edd/tools|lib|$ORIGIN/../../../lib"
  "/opt/x/bin|/opt/x/lib/edd|$ORIGIN/../lib/edd"
  "bin|/usr/lib/edd|/usr/lib/edd"
  "/usr/bin|lib|/opt/edd/lib")
set(failures "")
foreach(case ${cases})
  string(REPLACE "|" ";" parts "${case}")
  list(GET parts 0 bindir)
  list(GET parts 1 libdir)
  list(GET parts 2 expected)
  edd_relative_run_path(got "${bindir}" "${libdir}")
  if(NOT got STREQUAL expected)
    string(APPEND failures "\n  bin '${bindir}', lib '${libdir}': '${got}', expected '${expected}'")
  endif()
endforeach()
if(failures)
  message(FATAL_ERROR "run path check: wrong run paths:${failures}")
endif()
