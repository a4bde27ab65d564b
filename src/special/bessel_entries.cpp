// The exported Bessel functions of complex argument in single precision:
// argument checks, the loss-of-significance thresholds, the computation in
// double (bessel_core), the optional exponential scaling, and the overflow
// and underflow decisions taken against the single-precision range.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <complex>
#include <vector>

#include "orb.h"
#include "special/bessel_core.h"

namespace orb::special {
namespace {

using cplx = std::complex<double>;
using cplxf = std::complex<float>;

constexpr double kPi = 3.14159265358979323846;

// Limits derived from the single-precision machine constants: the unit
// roundoff, and the exponent bound ELIM beyond which exp(+-ELIM) leaves the
// range (with three decimal digits of margin).
struct Limits {
  double tol, elim;
};
Limits single_limits() {
  const double tol = std::max(double(FLT_EPSILON), 1e-18);
  const double log10_2 = 0.30102999566398119521;
  const int k = std::min(-FLT_MIN_EXP, FLT_MAX_EXP);  // min(125, 128)
  const double elim = 2.303 * (k * log10_2 - 3.0);
  return {tol, elim};
}

// The loss-of-significance classes for |z| and the largest order:
// 0 none, 3 partial (above sqrt(0.5/tol)), 4 complete (above min(0.5/tol,
// INT_MAX/2)).
int significance(double size) {
  const Limits lim = single_limits();
  const double complete = std::min(0.5 / lim.tol, double(INT_MAX) * 0.5);
  if (size > complete) return 4;
  if (size > std::sqrt(complete)) return 3;
  return 0;
}

int argument_class(cplx z, double fnu, int n) {
  const int a = significance(std::abs(z));
  const int b = significance(fnu + n - 1);
  return std::max(a, b);
}

// Rounds the values to single precision after the scaling exponent `shift`
// has been added: an overflowing value gives IERR = 2 and no values, a value
// below exp(-ELIM) is set to zero and counted in NZ.
void deliver(const std::vector<LogValue> &v, cplx shift, bool count_zeros, cplxf *cy, int *nz,
             int *ierr) {
  const double elim = single_limits().elim;
  const int n = int(v.size());
  for (int j = 0; j < n; ++j) {
    if (log_magnitude(v[j]) + shift.real() > elim) {
      *nz = 0;
      *ierr = 2;
      return;
    }
  }
  int zeros = 0;
  for (int j = 0; j < n; ++j) {
    const double lm = log_magnitude(v[j]) + shift.real();
    if (lm < -elim) {
      cy[j] = 0.0f;
      if (count_zeros) ++zeros;
      continue;
    }
    const cplx value = v[j].m * std::exp(v[j].e + shift);
    cy[j] = cplxf(float(value.real()), float(value.imag()));
  }
  *nz = zeros;
}

// J and Y are real on the positive real axis; the rotations through the
// imaginary axis leave a rounding-level imaginary part, removed here.
void real_on_positive_axis(cplx z, cplxf *cy, int n) {
  if (z.imag() != 0.0 || z.real() <= 0.0) return;
  for (int j = 0; j < n; ++j) cy[j] = cplxf(cy[j].real(), 0.0f);
}

bool bad_common(double fnu, int kode, int n) {
  return fnu < 0.0 || kode < 1 || kode > 2 || n < 1;
}

// Sets IERR for the argument class; true when values are to be computed.
bool admit(cplx z, double fnu, int n, int *nz, int *ierr) {
  *nz = 0;
  const int cls = argument_class(z, fnu, n);
  *ierr = cls;
  return cls != 4;
}

// H^(kind)_{fnu+k}(z) from K of the rotated argument:
//   H1_v(z) = (2/(i pi)) e^{-i pi v/2} K_v(-i z),
//   H2_v(z) = -(2/(i pi)) e^{i pi v/2} K_v(i z),
// continued across the negative real axis of the rotated argument.
bool hankel(cplx z, int kind, double fnu, int n, std::vector<LogValue> &h) {
  const double sign = kind == 1 ? -1.0 : 1.0;
  const cplx xi = cplx(0.0, sign) * z;
  int m = 0;
  if (xi.real() < 0.0 || (xi.real() == 0.0 && kind == 2 && z.real() < 0.0 && z.imag() == 0.0)) {
    m = kind == 1 ? -1 : 1;
  }
  if (!bessel_k(xi, m, fnu, n, h)) return false;
  const cplx lead = -sign * cplx(0.0, -2.0 / kPi);  // (2/(i pi)) for H1, its negative for H2
  for (int j = 0; j < n; ++j) {
    h[j] = scale(h[j], lead * std::polar(1.0, sign * 0.5 * kPi * std::fmod(fnu + j, 4.0)));
  }
  return true;
}

void besi(const cplxf *zp, const float *fnup, const int *kode, const int *np, cplxf *cy, int *nz,
          int *ierr) {
  const cplx z(zp->real(), zp->imag());
  const double fnu = *fnup;
  const int n = *np;
  if (bad_common(fnu, *kode, n)) {
    *ierr = 1;
    return;
  }
  if (!admit(z, fnu, n, nz, ierr)) return;
  std::vector<LogValue> v;
  if (!bessel_i(z, principal_rotation(z), fnu, n, v)) {
    *ierr = 5;
    return;
  }
  const cplx shift = *kode == 2 ? cplx(-std::abs(z.real())) : cplx(0.0);
  deliver(v, shift, z != 0.0, cy, nz, ierr);
}

void besk(const cplxf *zp, const float *fnup, const int *kode, const int *np, cplxf *cy, int *nz,
          int *ierr) {
  const cplx z(zp->real(), zp->imag());
  const double fnu = *fnup;
  const int n = *np;
  if (bad_common(fnu, *kode, n) || z == 0.0) {
    *ierr = 1;
    return;
  }
  if (!admit(z, fnu, n, nz, ierr)) return;
  std::vector<LogValue> v;
  if (!bessel_k(z, principal_rotation(z), fnu, n, v)) {
    *ierr = 5;
    return;
  }
  deliver(v, *kode == 2 ? z : cplx(0.0), true, cy, nz, ierr);
}

// J_v(z) = e^{i pi v/2} I_v(-i z) for Im z >= 0, e^{-i pi v/2} I_v(i z) below.
void besj(const cplxf *zp, const float *fnup, const int *kode, const int *np, cplxf *cy, int *nz,
          int *ierr) {
  const cplx z(zp->real(), zp->imag());
  const double fnu = *fnup;
  const int n = *np;
  if (bad_common(fnu, *kode, n)) {
    *ierr = 1;
    return;
  }
  if (!admit(z, fnu, n, nz, ierr)) return;
  const double sign = z.imag() >= 0.0 ? 1.0 : -1.0;
  std::vector<LogValue> v;
  if (!bessel_i_right(cplx(0.0, -sign) * z, fnu, n, v)) {
    *ierr = 5;
    return;
  }
  for (int j = 0; j < n; ++j) {
    v[j] = scale(v[j], std::polar(1.0, sign * 0.5 * kPi * std::fmod(fnu + j, 4.0)));
  }
  const cplx shift = *kode == 2 ? cplx(-std::abs(z.imag())) : cplx(0.0);
  deliver(v, shift, z != 0.0, cy, nz, ierr);
  if (*ierr != 2) real_on_positive_axis(z, cy, *np);
}

void besh(const cplxf *zp, const float *fnup, const int *kode, const int *mp, const int *np,
          cplxf *cy, int *nz, int *ierr) {
  const cplx z(zp->real(), zp->imag());
  const double fnu = *fnup;
  const int n = *np;
  if (bad_common(fnu, *kode, n) || z == 0.0 || *mp < 1 || *mp > 2) {
    *ierr = 1;
    return;
  }
  if (!admit(z, fnu, n, nz, ierr)) return;
  std::vector<LogValue> v;
  if (!hankel(z, *mp, fnu, n, v)) {
    *ierr = 5;
    return;
  }
  // exp(-iz) scales H1, exp(iz) scales H2.
  const cplx shift = *kode == 2 ? (*mp == 1 ? cplx(0.0, -1.0) : cplx(0.0, 1.0)) * z : cplx(0.0);
  deliver(v, shift, true, cy, nz, ierr);
}

// Y_v(z) = (H1_v(z) - H2_v(z)) / (2i).
void besy(const cplxf *zp, const float *fnup, const int *kode, const int *np, cplxf *cy, int *nz,
          int *ierr) {
  const cplx z(zp->real(), zp->imag());
  const double fnu = *fnup;
  const int n = *np;
  if (bad_common(fnu, *kode, n) || z == 0.0) {
    *ierr = 1;
    return;
  }
  if (!admit(z, fnu, n, nz, ierr)) return;
  std::vector<LogValue> h1, h2;
  if (!hankel(z, 1, fnu, n, h1) || !hankel(z, 2, fnu, n, h2)) {
    *ierr = 5;
    return;
  }
  for (int j = 0; j < n; ++j) {
    h1[j] = add(scale(h1[j], cplx(0.0, -0.5)), scale(h2[j], cplx(0.0, 0.5)));
  }
  const cplx shift = *kode == 2 ? cplx(-std::abs(z.imag())) : cplx(0.0);
  deliver(h1, shift, true, cy, nz, ierr);
  if (*ierr != 2) real_on_positive_axis(z, cy, *np);
}

// The Airy functions. For |z| <= 1 the Maclaurin series
//   Ai = c1 f - c2 g, Bi = sqrt(3) (c1 f + c2 g),
//   f = sum 3^k (1/3)_k z^{3k} / (3k)!, g = sum 3^k (2/3)_k z^{3k+1} / (3k+1)!,
// and their derivatives; beyond, with zeta = (2/3) z^{3/2} taken on the branch
// arg zeta = 3/2 arg z,
//   Ai = sqrt(z/3)/pi K_{1/3}(zeta), Ai' = -z/(pi sqrt 3) K_{2/3}(zeta),
//   Bi = sqrt(z/3) (2 I_{1/3} + (sqrt 3/pi) K_{1/3}),
//   Bi' = z/sqrt 3 (2 I_{2/3} + (sqrt 3/pi) K_{2/3}),
// using I_{-v} = I_v + (2/pi) sin(v pi) K_v.
constexpr double kAiryC1 = 0.355028053887817239;
constexpr double kAiryC2 = 0.258819403792806798;
constexpr double kSqrt3 = 1.73205080756887729;

LogValue airy_series(cplx z, bool derivative, bool second_kind) {
  const cplx z3 = z * z * z;
  cplx f = 0.0, g = 0.0;
  if (!derivative) {
    cplx tf = 1.0, tg = z;
    for (int k = 1; k < 200; ++k) {
      f += tf;
      g += tg;
      tf *= z3 / double((3 * k - 1) * (3 * k));
      tg *= z3 / double((3 * k) * (3 * k + 1));
      if (std::abs(tf) + std::abs(tg) < 1e-18 * (std::abs(f) + std::abs(g))) break;
    }
  } else {
    cplx tf = 0.5 * z * z, tg = 1.0;  // the first terms of f' and g'
    for (int k = 1; k < 200; ++k) {
      f += tf;
      g += tg;
      tf *= z3 / double((3 * k + 2) * (3 * k));
      tg *= z3 / double((3 * k) * (3 * k - 2));
      if (std::abs(tf) + std::abs(tg) < 1e-18 * (std::abs(f) + std::abs(g))) break;
    }
  }
  if (second_kind) return {kSqrt3 * (kAiryC1 * f + kAiryC2 * g), 0.0};
  return {kAiryC1 * f - kAiryC2 * g, 0.0};
}

// zeta = (2/3) z sqrt(z); arg zeta = 3/2 arg z may leave (-pi, pi].
cplx airy_zeta(cplx z) {
  return 2.0 / 3.0 * z * std::sqrt(z);
}

bool airy_value(cplx z, bool derivative, bool second_kind, LogValue &out) {
  if (std::abs(z) <= 1.0) {
    out = airy_series(z, derivative, second_kind);
    return true;
  }
  const cplx zeta = airy_zeta(z);
  const double theta = 1.5 * std::arg(z);
  const int m = theta > 0.5 * kPi ? 1 : (theta < -0.5 * kPi ? -1 : 0);
  const double nu = derivative ? 2.0 / 3.0 : 1.0 / 3.0;
  const cplx lead = derivative ? z : std::sqrt(z / 3.0);
  std::vector<LogValue> k;
  if (!bessel_k(zeta, m, nu, 1, k)) return false;
  if (!second_kind) {
    out = scale(k[0], derivative ? -lead / (kPi * kSqrt3) : lead / kPi);
    return true;
  }
  std::vector<LogValue> i;
  if (!bessel_i(zeta, m, nu, 1, i)) return false;
  const cplx outer = derivative ? lead / kSqrt3 : lead;
  out = add(scale(i[0], 2.0 * outer), scale(k[0], kSqrt3 / kPi * outer));
  return true;
}

// The Airy loss-of-significance classes use the 2/3 powers of the limits.
int airy_class(cplx z) {
  const Limits lim = single_limits();
  const double complete = std::pow(std::min(0.5 / lim.tol, double(INT_MAX) * 0.5), 2.0 / 3.0);
  const double az = std::abs(z);
  if (az > complete) return 4;
  if (az > std::sqrt(complete)) return 3;
  return 0;
}

void airy(const cplxf *zp, const int *id, const int *kode, bool second_kind, cplxf *value, int *nz,
          int *ierr) {
  const cplx z(zp->real(), zp->imag());
  *nz = 0;
  if (*id < 0 || *id > 1 || *kode < 1 || *kode > 2) {
    *ierr = 1;
    return;
  }
  *ierr = airy_class(z);
  if (*ierr == 4) return;
  LogValue v;
  if (!airy_value(z, *id == 1, second_kind, v)) {
    *ierr = 5;
    return;
  }
  // Ai is scaled by exp(zeta), Bi by exp(-|Re zeta|).
  cplx shift = 0.0;
  if (*kode == 2) {
    const cplx zeta = airy_zeta(z);
    shift = second_kind ? cplx(-std::abs(zeta.real())) : zeta;
  }
  deliver({v}, shift, z != 0.0, value, nz, ierr);
}

cplxf *as_complex(orb_complex8 *p) {
  return reinterpret_cast<cplxf *>(p);
}
const cplxf *as_complex(const orb_complex8 *p) {
  return reinterpret_cast<const cplxf *>(p);
}

}  // namespace
}  // namespace orb::special

using namespace orb::special;

extern "C" {

ORB_API void CBESI(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, int *ierr) {
  besi(as_complex(z), fnu, kode, n, as_complex(cy), nz, ierr);
}

ORB_API void CBESK(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, int *ierr) {
  besk(as_complex(z), fnu, kode, n, as_complex(cy), nz, ierr);
}

ORB_API void CBESJ(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, int *ierr) {
  besj(as_complex(z), fnu, kode, n, as_complex(cy), nz, ierr);
}

ORB_API void CBESH(const orb_complex8 *z, const float *fnu, const int *kode, const int *m,
                   const int *n, orb_complex8 *cy, int *nz, int *ierr) {
  besh(as_complex(z), fnu, kode, m, n, as_complex(cy), nz, ierr);
}

ORB_API void CBESY(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, orb_complex8 *cwrk, int *ierr) {
  (void)cwrk;
  besy(as_complex(z), fnu, kode, n, as_complex(cy), nz, ierr);
}

ORB_API void CAIRY(const orb_complex8 *z, const int *id, const int *kode, orb_complex8 *ai, int *nz,
                   int *ierr) {
  airy(as_complex(z), id, kode, false, as_complex(ai), nz, ierr);
}

ORB_API void CBIRY(const orb_complex8 *z, const int *id, const int *kode, orb_complex8 *bi,
                   int *ierr) {
  int nz = 0;
  airy(as_complex(z), id, kode, true, as_complex(bi), &nz, ierr);
}

}  // extern "C"
