# Debian's reference BLAS test programs (libblas-test) with liborb.so preloaded
# in front of the system BLAS (tools/run-reference-blas.sh): every routine ORB
# exports under its Fortran name must pass, and the others must keep passing.
# Linux only; a program that is not installed is skipped.
if(WIN32)
  return()
endif()

set(ORB_REFERENCE_BLAS_DIR /usr/lib/x86_64-linux-gnu/blas
    CACHE PATH "Debian's reference BLAS test programs and their input files")
set(_orb_blas_runner ${PROJECT_SOURCE_DIR}/tools/run-reference-blas.sh)

# A checking build's library needs its sanitizer runtimes loaded first.
set(_orb_blas_preload "")
if(ORB_SANITIZE)
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
    list(APPEND _orb_blas_preload ${_path})
  endforeach()
  list(JOIN _orb_blas_preload " " _orb_blas_preload)
endif()

# orb_reference_blas(NAME PROGRAM [INPUT]): PROGRAM and INPUT are paths, or
# file names in ORB_REFERENCE_BLAS_DIR, INPUT for the level-2 and level-3 programs
# (for example xblat2s with sblat2.in).
function(orb_reference_blas name)
  set(files "")
  foreach(f IN LISTS ARGN)
    if(NOT IS_ABSOLUTE ${f})
      set(f ${ORB_REFERENCE_BLAS_DIR}/${f})
    endif()
    if(NOT EXISTS ${f})
      message(STATUS "Reference BLAS test ${name} skipped: ${f} not found")
      return()
    endif()
    list(APPEND files ${f})
  endforeach()
  add_test(NAME ${name} COMMAND ${_orb_blas_runner} $<TARGET_FILE:orb> ${files})
  set_tests_properties(${name} PROPERTIES LABELS conformance TIMEOUT 600
    ENVIRONMENT "PRELOAD_EXTRA=${_orb_blas_preload};ASAN_OPTIONS=detect_leaks=0")
endfunction()

foreach(_p s c d z)
  orb_reference_blas(reference_blas1_${_p} xblat1${_p})
endforeach()
