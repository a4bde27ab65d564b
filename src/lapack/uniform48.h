// Uniform numbers in (-1, 1) by the published generator (xLARNV's
// distribution 2 over xLARUV): a multiplicative congruential generator
// modulo 2^48, the seed held as four 12-bit digits, each number of a group
// of 64 from the group's seed times its own multiplier, the last of the
// group becoming the next seed. Inverse iteration starts from these
// numbers and MRRR perturbs its root representation by them, so their
// results agree with the published routines'.
#pragma once

#include <algorithm>

namespace orb::lapack {

class Uniform48 {
 public:
  template <class R>
  void fill(int n, R *x) {
    for (int start = 0; start < n; start += kGroup) {
      const int len = std::min(kGroup, n - start);
      for (int i = 0; i < len; ++i) x[start + i] = R(2) * next<R>(i) - R(1);
      for (int k = 0; k < 4; ++k) seed_[k] = it_[k];
    }
  }

 private:
  static constexpr int kGroup = 64;
  static constexpr int kBase = 4096;
  static constexpr int kMult[kGroup][4] = {
      {494, 322, 2508, 2549},   {2637, 789, 3754, 1145},  {255, 1440, 1766, 2253},
      {2008, 752, 3572, 305},   {1253, 2859, 2893, 3301}, {3344, 123, 307, 1065},
      {4084, 1848, 1297, 3133}, {1739, 643, 3966, 2913},  {3143, 2405, 758, 3285},
      {3468, 2638, 2598, 1241}, {688, 2344, 3406, 1197},  {1657, 46, 2922, 3729},
      {1238, 3814, 1038, 2501}, {3166, 913, 2934, 1673},  {1292, 3649, 2091, 541},
      {3422, 339, 2451, 2753},  {1270, 3808, 1580, 949},  {2016, 822, 1958, 2361},
      {154, 2832, 2055, 1165},  {2862, 3078, 1507, 4081}, {697, 3633, 1078, 2725},
      {1706, 2970, 3273, 3305}, {491, 637, 17, 3069},     {931, 2249, 854, 3617},
      {1444, 2081, 2916, 3733}, {444, 4019, 3971, 409},   {3577, 1478, 2889, 2157},
      {3944, 242, 3831, 1361},  {2184, 481, 2621, 3973},  {1661, 2075, 1541, 1865},
      {3482, 4058, 893, 2525},  {657, 622, 736, 1409},    {3023, 3376, 3992, 3445},
      {3618, 812, 787, 3577},   {1267, 234, 2125, 77},    {1828, 641, 2364, 3761},
      {164, 4005, 2460, 2149},  {3798, 1122, 257, 1449},  {3087, 3135, 1574, 3005},
      {2400, 2640, 3912, 225},  {2870, 2302, 1216, 85},   {3876, 40, 3248, 3673},
      {1905, 1832, 3401, 3117}, {1593, 2247, 2124, 3089}, {1797, 2034, 2762, 1349},
      {1234, 2637, 149, 2057},  {3460, 1287, 2245, 413},  {328, 1691, 166, 65},
      {2861, 496, 466, 1845},   {1950, 1597, 4018, 697},  {617, 2394, 1399, 3085},
      {2070, 2584, 190, 3441},  {3331, 1843, 2879, 1573}, {769, 336, 153, 3689},
      {1558, 1472, 2320, 2941}, {2412, 2407, 18, 929},    {2800, 433, 712, 533},
      {189, 2096, 2159, 2841},  {287, 1761, 2318, 4077},  {2045, 2810, 2091, 721},
      {1227, 566, 3443, 2821},  {2838, 442, 1510, 2249},  {209, 41, 449, 2397},
      {2770, 1238, 1956, 2817},
  };

  // The i-th number of the group: the seed times multiplier i modulo
  // 2^48, digit by digit. A result that rounds to 1 becomes the seed for
  // the rest of the group and the multiplication is repeated.
  template <class R>
  R next(int i) {
    const int *mm = kMult[i];
    const R r = R(1) / R(kBase);
    for (;;) {
      const int s1 = seed_[0], s2 = seed_[1], s3 = seed_[2], s4 = seed_[3];
      int t4 = s4 * mm[3];
      int t3 = t4 / kBase;
      t4 -= kBase * t3;
      t3 += s3 * mm[3] + s4 * mm[2];
      int t2 = t3 / kBase;
      t3 -= kBase * t2;
      t2 += s2 * mm[3] + s3 * mm[2] + s4 * mm[1];
      int t1 = t2 / kBase;
      t2 -= kBase * t1;
      t1 += s1 * mm[3] + s2 * mm[2] + s3 * mm[1] + s4 * mm[0];
      t1 %= kBase;
      it_[0] = t1;
      it_[1] = t2;
      it_[2] = t3;
      it_[3] = t4;
      const R x = r * (R(t1) + r * (R(t2) + r * (R(t3) + r * R(t4))));
      if (x != R(1)) return x;
      for (int k = 0; k < 4; ++k) seed_[k] = it_[k];
    }
  }

  int seed_[4] = {1, 1, 1, 1};
  int it_[4] = {1, 1, 1, 1};
};

}  // namespace orb::lapack
