// Eigenvalues and eigenvector of a real symmetric 2-by-2 matrix, without
// overflow where the result is representable.
#include <cmath>

#include "lapack/auxiliary.h"

namespace orb::lapack {

template <class R>
void laev2(R a, R b, R c, R *rt1, R *rt2, R *cs1, R *sn1) {
  const R sum = a + c, diff = a - c, adiff = std::abs(diff);
  const R twob = b + b, abs2b = std::abs(twob);
  // The larger and smaller diagonal elements in modulus.
  const R big = std::abs(a) > std::abs(c) ? a : c;
  const R small = std::abs(a) > std::abs(c) ? c : a;
  // rt = sqrt(diff^2 + (2b)^2), scaled by the larger term.
  R rt;
  if (adiff > abs2b)
    rt = adiff * std::sqrt(R(1) + (abs2b / adiff) * (abs2b / adiff));
  else if (adiff < abs2b)
    rt = abs2b * std::sqrt(R(1) + (adiff / abs2b) * (adiff / abs2b));
  else
    rt = abs2b * std::sqrt(R(2));
  // The larger eigenvalue from the sum without cancellation; the smaller
  // one from the determinant, rt2 = (a c - b^2) / rt1.
  int sign1;
  if (sum < 0) {
    *rt1 = R(0.5) * (sum - rt);
    sign1 = -1;
    *rt2 = (big / *rt1) * small - (b / *rt1) * b;
  } else if (sum > 0) {
    *rt1 = R(0.5) * (sum + rt);
    sign1 = 1;
    *rt2 = (big / *rt1) * small - (b / *rt1) * b;
  } else {
    *rt1 = R(0.5) * rt;
    *rt2 = R(-0.5) * rt;
    sign1 = 1;
  }
  // The eigenvector, from whichever of its two expressions has no
  // cancellation.
  int sign2;
  R cs;
  if (diff >= 0) {
    cs = diff + rt;
    sign2 = 1;
  } else {
    cs = diff - rt;
    sign2 = -1;
  }
  if (std::abs(cs) > abs2b) {
    const R ct = -twob / cs;
    *sn1 = R(1) / std::sqrt(R(1) + ct * ct);
    *cs1 = ct * *sn1;
  } else if (abs2b == 0) {
    *cs1 = 1;
    *sn1 = 0;
  } else {
    const R tn = -cs / twob;
    *cs1 = R(1) / std::sqrt(R(1) + tn * tn);
    *sn1 = tn * *cs1;
  }
  if (sign1 == sign2) {
    const R t = *cs1;
    *cs1 = -*sn1;
    *sn1 = t;
  }
}

template void laev2(float, float, float, float *, float *, float *, float *);
template void laev2(double, double, double, double *, double *, double *, double *);

}  // namespace orb::lapack
