# ORB's LAPACK against OpenBLAS's and the reference LAPACK over OpenBLAS's BLAS
# in one run (bench/lapack_compare.cpp); each library is loaded at run time in
# a namespace of its own, so nothing links against them here. x86-64 Linux
# only: the program reads the loader's bindings from the ELF relocations.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  add_executable(lapack_compare ${CMAKE_CURRENT_LIST_DIR}/lapack_compare.cpp)
  target_link_libraries(lapack_compare PRIVATE ${CMAKE_DL_LIBS})
  add_dependencies(lapack_compare orb)
endif()
