# Debian's linear-equation test programs with their own input files, whole
# (orb_reference_lapack, tests/reference_lapack.cmake).
foreach(_p s c d z)
  orb_reference_lapack(reference_lapack_lin_${_p} xlintst${_p} ${_p}test.in)
endforeach()

# The paths of the blocked and threaded factorizations again on orders that
# take them (orb_lapack_orders_input), on two threads and on one.
include(${CMAKE_CURRENT_LIST_DIR}/orders_input.cmake)
foreach(_p s c)
  set(_in ${ORB_REFERENCE_LAPACK_DIR}/${_p}test.in)
  if(WIN32 OR NOT EXISTS ${_in})
    continue()
  endif()
  string(TOUPPER ${_p} _up)
  set(_orders ${CMAKE_CURRENT_BINARY_DIR}/${_p}test_orders.in)
  orb_lapack_orders_input(${_in} ${_up} ${_orders})
  foreach(_t 1 2)
    orb_reference_lapack(reference_lapack_orders_${_p}_t${_t} xlintst${_p} ${_orders})
    if(TEST reference_lapack_orders_${_p}_t${_t})
      set_property(TEST reference_lapack_orders_${_p}_t${_t} APPEND PROPERTY ENVIRONMENT
                   ORB_NUM_THREADS=${_t})
    endif()
  endforeach()
endforeach()

# The singular value tests (bidiagonal QR with and without vectors, and the
# reference drivers that call it) with ORB in front.
foreach(_p s c)
  orb_reference_lapack(reference_lapack_svd_${_p} xeigtst${_p} svd.in)
endforeach()

# The QR factorization's team from order 64 on in the two-thread runs, so that
# the testers' orders (up to 132) check it.
foreach(_p s c)
  if(TEST reference_lapack_orders_${_p}_t2)
    set_property(TEST reference_lapack_orders_${_p}_t2 APPEND PROPERTY ENVIRONMENT
                 ORB_QR_TEAM_FROM=64)
  endif()
endforeach()

# The symmetric eigenvalue tests (sep.in: the tridiagonal reduction, the
# tridiagonal solvers and the drivers built on them; se2.in: the same
# solvers behind the reference two-stage drivers) with ORB in front, sep.in
# on one thread and on two.
foreach(_p s c)
  foreach(_t 1 2)
    orb_reference_lapack(reference_lapack_sep_${_p}_t${_t} xeigtst${_p} sep.in)
    if(TEST reference_lapack_sep_${_p}_t${_t})
      set_property(TEST reference_lapack_sep_${_p}_t${_t} APPEND PROPERTY ENVIRONMENT
                   ORB_NUM_THREADS=${_t})
    endif()
  endforeach()
  orb_reference_lapack(reference_lapack_se2_${_p} xeigtst${_p} se2.in)
endforeach()

# The generalized symmetric-definite eigenproblems (the reduction to
# standard form and the drivers that call it) with ORB in front.
foreach(_p s c)
  orb_reference_lapack(reference_lapack_sg_${_p} xeigtst${_p} ${_p}sg.in)
endforeach()

# Balancing and its back transformation (sbal.in, sbak.in and the complex
# forms) and the nonsymmetric eigenvalue path (nep.in: the Hessenberg
# reduction and its factor among the routines it tests) with ORB in front.
foreach(_p s c)
  orb_reference_lapack(reference_lapack_bal_${_p} xeigtst${_p} ${_p}bal.in)
  orb_reference_lapack(reference_lapack_bak_${_p} xeigtst${_p} ${_p}bak.in)
  orb_reference_lapack(reference_lapack_nep_${_p} xeigtst${_p} nep.in)
endforeach()
# The real nonsymmetric eigenvalue drivers (sed.in: SGEEV, SGEES, SGEEVX,
# SGEESX), which reach ORB's SHSEQR.
orb_reference_lapack(reference_lapack_sed_s xeigtsts sed.in)
# The eigencondition tests (sec.in, cec.in: the Sylvester equation, the
# Schur reordering, the condition numbers and the Schur form's eigenvectors)
# with ORB in front.
foreach(_p s c)
  orb_reference_lapack(reference_lapack_ec_${_p} xeigtst${_p} ${_p}ec.in)
endforeach()
# The complex eigenvalue drivers, whose Hessenberg QR is ORB's CHSEQR.
orb_reference_lapack(reference_lapack_ced_c xeigtstc ced.in)
