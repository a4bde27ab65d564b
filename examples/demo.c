/* A tour of ORB: each section solves problems of the sizes people solve, times
   them and checks the answers against bounds; the last line says whether every
   check held, and the exit status follows it. "--short" runs smaller sizes
   (the tests run it so). The same source runs natively and under wine. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "orb.h"

#ifdef __linux__
#include <dlfcn.h>
#endif
#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))
#include <cpuid.h>
#include <x86intrin.h>
#define DEMO_X86 1
#endif

static int failures = 0, checks = 0;

/* One checked figure: printed with its bound, counted. The bounds of the
   n-scaled eigenvalue and SVD ratios are those of the reference LAPACK test
   programs (50); the dense backward errors, unscaled, get 100. */
static void check(const char *what, double value, double bound) {
  const int ok = value <= bound; /* NaN fails */
  ++checks;
  if (!ok) ++failures;
  printf("    %-44s %10.3g  (bound %g)%s\n", what, value, bound, ok ? "" : "  FAILED");
}

static double now(void) {
  return DSECND();
}

/* Uniform numbers in [-1, 1) from a fixed seed. */
static unsigned long long seed = 0x2545F4914F6CDD1DULL;
static float uniform(void) {
  seed ^= seed << 13, seed ^= seed >> 7, seed ^= seed << 17;
  return (float)((double)(seed >> 11) / 4503599627370496.0 - 1.0);
}
static float *random_matrix(int m, int n) {
  float *a = malloc(sizeof(float) * (size_t)m * n);
  for (size_t i = 0; i < (size_t)m * n; ++i) a[i] = uniform();
  return a;
}
static float *copy_of(const float *a, size_t count) {
  float *c = malloc(sizeof(float) * count);
  memcpy(c, a, sizeof(float) * count);
  return c;
}

static double norm_inf(int m, int n, const float *a, int lda) {
  double best = 0;
  for (int i = 0; i < m; ++i) {
    double s = 0;
    for (int j = 0; j < n; ++j) s += fabs(a[i + (size_t)j * lda]);
    if (s > best) best = s;
  }
  return best;
}
static double norm_inf_d(int m, int n, const double *a) {
  double best = 0;
  for (int i = 0; i < m; ++i) {
    double s = 0;
    for (int j = 0; j < n; ++j) s += fabs(a[i + (size_t)j * m]);
    if (s > best) best = s;
  }
  return best;
}
static double *to_double(const float *a, size_t count) {
  double *d = malloc(sizeof(double) * count);
  for (size_t i = 0; i < count; ++i) d[i] = a[i];
  return d;
}
static double vec_inf(int n, const float *x) {
  double best = 0;
  for (int i = 0; i < n; ++i)
    if (fabs(x[i]) > best) best = fabs(x[i]);
  return best;
}

/* ||A x - b|| / (||A|| ||x|| eps), in double, infinity norms. */
static double backward_error(int m, int n, const float *a, const float *x, const float *b) {
  double worst = 0;
  for (int i = 0; i < m; ++i) {
    double r = -b[i];
    for (int j = 0; j < n; ++j) r += (double)a[i + (size_t)j * m] * x[j];
    if (fabs(r) > worst) worst = fabs(r);
  }
  return worst / (norm_inf(m, n, a, m) * vec_inf(n, x) * 5.96e-8);
}

/* The widest vector extension the processor has, which names the kernels the
   library chose, and the single-precision operations one core may start per
   cycle on them (two fused multiply-adds per cycle). */
static const char *vector_path(int *flops_per_cycle) {
#ifdef DEMO_X86
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return *flops_per_cycle = 64, "AVX-512";
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
    return *flops_per_cycle = 32, "AVX2 with FMA";
  if (__builtin_cpu_supports("sse2")) return *flops_per_cycle = 8, "SSE2";
#endif
  return *flops_per_cycle = 2, "plain";
}

/* The time-stamp counter's rate, GHz: the processor's nominal clock. */
static double nominal_ghz(void) {
#ifdef DEMO_X86
  const double t0 = now();
  const unsigned long long c0 = __rdtsc();
  while (now() - t0 < 0.05) {
  }
  return (double)(__rdtsc() - c0) / ((now() - t0) * 1e9);
#else
  return 0;
#endif
}

static void dense_section(int n, int n_eig) {
  const int one = 1;
  const float eps = 5.96e-8f;
  int info;
  printf("\n== Dense, single precision (n = %d; eigenvalues and SVD n = %d)\n", n, n_eig);

  /* sgemm: the best of three. */
  {
    float *a = random_matrix(n, n), *b = random_matrix(n, n), *c = random_matrix(n, n);
    const float alpha = 1, beta = 0;
    double best = 1e30;
    for (int r = 0; r < 3; ++r) {
      const double t = now();
      sgemm("N", "N", &n, &n, &n, &alpha, a, &n, b, &n, &beta, c, &n, 1, 1);
      const double dt = now() - t;
      if (dt < best) best = dt;
    }
    int per_cycle;
    const char *path = vector_path(&per_cycle);
    const double gflops = 2.0 * n * n * n / best * 1e-9;
    const double peak = nominal_ghz() * per_cycle * ORB_Get_Max_Threads();
    printf("  sgemm %d x %d: %.1f GFLOP/s in %.3f s on %d threads, %s kernels", n, n, gflops, best,
           ORB_Get_Max_Threads(), path);
    if (peak > 0) printf(" (%.0f%% of the nominal peak %.0f GFLOP/s)", 100 * gflops / peak, peak);
    printf("\n");
    free(a), free(b), free(c);
  }

  /* sgetrf/sgetrs, spotrf/spotrs, sgels: backward errors. */
  {
    float *a = random_matrix(n, n), *b = random_matrix(n, 1);
    float *lu = copy_of(a, (size_t)n * n), *x = copy_of(b, n);
    int *ipiv = malloc(sizeof(int) * n);
    double t = now();
    sgetrf(&n, &n, lu, &n, ipiv, &info);
    sgetrs("N", &n, &one, lu, &n, ipiv, x, &n, &info, 1);
    t = now() - t;
    printf("  sgetrf + sgetrs: %.3f s, %.1f GFLOP/s\n", t, 2.0 / 3 * n * n * n / t * 1e-9);
    check("sgetrs backward error |Ax-b|/(|A||x|eps)", backward_error(n, n, a, x, b), 100);

    /* A = B B^T + n I is positive definite. */
    const float alpha = 1, beta = 0;
    ssyrk("L", "N", &n, &n, &alpha, a, &n, &beta, lu, &n, 1, 1);
    for (int i = 0; i < n; ++i) {
      lu[i + (size_t)i * n] += (float)n;
      for (int j = 0; j < i; ++j) lu[j + (size_t)i * n] = lu[i + (size_t)j * n];
    }
    float *spd = copy_of(lu, (size_t)n * n);
    memcpy(x, b, sizeof(float) * n);
    t = now();
    spotrf("L", &n, lu, &n, &info, 1);
    spotrs("L", &n, &one, lu, &n, x, &n, &info, 1);
    t = now() - t;
    printf("  spotrf + spotrs: %.3f s, %.1f GFLOP/s\n", t, 1.0 / 3 * n * n * n / t * 1e-9);
    check("spotrs backward error", info == 0 ? backward_error(n, n, spd, x, b) : 1e30, 100);

    /* Least squares: 2n x n, consistent right-hand side. */
    const int m = 2 * n;
    float *tall = random_matrix(m, n), *xt = random_matrix(n, 1), *rhs = malloc(sizeof(float) * m);
    for (int i = 0; i < m; ++i) {
      double s = 0;
      for (int j = 0; j < n; ++j) s += (double)tall[i + (size_t)j * m] * xt[j];
      rhs[i] = (float)s;
    }
    float *work_a = copy_of(tall, (size_t)m * n), *sol = copy_of(rhs, m), query;
    int lwork = -1;
    sgels("N", &m, &n, &one, work_a, &m, sol, &m, &query, &lwork, &info, 1);
    lwork = (int)query;
    float *work = malloc(sizeof(float) * lwork);
    t = now();
    sgels("N", &m, &n, &one, work_a, &m, sol, &m, work, &lwork, &info, 1);
    t = now() - t;
    printf("  sgels %d x %d: %.3f s\n", m, n, t);
    check("sgels backward error", info == 0 ? backward_error(m, n, tall, sol, rhs) : 1e30, 100);
    free(a), free(b), free(lu), free(x), free(ipiv), free(spd), free(tall), free(xt), free(rhs);
    free(work_a), free(sol), free(work);
  }

  /* ssyevr and sgesdd: residual and orthogonality. */
  {
    const int k = n_eig;
    float *a = random_matrix(k, k);
    for (int i = 0; i < k; ++i)
      for (int j = 0; j < i; ++j) a[j + (size_t)i * k] = a[i + (size_t)j * k];
    float *w = copy_of(a, (size_t)k * k), *z = malloc(sizeof(float) * (size_t)k * k);
    float *ev = malloc(sizeof(float) * k), vl = 0, vu = 0, abstol = 0, wq;
    int il = 0, iu = 0, found, *isuppz = malloc(sizeof(int) * 2 * k), lwork = -1, liwork = -1, iq;
    ssyevr("V", "A", "L", &k, w, &k, &vl, &vu, &il, &iu, &abstol, &found, ev, z, &k, isuppz, &wq,
           &lwork, &iq, &liwork, &info, 1, 1, 1);
    lwork = (int)wq, liwork = iq;
    float *work = malloc(sizeof(float) * lwork);
    int *iwork = malloc(sizeof(int) * liwork);
    double t = now();
    ssyevr("V", "A", "L", &k, w, &k, &vl, &vu, &il, &iu, &abstol, &found, ev, z, &k, isuppz, work,
           &lwork, iwork, &liwork, &info, 1, 1, 1);
    t = now() - t;
    printf("  ssyevr %d, all eigenpairs: %.3f s\n", k, t);
    /* A Z - Z diag(w) and Z^T Z - I, formed in double precision (DGEMM). */
    const size_t kk = (size_t)k * k;
    double *ad = to_double(a, kk), *zd = to_double(z, kk), *r = malloc(sizeof(double) * kk);
    const double p1 = 1, m1 = -1, zero = 0;
    for (int j = 0; j < k; ++j)
      for (int i = 0; i < k; ++i) r[i + (size_t)j * k] = zd[i + (size_t)j * k] * ev[j];
    DGEMM("N", "N", &k, &k, &k, &p1, ad, &k, zd, &k, &m1, r, &k, 1, 1);
    const double anorm = norm_inf_d(k, k, ad);
    check("ssyevr |AZ - ZW|/(n|A|eps)", norm_inf_d(k, k, r) / (k * anorm * eps), 50);
    DGEMM("T", "N", &k, &k, &k, &p1, zd, &k, zd, &k, &zero, r, &k, 1, 1);
    for (int i = 0; i < k; ++i) r[i + (size_t)i * k] -= 1;
    check("ssyevr |Z^T Z - I|/(n eps)", norm_inf_d(k, k, r) / (k * eps), 50);

    /* sgesdd of a general matrix. */
    float *g = random_matrix(k, k), *gc = copy_of(g, (size_t)k * k);
    float *s = malloc(sizeof(float) * k), *u = malloc(sizeof(float) * (size_t)k * k);
    float *vt = malloc(sizeof(float) * (size_t)k * k);
    int *iw = malloc(sizeof(int) * 8 * k);
    lwork = -1;
    sgesdd("A", &k, &k, gc, &k, s, u, &k, vt, &k, &wq, &lwork, iw, &info, 1);
    lwork = (int)wq;
    free(work);
    work = malloc(sizeof(float) * lwork);
    t = now();
    sgesdd("A", &k, &k, gc, &k, s, u, &k, vt, &k, work, &lwork, iw, &info, 1);
    t = now() - t;
    printf("  sgesdd %d, all singular vectors: %.3f s\n", k, t);
    double *ud = to_double(u, kk), *vd = to_double(vt, kk), *gd = to_double(g, kk);
    for (int j = 0; j < k; ++j)
      for (int i = 0; i < k; ++i) ud[i + (size_t)j * k] *= s[j];
    memcpy(r, gd, sizeof(double) * kk);
    DGEMM("N", "N", &k, &k, &k, &m1, ud, &k, vd, &k, &p1, r, &k, 1, 1);
    check("sgesdd |A - U S V^T|/(n|A|eps)", norm_inf_d(k, k, r) / (k * norm_inf_d(k, k, gd) * eps),
          50);
    DGEMM("N", "T", &k, &k, &k, &p1, vd, &k, vd, &k, &zero, r, &k, 1, 1);
    for (int i = 0; i < k; ++i) r[i + (size_t)i * k] -= 1;
    check("sgesdd |V^T V - I|/(n eps)", norm_inf_d(k, k, r) / (k * eps), 50);
    free(ad), free(zd), free(ud), free(vd), free(gd);
    free(a), free(w), free(z), free(ev), free(isuppz), free(work), free(iwork), free(r);
    free(g), free(gc), free(s), free(u), free(vt), free(iw);
  }

  /* cgetrf/cgetrs. */
  {
    orb_complex8 *a = malloc(sizeof(orb_complex8) * (size_t)n * n);
    orb_complex8 *lu = malloc(sizeof(orb_complex8) * (size_t)n * n);
    orb_complex8 *b = malloc(sizeof(orb_complex8) * n), *x = malloc(sizeof(orb_complex8) * n);
    int *ipiv = malloc(sizeof(int) * n);
    for (size_t i = 0; i < (size_t)n * n; ++i) a[i].re = uniform(), a[i].im = uniform();
    for (int i = 0; i < n; ++i) b[i].re = uniform(), b[i].im = uniform();
    memcpy(lu, a, sizeof(orb_complex8) * (size_t)n * n);
    memcpy(x, b, sizeof(orb_complex8) * n);
    double t = now();
    cgetrf(&n, &n, lu, &n, ipiv, &info);
    cgetrs("N", &n, &one, lu, &n, ipiv, x, &n, &info, 1);
    t = now() - t;
    double worst = 0, anorm = 0, xnorm = 0;
    for (int i = 0; i < n; ++i) {
      double rr = -b[i].re, ri = -b[i].im, row = 0;
      for (int j = 0; j < n; ++j) {
        const orb_complex8 e = a[i + (size_t)j * n];
        rr += (double)e.re * x[j].re - (double)e.im * x[j].im;
        ri += (double)e.re * x[j].im + (double)e.im * x[j].re;
        row += hypot(e.re, e.im);
      }
      if (hypot(rr, ri) > worst) worst = hypot(rr, ri);
      if (row > anorm) anorm = row;
      if (hypot(x[i].re, x[i].im) > xnorm) xnorm = hypot(x[i].re, x[i].im);
    }
    printf("  cgetrf + cgetrs: %.3f s, %.1f GFLOP/s\n", t, 8.0 / 3 * n * n * n / t * 1e-9);
    check("cgetrs backward error", worst / (anorm * xnorm * eps), 100);
    free(a), free(lu), free(b), free(x), free(ipiv);
  }
}

/* ---- beside what users run today ------------------------------------------- */

/* The routines the comparison times, in the Fortran calling convention that
   every one of the libraries exports (hidden string lengths last). */
typedef void (*gemm_fn)(const char *, const char *, const int *, const int *, const int *,
                        const float *, const float *, const int *, const float *, const int *,
                        const float *, float *, const int *, size_t, size_t);
typedef void (*getrf_fn)(const int *, const int *, float *, const int *, int *, int *);
typedef void (*potrf_fn)(const char *, const int *, float *, const int *, int *, size_t);
typedef void (*syevr_fn)(const char *, const char *, const char *, const int *, float *,
                         const int *, const float *, const float *, const int *, const int *,
                         const float *, int *, float *, float *, const int *, int *, float *,
                         const int *, int *, const int *, int *, size_t, size_t, size_t);
typedef void (*gesdd_fn)(const char *, const int *, const int *, float *, const int *, float *,
                         float *, const int *, float *, const int *, float *, const int *, int *,
                         int *, size_t);

typedef struct {
  const char *name;
  gemm_fn gemm;
  getrf_fn getrf;
  potrf_fn potrf;
  syevr_fn syevr;
  gesdd_fn gesdd;
} Library;

/* Seconds of one call of routine r (0 sgemm, 1 sgetrf, 2 spotrf, 3 ssyevr, 4
   sgesdd) on the demo's problem of order n, or -1 when the library lacks it. */
static double time_routine(const Library *lib, int r, int n) {
  const size_t nn = (size_t)n * n;
  float *a = random_matrix(n, n), *b = NULL, *c = NULL, *w = NULL, *z = NULL, *work = NULL, wq;
  int info, *iw = NULL, lwork = -1, liwork = -1, iq, found;
  const float one = 1, zero = 0, vl = 0, vu = 0, abstol = 0;
  const int il = 0, iu = 0;
  double t = -1;
  if (r == 0 && lib->gemm) {
    b = random_matrix(n, n), c = random_matrix(n, n);
    t = now();
    lib->gemm("N", "N", &n, &n, &n, &one, a, &n, b, &n, &zero, c, &n, 1, 1);
    t = now() - t;
  } else if (r == 1 && lib->getrf) {
    iw = malloc(sizeof(int) * n);
    t = now();
    lib->getrf(&n, &n, a, &n, iw, &info);
    t = now() - t;
  } else if (r == 2 && lib->potrf) {
    for (int i = 0; i < n; ++i) a[i + (size_t)i * n] += 2.0f * n; /* diagonally dominant */
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < j; ++i) a[j + (size_t)i * n] = a[i + (size_t)j * n];
    t = now();
    lib->potrf("L", &n, a, &n, &info, 1);
    t = now() - t;
  } else if (r == 3 && lib->syevr) {
    w = malloc(sizeof(float) * n), z = malloc(sizeof(float) * nn);
    iw = malloc(sizeof(int) * 2 * n);
    int *isuppz = malloc(sizeof(int) * 2 * n);
    lib->syevr("V", "A", "L", &n, a, &n, &vl, &vu, &il, &iu, &abstol, &found, w, z, &n, isuppz, &wq,
               &lwork, &iq, &liwork, &info, 1, 1, 1);
    lwork = (int)wq, liwork = iq;
    work = malloc(sizeof(float) * lwork);
    int *iwork = malloc(sizeof(int) * liwork);
    t = now();
    lib->syevr("V", "A", "L", &n, a, &n, &vl, &vu, &il, &iu, &abstol, &found, w, z, &n, isuppz,
               work, &lwork, iwork, &liwork, &info, 1, 1, 1);
    t = now() - t;
    free(isuppz), free(iwork);
  } else if (r == 4 && lib->gesdd) {
    w = malloc(sizeof(float) * n), z = malloc(sizeof(float) * nn), b = malloc(sizeof(float) * nn);
    iw = malloc(sizeof(int) * 8 * n);
    lib->gesdd("A", &n, &n, a, &n, w, z, &n, b, &n, &wq, &lwork, iw, &info, 1);
    lwork = (int)wq;
    work = malloc(sizeof(float) * lwork);
    t = now();
    lib->gesdd("A", &n, &n, a, &n, w, z, &n, b, &n, work, &lwork, iw, &info, 1);
    t = now() - t;
  }
  free(a), free(b), free(c), free(w), free(z), free(work), free(iw);
  return t;
}

#ifdef __linux__
/* A peer loaded at run time into a scope of its own, so that neither it nor
   ORB answers the other's calls. */
static int load_peer(Library *lib, const char *name, const char *path) {
  void *h = dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
  if (!h) return 0;
  lib->name = name;
  lib->gemm = (gemm_fn)dlsym(h, "sgemm_");
  lib->getrf = (getrf_fn)dlsym(h, "sgetrf_");
  lib->potrf = (potrf_fn)dlsym(h, "spotrf_");
  lib->syevr = (syevr_fn)dlsym(h, "ssyevr_");
  lib->gesdd = (gesdd_fn)dlsym(h, "sgesdd_");
  return 1;
}
#endif

static void peers_section(int n, int n_eig) {
  printf("\n== Beside what users run today (seconds, the better of two calls)\n");
  /* ORB's entries take the hidden lengths as int; the peers' as size_t. On
     x86-64 a length sits in a register or an eight-byte stack slot either way,
     and the value passed here (1) reads the same in both. */
#define ORB_AS(type, f) ((type)(void (*)(void))(f))
  Library libs[3] = {{"ORB", ORB_AS(gemm_fn, sgemm), ORB_AS(getrf_fn, sgetrf),
                      ORB_AS(potrf_fn, spotrf), ORB_AS(syevr_fn, ssyevr),
                      ORB_AS(gesdd_fn, sgesdd)}};
#undef ORB_AS
  int count = 1;
#ifdef __linux__
  count += load_peer(&libs[count], "OpenBLAS",
                     "/usr/lib/x86_64-linux-gnu/openblas-pthread/libopenblas.so.0");
  count +=
      load_peer(&libs[count], "ref. LAPACK", "/usr/lib/x86_64-linux-gnu/lapack/liblapack.so.3");
#endif
  if (count == 1) {
#ifdef __linux__
    printf(
        "  OpenBLAS and the reference LAPACK are not installed: tools/install-deps.sh --bench\n");
#else
    printf("  the peers are compared on Linux (bench/ measures orb.dll beside OpenBLAS)\n");
#endif
    return;
  }
  static const char *const names[5] = {"sgemm", "sgetrf", "spotrf", "ssyevr", "sgesdd"};
  printf("  %-8s %6s", "routine", "n");
  for (int l = 0; l < count; ++l) printf(" %12s", libs[l].name);
  for (int l = 1; l < count; ++l) printf("  %s/ORB", libs[l].name);
  printf("\n");
  for (int r = 0; r < 5; ++r) {
    const int size = r >= 3 ? n_eig : n;
    double t[3];
    for (int l = 0; l < count; ++l) {
      /* The better of two calls: the first also starts the library's threads. */
      const double first = time_routine(&libs[l], r, size);
      const double second = time_routine(&libs[l], r, size);
      t[l] = first < second ? first : second;
    }
    printf("  %-8s %6d", names[r], size);
    for (int l = 0; l < count; ++l) printf(" %12.3f", t[l]);
    for (int l = 1; l < count; ++l)
      if (t[l] > 0 && t[0] > 0) printf("  %*.2f", (int)strlen(libs[l].name) + 4, t[l] / t[0]);
    printf("\n");
  }
  printf("  (the reference LAPACK runs over the system BLAS that Debian's alternatives select)\n");
}

/* ---- sparse ------------------------------------------------------------------ */

typedef struct {
  int n, nnz;
  int *ia, *ja;
  double *a; /* one double per entry, two for the complex types */
} Sparse;

/* The 7-point operator on a k^3 grid in compressed rows (1-based): diagonal d,
   neighbours -1; the upper triangle only, or the whole pattern. Complex
   entries take the imaginary part `dim` on the diagonal. */
static Sparse grid3d(int k, double d, double dim, int complex_values, int upper_only) {
  Sparse s;
  s.n = k * k * k;
  const int w = complex_values ? 2 : 1;
  s.ia = malloc(sizeof(int) * (s.n + 1));
  s.ja = malloc(sizeof(int) * 7 * (size_t)s.n);
  s.a = malloc(sizeof(double) * 7 * (size_t)s.n * w);
  int nnz = 0;
  for (int i = 0; i < s.n; ++i) {
    const int x = i % k, y = (i / k) % k, z = i / (k * k);
    const int nb[7] = {z > 0 ? i - k * k : -1, y > 0 ? i - k : -1,     x > 0 ? i - 1 : -1,        i,
                       x < k - 1 ? i + 1 : -1, y < k - 1 ? i + k : -1, z < k - 1 ? i + k * k : -1};
    s.ia[i] = nnz + 1;
    for (int c = 0; c < 7; ++c) {
      if (nb[c] < 0 || (upper_only && nb[c] < i)) continue;
      s.ja[nnz] = nb[c] + 1;
      s.a[w * nnz] = nb[c] == i ? d : -1.0;
      if (complex_values) s.a[w * nnz + 1] = nb[c] == i ? dim : 0.0;
      ++nnz;
    }
  }
  s.ia[s.n] = nnz + 1;
  s.nnz = nnz;
  return s;
}
static void free_sparse(Sparse *s) {
  free(s->ia), free(s->ja), free(s->a);
}

/* max_i |b - A x|_i / (|A| |x| + |b|)_i for the upper-triangle storage of a
   symmetric matrix (real, or complex symmetric). */
static double sparse_backward_error(const Sparse *s, int complex_values, const double *x,
                                    const double *b) {
  const int n = s->n, w = complex_values ? 2 : 1;
  double *r = calloc((size_t)n * w, sizeof(double)), *den = calloc(n, sizeof(double));
  for (int i = 0; i < n; ++i)
    for (int p = s->ia[i] - 1; p < s->ia[i + 1] - 1; ++p) {
      const int j = s->ja[p] - 1;
      for (int pass = 0; pass < (j == i ? 1 : 2); ++pass) {
        const int row = pass ? j : i, col = pass ? i : j;
        if (complex_values) {
          const double ar = s->a[2 * p], ai = s->a[2 * p + 1];
          const double xr = x[2 * col], xi = x[2 * col + 1];
          r[2 * row] += ar * xr - ai * xi, r[2 * row + 1] += ar * xi + ai * xr;
          den[row] += hypot(ar, ai) * hypot(xr, xi);
        } else {
          r[row] += s->a[p] * x[col];
          den[row] += fabs(s->a[p] * x[col]);
        }
      }
    }
  double worst = 0;
  for (int i = 0; i < n; ++i) {
    const double e = complex_values ? hypot(b[2 * i] - r[2 * i], b[2 * i + 1] - r[2 * i + 1])
                                    : fabs(b[i] - r[i]);
    const double bi = complex_values ? hypot(b[2 * i], b[2 * i + 1]) : fabs(b[i]);
    if (e / (den[i] + bi) > worst) worst = e / (den[i] + bi);
  }
  free(r), free(den);
  return worst;
}

static void tessera_run(const char *title, Sparse *s, int mtype) {
  const int complex_values = mtype == 6, w = complex_values ? 2 : 1;
  double *b = malloc(sizeof(double) * (size_t)s->n * w),
         *x = malloc(sizeof(double) * (size_t)s->n * w);
  for (int i = 0; i < s->n * w; ++i) b[i] = 1.0 + 0.001 * (i % 17);
  void *pt[64] = {0};
  int iparam[64] = {0}, perm = 0, error = 0, phase;
  const int maxfct = 1, mnum = 1, nrhs = 1, msglvl = 0;
  iparam[0] = 1;
  iparam[1] = 2;
  iparam[7] = 2;
  iparam[9] = mtype == 2 ? 0 : 8;
  iparam[17] = -1;
  iparam[20] = mtype == 2 ? 0 : 1;
  double t[3];
  const int phases[3] = {11, 22, 33};
  for (int p = 0; p < 3 && error == 0; ++p) {
    phase = phases[p];
    const double t0 = now();
    TESSERA(pt, &maxfct, &mnum, &mtype, &phase, &s->n, s->a, s->ia, s->ja, &perm, &nrhs, iparam,
            &msglvl, b, x, &error);
    t[p] = now() - t0;
  }
  printf("  %s: n = %d, %d stored entries\n", title, s->n, s->nnz);
  if (error != 0) {
    printf("    TESSERA error %d\n", error);
    ++failures, ++checks;
  } else {
    printf(
        "    analysis %.2f s, factorization %.2f s, solve %.3f s; factor %d entries, "
        "memory %.0f MB; %d refinement steps\n",
        t[0], t[1], t[2], iparam[17],
        (iparam[14] > iparam[15] + iparam[16] ? iparam[14] : iparam[15] + iparam[16]) / 1024.0,
        iparam[6]);
    check("backward error max|b-Ax|/(|A||x|+|b|)", sparse_backward_error(s, complex_values, x, b),
          1e-14);
  }
  phase = -1;
  TESSERA(pt, &maxfct, &mnum, &mtype, &phase, &s->n, s->a, s->ia, s->ja, &perm, &nrhs, iparam,
          &msglvl, b, x, &error);
  free(b), free(x);
}

/* CG with ILU0 on the whole pattern of the same Laplacian. */
static void cg_run(int k) {
  Sparse s = grid3d(k, 6.0, 0, 0, 0);
  const int n = s.n;
  double *b = malloc(sizeof(double) * n), *x = calloc(n, sizeof(double));
  double *tmp = malloc(sizeof(double) * 4 * (size_t)n), *lu = malloc(sizeof(double) * s.nnz);
  for (int i = 0; i < n; ++i) b[i] = 1.0 + 0.001 * (i % 17);
  int ipar[128], request, ierr, iterations;
  double dpar[128];
  const double t0 = now();
  DCG_INIT(&n, x, b, &request, ipar, dpar, tmp);
  ipar[4] = 2000, ipar[8] = 1, ipar[9] = 0, ipar[10] = 1;
  dpar[0] = 1e-24; /* on the squared measure: 1e-12 relative */
  DCSRILU0(&n, s.a, s.ia, s.ja, lu, ipar, dpar, &ierr);
  DCG_CHECK(&n, x, b, &request, ipar, dpar);
  for (;;) {
    DCG(&n, x, b, &request, ipar, dpar, tmp);
    if (request == 1) {
      for (int i = 0; i < n; ++i) {
        double sum = 0;
        for (int p = s.ia[i] - 1; p < s.ia[i + 1] - 1; ++p) sum += s.a[p] * tmp[s.ja[p] - 1];
        tmp[n + i] = sum;
      }
    } else if (request == 3) {
      const double *r = tmp + 2 * (size_t)n;
      double *z = tmp + 3 * (size_t)n;
      for (int i = 0; i < n; ++i) {
        double sum = r[i];
        for (int p = s.ia[i] - 1; p < s.ia[i + 1] - 1 && s.ja[p] - 1 < i; ++p)
          sum -= lu[p] * z[s.ja[p] - 1];
        z[i] = sum;
      }
      for (int i = n - 1; i >= 0; --i) {
        double sum = z[i], d = 1;
        for (int p = s.ia[i] - 1; p < s.ia[i + 1] - 1; ++p) {
          if (s.ja[p] - 1 > i) sum -= lu[p] * z[s.ja[p] - 1];
          if (s.ja[p] - 1 == i) d = lu[p];
        }
        z[i] = sum / d;
      }
    } else {
      break;
    }
  }
  DCG_GET(&n, x, b, &request, ipar, dpar, tmp, &iterations);
  const double t = now() - t0;
  double rr = 0, bb = 0;
  for (int i = 0; i < n; ++i) {
    double sum = 0;
    for (int p = s.ia[i] - 1; p < s.ia[i + 1] - 1; ++p) sum += s.a[p] * x[s.ja[p] - 1];
    rr += (b[i] - sum) * (b[i] - sum), bb += b[i] * b[i];
  }
  printf("  CG with ILU0 on the same Laplacian: %d iterations, %.2f s\n", iterations, t);
  check("CG relative residual |b-Ax|/|b|", request == 0 ? sqrt(rr / bb) : 1e30, 1e-10);
  free_sparse(&s);
  free(b), free(x), free(tmp), free(lu);
}

static void sparse_section(int k_laplace, int k_helmholtz) {
  printf("\n== Sparse, double precision (TESSERA, then CG with ILU0)\n");
  Sparse lap = grid3d(k_laplace, 6.0, 0, 0, 1);
  tessera_run("3-D Laplacian, SPD (mtype 2)", &lap, 2);
  free_sparse(&lap);
  /* Damped Helmholtz: 6 - (kh)^2 on the diagonal, a small loss. */
  Sparse helm = grid3d(k_helmholtz, 6.0 - 0.64, 0.1, 1, 1);
  tessera_run("3-D Helmholtz, complex symmetric (mtype 6)", &helm, 6);
  free_sparse(&helm);
  cg_run(k_laplace);
}

/* ---- nonlinear least squares -------------------------------------------------- */

/* Osborne's exponential fit (More, Garbow and Hillstrom's problem 17): 33
   points, five parameters, a published minimum of ||F||^2. */
static const double osborne_y[33] = {0.844, 0.908, 0.932, 0.936, 0.925, 0.908, 0.881, 0.850, 0.818,
                                     0.784, 0.751, 0.718, 0.685, 0.658, 0.628, 0.603, 0.580, 0.558,
                                     0.538, 0.522, 0.506, 0.490, 0.478, 0.467, 0.457, 0.448, 0.438,
                                     0.431, 0.424, 0.420, 0.414, 0.411, 0.406};
static int osborne_calls = 0;

static void osborne(int *m, int *n, double *x, double *f) {
  (void)n;
  ++osborne_calls;
  for (int i = 0; i < *m; ++i) {
    const double t = 10.0 * i;
    f[i] = osborne_y[i] - (x[0] + x[1] * exp(-t * x[3]) + x[2] * exp(-t * x[4]));
  }
}

static void nls_section(void) {
  printf("\n== Nonlinear least squares\n");
  const double published = 5.46489469748e-5;
  int n = 5, m = 33, iter1 = 1000, iter2 = 100, request = 0, iterations = 0, criterion = 0;
  double x[5] = {0.5, 1.5, -1, 0.01, 0.02}, f[33], jac[33 * 5], r1 = 0, r2 = 0, rs = 100;
  const double eps[6] = {1e-10, 1e-10, 1e-10, 1e-10, 1e-10, 1e-10}, jac_eps = 1e-6;
  void *handle = NULL;
  const double t0 = now();
  int status = dtrnlsp_init(&handle, &n, &m, x, eps, &iter1, &iter2, &rs);
  while (status == 1501) {
    status = dtrnlsp_solve(&handle, f, jac, &request);
    if (status != 1501 || request < 0) break;
    if (request == 1) osborne(&m, &n, x, f);
    if (request == 2) status = djacobi(osborne, &n, &m, jac, x, &jac_eps);
  }
  if (status == 1501) dtrnlsp_get(&handle, &iterations, &criterion, &r1, &r2);
  dtrnlsp_delete(&handle);
  const double t = now() - t0;
  printf(
      "  Osborne 1 (33 residuals, 5 parameters), trust region with the central-difference\n"
      "    Jacobian: %d iterations, %d evaluations of F, stopped by criterion %d, %.4f s\n"
      "    ||F||^2 = %.11e, published minimum %.11e\n",
      iterations, osborne_calls, criterion, t, r2 * r2, published);
  check("|F|^2 relative distance to the published value",
        status == 1501 ? fabs(r2 * r2 - published) / published : 1e30, 1e-8);
}

/* ---- filters and special functions -------------------------------------------- */

/* Values of the Bessel and Airy functions against published tables (the real
   ones to the digits the tables give, the complex ones from an independent
   double-precision evaluation), each to within a few single-precision
   units. */
static void special_section(void) {
  printf("\n== Bessel and Airy functions (single precision, computed in double)\n");
  struct Value {
    const char *what;
    char f; /* J Y I K A(iry Ai) B(iry Bi) */
    float re, im, order;
    double want_re, want_im;
  };
  static const struct Value table[] = {
      {"J0(1)", 'J', 1, 0, 0, 0.7651976865579666, 0},
      {"Y0(1)", 'Y', 1, 0, 0, 0.0882569642156769, 0},
      {"I0(1)", 'I', 1, 0, 0, 1.2660658777520084, 0},
      {"K0(1)", 'K', 1, 0, 0, 0.42102443824070834, 0},
      {"J1(10)", 'J', 10, 0, 1, 0.04347274616886149, 0},
      {"J20(10)", 'J', 10, 0, 20, 1.1513369247813376e-05, 0},
      {"Ai(1)", 'A', 1, 0, 0, 0.13529241631288147, 0},
      {"Bi(1)", 'B', 1, 0, 0, 1.2074235949528715, 0},
      {"J0(1+i)", 'J', 1, 1, 0, 0.9376084768060292, -0.4965299476091221},
      {"K0.5(2-3i)", 'K', 2, -3, 0.5f, -0.08391780324334516, -0.03061377102006705},
      {"Ai(-5+2i)", 'A', -5, 2, 0, 16.753205015984793, 0.49797930280116187},
  };
  printf("  %-11s %27s %27s %9s\n", "value", "ORB", "reference", "rel. err");
  double worst = 0;
  const int one = 1, zero = 0;
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i) {
    const struct Value *v = &table[i];
    orb_complex8 z, out, work;
    z.re = v->re, z.im = v->im;
    int nz = 0, ierr = -1;
    switch (v->f) {
      case 'J':
        CBESJ(&z, &v->order, &one, &one, &out, &nz, &ierr);
        break;
      case 'Y':
        CBESY(&z, &v->order, &one, &one, &out, &nz, &work, &ierr);
        break;
      case 'I':
        CBESI(&z, &v->order, &one, &one, &out, &nz, &ierr);
        break;
      case 'K':
        CBESK(&z, &v->order, &one, &one, &out, &nz, &ierr);
        break;
      case 'A':
        CAIRY(&z, &zero, &one, &out, &nz, &ierr);
        break;
      default:
        CBIRY(&z, &zero, &one, &out, &ierr);
        break;
    }
    const double err =
        ierr == 0 ? hypot(out.re - v->want_re, out.im - v->want_im) / hypot(v->want_re, v->want_im)
                  : 1e30;
    if (err > worst) worst = err;
    printf("  %-11s %13.7g %+13.7gi %13.7g %+13.7gi %9.1e\n", v->what, out.re, out.im, v->want_re,
           v->want_im, err);
  }
  check("worst relative error / 2^-22", worst / ldexp(1.0, -22), 1);
}

static void filter_section(void) {
  printf("\n== Filter design\n");
  /* A low-pass equiripple design, its response measured on a fine grid. */
  const int nfilt = 51, jtype = 1, nbands = 2, lgrid = 16;
  const float edge[4] = {0.0f, 0.2f, 0.25f, 0.5f}, fx[2] = {1, 0}, wtx[2] = {1, 1};
  float h[51], deviat[2], extrem[32];
  int ierr;
  const double t0 = now();
  REMEZ(&nfilt, &jtype, &nbands, &lgrid, edge, fx, wtx, h, deviat, extrem, &ierr);
  const double t = now() - t0;
  double pass = 0, stop = 0;
  for (int i = 0; i <= 4000 && ierr == 0; ++i) {
    const double f = 0.5 * i / 4000, pi2 = 6.283185307179586;
    double re = 0, im = 0;
    for (int k = 0; k < nfilt; ++k) re += h[k] * cos(pi2 * f * k), im -= h[k] * sin(pi2 * f * k);
    const double amp = hypot(re, im);
    if (f <= 0.2 && fabs(amp - 1) > pass) pass = fabs(amp - 1);
    if (f >= 0.25 && amp > stop) stop = amp;
  }
  printf(
      "  REMEZ low-pass, %d taps, pass band [0, 0.2], stop band [0.25, 0.5]: %.3f s,\n"
      "    designed deviation %.2e, stop band %.1f dB\n",
      nfilt, t, ierr == 0 ? deviat[0] : 0.0, ierr == 0 ? 20 * log10(stop) : 0.0);
  check("REMEZ ripple measured / designed",
        ierr == 0 ? (pass > stop ? pass : stop) / deviat[0] : 1e30, 1.05);
}

int main(int argc, char **argv) {
  const int quick = argc > 1 && strcmp(argv[1], "--short") == 0;
  int per_cycle;
  printf("ORB tour%s: %d threads, %s kernels\n", quick ? " (short)" : "", ORB_Get_Max_Threads(),
         vector_path(&per_cycle));
  const double t0 = now();
  dense_section(quick ? 300 : 2000, quick ? 200 : 1000);
  peers_section(quick ? 300 : 2000, quick ? 200 : 1000);
  sparse_section(quick ? 20 : 58, quick ? 16 : 40);
  nls_section();
  special_section();
  filter_section();
  printf("\n%d of %d checks within their bounds in %.1f s: %s\n", checks - failures, checks,
         now() - t0, failures == 0 ? "all good" : "SOME FAILED");
  return failures == 0 ? 0 : 1;
}
