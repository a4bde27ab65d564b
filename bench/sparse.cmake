# ORB's sparse direct solver against CHOLMOD, UMFPACK and sequential MUMPS
# (bench/sparse_compare.cpp), all from Debian: libsuitesparse-dev and
# libmumps-seq-dev (tools/install-deps.sh --bench). Without them the program is
# left out with a message.
#
# OpenBLAS goes on the link line ahead of liborb: liborb exports the BLAS names
# too, and the first object in the process's lookup order that defines dgemm_
# serves the peers' calls. The program prints where dgemm_ resolved.
#
# SPARSE_COMPARE_PEERS_ONLY builds it without liborb (the peers' side alone);
# otherwise TESSERA is looked up at run time and its rows say so when this
# liborb does not export it yet.
option(SPARSE_COMPARE_PEERS_ONLY "sparse_compare without ORB, the peers only" OFF)

find_path(SPARSE_SUITESPARSE_INCLUDE_DIR cholmod.h PATH_SUFFIXES suitesparse)
find_path(SPARSE_MUMPS_INCLUDE_DIR dmumps_c.h)
set(_sparse_peer_libs)
set(_sparse_missing)
foreach(_lib cholmod umfpack dmumps_seq zmumps_seq mumps_common_seq mpiseq_seq openblas)
  string(TOUPPER "${_lib}" _var)
  find_library(SPARSE_${_var}_LIBRARY ${_lib})
  if(SPARSE_${_var}_LIBRARY)
    list(APPEND _sparse_peer_libs ${SPARSE_${_var}_LIBRARY})
  else()
    list(APPEND _sparse_missing ${_lib})
  endif()
endforeach()
if(NOT SPARSE_SUITESPARSE_INCLUDE_DIR)
  list(APPEND _sparse_missing "cholmod.h")
endif()
if(NOT SPARSE_MUMPS_INCLUDE_DIR)
  list(APPEND _sparse_missing "dmumps_c.h")
endif()
if(_sparse_missing)
  message(STATUS "sparse_compare left out, not found: ${_sparse_missing} "
                 "(libsuitesparse-dev, libmumps-seq-dev, libopenblas-dev)")
  return()
endif()

add_executable(sparse_compare ${CMAKE_CURRENT_LIST_DIR}/sparse_compare.cpp)
target_include_directories(sparse_compare PRIVATE ${SPARSE_SUITESPARSE_INCLUDE_DIR}
                                                  ${SPARSE_MUMPS_INCLUDE_DIR})
if(SPARSE_COMPARE_PEERS_ONLY)
  target_compile_definitions(sparse_compare PRIVATE SPARSE_COMPARE_PEERS_ONLY)
  target_link_libraries(sparse_compare PRIVATE ${_sparse_peer_libs} ${CMAKE_DL_LIBS})
else()
  target_link_libraries(sparse_compare PRIVATE ${_sparse_peer_libs} orb ${CMAKE_DL_LIBS})
endif()
