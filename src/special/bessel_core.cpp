#include "special/bessel_core.h"

#include <cfloat>
#include <cmath>

#include "special/bessel_series.h"

namespace orb::special {

namespace {

using cplx = std::complex<double>;

constexpr double kPi = 3.14159265358979323846;
constexpr double kEps = DBL_EPSILON;
constexpr int kMaxIterations = 20000000;  // above the largest admitted |z| and order
// Running values are brought back by this factor before they can overflow.
constexpr double kRescale = 1e200;

// 1/Gamma(1 + x) = sum_k kInvGamma[k] x^k (Abramowitz and Stegun 6.1.34),
// accurate to double precision for |x| <= 1/2.
constexpr double kInvGamma[] = {
    1.0,
    0.5772156649015329,
    -0.6558780715202538,
    -0.0420026350340952,
    0.1665386113822915,
    -0.0421977345555443,
    -0.0096219715278770,
    0.0072189432466630,
    -0.0011651675918591,
    -0.0002152416741149,
    0.0001280502823882,
    -0.0000201348547807,
    -0.0000012504934821,
    0.0000011330272320,
    -0.0000002056338417,
    0.0000000061160950,
    0.0000000050020075,
    -0.0000000011812746,
    0.0000000001043427,
    0.0000000000077823,
    -0.0000000000036968,
    0.0000000000005100,
    -0.0000000000000206,
    -0.0000000000000054,
    0.0000000000000014,
    0.0000000000000001,
};

// Temme's gamma combinations for |mu| <= 1/2: the even and odd parts of
// 1/Gamma(1 + x), free of the cancellation a difference of Gammas suffers.
//   odd  = (1/Gamma(1-mu) - 1/Gamma(1+mu)) / (2 mu)
//   even = (1/Gamma(1-mu) + 1/Gamma(1+mu)) / 2
void temme_gammas(double mu, double &odd, double &even) {
  const double mu2 = mu * mu;
  odd = even = 0.0;
  double power = 1.0;
  for (int k = 0; k + 1 < int(std::size(kInvGamma)); k += 2) {
    even += kInvGamma[k] * power;
    odd -= kInvGamma[k + 1] * power;
    power *= mu2;
  }
}

// K_mu and K_{mu+1} for |z| <= 2, |mu| <= 1/2: Temme's series.
bool temme_k(cplx z, double mu, cplx &k0, cplx &k1) {
  const cplx half = 0.5 * z;
  const double pimu = kPi * mu;
  const double fact = std::abs(pimu) < kEps ? 1.0 : pimu / std::sin(pimu);
  const cplx d = -std::log(half);
  const cplx e = mu * d;
  const cplx sinhc = std::abs(e) < kEps ? cplx(1.0) : std::sinh(e) / e;
  double odd, even;
  temme_gammas(mu, odd, even);
  const double inv_gamma_plus = even - mu * odd;   // 1/Gamma(1+mu)
  const double inv_gamma_minus = even + mu * odd;  // 1/Gamma(1-mu)
  cplx f = fact * (odd * std::cosh(e) + even * sinhc * d);
  cplx sum = f;
  const cplx power = std::exp(e);  // (z/2)^-mu
  cplx p = 0.5 * power / inv_gamma_plus;
  cplx q = 0.5 / (power * inv_gamma_minus);
  cplx c = 1.0;
  const cplx quarter_square = half * half;
  cplx sum1 = p;
  for (int i = 1; i < kMaxIterations; ++i) {
    f = (double(i) * f + p + q) / (double(i) * i - mu * mu);
    c *= quarter_square / double(i);
    p /= (i - mu);
    q /= (i + mu);
    const cplx del = c * f;
    sum += del;
    sum1 += c * (p - double(i) * f);
    if (std::abs(del) < std::abs(sum) * kEps) {
      k0 = sum;
      k1 = sum1 * 2.0 / z;
      return true;
    }
  }
  return false;
}

// exp(z) K_mu and exp(z) K_{mu+1} for |z| > 2, |mu| <= 1/2: Steed's
// evaluation of the second continued fraction (Thompson and Barnett).
bool steed_k(cplx z, double mu, cplx &k0, cplx &k1) {
  cplx b = 2.0 * (1.0 + z);
  cplx d = 1.0 / b;
  cplx h = d, delh = d;
  cplx q1 = 0.0, q2 = 1.0;
  const double a1 = 0.25 - mu * mu;
  cplx q = a1, c = a1;
  double a = -a1;
  cplx s = 1.0 + q * delh;
  for (int i = 2; i < kMaxIterations; ++i) {
    a -= 2 * (i - 1);
    c = -a * c / double(i);
    const cplx qnew = (q1 - b * q2) / a;
    q1 = q2;
    q2 = qnew;
    q += c * qnew;
    b += 2.0;
    d = 1.0 / (b + a * d);
    delh = (b * d - 1.0) * delh;
    h += delh;
    const cplx dels = q * delh;
    s += dels;
    if (std::abs(dels) < std::abs(s) * kEps) {
      h *= a1;
      k0 = std::sqrt(kPi / (2.0 * z)) / s;
      k1 = k0 * (mu + z + 0.5 - h) / z;
      return true;
    }
  }
  return false;
}

// I_{nu+1}/I_nu by the first continued fraction (modified Lentz).
bool ratio_i(cplx z, double nu, cplx &ratio) {
  const double tiny = 1e-300;
  cplx f = tiny, c = f, d = 0.0;
  for (int k = 1; k < kMaxIterations; ++k) {
    const cplx b = 2.0 * (nu + k) / z;
    d = b + d;
    if (d == 0.0) d = tiny;
    c = b + 1.0 / c;
    if (c == 0.0) c = tiny;
    d = 1.0 / d;
    const cplx delta = c * d;
    f *= delta;
    if (std::abs(delta - 1.0) < kEps) {
      ratio = f;
      return true;
    }
  }
  return false;
}

}  // namespace

double log_magnitude(const LogValue &v) {
  const double a = std::abs(v.m);
  return a == 0.0 ? -HUGE_VAL : std::log(a) + v.e.real();
}

LogValue add(const LogValue &a, const LogValue &b) {
  if (a.m == 0.0) return b;
  if (b.m == 0.0) return a;
  if (log_magnitude(a) >= log_magnitude(b)) return {a.m + b.m * std::exp(b.e - a.e), a.e};
  return {b.m + a.m * std::exp(a.e - b.e), b.e};
}

LogValue scale(const LogValue &v, cplx c) {
  return {v.m * c, v.e};
}

int principal_rotation(cplx z) {
  if (z.real() >= 0.0) return 0;
  return z.imag() >= 0.0 ? 1 : -1;
}

bool bessel_k_right(cplx z, double nu, int n, std::vector<LogValue> &k) {
  k.assign(n, {0.0, 0.0});
  const double steps = std::round(nu);
  const double mu = nu - steps;
  cplx k0, k1;
  cplx exponent = 0.0;
  if (std::abs(z) <= 2.0) {
    if (!temme_k(z, mu, k0, k1)) return false;
  } else {
    if (!steed_k(z, mu, k0, k1)) return false;
    exponent = -z;
  }
  // Forward recurrence K_{v+1} = K_{v-1} + (2v/z) K_v, stable upwards.
  const int last = int(steps) + n - 1;
  for (int j = 0; j <= last; ++j) {
    if (j >= int(steps)) k[j - int(steps)] = {k0, exponent};
    const cplx next = k0 + 2.0 * (mu + j + 1) / z * k1;
    k0 = k1;
    k1 = next;
    if (std::abs(k0) > kRescale || std::abs(k1) > kRescale) {
      k0 /= kRescale;
      k1 /= kRescale;
      exponent += std::log(kRescale);
    }
  }
  return true;
}

bool bessel_i_right(cplx z, double nu, int n, std::vector<LogValue> &out) {
  out.assign(n, {0.0, 0.0});
  if (series_i_applies(z, nu)) {
    std::vector<cplx> y(n);
    series_i(z, nu, false, n, y.data());
    for (int j = 0; j < n; ++j) out[j] = {y[j], 0.0};
    return true;
  }
  // Miller: the exact ratio at the top order from the continued fraction,
  // backward recurrence I_{v-1} = I_{v+1} + (2v/z) I_v down to nu, and the
  // normalisation by the Wronskian I_nu K_{nu+1} + I_{nu+1} K_nu = 1/z.
  const double top = nu + n - 1;
  cplx ratio;
  if (!ratio_i(z, top, ratio)) return false;
  cplx f = 1.0, f_up = ratio;
  double logscale = 0.0;
  std::vector<double> scales(n);
  for (int j = n - 1;; --j) {
    out[j].m = f;
    scales[j] = logscale;
    if (j == 0) break;
    const cplx f_down = f_up + 2.0 * (nu + j) / z * f;
    f_up = f;
    f = f_down;
    if (std::abs(f) > kRescale) {
      f /= kRescale;
      f_up /= kRescale;
      logscale += std::log(kRescale);
    }
  }
  std::vector<LogValue> kv;
  if (!bessel_k_right(z, nu, 2, kv)) return false;
  // f and f_up now hold I_nu and I_{nu+1} up to one common factor.
  const cplx k1_in_k0 = kv[1].m * std::exp(kv[1].e - kv[0].e);
  const cplx w = z * (f * k1_in_k0 + f_up * kv[0].m);
  for (int j = 0; j < n; ++j) {
    out[j] = {out[j].m / w, scales[j] - logscale - kv[0].e};
  }
  return true;
}

bool bessel_i(cplx z, int m, double nu, int n, std::vector<LogValue> &out) {
  if (m == 0) return bessel_i_right(z, nu, n, out);
  // I_v(w e^{i pi m}) = e^{i pi m v} I_v(w).
  if (!bessel_i_right(-z, nu, n, out)) return false;
  for (int j = 0; j < n; ++j) {
    out[j] = scale(out[j], std::polar(1.0, m * kPi * std::fmod(nu + j, 2.0)));
  }
  return true;
}

bool bessel_k(cplx z, int m, double nu, int n, std::vector<LogValue> &out) {
  if (m == 0) return bessel_k_right(z, nu, n, out);
  // K_v(w e^{i pi m}) = e^{-i pi m v} K_v(w) - i pi m I_v(w).
  std::vector<LogValue> iv;
  if (!bessel_k_right(-z, nu, n, out) || !bessel_i_right(-z, nu, n, iv)) return false;
  for (int j = 0; j < n; ++j) {
    out[j] = add(scale(out[j], std::polar(1.0, -m * kPi * std::fmod(nu + j, 2.0))),
                 scale(iv[j], cplx(0.0, -kPi * m)));
  }
  return true;
}

}  // namespace orb::special
