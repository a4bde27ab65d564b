# Debian's linear-equation test programs with their own input files, whole
# (orb_reference_lapack, tests/reference_lapack.cmake). Until ORB exports
# LAPACK names they run the reference LAPACK on ORB's BLAS.
foreach(_p s c d z)
  orb_reference_lapack(reference_lapack_lin_${_p} xlintst${_p} ${_p}test.in)
endforeach()
