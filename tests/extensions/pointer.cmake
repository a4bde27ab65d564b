# The element-access routines called by their export names through the shared
# library with the callee-pops convention. A C program of its own (not a
# *_test.cpp, which the glob above builds against the static core).
add_executable(pointer_abi_test ${CMAKE_CURRENT_LIST_DIR}/pointer_abi_test.c)
target_link_libraries(pointer_abi_test PRIVATE orb ${CMAKE_DL_LIBS})
add_test(NAME pointer_abi_test COMMAND pointer_abi_test)
set(_pointer_labels abi)
if(WIN32)
  list(APPEND _pointer_labels wine)
endif()
set_tests_properties(pointer_abi_test PROPERTIES LABELS "${_pointer_labels}")
