# The ILU0 and ILUT preconditioners.
orb_test(iterative_ilu_test SOURCES ilu_test.cpp LABELS unit INTERNAL)
