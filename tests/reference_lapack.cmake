# Debian's reference LAPACK test programs (liblapack-test) with liborb.so in
# front of the reference LAPACK and BLAS, through tools/run-reference-lapack.sh,
# label conformance:
#
#   orb_reference_lapack(NAME PROGRAM INPUT)
#
# PROGRAM and INPUT are paths, or file names in ORB_REFERENCE_LAPACK_DIR (for
# example xlintsts with stest.in, xeigtstc with sep.in). Linux only: on Windows
# the function registers nothing, and on Linux a program or input that is not
# installed is skipped with a message.
if(WIN32)
  function(orb_reference_lapack name program input)
  endfunction()
  return()
endif()

set(ORB_REFERENCE_LAPACK_DIR /usr/lib/x86_64-linux-gnu/lapack
    CACHE PATH "Debian's reference LAPACK test programs and their input files")
set(_orb_lapack_runner ${PROJECT_SOURCE_DIR}/tools/run-reference-lapack.sh)

# A checking build's library needs its sanitizer runtimes loaded first.
set(_orb_lapack_preload "")
foreach(_san IN LISTS ORB_SANITIZE)
  set(_rt ${_san})
  if(_san STREQUAL "address")
    set(_rt asan)
  elseif(_san STREQUAL "undefined")
    set(_rt ubsan)
  elseif(_san STREQUAL "thread")
    set(_rt tsan)
  endif()
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=lib${_rt}.so
                  OUTPUT_VARIABLE _path OUTPUT_STRIP_TRAILING_WHITESPACE)
  list(APPEND _orb_lapack_preload ${_path})
endforeach()
list(JOIN _orb_lapack_preload " " _orb_lapack_preload)

function(orb_reference_lapack name program input)
  set(files "")
  foreach(f ${program} ${input})
    if(NOT IS_ABSOLUTE ${f})
      set(f ${ORB_REFERENCE_LAPACK_DIR}/${f})
    endif()
    if(NOT EXISTS ${f})
      message(STATUS "Reference LAPACK test ${name} skipped: ${f} not found")
      return()
    endif()
    list(APPEND files ${f})
  endforeach()
  # The programs make hundreds of thousands of small calls; idle OpenMP
  # workers sleep between them rather than spin, which on a busy machine
  # otherwise multiplies the run time by ten and more (what is computed, and
  # by how many threads, is the same).
  add_test(NAME ${name} COMMAND ${_orb_lapack_runner} $<TARGET_FILE:orb> ${files})
  set_tests_properties(${name} PROPERTIES LABELS conformance TIMEOUT 900
    ENVIRONMENT "PRELOAD_EXTRA=${_orb_lapack_preload};ASAN_OPTIONS=detect_leaks=0;OMP_WAIT_POLICY=passive")
endfunction()
