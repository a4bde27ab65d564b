// Time per call of the complex Bessel and Airy entries (CBESJ, CBESK,
// CAIRY) over a fixed set of arguments; bench/special_scipy.py times SciPy's
// vectorised double-precision functions over the same set.
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <vector>

#include "orb.h"

namespace {

constexpr int kPoints = 1000;
constexpr double kPi = 3.14159265358979323846;

// The k-th argument: |z| from 1e-2 to 1e2 (to 30 for Airy) on a log scale,
// the angle spread over the whole circle by the golden ratio, the order
// (k mod 7) * 1.3.
struct Point {
  orb_complex8 z, airy_z;
  float fnu;
};

std::vector<Point> points() {
  std::vector<Point> p(kPoints);
  for (int k = 0; k < kPoints; ++k) {
    const double t = double(k) / (kPoints - 1);
    const double angle = 2.0 * kPi * std::fmod(k * 0.6180339887498949, 1.0) - kPi;
    const double r = std::pow(10.0, -2.0 + 4.0 * t);
    const double ra = std::pow(10.0, -2.0 + 3.477 * t);
    p[k].z = {float(r * std::cos(angle)), float(r * std::sin(angle))};
    p[k].airy_z = {float(ra * std::cos(angle)), float(ra * std::sin(angle))};
    p[k].fnu = float((k % 7) * 1.3);
  }
  return p;
}

template <class F>
double ns_per_call(F call) {
  int repeats = 1;
  for (;;) {
    const auto start = std::chrono::steady_clock::now();
    for (int r = 0; r < repeats; ++r) call();
    const double s =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (s > 0.5) return s * 1e9 / (double(repeats) * kPoints);
    repeats *= 2;
  }
}

}  // namespace

int main() {
  const std::vector<Point> p = points();
  const int kode = 1, n = 1, id = 0;
  orb_complex8 cy;
  int nz, ierr;
  const double j = ns_per_call([&] {
    for (const Point &q : p) CBESJ(&q.z, &q.fnu, &kode, &n, &cy, &nz, &ierr);
  });
  const double k = ns_per_call([&] {
    for (const Point &q : p) CBESK(&q.z, &q.fnu, &kode, &n, &cy, &nz, &ierr);
  });
  const double a = ns_per_call([&] {
    for (const Point &q : p) CAIRY(&q.airy_z, &id, &kode, &cy, &nz, &ierr);
  });
  std::printf("function  ns/call (ORB, single precision, %d arguments)\n", kPoints);
  std::printf("CBESJ     %8.0f\nCBESK     %8.0f\nCAIRY     %8.0f\n", j, k, a);
  return 0;
}
