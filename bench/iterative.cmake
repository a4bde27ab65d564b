# The iterative solvers and preconditioners on the 2-D Poisson problem of order
# 10^6; bench/ilu_scipy.py times SciPy's spilu on the same matrix as a peer.
add_executable(iterative_bench ${CMAKE_CURRENT_LIST_DIR}/iterative_bench.cpp)
target_link_libraries(iterative_bench PRIVATE orb benchmark::benchmark)
