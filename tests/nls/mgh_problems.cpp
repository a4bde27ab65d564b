#include "mgh_problems.h"

#include <cmath>
#include <string>

namespace orb::test::mgh {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Column-major Jacobian writer.
struct Jac {
  double *a;
  int m;
  double &operator()(int i, int j) { return a[i + j * m]; }
};

void rosenbrock_f(const double *x, double *f) {
  f[0] = 10 * (x[1] - x[0] * x[0]);
  f[1] = 1 - x[0];
}
void rosenbrock_j(const double *x, double *a) {
  Jac J{a, 2};
  J(0, 0) = -20 * x[0], J(0, 1) = 10, J(1, 0) = -1, J(1, 1) = 0;
}

void helical_f(const double *x, double *f) {
  double theta = std::atan(x[1] / x[0]) / (2 * kPi);
  if (x[0] < 0) theta += 0.5;
  if (x[0] == 0) theta = x[1] >= 0 ? 0.25 : -0.25;
  f[0] = 10 * (x[2] - 10 * theta);
  f[1] = 10 * (std::hypot(x[0], x[1]) - 1);
  f[2] = x[2];
}
void helical_j(const double *x, double *a) {
  Jac J{a, 3};
  double r2 = x[0] * x[0] + x[1] * x[1], r = std::sqrt(r2);
  J(0, 0) = 100 * x[1] / (2 * kPi * r2), J(0, 1) = -100 * x[0] / (2 * kPi * r2), J(0, 2) = 10;
  J(1, 0) = 10 * x[0] / r, J(1, 1) = 10 * x[1] / r, J(1, 2) = 0;
  J(2, 0) = 0, J(2, 1) = 0, J(2, 2) = 1;
}

void powell_f(const double *x, double *f) {
  f[0] = x[0] + 10 * x[1];
  f[1] = std::sqrt(5.0) * (x[2] - x[3]);
  f[2] = (x[1] - 2 * x[2]) * (x[1] - 2 * x[2]);
  f[3] = std::sqrt(10.0) * (x[0] - x[3]) * (x[0] - x[3]);
}
void powell_j(const double *x, double *a) {
  Jac J{a, 4};
  for (int k = 0; k < 16; ++k) a[k] = 0;
  J(0, 0) = 1, J(0, 1) = 10;
  J(1, 2) = std::sqrt(5.0), J(1, 3) = -std::sqrt(5.0);
  J(2, 1) = 2 * (x[1] - 2 * x[2]), J(2, 2) = -4 * (x[1] - 2 * x[2]);
  J(3, 0) = 2 * std::sqrt(10.0) * (x[0] - x[3]), J(3, 3) = -J(3, 0);
}

void freudenstein_f(const double *x, double *f) {
  f[0] = -13 + x[0] + ((5 - x[1]) * x[1] - 2) * x[1];
  f[1] = -29 + x[0] + ((x[1] + 1) * x[1] - 14) * x[1];
}
void freudenstein_j(const double *x, double *a) {
  Jac J{a, 2};
  J(0, 0) = 1, J(0, 1) = (10 - 3 * x[1]) * x[1] - 2;
  J(1, 0) = 1, J(1, 1) = (3 * x[1] + 2) * x[1] - 14;
}

const double kBardY[15] = {0.14, 0.18, 0.22, 0.25, 0.29, 0.32, 0.35, 0.39,
                           0.37, 0.58, 0.73, 0.96, 1.34, 2.10, 4.39};
void bard_f(const double *x, double *f) {
  for (int i = 0; i < 15; ++i) {
    double u = i + 1, v = 15 - i, w = u < v ? u : v;
    f[i] = kBardY[i] - (x[0] + u / (v * x[1] + w * x[2]));
  }
}
void bard_j(const double *x, double *a) {
  Jac J{a, 15};
  for (int i = 0; i < 15; ++i) {
    double u = i + 1, v = 15 - i, w = u < v ? u : v, d = v * x[1] + w * x[2];
    J(i, 0) = -1, J(i, 1) = u * v / (d * d), J(i, 2) = u * w / (d * d);
  }
}

const double kKowY[11] = {0.1957, 0.1947, 0.1735, 0.1600, 0.0844, 0.0627,
                          0.0456, 0.0342, 0.0323, 0.0235, 0.0246};
const double kKowU[11] = {4, 2, 1, 0.5, 0.25, 0.167, 0.125, 0.1, 0.0833, 0.0714, 0.0625};
void kowalik_f(const double *x, double *f) {
  for (int i = 0; i < 11; ++i) {
    double u = kKowU[i];
    f[i] = kKowY[i] - x[0] * u * (u + x[1]) / (u * (u + x[2]) + x[3]);
  }
}
void kowalik_j(const double *x, double *a) {
  Jac J{a, 11};
  for (int i = 0; i < 11; ++i) {
    double u = kKowU[i], num = u * (u + x[1]), den = u * (u + x[2]) + x[3];
    J(i, 0) = -num / den, J(i, 1) = -x[0] * u / den;
    J(i, 2) = x[0] * num * u / (den * den), J(i, 3) = x[0] * num / (den * den);
  }
}

const double kMeyerY[16] = {34780, 28610, 23650, 19630, 16370, 13720, 11540, 9744,
                            8261,  7030,  6005,  5147,  4427,  3820,  3307,  2872};
void meyer_f(const double *x, double *f) {
  for (int i = 0; i < 16; ++i)
    f[i] = x[0] * std::exp(x[1] / (45 + 5 * (i + 1) + x[2])) - kMeyerY[i];
}
void meyer_j(const double *x, double *a) {
  Jac J{a, 16};
  for (int i = 0; i < 16; ++i) {
    double d = 45 + 5 * (i + 1) + x[2], e = std::exp(x[1] / d);
    J(i, 0) = e, J(i, 1) = x[0] * e / d, J(i, 2) = -x[0] * x[1] * e / (d * d);
  }
}

void box3d_f(const double *x, double *f) {
  for (int i = 0; i < 10; ++i) {
    double t = 0.1 * (i + 1);
    f[i] = std::exp(-t * x[0]) - std::exp(-t * x[1]) - x[2] * (std::exp(-t) - std::exp(-10 * t));
  }
}
void box3d_j(const double *x, double *a) {
  Jac J{a, 10};
  for (int i = 0; i < 10; ++i) {
    double t = 0.1 * (i + 1);
    J(i, 0) = -t * std::exp(-t * x[0]), J(i, 1) = t * std::exp(-t * x[1]);
    J(i, 2) = -(std::exp(-t) - std::exp(-10 * t));
  }
}

void jennrich_f(const double *x, double *f) {
  for (int i = 0; i < 10; ++i) {
    double k = i + 1;
    f[i] = 2 + 2 * k - (std::exp(k * x[0]) + std::exp(k * x[1]));
  }
}
void jennrich_j(const double *x, double *a) {
  Jac J{a, 10};
  for (int i = 0; i < 10; ++i) {
    double k = i + 1;
    J(i, 0) = -k * std::exp(k * x[0]), J(i, 1) = -k * std::exp(k * x[1]);
  }
}

void brown_dennis_f(const double *x, double *f) {
  for (int i = 0; i < 20; ++i) {
    double t = (i + 1) / 5.0;
    double p = x[0] + t * x[1] - std::exp(t), q = x[2] + x[3] * std::sin(t) - std::cos(t);
    f[i] = p * p + q * q;
  }
}
void brown_dennis_j(const double *x, double *a) {
  Jac J{a, 20};
  for (int i = 0; i < 20; ++i) {
    double t = (i + 1) / 5.0;
    double p = x[0] + t * x[1] - std::exp(t), q = x[2] + x[3] * std::sin(t) - std::cos(t);
    J(i, 0) = 2 * p, J(i, 1) = 2 * t * p, J(i, 2) = 2 * q, J(i, 3) = 2 * q * std::sin(t);
  }
}

const double kOsborne1Y[33] = {0.844, 0.908, 0.932, 0.936, 0.925, 0.908, 0.881, 0.850, 0.818,
                               0.784, 0.751, 0.718, 0.685, 0.658, 0.628, 0.603, 0.580, 0.558,
                               0.538, 0.522, 0.506, 0.490, 0.478, 0.467, 0.457, 0.448, 0.438,
                               0.431, 0.424, 0.420, 0.414, 0.411, 0.406};
void osborne1_f(const double *x, double *f) {
  for (int i = 0; i < 33; ++i) {
    double t = 10.0 * i;
    f[i] = kOsborne1Y[i] - (x[0] + x[1] * std::exp(-t * x[3]) + x[2] * std::exp(-t * x[4]));
  }
}
void osborne1_j(const double *x, double *a) {
  Jac J{a, 33};
  for (int i = 0; i < 33; ++i) {
    double t = 10.0 * i, e4 = std::exp(-t * x[3]), e5 = std::exp(-t * x[4]);
    J(i, 0) = -1, J(i, 1) = -e4, J(i, 2) = -e5, J(i, 3) = t * x[1] * e4, J(i, 4) = t * x[2] * e5;
  }
}

void biggs_f(const double *x, double *f) {
  for (int i = 0; i < 13; ++i) {
    double t = 0.1 * (i + 1);
    double y = std::exp(-t) - 5 * std::exp(-10 * t) + 3 * std::exp(-4 * t);
    f[i] = x[2] * std::exp(-t * x[0]) - x[3] * std::exp(-t * x[1]) + x[5] * std::exp(-t * x[4]) - y;
  }
}
void biggs_j(const double *x, double *a) {
  Jac J{a, 13};
  for (int i = 0; i < 13; ++i) {
    double t = 0.1 * (i + 1);
    J(i, 0) = -t * x[2] * std::exp(-t * x[0]), J(i, 1) = t * x[3] * std::exp(-t * x[1]);
    J(i, 2) = std::exp(-t * x[0]), J(i, 3) = -std::exp(-t * x[1]);
    J(i, 4) = -t * x[5] * std::exp(-t * x[4]), J(i, 5) = std::exp(-t * x[4]);
  }
}

const double kGaussY[15] = {0.0009, 0.0044, 0.0175, 0.0540, 0.1295, 0.2420, 0.3521, 0.3989,
                            0.3521, 0.2420, 0.1295, 0.0540, 0.0175, 0.0044, 0.0009};
void gaussian_f(const double *x, double *f) {
  for (int i = 0; i < 15; ++i) {
    double t = (7.0 - i) / 2, d = t - x[2];
    f[i] = x[0] * std::exp(-x[1] * d * d / 2) - kGaussY[i];
  }
}
void gaussian_j(const double *x, double *a) {
  Jac J{a, 15};
  for (int i = 0; i < 15; ++i) {
    double t = (7.0 - i) / 2, d = t - x[2], e = std::exp(-x[1] * d * d / 2);
    J(i, 0) = e, J(i, 1) = -x[0] * e * d * d / 2, J(i, 2) = x[0] * e * x[1] * d;
  }
}

const double kBealeY[3] = {1.5, 2.25, 2.625};
void beale_f(const double *x, double *f) {
  for (int i = 0; i < 3; ++i) f[i] = kBealeY[i] - x[0] * (1 - std::pow(x[1], i + 1));
}
void beale_j(const double *x, double *a) {
  Jac J{a, 3};
  for (int i = 0; i < 3; ++i) {
    J(i, 0) = -(1 - std::pow(x[1], i + 1));
    J(i, 1) = x[0] * (i + 1) * std::pow(x[1], i);
  }
}

void wood_f(const double *x, double *f) {
  f[0] = 10 * (x[1] - x[0] * x[0]);
  f[1] = 1 - x[0];
  f[2] = std::sqrt(90.0) * (x[3] - x[2] * x[2]);
  f[3] = 1 - x[2];
  f[4] = std::sqrt(10.0) * (x[1] + x[3] - 2);
  f[5] = (x[1] - x[3]) / std::sqrt(10.0);
}
void wood_j(const double *x, double *a) {
  Jac J{a, 6};
  for (int k = 0; k < 24; ++k) a[k] = 0;
  J(0, 0) = -20 * x[0], J(0, 1) = 10, J(1, 0) = -1;
  J(2, 2) = -2 * std::sqrt(90.0) * x[2], J(2, 3) = std::sqrt(90.0), J(3, 2) = -1;
  J(4, 1) = std::sqrt(10.0), J(4, 3) = std::sqrt(10.0);
  J(5, 1) = 1 / std::sqrt(10.0), J(5, 3) = -1 / std::sqrt(10.0);
}

void brown_scaled_f(const double *x, double *f) {
  f[0] = x[0] - 1e6;
  f[1] = x[1] - 2e-6;
  f[2] = x[0] * x[1] - 2;
}
void brown_scaled_j(const double *x, double *a) {
  Jac J{a, 3};
  J(0, 0) = 1, J(0, 1) = 0, J(1, 0) = 0, J(1, 1) = 1, J(2, 0) = x[1], J(2, 1) = x[0];
}

// Watson's polynomial fit, n = 6, on t = i/29.
constexpr int kWatsonN = 6;
void watson_f(const double *x, double *f) {
  for (int i = 0; i < 29; ++i) {
    double t = (i + 1) / 29.0, slope = 0, value = 0, tp = 1;
    for (int j = 0; j < kWatsonN; ++j, tp *= t) {
      value += x[j] * tp;
      if (j + 1 < kWatsonN) slope += (j + 1) * x[j + 1] * tp;
    }
    f[i] = slope - value * value - 1;
  }
  f[29] = x[0];
  f[30] = x[1] - x[0] * x[0] - 1;
}
void watson_j(const double *x, double *a) {
  Jac J{a, 31};
  for (int i = 0; i < 29; ++i) {
    double t = (i + 1) / 29.0, value = 0, tp = 1;
    for (int j = 0; j < kWatsonN; ++j, tp *= t) value += x[j] * tp;
    tp = 1;
    for (int j = 0; j < kWatsonN; ++j, tp *= t) J(i, j) = (j > 0 ? j * tp / t : 0) - 2 * value * tp;
  }
  for (int j = 0; j < kWatsonN; ++j) J(29, j) = 0, J(30, j) = 0;
  J(29, 0) = 1, J(30, 0) = -2 * x[0], J(30, 1) = 1;
}

// Osborne 2: four exponentials (one decaying, three Gaussian bumps) on 65 points.
const double kOsborne2Y[65] = {1.366, 1.191, 1.112, 1.013, .991, .885, .831, .847, .786, .725, .746,
                               .679,  .608,  .655,  .616,  .606, .602, .626, .651, .724, .649, .649,
                               .694,  .644,  .624,  .661,  .612, .558, .533, .495, .500, .423, .395,
                               .375,  .372,  .391,  .396,  .405, .428, .429, .523, .562, .607, .653,
                               .672,  .708,  .633,  .668,  .645, .632, .591, .559, .597, .625, .739,
                               .710,  .729,  .720,  .636,  .581, .428, .292, .162, .098, .054};
void osborne2_f(const double *x, double *f) {
  for (int i = 0; i < 65; ++i) {
    double t = i / 10.0, model = x[0] * std::exp(-t * x[4]);
    for (int k = 1; k < 4; ++k) {
      double d = t - x[7 + k];
      model += x[k] * std::exp(-d * d * x[4 + k]);
    }
    f[i] = kOsborne2Y[i] - model;
  }
}
void osborne2_j(const double *x, double *a) {
  Jac J{a, 65};
  for (int i = 0; i < 65; ++i) {
    double t = i / 10.0, e = std::exp(-t * x[4]);
    J(i, 0) = -e, J(i, 4) = x[0] * t * e;
    for (int k = 1; k < 4; ++k) {
      double d = t - x[7 + k], g = std::exp(-d * d * x[4 + k]);
      J(i, k) = -g;
      J(i, 4 + k) = x[k] * d * d * g;
      J(i, 7 + k) = -2 * x[k] * x[4 + k] * d * g;
    }
  }
}

// Brown's almost-linear function, n = m = 10: nine linear rows and a product.
constexpr int kBrownN = 10;
void brown_linear_f(const double *x, double *f) {
  double sum = 0, product = 1;
  for (int j = 0; j < kBrownN; ++j) sum += x[j], product *= x[j];
  for (int i = 0; i + 1 < kBrownN; ++i) f[i] = x[i] + sum - (kBrownN + 1);
  f[kBrownN - 1] = product - 1;
}
void brown_linear_j(const double *x, double *a) {
  Jac J{a, kBrownN};
  for (int i = 0; i + 1 < kBrownN; ++i)
    for (int j = 0; j < kBrownN; ++j) J(i, j) = i == j ? 2 : 1;
  for (int j = 0; j < kBrownN; ++j) {
    double others = 1;
    for (int k = 0; k < kBrownN; ++k)
      if (k != j) others *= x[k];
    J(kBrownN - 1, j) = others;
  }
}

}  // namespace

const std::vector<Problem> &problems() {
  static const std::vector<Problem> table = {
      {"rosenbrock", 2, 2, {-1.2, 1}, {0}, rosenbrock_f, rosenbrock_j},
      {"helical_valley", 3, 3, {-1, 0, 0}, {0}, helical_f, helical_j},
      {"powell_singular", 4, 4, {3, -1, 0, 1}, {0}, powell_f, powell_j},
      {"freudenstein_roth", 2, 2, {0.5, -2}, {0, 48.9842536792400}, freudenstein_f, freudenstein_j},
      {"bard", 3, 15, {1, 1, 1}, {8.21487730657e-3, 17.4286}, bard_f, bard_j},
      {"kowalik_osborne",
       4,
       11,
       {0.25, 0.39, 0.415, 0.39},
       {3.07505603849e-4, 1.02734e-3},
       kowalik_f,
       kowalik_j},
      {"meyer", 3, 16, {0.02, 4000, 250}, {87.9458551718}, meyer_f, meyer_j},
      {"box_3d", 3, 10, {0, 10, 20}, {0}, box3d_f, box3d_j},
      {"jennrich_sampson", 2, 10, {0.3, 0.4}, {124.362182355}, jennrich_f, jennrich_j},
      {"brown_dennis", 4, 20, {25, 5, -5, -1}, {85822.2016263}, brown_dennis_f, brown_dennis_j},
      {"osborne_1", 5, 33, {0.5, 1.5, -1, 0.01, 0.02}, {5.46489469748e-5}, osborne1_f, osborne1_j},
      {"biggs_exp6", 6, 13, {1, 2, 1, 1, 1, 1}, {0, 5.65565e-3, 0.306366}, biggs_f, biggs_j},
      {"gaussian", 3, 15, {0.4, 1, 0}, {1.12793276961e-8}, gaussian_f, gaussian_j},
      {"beale", 2, 3, {1, 1}, {0, 0.4519}, beale_f, beale_j},
      {"wood", 4, 6, {-3, -1, -3, -1}, {0, 7.87697}, wood_f, wood_j},
      {"brown_badly_scaled", 2, 3, {1, 1}, {0}, brown_scaled_f, brown_scaled_j},
      {"watson_6", 6, 31, std::vector<double>(6, 0.0), {2.28767005355e-3}, watson_f, watson_j},
      {"osborne_2",
       11,
       65,
       {1.3, 0.65, 0.65, 0.7, 0.6, 3, 5, 7, 2, 4.5, 5.5},
       {4.01377362935e-2, 1.78981358},
       osborne2_f,
       osborne2_j},
      {"brown_almost_linear",
       10,
       10,
       std::vector<double>(10, 0.5),
       {0, 1},
       brown_linear_f,
       brown_linear_j},
  };
  return table;
}

const std::vector<Box> &boxes() {
  auto find = [](const char *name) {
    for (const Problem &p : problems())
      if (std::string(p.name) == name) return &p;
    return static_cast<const Problem *>(nullptr);
  };
  static const std::vector<Box> table = {
      {find("rosenbrock"), {-2, -2}, {0.5, 2}},
      {find("beale"), {0.5, 0.8}, {2.5, 2}},
      {find("wood"), {-4, -4, -4, -4}, {0.9, 4, 4, 4}},
      {find("powell_singular"), {0.1, -10, -10, -10}, {10, 10, 10, 10}},
      {find("box_3d"), {0, 5, 0}, {2, 9.5, 20}},
      {find("helical_valley"), {-100, -1, -1}, {0.8, 1, 1}},
      {find("watson_6"), std::vector<double>(6, -10), {10, 10, 10, 1, 10, 10}},
      {find("brown_almost_linear"), std::vector<double>(10, 0), std::vector<double>(10, 0.9)},
  };
  return table;
}

bool at_minimum(const Problem &p, double f) {
  for (double target : p.minima) {
    double tol = target == 0.0 ? 1e-12 : 1e-6 * target;
    if (std::fabs(f - target) <= tol) return true;
  }
  return false;
}

}  // namespace orb::test::mgh
