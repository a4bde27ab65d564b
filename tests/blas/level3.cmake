orb_test(gemm_test SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/gemm_test.cpp LABELS unit INTERNAL)
