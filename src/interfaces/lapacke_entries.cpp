// The LAPACKE entries, written by tools/gen_lapacke.py from
// src/interfaces/lapack_signatures.tsv; edit those, not this file.
// clang-format off
#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

#include "lapacke_support.h"

using namespace orb::lapacke;

extern "C" {

lapack_int LAPACKE_sgetrf_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv) {
  const char *self = "LAPACKE_sgetrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row, m, n, a, lda, true);
    lapack_int info = 0;
    ::sgetrf(&m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), ipiv, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgetrf(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgetrf", 1);
  return LAPACKE_sgetrf_work(matrix_layout, m, n, a, lda, ipiv);
}

lapack_int LAPACKE_cgetrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv) {
  const char *self = "LAPACKE_cgetrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row, m, n, a, lda, true);
    lapack_int info = 0;
    ::cgetrf(&m, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ipiv, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgetrf(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgetrf", 1);
  return LAPACKE_cgetrf_work(matrix_layout, m, n, a, lda, ipiv);
}

lapack_int LAPACKE_sgetrs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb) {
  const char *self = "LAPACKE_sgetrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::sgetrs(&trans, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<float *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgetrs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgetrs", 1);
  return LAPACKE_sgetrs_work(matrix_layout, trans, n, nrhs, a, lda, ipiv, b, ldb);
}

lapack_int LAPACKE_cgetrs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_cgetrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cgetrs(&trans, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgetrs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgetrs", 1);
  return LAPACKE_cgetrs_work(matrix_layout, trans, n, nrhs, a, lda, ipiv, b, ldb);
}

lapack_int LAPACKE_spotrf_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda) {
  const char *self = "LAPACKE_spotrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::spotrf(&uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spotrf(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spotrf", 1);
  return LAPACKE_spotrf_work(matrix_layout, uplo, n, a, lda);
}

lapack_int LAPACKE_cpotrf_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda) {
  const char *self = "LAPACKE_cpotrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::cpotrf(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpotrf(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpotrf", 1);
  return LAPACKE_cpotrf_work(matrix_layout, uplo, n, a, lda);
}

lapack_int LAPACKE_spotrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb) {
  const char *self = "LAPACKE_spotrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 8);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::spotrs(&uplo, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spotrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spotrs", 1);
  return LAPACKE_spotrs_work(matrix_layout, uplo, n, nrhs, a, lda, b, ldb);
}

lapack_int LAPACKE_cpotrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_cpotrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 8);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cpotrs(&uplo, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpotrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpotrs", 1);
  return LAPACKE_cpotrs_work(matrix_layout, uplo, n, nrhs, a, lda, b, ldb);
}

lapack_int LAPACKE_sgeqrf_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgeqrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sgeqrf(&m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgeqrf(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgeqrf", 1);
  float size{};
  lapack_int info = LAPACKE_sgeqrf_work(matrix_layout, m, n, a, lda, tau, &size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgeqrf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgeqrf_work(matrix_layout, m, n, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cgeqrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cgeqrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::cgeqrf(&m, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgeqrf(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgeqrf", 1);
  lapack_complex_float size{};
  lapack_int info = LAPACKE_cgeqrf_work(matrix_layout, m, n, a, lda, tau, &size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgeqrf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgeqrf_work(matrix_layout, m, n, a, lda, tau, work.data(), lwork);
}

}  // extern "C"
