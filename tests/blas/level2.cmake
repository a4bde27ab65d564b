# Level-2 BLAS: kernels and drivers, argument checks, calls through the exports.
orb_test(level2_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level2_test.cpp LABELS unit INTERNAL)
orb_test(level2_check_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level2_check_test.cpp
         LABELS unit abi)
orb_test(level2_abi_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level2_abi_test.cpp LABELS abi)

# Debian's level-2 reference test programs with their input files, through
# tools/run-reference-blas.sh (Linux; conformance.cmake).
if(COMMAND orb_reference_blas)
  foreach(_p s c d z)
    orb_reference_blas(reference_blas2_${_p} xblat2${_p} ${_p}blat2.in)
  endforeach()
endif()
