# The reverse-communication solvers: CG (one and several right-hand sides) and FGMRES.
orb_test(iterative_cg_test SOURCES cg_test.cpp LABELS unit INTERNAL)
orb_test(iterative_fgmres_test SOURCES fgmres_test.cpp LABELS unit INTERNAL)
