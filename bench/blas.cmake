# ORB against OpenBLAS and BLIS in one run (bench/blas_compare.cpp); ORB and
# the peers are loaded at run time, so nothing links against them here.
add_executable(blas_compare ${CMAKE_CURRENT_LIST_DIR}/blas_compare.cpp)
target_link_libraries(blas_compare PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(blas_compare orb)
