# Level-1 and sparse level-1 BLAS: every kernel variant and the operations
# (internal), and the exported names (abi).
orb_test(level1_test SOURCES level1_test.cpp LABELS unit INTERNAL)
orb_test(level1_abi_test SOURCES level1_abi_test.cpp LABELS abi)
