# The reference BLAS and LAPACK test programs against orb.dll under wine
# (tools/reference_testers.py), labels wine and conformance. The testers are
# cross-built once by tools/build-lapack-win32.sh; each is relinked here, after
# every build of the DLL, with the Fortran names of the DLL's exports forwarded
# to it. A routine is therefore tested in the DLL as soon as it is exported.
#
# Per program: a baseline run linked with the reference libraries only (a
# fixture), then the DLL flavour on each processor path, failing on any result
# group that fails there and passes in the baseline.
set(ORB_REFERENCE_WIN32_DIR ${PROJECT_SOURCE_DIR}/build/deps/win32/lapack-testers
    CACHE PATH "The reference testers cross-built by tools/build-lapack-win32.sh")
if(NOT EXISTS ${ORB_REFERENCE_WIN32_DIR}/stamp)
  message(STATUS "Reference testers for win32 skipped: run tools/build-lapack-win32.sh")
  return()
endif()
find_program(ORB_MINGW_GFORTRAN i686-w64-mingw32-gfortran-posix REQUIRED)

set(_kit ${ORB_REFERENCE_WIN32_DIR})
set(_py ${PROJECT_SOURCE_DIR}/tools/reference_testers.py)
set(_results ${CMAKE_BINARY_DIR}/reference-testers)
set(_bin ${CMAKE_BINARY_DIR}/bin)
set(_all_paths default,0,2,3,4,5)
# The runner is a host program: named by path, since an imported executable
# target in a test command would be started through the cross-compiling
# emulator.
set(_run ${Python3_EXECUTABLE} ${_py})

# The DLL flavour of PROGRAM as bin/reference_OUT.exe (beside orb.dll).
function(_orb_reference_link program out)
  set(exe ${_bin}/reference_${out}.exe)
  add_custom_command(OUTPUT ${exe}
    COMMAND Python3::Interpreter ${_py} link --kit ${_kit} --program ${program}
      --dll $<TARGET_FILE:orb> --implib $<TARGET_LINKER_FILE:orb> --table ${ORB_EXPORT_TABLE}
      --objdump ${CMAKE_OBJDUMP} --nm ${CMAKE_NM} --cc ${CMAKE_C_COMPILER}
      --fc ${ORB_MINGW_GFORTRAN} --out ${exe} ${ARGN}
    DEPENDS orb ${_kit}/objects/${program}.a ${_kit}/stamp ${_py} ${ORB_EXPORT_TABLE}
    COMMENT "Linking the reference tester ${program} against orb.dll" VERBATIM)
  set_property(GLOBAL APPEND PROPERTY ORB_REFERENCE_EXES ${exe})
endfunction()

# orb_reference_win32(PROGRAM PATHS [INPUTS...])
function(orb_reference_win32 program paths)
  _orb_reference_link(${program} ${program})
  set(inputs "")
  if(ARGN)
    set(inputs --inputs ${ARGN})
  endif()
  add_test(NAME reference_win32_baseline_${program}
    COMMAND ${_run} baseline --kit ${_kit} --program ${program}
      --results ${_results} ${inputs})
  set_tests_properties(reference_win32_baseline_${program} PROPERTIES
    LABELS "wine;conformance" TIMEOUT 900 FIXTURES_SETUP baseline_${program})
  add_test(NAME reference_win32_${program}
    COMMAND ${_run} run --kit ${_kit}
      --program ${_bin}/reference_${program}.exe --baseline-of ${program}
      --results ${_results} --paths ${paths} ${inputs})
  set_tests_properties(reference_win32_${program} PROPERTIES
    LABELS "wine;conformance" TIMEOUT 1800 FIXTURES_REQUIRED baseline_${program})
endfunction()

# The BLAS testers on every processor path.
foreach(_p s c d z)
  orb_reference_win32(xblat1${_p} ${_all_paths})
  orb_reference_win32(xblat2${_p} ${_all_paths} ${_p}blat2.in)
  orb_reference_win32(xblat3${_p} ${_all_paths} ${_p}blat3.in)
endforeach()

# LAPACK's linear-equation and eigenvalue testers on the default path and on
# the generic kernels, with the inputs LAPACK's own test list gives them.
# The single-precision ones also on the paths of the blocked and threaded
# factorizations at orders that take them (orb_lapack_orders_input).
include(${CMAKE_CURRENT_LIST_DIR}/lapack/orders_input.cmake)
foreach(_p s c d z)
  set(_lin ${_p}test.in)
  if(_p STREQUAL "s" OR _p STREQUAL "c")
    string(TOUPPER ${_p} _up)
    set(_orders ${CMAKE_CURRENT_BINARY_DIR}/${_p}test_orders.in)
    orb_lapack_orders_input(${_kit}/input/${_p}test.in ${_up} ${_orders})
    list(APPEND _lin ${_orders})
  endif()
  orb_reference_win32(xlintst${_p} default,0 ${_lin})
  set(_eig nep.in sep.in se2.in svd.in glm.in gqr.in gsv.in csd.in lse.in)
  foreach(_i ec ed gg gd sb sg bal bak gbal gbak bb)
    list(APPEND _eig ${_p}${_i}.in)
  endforeach()
  orb_reference_win32(xeigtst${_p} default,0 ${_eig})
endforeach()

# The harness itself: a tester whose strsm_ reaches strmm must fail.
_orb_reference_link(xblat3s xblat3s_wrong --forward strsm_=strmm)
add_test(NAME reference_win32_harness
  COMMAND ${_run} run --kit ${_kit}
    --program ${_bin}/reference_xblat3s_wrong.exe --baseline-of xblat3s
    --results ${_results} --paths default --inputs sblat3.in --expect-failing STRSM)
set_tests_properties(reference_win32_harness PROPERTIES
  LABELS "wine;conformance" TIMEOUT 300 FIXTURES_REQUIRED baseline_xblat3s)

get_property(_exes GLOBAL PROPERTY ORB_REFERENCE_EXES)
add_custom_target(reference-testers ALL DEPENDS ${_exes})
