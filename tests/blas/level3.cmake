orb_test(gemm_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/gemm_test.cpp LABELS unit INTERNAL)
orb_test(level3_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level3_test.cpp LABELS unit INTERNAL)
orb_test(level3_check_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level3_check_test.cpp
         LABELS unit abi)
orb_test(level3_abi_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/level3_abi_test.cpp LABELS abi)

# Debian's level-3 reference test programs (conformance.cmake), run once with
# their own input and once with orders that cross this library's block sizes
# (16 and 32; 65 is the programs' limit).
if(COMMAND orb_reference_blas)
  foreach(_p s c d z)
    set(_in ${ORB_REFERENCE_BLAS_DIR}/${_p}blat3.in)
    orb_reference_blas(reference_blas3_${_p} xblat3${_p} ${_in})
    if(EXISTS ${_in})
      file(READ ${_in} _text)
      string(REGEX REPLACE "\n0 1 2 3 5 9 +VALUES OF N" "\n0 1 16 17 33 65 VALUES OF N" _text
                           "${_text}")
      set(_orders ${CMAKE_CURRENT_BINARY_DIR}/${_p}blat3_orders.in)
      file(WRITE ${_orders} "${_text}")
      orb_reference_blas(reference_blas3_${_p}_orders xblat3${_p} ${_orders})
    endif()
  endforeach()
endif()
