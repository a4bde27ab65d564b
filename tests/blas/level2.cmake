# Level-2 BLAS: kernels and drivers, argument checks, calls through the exports.
orb_test(level2_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level2_test.cpp LABELS unit INTERNAL)
orb_test(level2_check_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level2_check_test.cpp
         LABELS unit abi)
orb_test(level2_abi_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level2_abi_test.cpp LABELS abi)

# Debian's level-2 reference test programs with their input files, through
# tools/run-reference-blas.sh (Linux). orb_reference_blas comes from
# conformance.cmake, which is read after this file, hence the deferred calls.
if(NOT WIN32 AND EXISTS ${CMAKE_CURRENT_LIST_DIR}/conformance.cmake)
  cmake_language(DEFER CALL orb_reference_blas reference_blas2_s xblat2s sblat2.in)
  cmake_language(DEFER CALL orb_reference_blas reference_blas2_c xblat2c cblat2.in)
  cmake_language(DEFER CALL orb_reference_blas reference_blas2_d xblat2d dblat2.in)
  cmake_language(DEFER CALL orb_reference_blas reference_blas2_z xblat2z zblat2.in)
endif()
