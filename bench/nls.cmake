# Nonlinear least squares against MINPACK's lmder (Debian's libcminpack-dev) on
# the More-Garbow-Hillstrom problems shared with tests/nls.
find_path(CMINPACK_INCLUDE_DIR cminpack.h PATH_SUFFIXES cminpack-1)
find_library(CMINPACK_LIBRARY NAMES cminpack)
if(CMINPACK_INCLUDE_DIR AND CMINPACK_LIBRARY)
  add_executable(nls_compare ${CMAKE_CURRENT_LIST_DIR}/nls_compare.cpp
                             ${PROJECT_SOURCE_DIR}/tests/nls/mgh_problems.cpp)
  target_include_directories(nls_compare PRIVATE ${CMINPACK_INCLUDE_DIR}
                                                 ${PROJECT_SOURCE_DIR}/tests/nls)
  target_link_libraries(nls_compare PRIVATE orb ${CMINPACK_LIBRARY})
endif()
