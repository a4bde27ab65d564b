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
  float work_size{};
  lapack_int info = LAPACKE_sgeqrf_work(matrix_layout, m, n, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
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
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgeqrf_work(matrix_layout, m, n, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgeqrf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgeqrf_work(matrix_layout, m, n, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sgetri_work(int matrix_layout, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgetri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 4);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::sgetri(&n, reinterpret_cast<float *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgetri(int matrix_layout, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgetri", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgetri_work(matrix_layout, n, a, lda, ipiv, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgetri", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgetri_work(matrix_layout, n, a, lda, ipiv, work.data(), lwork);
}

lapack_int LAPACKE_cgetri_work(int matrix_layout, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cgetri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 4);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::cgetri(&n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgetri(int matrix_layout, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgetri", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgetri_work(matrix_layout, n, a, lda, ipiv, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgetri", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgetri_work(matrix_layout, n, a, lda, ipiv, work.data(), lwork);
}

lapack_int LAPACKE_sgbtrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, float *ab, lapack_int ldab, lapack_int *ipiv) {
  const char *self = "LAPACKE_sgbtrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<float> ab_(row, row, 2*kl+ku+1, n, ab, ldab, true);
    lapack_int info = 0;
    ::sgbtrf(&m, &n, &kl, &ku, reinterpret_cast<float *>(ab_.data()), ab_.ld(), ipiv, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgbtrf(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, float *ab, lapack_int ldab, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgbtrf", 1);
  return LAPACKE_sgbtrf_work(matrix_layout, m, n, kl, ku, ab, ldab, ipiv);
}

lapack_int LAPACKE_cgbtrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, lapack_complex_float *ab, lapack_int ldab, lapack_int *ipiv) {
  const char *self = "LAPACKE_cgbtrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<lapack_complex_float> ab_(row, row, 2*kl+ku+1, n, ab, ldab, true);
    lapack_int info = 0;
    ::cgbtrf(&m, &n, &kl, &ku, reinterpret_cast<orb_complex8 *>(ab_.data()), ab_.ld(), ipiv, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgbtrf(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, lapack_complex_float *ab, lapack_int ldab, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgbtrf", 1);
  return LAPACKE_cgbtrf_work(matrix_layout, m, n, kl, ku, ab, ldab, ipiv);
}

lapack_int LAPACKE_sgbtrs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const lapack_int *ipiv, float *b, lapack_int ldb) {
  const char *self = "LAPACKE_sgbtrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  try {
    ColMajor<const float> ab_(row, row, 2*kl+ku+1, n, ab, ldab, false);
    ColMajor<float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::sgbtrs(&trans, &n, &kl, &ku, &nrhs, reinterpret_cast<const float *>(ab_.data()), ab_.ld(), ipiv, reinterpret_cast<float *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgbtrs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const lapack_int *ipiv, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgbtrs", 1);
  return LAPACKE_sgbtrs_work(matrix_layout, trans, n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb);
}

lapack_int LAPACKE_cgbtrs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_cgbtrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  try {
    ColMajor<const lapack_complex_float> ab_(row, row, 2*kl+ku+1, n, ab, ldab, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cgbtrs(&trans, &n, &kl, &ku, &nrhs, reinterpret_cast<const orb_complex8 *>(ab_.data()), ab_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgbtrs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgbtrs", 1);
  return LAPACKE_cgbtrs_work(matrix_layout, trans, n, kl, ku, nrhs, ab, ldab, ipiv, b, ldb);
}

lapack_int LAPACKE_spotri_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda) {
  const char *self = "LAPACKE_spotri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::spotri(&uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spotri(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spotri", 1);
  return LAPACKE_spotri_work(matrix_layout, uplo, n, a, lda);
}

lapack_int LAPACKE_cpotri_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda) {
  const char *self = "LAPACKE_cpotri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::cpotri(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpotri(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpotri", 1);
  return LAPACKE_cpotri_work(matrix_layout, uplo, n, a, lda);
}

lapack_int LAPACKE_strtri_work(int matrix_layout, char uplo, char diag, lapack_int n, float *a, lapack_int lda) {
  const char *self = "LAPACKE_strtri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::strtri(&uplo, &diag, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strtri(int matrix_layout, char uplo, char diag, lapack_int n, float *a, lapack_int lda) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strtri", 1);
  return LAPACKE_strtri_work(matrix_layout, uplo, diag, n, a, lda);
}

lapack_int LAPACKE_ctrtri_work(int matrix_layout, char uplo, char diag, lapack_int n, lapack_complex_float *a, lapack_int lda) {
  const char *self = "LAPACKE_ctrtri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::ctrtri(&uplo, &diag, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrtri(int matrix_layout, char uplo, char diag, lapack_int n, lapack_complex_float *a, lapack_int lda) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrtri", 1);
  return LAPACKE_ctrtri_work(matrix_layout, uplo, diag, n, a, lda);
}

lapack_int LAPACKE_strtrs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb) {
  const char *self = "LAPACKE_strtrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 10);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::strtrs(&uplo, &trans, &diag, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(b_.data()), b_.ld(), &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strtrs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strtrs", 1);
  return LAPACKE_strtrs_work(matrix_layout, uplo, trans, diag, n, nrhs, a, lda, b, ldb);
}

lapack_int LAPACKE_ctrtrs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_ctrtrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 10);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::ctrtrs(&uplo, &trans, &diag, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrtrs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrtrs", 1);
  return LAPACKE_ctrtrs_work(matrix_layout, uplo, trans, diag, n, nrhs, a, lda, b, ldb);
}

lapack_int LAPACKE_sorgqr_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sorgqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sorgqr(&m, &n, &k, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sorgqr(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sorgqr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sorgqr_work(matrix_layout, m, n, k, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sorgqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sorgqr_work(matrix_layout, m, n, k, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cungqr_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cungqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::cungqr(&m, &n, &k, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cungqr(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cungqr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cungqr_work(matrix_layout, m, n, k, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cungqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cungqr_work(matrix_layout, m, n, k, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sormqr_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sormqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, k)) return report(self, 8);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 11);
  try {
    ColMajor<const float> a_(row, row && !query, (left(side)?m:n), k, a, lda, false);
    ColMajor<float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::sormqr(&side, &trans, &m, &n, &k, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(c_.data()), c_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sormqr(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sormqr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sormqr_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sormqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sormqr_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_cunmqr_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cunmqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, k)) return report(self, 8);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 11);
  try {
    ColMajor<const lapack_complex_float> a_(row, row && !query, (left(side)?m:n), k, a, lda, false);
    ColMajor<lapack_complex_float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::cunmqr(&side, &trans, &m, &n, &k, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(c_.data()), c_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cunmqr(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cunmqr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cunmqr_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cunmqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cunmqr_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_sgesdd_work(int matrix_layout, char jobz, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt, float *work, lapack_int lwork, lapack_int *iwork) {
  const char *self = "LAPACKE_sgesdd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldu < std::max<lapack_int>(1, svd_u_cols(jobz,m,n))) return report(self, 9);
  if (row && ldvt < std::max<lapack_int>(1, (svd_vt_rows(jobz,m,n)>0?n:0))) return report(self, 11);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<float> u_(row, row && !query, m, svd_u_cols(jobz,m,n), u, ldu, true);
    ColMajor<float> vt_(row, row && !query, svd_vt_rows(jobz,m,n), (svd_vt_rows(jobz,m,n)>0?n:0), vt, ldvt, true);
    lapack_int info = 0;
    ::sgesdd(&jobz, &m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), s, reinterpret_cast<float *>(u_.data()), u_.ld(), reinterpret_cast<float *>(vt_.data()), vt_.ld(), reinterpret_cast<float *>(work), &lwork, iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgesdd(int matrix_layout, char jobz, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgesdd", 1);
  std::vector<lapack_int> iwork;
  try {
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 8*std::min<lapack_int>(m,n))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgesdd", LAPACK_WORK_MEMORY_ERROR);
  }
  float work_size{};
  lapack_int info = LAPACKE_sgesdd_work(matrix_layout, jobz, m, n, a, lda, s, u, ldu, vt, ldvt, &work_size, -1, iwork.data());
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgesdd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgesdd_work(matrix_layout, jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work.data(), lwork, iwork.data());
}

lapack_int LAPACKE_cgesdd_work(int matrix_layout, char jobz, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int *iwork) {
  const char *self = "LAPACKE_cgesdd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldu < std::max<lapack_int>(1, svd_u_cols(jobz,m,n))) return report(self, 9);
  if (row && ldvt < std::max<lapack_int>(1, (svd_vt_rows(jobz,m,n)>0?n:0))) return report(self, 11);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<lapack_complex_float> u_(row, row && !query, m, svd_u_cols(jobz,m,n), u, ldu, true);
    ColMajor<lapack_complex_float> vt_(row, row && !query, svd_vt_rows(jobz,m,n), (svd_vt_rows(jobz,m,n)>0?n:0), vt, ldvt, true);
    lapack_int info = 0;
    ::cgesdd(&jobz, &m, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), s, reinterpret_cast<orb_complex8 *>(u_.data()), u_.ld(), reinterpret_cast<orb_complex8 *>(vt_.data()), vt_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgesdd(int matrix_layout, char jobz, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgesdd", 1);
  std::vector<float> rwork;
  std::vector<lapack_int> iwork;
  try {
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, svd_rwork(jobz,m,n))));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 8*std::min<lapack_int>(m,n))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgesdd", LAPACK_WORK_MEMORY_ERROR);
  }
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgesdd_work(matrix_layout, jobz, m, n, a, lda, s, u, ldu, vt, ldvt, &work_size, -1, rwork.data(), iwork.data());
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgesdd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgesdd_work(matrix_layout, jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work.data(), lwork, rwork.data(), iwork.data());
}

lapack_int LAPACKE_ssyevr_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *isuppz, float *work, lapack_int lwork, lapack_int *iwork, lapack_int liwork) {
  const char *self = "LAPACKE_ssyevr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1 || liwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_z_cols(jobz,range,n,il,iu))) return report(self, 16);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    ColMajor<float> z_(row, row && !query, n, eig_z_cols(jobz,range,n,il,iu), z, ldz, true);
    lapack_int info = 0;
    ::ssyevr(&jobz, &range, &uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), &vl, &vu, &il, &iu, &abstol, m, w, reinterpret_cast<float *>(z_.data()), z_.ld(), isuppz, reinterpret_cast<float *>(work), &lwork, iwork, &liwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssyevr(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *isuppz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssyevr", 1);
  float work_size{};
  lapack_int iwork_size{};
  lapack_int info = LAPACKE_ssyevr_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, isuppz, &work_size, -1, &iwork_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  std::vector<lapack_int> iwork;
  lapack_int liwork = workspace_length(iwork_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
    iwork.resize(static_cast<std::size_t>(liwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssyevr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssyevr_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, isuppz, work.data(), lwork, iwork.data(), liwork);
}

lapack_int LAPACKE_cheevr_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *isuppz, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int lrwork, lapack_int *iwork, lapack_int liwork) {
  const char *self = "LAPACKE_cheevr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1 || lrwork == -1 || liwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_z_cols(jobz,range,n,il,iu))) return report(self, 16);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    ColMajor<lapack_complex_float> z_(row, row && !query, n, eig_z_cols(jobz,range,n,il,iu), z, ldz, true);
    lapack_int info = 0;
    ::cheevr(&jobz, &range, &uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), &vl, &vu, &il, &iu, &abstol, m, w, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), isuppz, reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, &lrwork, iwork, &liwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cheevr(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *isuppz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cheevr", 1);
  lapack_complex_float work_size{};
  float rwork_size{};
  lapack_int iwork_size{};
  lapack_int info = LAPACKE_cheevr_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, isuppz, &work_size, -1, &rwork_size, -1, &iwork_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  std::vector<float> rwork;
  lapack_int lrwork = workspace_length(rwork_size);
  std::vector<lapack_int> iwork;
  lapack_int liwork = workspace_length(iwork_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
    rwork.resize(static_cast<std::size_t>(lrwork));
    iwork.resize(static_cast<std::size_t>(liwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cheevr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cheevr_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, isuppz, work.data(), lwork, rwork.data(), lrwork, iwork.data(), liwork);
}

lapack_int LAPACKE_spbtrf_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab) {
  const char *self = "LAPACKE_spbtrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<float> ab_(row, row, kd+1, n, ab, ldab, true);
    lapack_int info = 0;
    ::spbtrf(&uplo, &n, &kd, reinterpret_cast<float *>(ab_.data()), ab_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spbtrf(int matrix_layout, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spbtrf", 1);
  return LAPACKE_spbtrf_work(matrix_layout, uplo, n, kd, ab, ldab);
}

lapack_int LAPACKE_cpbtrf_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab) {
  const char *self = "LAPACKE_cpbtrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<lapack_complex_float> ab_(row, row, kd+1, n, ab, ldab, true);
    lapack_int info = 0;
    ::cpbtrf(&uplo, &n, &kd, reinterpret_cast<orb_complex8 *>(ab_.data()), ab_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpbtrf(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpbtrf", 1);
  return LAPACKE_cpbtrf_work(matrix_layout, uplo, n, kd, ab, ldab);
}

lapack_int LAPACKE_spbtrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, float *b, lapack_int ldb) {
  const char *self = "LAPACKE_spbtrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const float> ab_(row, row, kd+1, n, ab, ldab, false);
    ColMajor<float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::spbtrs(&uplo, &n, &kd, &nrhs, reinterpret_cast<const float *>(ab_.data()), ab_.ld(), reinterpret_cast<float *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spbtrs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spbtrs", 1);
  return LAPACKE_spbtrs_work(matrix_layout, uplo, n, kd, nrhs, ab, ldab, b, ldb);
}

lapack_int LAPACKE_cpbtrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_cpbtrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const lapack_complex_float> ab_(row, row, kd+1, n, ab, ldab, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cpbtrs(&uplo, &n, &kd, &nrhs, reinterpret_cast<const orb_complex8 *>(ab_.data()), ab_.ld(), reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpbtrs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpbtrs", 1);
  return LAPACKE_cpbtrs_work(matrix_layout, uplo, n, kd, nrhs, ab, ldab, b, ldb);
}

lapack_int LAPACKE_ssytrf_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_ssytrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::ssytrf(&uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<float *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssytrf(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssytrf", 1);
  float work_size{};
  lapack_int info = LAPACKE_ssytrf_work(matrix_layout, uplo, n, a, lda, ipiv, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssytrf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssytrf_work(matrix_layout, uplo, n, a, lda, ipiv, work.data(), lwork);
}

lapack_int LAPACKE_csytrf_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_csytrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::csytrf(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_csytrf(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_csytrf", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_csytrf_work(matrix_layout, uplo, n, a, lda, ipiv, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_csytrf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_csytrf_work(matrix_layout, uplo, n, a, lda, ipiv, work.data(), lwork);
}

lapack_int LAPACKE_chetrf_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_chetrf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::chetrf(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chetrf(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chetrf", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_chetrf_work(matrix_layout, uplo, n, a, lda, ipiv, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chetrf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chetrf_work(matrix_layout, uplo, n, a, lda, ipiv, work.data(), lwork);
}

lapack_int LAPACKE_ssytrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb) {
  const char *self = "LAPACKE_ssytrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::ssytrs(&uplo, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<float *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssytrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssytrs", 1);
  return LAPACKE_ssytrs_work(matrix_layout, uplo, n, nrhs, a, lda, ipiv, b, ldb);
}

lapack_int LAPACKE_csytrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_csytrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::csytrs(&uplo, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_csytrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_csytrs", 1);
  return LAPACKE_csytrs_work(matrix_layout, uplo, n, nrhs, a, lda, ipiv, b, ldb);
}

lapack_int LAPACKE_chetrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_chetrs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<lapack_complex_float> b_(row, row, n, nrhs, b, ldb, true);
    lapack_int info = 0;
    ::chetrs(&uplo, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chetrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chetrs", 1);
  return LAPACKE_chetrs_work(matrix_layout, uplo, n, nrhs, a, lda, ipiv, b, ldb);
}

lapack_int LAPACKE_sgeqp3_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *jpvt, float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgeqp3_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sgeqp3(&m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), jpvt, reinterpret_cast<float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgeqp3(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *jpvt, float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgeqp3", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgeqp3_work(matrix_layout, m, n, a, lda, jpvt, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgeqp3", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgeqp3_work(matrix_layout, m, n, a, lda, jpvt, tau, work.data(), lwork);
}

lapack_int LAPACKE_sgelqf_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgelqf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sgelqf(&m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgelqf(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgelqf", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgelqf_work(matrix_layout, m, n, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgelqf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgelqf_work(matrix_layout, m, n, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cgelqf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cgelqf_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::cgelqf(&m, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgelqf(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgelqf", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgelqf_work(matrix_layout, m, n, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgelqf", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgelqf_work(matrix_layout, m, n, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sorglq_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sorglq_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sorglq(&m, &n, &k, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sorglq(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sorglq", 1);
  float work_size{};
  lapack_int info = LAPACKE_sorglq_work(matrix_layout, m, n, k, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sorglq", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sorglq_work(matrix_layout, m, n, k, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cunglq_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cunglq_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::cunglq(&m, &n, &k, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cunglq(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cunglq", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cunglq_work(matrix_layout, m, n, k, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cunglq", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cunglq_work(matrix_layout, m, n, k, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sormlq_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sormlq_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, (left(side)?m:n))) return report(self, 8);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 11);
  try {
    ColMajor<const float> a_(row, row && !query, k, (left(side)?m:n), a, lda, false);
    ColMajor<float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::sormlq(&side, &trans, &m, &n, &k, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(c_.data()), c_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sormlq(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sormlq", 1);
  float work_size{};
  lapack_int info = LAPACKE_sormlq_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sormlq", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sormlq_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_cunmlq_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cunmlq_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, (left(side)?m:n))) return report(self, 8);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 11);
  try {
    ColMajor<const lapack_complex_float> a_(row, row && !query, k, (left(side)?m:n), a, lda, false);
    ColMajor<lapack_complex_float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::cunmlq(&side, &trans, &m, &n, &k, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(c_.data()), c_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cunmlq(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cunmlq", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cunmlq_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cunmlq", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cunmlq_work(matrix_layout, side, trans, m, n, k, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_sgels_work(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgels_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<float> b_(row, row && !query, std::max<lapack_int>(m,n), nrhs, b, ldb, true);
    lapack_int info = 0;
    ::sgels(&trans, &m, &n, &nrhs, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgels(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgels", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgels_work(matrix_layout, trans, m, n, nrhs, a, lda, b, ldb, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgels", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgels_work(matrix_layout, trans, m, n, nrhs, a, lda, b, ldb, work.data(), lwork);
}

lapack_int LAPACKE_cgels_work(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cgels_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 9);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<lapack_complex_float> b_(row, row && !query, std::max<lapack_int>(m,n), nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cgels(&trans, &m, &n, &nrhs, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgels(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgels", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgels_work(matrix_layout, trans, m, n, nrhs, a, lda, b, ldb, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgels", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgels_work(matrix_layout, trans, m, n, nrhs, a, lda, b, ldb, work.data(), lwork);
}

lapack_int LAPACKE_ssytrd_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_ssytrd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::ssytrd(&uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), d, e, reinterpret_cast<float *>(tau), reinterpret_cast<float *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssytrd(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssytrd", 1);
  float work_size{};
  lapack_int info = LAPACKE_ssytrd_work(matrix_layout, uplo, n, a, lda, d, e, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssytrd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssytrd_work(matrix_layout, uplo, n, a, lda, d, e, tau, work.data(), lwork);
}

lapack_int LAPACKE_chetrd_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_chetrd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::chetrd(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), d, e, reinterpret_cast<orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chetrd(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chetrd", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_chetrd_work(matrix_layout, uplo, n, a, lda, d, e, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chetrd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chetrd_work(matrix_layout, uplo, n, a, lda, d, e, tau, work.data(), lwork);
}

lapack_int LAPACKE_sorgtr_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sorgtr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::sorgtr(&uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sorgtr(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sorgtr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sorgtr_work(matrix_layout, uplo, n, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sorgtr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sorgtr_work(matrix_layout, uplo, n, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cungtr_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cungtr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::cungtr(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cungtr(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cungtr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cungtr_work(matrix_layout, uplo, n, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cungtr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cungtr_work(matrix_layout, uplo, n, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sgesvd_work(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgesvd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldu < std::max<lapack_int>(1, svd_vectors(jobu,m,m,n))) return report(self, 10);
  if (row && ldvt < std::max<lapack_int>(1, svd_vectors(jobvt,n,n,n))) return report(self, 12);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<float> u_(row, row && !query, m, svd_vectors(jobu,m,m,n), u, ldu, true);
    ColMajor<float> vt_(row, row && !query, svd_vectors(jobvt,n,m,n), svd_vectors(jobvt,n,n,n), vt, ldvt, true);
    lapack_int info = 0;
    ::sgesvd(&jobu, &jobvt, &m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), s, reinterpret_cast<float *>(u_.data()), u_.ld(), reinterpret_cast<float *>(vt_.data()), vt_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgesvd(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt, float *superb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgesvd", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgesvd_work(matrix_layout, jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgesvd", LAPACK_WORK_MEMORY_ERROR);
  }
  const lapack_int result = LAPACKE_sgesvd_work(matrix_layout, jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work.data(), lwork);
  for (lapack_int i = 0; i < std::min<lapack_int>(m,n)-1; ++i) superb[i] = std::real((work.data() + 1)[i]);
  return result;
}

lapack_int LAPACKE_cgesvd_work(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *work, lapack_int lwork, float *rwork) {
  const char *self = "LAPACKE_cgesvd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldu < std::max<lapack_int>(1, svd_vectors(jobu,m,m,n))) return report(self, 10);
  if (row && ldvt < std::max<lapack_int>(1, svd_vectors(jobvt,n,n,n))) return report(self, 12);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<lapack_complex_float> u_(row, row && !query, m, svd_vectors(jobu,m,m,n), u, ldu, true);
    ColMajor<lapack_complex_float> vt_(row, row && !query, svd_vectors(jobvt,n,m,n), svd_vectors(jobvt,n,n,n), vt, ldvt, true);
    lapack_int info = 0;
    ::cgesvd(&jobu, &jobvt, &m, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), s, reinterpret_cast<orb_complex8 *>(u_.data()), u_.ld(), reinterpret_cast<orb_complex8 *>(vt_.data()), vt_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgesvd(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt, float *superb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgesvd", 1);
  std::vector<float> rwork;
  try {
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*std::min<lapack_int>(m,n))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgesvd", LAPACK_WORK_MEMORY_ERROR);
  }
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgesvd_work(matrix_layout, jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, &work_size, -1, rwork.data());
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgesvd", LAPACK_WORK_MEMORY_ERROR);
  }
  const lapack_int result = LAPACKE_cgesvd_work(matrix_layout, jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work.data(), lwork, rwork.data());
  for (lapack_int i = 0; i < std::min<lapack_int>(m,n)-1; ++i) superb[i] = std::real((rwork.data())[i]);
  return result;
}

lapack_int LAPACKE_sgeev_work(int matrix_layout, char jobvl, char jobvr, lapack_int n, float *a, lapack_int lda, float *wr, float *wi, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgeev_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldvl < std::max<lapack_int>(1, eig_v_cols(jobvl,n))) return report(self, 10);
  if (row && ldvr < std::max<lapack_int>(1, eig_v_cols(jobvr,n))) return report(self, 12);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    ColMajor<float> vl_(row, row && !query, n, eig_v_cols(jobvl,n), vl, ldvl, true);
    ColMajor<float> vr_(row, row && !query, n, eig_v_cols(jobvr,n), vr, ldvr, true);
    lapack_int info = 0;
    ::sgeev(&jobvl, &jobvr, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), wr, wi, reinterpret_cast<float *>(vl_.data()), vl_.ld(), reinterpret_cast<float *>(vr_.data()), vr_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgeev(int matrix_layout, char jobvl, char jobvr, lapack_int n, float *a, lapack_int lda, float *wr, float *wi, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgeev", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgeev_work(matrix_layout, jobvl, jobvr, n, a, lda, wr, wi, vl, ldvl, vr, ldvr, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgeev", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgeev_work(matrix_layout, jobvl, jobvr, n, a, lda, wr, wi, vl, ldvl, vr, ldvr, work.data(), lwork);
}

lapack_int LAPACKE_cgeev_work(int matrix_layout, char jobvl, char jobvr, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *w, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr, lapack_complex_float *work, lapack_int lwork, float *rwork) {
  const char *self = "LAPACKE_cgeev_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldvl < std::max<lapack_int>(1, eig_v_cols(jobvl,n))) return report(self, 9);
  if (row && ldvr < std::max<lapack_int>(1, eig_v_cols(jobvr,n))) return report(self, 11);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    ColMajor<lapack_complex_float> vl_(row, row && !query, n, eig_v_cols(jobvl,n), vl, ldvl, true);
    ColMajor<lapack_complex_float> vr_(row, row && !query, n, eig_v_cols(jobvr,n), vr, ldvr, true);
    lapack_int info = 0;
    ::cgeev(&jobvl, &jobvr, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(w), reinterpret_cast<orb_complex8 *>(vl_.data()), vl_.ld(), reinterpret_cast<orb_complex8 *>(vr_.data()), vr_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgeev(int matrix_layout, char jobvl, char jobvr, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *w, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgeev", 1);
  std::vector<float> rwork;
  try {
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgeev", LAPACK_WORK_MEMORY_ERROR);
  }
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgeev_work(matrix_layout, jobvl, jobvr, n, a, lda, w, vl, ldvl, vr, ldvr, &work_size, -1, rwork.data());
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgeev", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgeev_work(matrix_layout, jobvl, jobvr, n, a, lda, w, vl, ldvl, vr, ldvr, work.data(), lwork, rwork.data());
}

lapack_int LAPACKE_sgecon_work(int matrix_layout, char norm, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_sgecon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::sgecon(&norm, &n, reinterpret_cast<const float *>(a_.data()), a_.ld(), &anorm, rcond, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgecon(int matrix_layout, char norm, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgecon", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 4*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgecon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgecon_work(matrix_layout, norm, n, a, lda, anorm, rcond, work.data(), iwork.data());
}

lapack_int LAPACKE_cgecon_work(int matrix_layout, char norm, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cgecon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::cgecon(&norm, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), &anorm, rcond, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgecon(int matrix_layout, char norm, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgecon", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgecon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgecon_work(matrix_layout, norm, n, a, lda, anorm, rcond, work.data(), rwork.data());
}

lapack_int LAPACKE_spocon_work(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_spocon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::spocon(&uplo, &n, reinterpret_cast<const float *>(a_.data()), a_.ld(), &anorm, rcond, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spocon(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spocon", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_spocon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_spocon_work(matrix_layout, uplo, n, a, lda, anorm, rcond, work.data(), iwork.data());
}

lapack_int LAPACKE_cpocon_work(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cpocon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::cpocon(&uplo, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), &anorm, rcond, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpocon(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpocon", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cpocon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cpocon_work(matrix_layout, uplo, n, a, lda, anorm, rcond, work.data(), rwork.data());
}

lapack_int LAPACKE_strcon_work(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const float *a, lapack_int lda, float *rcond, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_strcon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::strcon(&norm, &uplo, &diag, &n, reinterpret_cast<const float *>(a_.data()), a_.ld(), rcond, reinterpret_cast<float *>(work), iwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strcon(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const float *a, lapack_int lda, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strcon", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_strcon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_strcon_work(matrix_layout, norm, uplo, diag, n, a, lda, rcond, work.data(), iwork.data());
}

lapack_int LAPACKE_ctrcon_work(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const lapack_complex_float *a, lapack_int lda, float *rcond, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_ctrcon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::ctrcon(&norm, &uplo, &diag, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), rcond, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrcon(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const lapack_complex_float *a, lapack_int lda, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrcon", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ctrcon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ctrcon_work(matrix_layout, norm, uplo, diag, n, a, lda, rcond, work.data(), rwork.data());
}

lapack_int LAPACKE_sgbcon_work(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_sgbcon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<const float> ab_(row, row, 2*kl+ku+1, n, ab, ldab, false);
    lapack_int info = 0;
    ::sgbcon(&norm, &n, &kl, &ku, reinterpret_cast<const float *>(ab_.data()), ab_.ld(), ipiv, &anorm, rcond, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgbcon(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgbcon", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgbcon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgbcon_work(matrix_layout, norm, n, kl, ku, ab, ldab, ipiv, anorm, rcond, work.data(), iwork.data());
}

lapack_int LAPACKE_cgbcon_work(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cgbcon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<const lapack_complex_float> ab_(row, row, 2*kl+ku+1, n, ab, ldab, false);
    lapack_int info = 0;
    ::cgbcon(&norm, &n, &kl, &ku, reinterpret_cast<const orb_complex8 *>(ab_.data()), ab_.ld(), ipiv, &anorm, rcond, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgbcon(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgbcon", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgbcon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgbcon_work(matrix_layout, norm, n, kl, ku, ab, ldab, ipiv, anorm, rcond, work.data(), rwork.data());
}

lapack_int LAPACKE_spbcon_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const float *ab, lapack_int ldab, float anorm, float *rcond, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_spbcon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<const float> ab_(row, row, kd+1, n, ab, ldab, false);
    lapack_int info = 0;
    ::spbcon(&uplo, &n, &kd, reinterpret_cast<const float *>(ab_.data()), ab_.ld(), &anorm, rcond, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spbcon(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const float *ab, lapack_int ldab, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spbcon", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_spbcon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_spbcon_work(matrix_layout, uplo, n, kd, ab, ldab, anorm, rcond, work.data(), iwork.data());
}

lapack_int LAPACKE_cpbcon_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const lapack_complex_float *ab, lapack_int ldab, float anorm, float *rcond, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cpbcon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<const lapack_complex_float> ab_(row, row, kd+1, n, ab, ldab, false);
    lapack_int info = 0;
    ::cpbcon(&uplo, &n, &kd, reinterpret_cast<const orb_complex8 *>(ab_.data()), ab_.ld(), &anorm, rcond, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpbcon(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const lapack_complex_float *ab, lapack_int ldab, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpbcon", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cpbcon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cpbcon_work(matrix_layout, uplo, n, kd, ab, ldab, anorm, rcond, work.data(), rwork.data());
}

lapack_int LAPACKE_ssycon_work(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_ssycon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::ssycon(&uplo, &n, reinterpret_cast<const float *>(a_.data()), a_.ld(), ipiv, &anorm, rcond, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssycon(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssycon", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssycon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssycon_work(matrix_layout, uplo, n, a, lda, ipiv, anorm, rcond, work.data(), iwork.data());
}

lapack_int LAPACKE_csycon_work(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond, lapack_complex_float *work) {
  const char *self = "LAPACKE_csycon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::csycon(&uplo, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), ipiv, &anorm, rcond, reinterpret_cast<orb_complex8 *>(work), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_csycon(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_csycon", 1);
  std::vector<lapack_complex_float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_csycon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_csycon_work(matrix_layout, uplo, n, a, lda, ipiv, anorm, rcond, work.data());
}

lapack_int LAPACKE_checon_work(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond, lapack_complex_float *work) {
  const char *self = "LAPACKE_checon_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    lapack_int info = 0;
    ::checon(&uplo, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), ipiv, &anorm, rcond, reinterpret_cast<orb_complex8 *>(work), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_checon(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_checon", 1);
  std::vector<lapack_complex_float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_checon", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_checon_work(matrix_layout, uplo, n, a, lda, ipiv, anorm, rcond, work.data());
}

lapack_int LAPACKE_sgelss_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgelss_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 8);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<float> b_(row, row && !query, std::max<lapack_int>(m,n), nrhs, b, ldb, true);
    lapack_int info = 0;
    ::sgelss(&m, &n, &nrhs, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(b_.data()), b_.ld(), s, &rcond, rank, reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgelss(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgelss", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgelss_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgelss", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgelss_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, work.data(), lwork);
}

lapack_int LAPACKE_cgelss_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, lapack_complex_float *work, lapack_int lwork, float *rwork) {
  const char *self = "LAPACKE_cgelss_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 8);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<lapack_complex_float> b_(row, row && !query, std::max<lapack_int>(m,n), nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cgelss(&m, &n, &nrhs, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), s, &rcond, rank, reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgelss(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgelss", 1);
  std::vector<float> rwork;
  try {
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*std::min<lapack_int>(m,n))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgelss", LAPACK_WORK_MEMORY_ERROR);
  }
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgelss_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, &work_size, -1, rwork.data());
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgelss", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgelss_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, work.data(), lwork, rwork.data());
}

lapack_int LAPACKE_ssyevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, float *work, lapack_int lwork, lapack_int *iwork, lapack_int *ifail) {
  const char *self = "LAPACKE_ssyevx_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_z_cols(jobz,range,n,il,iu))) return report(self, 16);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    ColMajor<float> z_(row, row && !query, n, eig_z_cols(jobz,range,n,il,iu), z, ldz, true);
    lapack_int info = 0;
    ::ssyevx(&jobz, &range, &uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), &vl, &vu, &il, &iu, &abstol, m, w, reinterpret_cast<float *>(z_.data()), z_.ld(), reinterpret_cast<float *>(work), &lwork, iwork, ifail, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssyevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *ifail) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssyevx", 1);
  std::vector<lapack_int> iwork;
  try {
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssyevx", LAPACK_WORK_MEMORY_ERROR);
  }
  float work_size{};
  lapack_int info = LAPACKE_ssyevx_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, &work_size, -1, iwork.data(), ifail);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssyevx", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssyevx_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, work.data(), lwork, iwork.data(), ifail);
}

lapack_int LAPACKE_cheevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int *iwork, lapack_int *ifail) {
  const char *self = "LAPACKE_cheevx_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_z_cols(jobz,range,n,il,iu))) return report(self, 16);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    ColMajor<lapack_complex_float> z_(row, row && !query, n, eig_z_cols(jobz,range,n,il,iu), z, ldz, true);
    lapack_int info = 0;
    ::cheevx(&jobz, &range, &uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), &vl, &vu, &il, &iu, &abstol, m, w, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, iwork, ifail, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cheevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *ifail) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cheevx", 1);
  std::vector<float> rwork;
  std::vector<lapack_int> iwork;
  try {
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 7*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cheevx", LAPACK_WORK_MEMORY_ERROR);
  }
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cheevx_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, &work_size, -1, rwork.data(), iwork.data(), ifail);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cheevx", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cheevx_work(matrix_layout, jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, work.data(), lwork, rwork.data(), iwork.data(), ifail);
}

lapack_int LAPACKE_sgelsd_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, float *work, lapack_int lwork, lapack_int *iwork) {
  const char *self = "LAPACKE_sgelsd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 8);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<float> b_(row, row && !query, std::max<lapack_int>(m,n), nrhs, b, ldb, true);
    lapack_int info = 0;
    ::sgelsd(&m, &n, &nrhs, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(b_.data()), b_.ld(), s, &rcond, rank, reinterpret_cast<float *>(work), &lwork, iwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgelsd(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgelsd", 1);
  float work_size{};
  lapack_int iwork_size{};
  lapack_int info = LAPACKE_sgelsd_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, &work_size, -1, &iwork_size);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  std::vector<lapack_int> iwork;
  lapack_int liwork = workspace_length(iwork_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
    iwork.resize(static_cast<std::size_t>(liwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgelsd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgelsd_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, work.data(), lwork, iwork.data());
}

lapack_int LAPACKE_cgelsd_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int *iwork) {
  const char *self = "LAPACKE_cgelsd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 8);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    ColMajor<lapack_complex_float> b_(row, row && !query, std::max<lapack_int>(m,n), nrhs, b, ldb, true);
    lapack_int info = 0;
    ::cgelsd(&m, &n, &nrhs, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(b_.data()), b_.ld(), s, &rcond, rank, reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, iwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgelsd(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgelsd", 1);
  lapack_complex_float work_size{};
  float rwork_size{};
  lapack_int iwork_size{};
  lapack_int info = LAPACKE_cgelsd_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, &work_size, -1, &rwork_size, &iwork_size);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  std::vector<float> rwork;
  lapack_int lrwork = workspace_length(rwork_size);
  std::vector<lapack_int> iwork;
  lapack_int liwork = workspace_length(iwork_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
    rwork.resize(static_cast<std::size_t>(lrwork));
    iwork.resize(static_cast<std::size_t>(liwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgelsd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgelsd_work(matrix_layout, m, n, nrhs, a, lda, b, ldb, s, rcond, rank, work.data(), lwork, rwork.data(), iwork.data());
}

lapack_int LAPACKE_sgerfs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_sgerfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<const float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::sgerfs(&trans, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(af_.data()), af_.ld(), ipiv, reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgerfs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgerfs", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgerfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgerfs_work(matrix_layout, trans, n, nrhs, a, lda, af, ldaf, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), iwork.data());
}

lapack_int LAPACKE_cgerfs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cgerfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<const lapack_complex_float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<lapack_complex_float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::cgerfs(&trans, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(af_.data()), af_.ld(), ipiv, reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgerfs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgerfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgerfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgerfs_work(matrix_layout, trans, n, nrhs, a, lda, af, ldaf, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_sporfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_sporfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 10);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 12);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<const float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::sporfs(&uplo, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(af_.data()), af_.ld(), reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sporfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sporfs", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sporfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sporfs_work(matrix_layout, uplo, n, nrhs, a, lda, af, ldaf, b, ldb, x, ldx, ferr, berr, work.data(), iwork.data());
}

lapack_int LAPACKE_cporfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cporfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 10);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 12);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<const lapack_complex_float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<lapack_complex_float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::cporfs(&uplo, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(af_.data()), af_.ld(), reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cporfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cporfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cporfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cporfs_work(matrix_layout, uplo, n, nrhs, a, lda, af, ldaf, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_ssyrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_ssyrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<const float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::ssyrfs(&uplo, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(af_.data()), af_.ld(), ipiv, reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssyrfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssyrfs", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssyrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssyrfs_work(matrix_layout, uplo, n, nrhs, a, lda, af, ldaf, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), iwork.data());
}

lapack_int LAPACKE_csyrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_csyrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<const lapack_complex_float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<lapack_complex_float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::csyrfs(&uplo, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(af_.data()), af_.ld(), ipiv, reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_csyrfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_csyrfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_csyrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_csyrfs_work(matrix_layout, uplo, n, nrhs, a, lda, af, ldaf, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_cherfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cherfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldaf < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<const lapack_complex_float> af_(row, row, n, n, af, ldaf, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<lapack_complex_float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::cherfs(&uplo, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(af_.data()), af_.ld(), ipiv, reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cherfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cherfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cherfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cherfs_work(matrix_layout, uplo, n, nrhs, a, lda, af, ldaf, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_sgbrfs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_sgbrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldafb < std::max<lapack_int>(1, n)) return report(self, 10);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 15);
  try {
    ColMajor<const float> ab_(row, row, kl+ku+1, n, ab, ldab, false);
    ColMajor<const float> afb_(row, row, 2*kl+ku+1, n, afb, ldafb, false);
    ColMajor<const float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::sgbrfs(&trans, &n, &kl, &ku, &nrhs, reinterpret_cast<const float *>(ab_.data()), ab_.ld(), reinterpret_cast<const float *>(afb_.data()), afb_.ld(), ipiv, reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgbrfs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgbrfs", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgbrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgbrfs_work(matrix_layout, trans, n, kl, ku, nrhs, ab, ldab, afb, ldafb, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), iwork.data());
}

lapack_int LAPACKE_cgbrfs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cgbrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldafb < std::max<lapack_int>(1, n)) return report(self, 10);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 15);
  try {
    ColMajor<const lapack_complex_float> ab_(row, row, kl+ku+1, n, ab, ldab, false);
    ColMajor<const lapack_complex_float> afb_(row, row, 2*kl+ku+1, n, afb, ldafb, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<lapack_complex_float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::cgbrfs(&trans, &n, &kl, &ku, &nrhs, reinterpret_cast<const orb_complex8 *>(ab_.data()), ab_.ld(), reinterpret_cast<const orb_complex8 *>(afb_.data()), afb_.ld(), ipiv, reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgbrfs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgbrfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgbrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgbrfs_work(matrix_layout, trans, n, kl, ku, nrhs, ab, ldab, afb, ldafb, ipiv, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_spbrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_spbrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldafb < std::max<lapack_int>(1, n)) return report(self, 9);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const float> ab_(row, row, kd+1, n, ab, ldab, false);
    ColMajor<const float> afb_(row, row, kd+1, n, afb, ldafb, false);
    ColMajor<const float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::spbrfs(&uplo, &n, &kd, &nrhs, reinterpret_cast<const float *>(ab_.data()), ab_.ld(), reinterpret_cast<const float *>(afb_.data()), afb_.ld(), reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<float *>(work), iwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spbrfs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spbrfs", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_spbrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_spbrfs_work(matrix_layout, uplo, n, kd, nrhs, ab, ldab, afb, ldafb, b, ldb, x, ldx, ferr, berr, work.data(), iwork.data());
}

lapack_int LAPACKE_cpbrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_cpbrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldafb < std::max<lapack_int>(1, n)) return report(self, 9);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 11);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 13);
  try {
    ColMajor<const lapack_complex_float> ab_(row, row, kd+1, n, ab, ldab, false);
    ColMajor<const lapack_complex_float> afb_(row, row, kd+1, n, afb, ldafb, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<lapack_complex_float> x_(row, row, n, nrhs, x, ldx, true);
    lapack_int info = 0;
    ::cpbrfs(&uplo, &n, &kd, &nrhs, reinterpret_cast<const orb_complex8 *>(ab_.data()), ab_.ld(), reinterpret_cast<const orb_complex8 *>(afb_.data()), afb_.ld(), reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpbrfs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpbrfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cpbrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cpbrfs_work(matrix_layout, uplo, n, kd, nrhs, ab, ldab, afb, ldafb, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_strrfs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *b, lapack_int ldb, const float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_strrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 10);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 12);
  try {
    ColMajor<const float> a_(row, row, n, n, a, lda, false);
    ColMajor<const float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<const float> x_(row, row, n, nrhs, x, ldx, false);
    lapack_int info = 0;
    ::strrfs(&uplo, &trans, &diag, &n, &nrhs, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<const float *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<float *>(work), iwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strrfs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *b, lapack_int ldb, const float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strrfs", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_strrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_strrfs_work(matrix_layout, uplo, trans, diag, n, nrhs, a, lda, b, ldb, x, ldx, ferr, berr, work.data(), iwork.data());
}

lapack_int LAPACKE_ctrrfs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, const lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_ctrrfs_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, nrhs)) return report(self, 10);
  if (row && ldx < std::max<lapack_int>(1, nrhs)) return report(self, 12);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, n, n, a, lda, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, nrhs, b, ldb, false);
    ColMajor<const lapack_complex_float> x_(row, row, n, nrhs, x, ldx, false);
    lapack_int info = 0;
    ::ctrrfs(&uplo, &trans, &diag, &n, &nrhs, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<const orb_complex8 *>(x_.data()), x_.ld(), ferr, berr, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrrfs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, const lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrrfs", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ctrrfs", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ctrrfs_work(matrix_layout, uplo, trans, diag, n, nrhs, a, lda, b, ldb, x, ldx, ferr, berr, work.data(), rwork.data());
}

lapack_int LAPACKE_ssytri_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv, float *work) {
  const char *self = "LAPACKE_ssytri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::ssytri(&uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<float *>(work), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssytri(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssytri", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssytri", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssytri_work(matrix_layout, uplo, n, a, lda, ipiv, work.data());
}

lapack_int LAPACKE_csytri_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *work) {
  const char *self = "LAPACKE_csytri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::csytri(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(work), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_csytri(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_csytri", 1);
  std::vector<lapack_complex_float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_csytri", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_csytri_work(matrix_layout, uplo, n, a, lda, ipiv, work.data());
}

lapack_int LAPACKE_chetri_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *work) {
  const char *self = "LAPACKE_chetri_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::chetri(&uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ipiv, reinterpret_cast<orb_complex8 *>(work), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chetri(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chetri", 1);
  std::vector<lapack_complex_float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chetri", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chetri_work(matrix_layout, uplo, n, a, lda, ipiv, work.data());
}

lapack_int LAPACKE_ssygst_work(int matrix_layout, lapack_int itype, char uplo, lapack_int n, float *a, lapack_int lda, const float *b, lapack_int ldb) {
  const char *self = "LAPACKE_ssygst_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, n)) return report(self, 8);
  try {
    ColMajor<float> a_(row, row, n, n, a, lda, true);
    ColMajor<const float> b_(row, row, n, n, b, ldb, false);
    lapack_int info = 0;
    ::ssygst(&itype, &uplo, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(b_.data()), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssygst(int matrix_layout, lapack_int itype, char uplo, lapack_int n, float *a, lapack_int lda, const float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssygst", 1);
  return LAPACKE_ssygst_work(matrix_layout, itype, uplo, n, a, lda, b, ldb);
}

lapack_int LAPACKE_chegst_work(int matrix_layout, lapack_int itype, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb) {
  const char *self = "LAPACKE_chegst_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  if (row && ldb < std::max<lapack_int>(1, n)) return report(self, 8);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    ColMajor<const lapack_complex_float> b_(row, row, n, n, b, ldb, false);
    lapack_int info = 0;
    ::chegst(&itype, &uplo, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(const_cast<lapack_complex_float *>(b_.data())), b_.ld(), &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chegst(int matrix_layout, lapack_int itype, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chegst", 1);
  return LAPACKE_chegst_work(matrix_layout, itype, uplo, n, a, lda, b, ldb);
}

lapack_int LAPACKE_sormtr_work(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sormtr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, (left(side)?m:n))) return report(self, 8);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 11);
  try {
    ColMajor<const float> a_(row, row && !query, (left(side)?m:n), (left(side)?m:n), a, lda, false);
    ColMajor<float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::sormtr(&side, &uplo, &trans, &m, &n, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(c_.data()), c_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sormtr(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sormtr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sormtr_work(matrix_layout, side, uplo, trans, m, n, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sormtr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sormtr_work(matrix_layout, side, uplo, trans, m, n, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_cunmtr_work(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cunmtr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, (left(side)?m:n))) return report(self, 8);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 11);
  try {
    ColMajor<const lapack_complex_float> a_(row, row && !query, (left(side)?m:n), (left(side)?m:n), a, lda, false);
    ColMajor<lapack_complex_float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::cunmtr(&side, &uplo, &trans, &m, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(c_.data()), c_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cunmtr(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cunmtr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cunmtr_work(matrix_layout, side, uplo, trans, m, n, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cunmtr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cunmtr_work(matrix_layout, side, uplo, trans, m, n, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_ssteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz, float *work) {
  const char *self = "LAPACKE_ssteqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldz < std::max<lapack_int>(1, z_cols(compz,n))) return report(self, 7);
  try {
    ColMajor<float> z_(row, row, n, z_cols(compz,n), z, ldz, true);
    lapack_int info = 0;
    ::ssteqr(&compz, &n, d, e, reinterpret_cast<float *>(z_.data()), z_.ld(), work, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssteqr", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, std::max<lapack_int>(1,2*n-2))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssteqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssteqr_work(matrix_layout, compz, n, d, e, z, ldz, work.data());
}

lapack_int LAPACKE_csteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz, float *work) {
  const char *self = "LAPACKE_csteqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldz < std::max<lapack_int>(1, z_cols(compz,n))) return report(self, 7);
  try {
    ColMajor<lapack_complex_float> z_(row, row, n, z_cols(compz,n), z, ldz, true);
    lapack_int info = 0;
    ::csteqr(&compz, &n, d, e, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), work, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_csteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_csteqr", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, std::max<lapack_int>(1,2*n-2))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_csteqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_csteqr_work(matrix_layout, compz, n, d, e, z, ldz, work.data());
}

lapack_int LAPACKE_spteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz, float *work) {
  const char *self = "LAPACKE_spteqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldz < std::max<lapack_int>(1, z_cols(compz,n))) return report(self, 7);
  try {
    ColMajor<float> z_(row, row, n, z_cols(compz,n), z, ldz, true);
    lapack_int info = 0;
    ::spteqr(&compz, &n, d, e, reinterpret_cast<float *>(z_.data()), z_.ld(), work, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_spteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_spteqr", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 4*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_spteqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_spteqr_work(matrix_layout, compz, n, d, e, z, ldz, work.data());
}

lapack_int LAPACKE_cpteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz, float *work) {
  const char *self = "LAPACKE_cpteqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldz < std::max<lapack_int>(1, z_cols(compz,n))) return report(self, 7);
  try {
    ColMajor<lapack_complex_float> z_(row, row, n, z_cols(compz,n), z, ldz, true);
    lapack_int info = 0;
    ::cpteqr(&compz, &n, d, e, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), work, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cpteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cpteqr", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 4*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cpteqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cpteqr_work(matrix_layout, compz, n, d, e, z, ldz, work.data());
}

lapack_int LAPACKE_sstein_work(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, float *z, lapack_int ldz, float *work, lapack_int *iwork, lapack_int *ifail) {
  const char *self = "LAPACKE_sstein_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldz < std::max<lapack_int>(1, m)) return report(self, 10);
  try {
    ColMajor<float> z_(row, row, n, m, z, ldz, true);
    lapack_int info = 0;
    ::sstein(&n, d, e, &m, w, iblock, isplit, reinterpret_cast<float *>(z_.data()), z_.ld(), work, iwork, ifail, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sstein(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, float *z, lapack_int ldz, lapack_int *ifail) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sstein", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sstein", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sstein_work(matrix_layout, n, d, e, m, w, iblock, isplit, z, ldz, work.data(), iwork.data(), ifail);
}

lapack_int LAPACKE_cstein_work(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, lapack_complex_float *z, lapack_int ldz, float *work, lapack_int *iwork, lapack_int *ifail) {
  const char *self = "LAPACKE_cstein_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldz < std::max<lapack_int>(1, m)) return report(self, 10);
  try {
    ColMajor<lapack_complex_float> z_(row, row, n, m, z, ldz, true);
    lapack_int info = 0;
    ::cstein(&n, d, e, &m, w, iblock, isplit, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), work, iwork, ifail, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cstein(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, lapack_complex_float *z, lapack_int ldz, lapack_int *ifail) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cstein", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cstein", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cstein_work(matrix_layout, n, d, e, m, w, iblock, isplit, z, ldz, work.data(), iwork.data(), ifail);
}

lapack_int LAPACKE_ssbev_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz, float *work) {
  const char *self = "LAPACKE_ssbev_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_v_cols(jobz,n))) return report(self, 10);
  try {
    ColMajor<float> ab_(row, row, kd+1, n, ab, ldab, true);
    ColMajor<float> z_(row, row, n, eig_v_cols(jobz,n), z, ldz, true);
    lapack_int info = 0;
    ::ssbev(&jobz, &uplo, &n, &kd, reinterpret_cast<float *>(ab_.data()), ab_.ld(), w, reinterpret_cast<float *>(z_.data()), z_.ld(), reinterpret_cast<float *>(work), &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssbev(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssbev", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, std::max<lapack_int>(1,3*n-2))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssbev", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssbev_work(matrix_layout, jobz, uplo, n, kd, ab, ldab, w, z, ldz, work.data());
}

lapack_int LAPACKE_chbev_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_chbev_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_v_cols(jobz,n))) return report(self, 10);
  try {
    ColMajor<lapack_complex_float> ab_(row, row, kd+1, n, ab, ldab, true);
    ColMajor<lapack_complex_float> z_(row, row, n, eig_v_cols(jobz,n), z, ldz, true);
    lapack_int info = 0;
    ::chbev(&jobz, &uplo, &n, &kd, reinterpret_cast<orb_complex8 *>(ab_.data()), ab_.ld(), w, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chbev(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chbev", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, std::max<lapack_int>(1,3*n-2))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chbev", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chbev_work(matrix_layout, jobz, uplo, n, kd, ab, ldab, w, z, ldz, work.data(), rwork.data());
}

lapack_int LAPACKE_ssbevd_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz, float *work, lapack_int lwork, lapack_int *iwork, lapack_int liwork) {
  const char *self = "LAPACKE_ssbevd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1 || liwork == -1;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_v_cols(jobz,n))) return report(self, 10);
  try {
    ColMajor<float> ab_(row, row && !query, kd+1, n, ab, ldab, true);
    ColMajor<float> z_(row, row && !query, n, eig_v_cols(jobz,n), z, ldz, true);
    lapack_int info = 0;
    ::ssbevd(&jobz, &uplo, &n, &kd, reinterpret_cast<float *>(ab_.data()), ab_.ld(), w, reinterpret_cast<float *>(z_.data()), z_.ld(), reinterpret_cast<float *>(work), &lwork, iwork, &liwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssbevd(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssbevd", 1);
  float work_size{};
  lapack_int iwork_size{};
  lapack_int info = LAPACKE_ssbevd_work(matrix_layout, jobz, uplo, n, kd, ab, ldab, w, z, ldz, &work_size, -1, &iwork_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  std::vector<lapack_int> iwork;
  lapack_int liwork = workspace_length(iwork_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
    iwork.resize(static_cast<std::size_t>(liwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssbevd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssbevd_work(matrix_layout, jobz, uplo, n, kd, ab, ldab, w, z, ldz, work.data(), lwork, iwork.data(), liwork);
}

lapack_int LAPACKE_chbevd_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int lrwork, lapack_int *iwork, lapack_int liwork) {
  const char *self = "LAPACKE_chbevd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1 || lrwork == -1 || liwork == -1;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldz < std::max<lapack_int>(1, eig_v_cols(jobz,n))) return report(self, 10);
  try {
    ColMajor<lapack_complex_float> ab_(row, row && !query, kd+1, n, ab, ldab, true);
    ColMajor<lapack_complex_float> z_(row, row && !query, n, eig_v_cols(jobz,n), z, ldz, true);
    lapack_int info = 0;
    ::chbevd(&jobz, &uplo, &n, &kd, reinterpret_cast<orb_complex8 *>(ab_.data()), ab_.ld(), w, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, rwork, &lrwork, iwork, &liwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chbevd(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chbevd", 1);
  lapack_complex_float work_size{};
  float rwork_size{};
  lapack_int iwork_size{};
  lapack_int info = LAPACKE_chbevd_work(matrix_layout, jobz, uplo, n, kd, ab, ldab, w, z, ldz, &work_size, -1, &rwork_size, -1, &iwork_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  std::vector<float> rwork;
  lapack_int lrwork = workspace_length(rwork_size);
  std::vector<lapack_int> iwork;
  lapack_int liwork = workspace_length(iwork_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
    rwork.resize(static_cast<std::size_t>(lrwork));
    iwork.resize(static_cast<std::size_t>(liwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chbevd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chbevd_work(matrix_layout, jobz, uplo, n, kd, ab, ldab, w, z, ldz, work.data(), lwork, rwork.data(), lrwork, iwork.data(), liwork);
}

lapack_int LAPACKE_ssbevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, float *work, lapack_int *iwork, lapack_int *ifail) {
  const char *self = "LAPACKE_ssbevx_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldq < std::max<lapack_int>(1, eig_v_cols(jobz,n))) return report(self, 10);
  if (row && ldz < std::max<lapack_int>(1, eig_z_cols(jobz,range,n,il,iu))) return report(self, 19);
  try {
    ColMajor<float> ab_(row, row, kd+1, n, ab, ldab, true);
    ColMajor<float> q_(row, row, n, eig_v_cols(jobz,n), q, ldq, true);
    ColMajor<float> z_(row, row, n, eig_z_cols(jobz,range,n,il,iu), z, ldz, true);
    lapack_int info = 0;
    ::ssbevx(&jobz, &range, &uplo, &n, &kd, reinterpret_cast<float *>(ab_.data()), ab_.ld(), reinterpret_cast<float *>(q_.data()), q_.ld(), &vl, &vu, &il, &iu, &abstol, m, w, reinterpret_cast<float *>(z_.data()), z_.ld(), reinterpret_cast<float *>(work), iwork, ifail, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssbevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *ifail) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ssbevx", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 7*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ssbevx", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ssbevx_work(matrix_layout, jobz, range, uplo, n, kd, ab, ldab, q, ldq, vl, vu, il, iu, abstol, m, w, z, ldz, work.data(), iwork.data(), ifail);
}

lapack_int LAPACKE_chbevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, float *rwork, lapack_int *iwork, lapack_int *ifail) {
  const char *self = "LAPACKE_chbevx_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldab < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldq < std::max<lapack_int>(1, eig_v_cols(jobz,n))) return report(self, 10);
  if (row && ldz < std::max<lapack_int>(1, eig_z_cols(jobz,range,n,il,iu))) return report(self, 19);
  try {
    ColMajor<lapack_complex_float> ab_(row, row, kd+1, n, ab, ldab, true);
    ColMajor<lapack_complex_float> q_(row, row, n, eig_v_cols(jobz,n), q, ldq, true);
    ColMajor<lapack_complex_float> z_(row, row, n, eig_z_cols(jobz,range,n,il,iu), z, ldz, true);
    lapack_int info = 0;
    ::chbevx(&jobz, &range, &uplo, &n, &kd, reinterpret_cast<orb_complex8 *>(ab_.data()), ab_.ld(), reinterpret_cast<orb_complex8 *>(q_.data()), q_.ld(), &vl, &vu, &il, &iu, &abstol, m, w, reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), reinterpret_cast<orb_complex8 *>(work), rwork, iwork, ifail, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chbevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *ifail) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chbevx", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 7*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 5*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chbevx", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chbevx_work(matrix_layout, jobz, range, uplo, n, kd, ab, ldab, q, ldq, vl, vu, il, iu, abstol, m, w, z, ldz, work.data(), rwork.data(), iwork.data(), ifail);
}

lapack_int LAPACKE_sgehrd_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgehrd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::sgehrd(&n, &ilo, &ihi, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgehrd(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgehrd", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgehrd_work(matrix_layout, n, ilo, ihi, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgehrd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgehrd_work(matrix_layout, n, ilo, ihi, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cgehrd_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cgehrd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::cgehrd(&n, &ilo, &ihi, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgehrd(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgehrd", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgehrd_work(matrix_layout, n, ilo, ihi, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgehrd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgehrd_work(matrix_layout, n, ilo, ihi, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sorghr_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sorghr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::sorghr(&n, &ilo, &ihi, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sorghr(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, const float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sorghr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sorghr_work(matrix_layout, n, ilo, ihi, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sorghr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sorghr_work(matrix_layout, n, ilo, ihi, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cunghr_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cunghr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 6);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, n, n, a, lda, true);
    lapack_int info = 0;
    ::cunghr(&n, &ilo, &ihi, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cunghr(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cunghr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cunghr_work(matrix_layout, n, ilo, ihi, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cunghr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cunghr_work(matrix_layout, n, ilo, ihi, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sgebal_work(int matrix_layout, char job, lapack_int n, float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale) {
  const char *self = "LAPACKE_sgebal_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::sgebal(&job, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), ilo, ihi, scale, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgebal(int matrix_layout, char job, lapack_int n, float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgebal", 1);
  return LAPACKE_sgebal_work(matrix_layout, job, n, a, lda, ilo, ihi, scale);
}

lapack_int LAPACKE_cgebal_work(int matrix_layout, char job, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale) {
  const char *self = "LAPACKE_cgebal_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row, n, n, a, lda, true);
    lapack_int info = 0;
    ::cgebal(&job, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), ilo, ihi, scale, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgebal(int matrix_layout, char job, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgebal", 1);
  return LAPACKE_cgebal_work(matrix_layout, job, n, a, lda, ilo, ihi, scale);
}

lapack_int LAPACKE_sgebak_work(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, float *v, lapack_int ldv) {
  const char *self = "LAPACKE_sgebak_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldv < std::max<lapack_int>(1, m)) return report(self, 10);
  try {
    ColMajor<float> v_(row, row, n, m, v, ldv, true);
    lapack_int info = 0;
    ::sgebak(&job, &side, &n, &ilo, &ihi, scale, &m, reinterpret_cast<float *>(v_.data()), v_.ld(), &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgebak(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, float *v, lapack_int ldv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgebak", 1);
  return LAPACKE_sgebak_work(matrix_layout, job, side, n, ilo, ihi, scale, m, v, ldv);
}

lapack_int LAPACKE_cgebak_work(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, lapack_complex_float *v, lapack_int ldv) {
  const char *self = "LAPACKE_cgebak_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldv < std::max<lapack_int>(1, m)) return report(self, 10);
  try {
    ColMajor<lapack_complex_float> v_(row, row, n, m, v, ldv, true);
    lapack_int info = 0;
    ::cgebak(&job, &side, &n, &ilo, &ihi, scale, &m, reinterpret_cast<orb_complex8 *>(v_.data()), v_.ld(), &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgebak(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, lapack_complex_float *v, lapack_int ldv) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgebak", 1);
  return LAPACKE_cgebak_work(matrix_layout, job, side, n, ilo, ihi, scale, m, v, ldv);
}

lapack_int LAPACKE_shseqr_work(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, float *h, lapack_int ldh, float *wr, float *wi, float *z, lapack_int ldz, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_shseqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && ldh < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldz < std::max<lapack_int>(1, z_cols(compz,n))) return report(self, 12);
  try {
    ColMajor<float> h_(row, row && !query, n, n, h, ldh, true);
    ColMajor<float> z_(row, row && !query, n, z_cols(compz,n), z, ldz, true);
    lapack_int info = 0;
    ::shseqr(&job, &compz, &n, &ilo, &ihi, reinterpret_cast<float *>(h_.data()), h_.ld(), wr, wi, reinterpret_cast<float *>(z_.data()), z_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_shseqr(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, float *h, lapack_int ldh, float *wr, float *wi, float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_shseqr", 1);
  float work_size{};
  lapack_int info = LAPACKE_shseqr_work(matrix_layout, job, compz, n, ilo, ihi, h, ldh, wr, wi, z, ldz, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_shseqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_shseqr_work(matrix_layout, job, compz, n, ilo, ihi, h, ldh, wr, wi, z, ldz, work.data(), lwork);
}

lapack_int LAPACKE_chseqr_work(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *h, lapack_int ldh, lapack_complex_float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_chseqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && ldh < std::max<lapack_int>(1, n)) return report(self, 8);
  if (row && ldz < std::max<lapack_int>(1, z_cols(compz,n))) return report(self, 11);
  try {
    ColMajor<lapack_complex_float> h_(row, row && !query, n, n, h, ldh, true);
    ColMajor<lapack_complex_float> z_(row, row && !query, n, z_cols(compz,n), z, ldz, true);
    lapack_int info = 0;
    ::chseqr(&job, &compz, &n, &ilo, &ihi, reinterpret_cast<orb_complex8 *>(h_.data()), h_.ld(), reinterpret_cast<orb_complex8 *>(w), reinterpret_cast<orb_complex8 *>(z_.data()), z_.ld(), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_chseqr(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *h, lapack_int ldh, lapack_complex_float *w, lapack_complex_float *z, lapack_int ldz) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_chseqr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_chseqr_work(matrix_layout, job, compz, n, ilo, ihi, h, ldh, w, z, ldz, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_chseqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_chseqr_work(matrix_layout, job, compz, n, ilo, ihi, h, ldh, w, z, ldz, work.data(), lwork);
}

lapack_int LAPACKE_strevc_work(int matrix_layout, char side, char howmny, lapack_int *select, lapack_int n, const float *t, lapack_int ldt, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m, float *work) {
  const char *self = "LAPACKE_strevc_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldt < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldvl < std::max<lapack_int>(1, side_cols(side,'l',mm))) return report(self, 9);
  if (row && ldvr < std::max<lapack_int>(1, side_cols(side,'r',mm))) return report(self, 11);
  try {
    ColMajor<const float> t_(row, row, n, n, t, ldt, false);
    ColMajor<float> vl_(row, row, n, side_cols(side,'l',mm), vl, ldvl, true);
    ColMajor<float> vr_(row, row, n, side_cols(side,'r',mm), vr, ldvr, true);
    lapack_int info = 0;
    ::strevc(&side, &howmny, select, &n, reinterpret_cast<const float *>(t_.data()), t_.ld(), reinterpret_cast<float *>(vl_.data()), vl_.ld(), reinterpret_cast<float *>(vr_.data()), vr_.ld(), &mm, m, reinterpret_cast<float *>(work), &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strevc(int matrix_layout, char side, char howmny, lapack_int *select, lapack_int n, const float *t, lapack_int ldt, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strevc", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_strevc", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_strevc_work(matrix_layout, side, howmny, select, n, t, ldt, vl, ldvl, vr, ldvr, mm, m, work.data());
}

lapack_int LAPACKE_ctrevc_work(int matrix_layout, char side, char howmny, const lapack_int *select, lapack_int n, lapack_complex_float *t, lapack_int ldt, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m, lapack_complex_float *work, float *rwork) {
  const char *self = "LAPACKE_ctrevc_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldt < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldvl < std::max<lapack_int>(1, side_cols(side,'l',mm))) return report(self, 9);
  if (row && ldvr < std::max<lapack_int>(1, side_cols(side,'r',mm))) return report(self, 11);
  try {
    ColMajor<lapack_complex_float> t_(row, row, n, n, t, ldt, true);
    ColMajor<lapack_complex_float> vl_(row, row, n, side_cols(side,'l',mm), vl, ldvl, true);
    ColMajor<lapack_complex_float> vr_(row, row, n, side_cols(side,'r',mm), vr, ldvr, true);
    lapack_int info = 0;
    ::ctrevc(&side, &howmny, select, &n, reinterpret_cast<orb_complex8 *>(t_.data()), t_.ld(), reinterpret_cast<orb_complex8 *>(vl_.data()), vl_.ld(), reinterpret_cast<orb_complex8 *>(vr_.data()), vr_.ld(), &mm, m, reinterpret_cast<orb_complex8 *>(work), rwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrevc(int matrix_layout, char side, char howmny, const lapack_int *select, lapack_int n, lapack_complex_float *t, lapack_int ldt, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrevc", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*n)));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ctrevc", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ctrevc_work(matrix_layout, side, howmny, select, n, t, ldt, vl, ldvl, vr, ldvr, mm, m, work.data(), rwork.data());
}

lapack_int LAPACKE_strsyl_work(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *b, lapack_int ldb, float *c, lapack_int ldc, float *scale) {
  const char *self = "LAPACKE_strsyl_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, m)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, n)) return report(self, 10);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 12);
  try {
    ColMajor<const float> a_(row, row, m, m, a, lda, false);
    ColMajor<const float> b_(row, row, n, n, b, ldb, false);
    ColMajor<float> c_(row, row, m, n, c, ldc, true);
    lapack_int info = 0;
    ::strsyl(&trana, &tranb, &isgn, &m, &n, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(b_.data()), b_.ld(), reinterpret_cast<float *>(c_.data()), c_.ld(), scale, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strsyl(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *b, lapack_int ldb, float *c, lapack_int ldc, float *scale) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strsyl", 1);
  return LAPACKE_strsyl_work(matrix_layout, trana, tranb, isgn, m, n, a, lda, b, ldb, c, ldc, scale);
}

lapack_int LAPACKE_ctrsyl_work(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *c, lapack_int ldc, float *scale) {
  const char *self = "LAPACKE_ctrsyl_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && lda < std::max<lapack_int>(1, m)) return report(self, 8);
  if (row && ldb < std::max<lapack_int>(1, n)) return report(self, 10);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 12);
  try {
    ColMajor<const lapack_complex_float> a_(row, row, m, m, a, lda, false);
    ColMajor<const lapack_complex_float> b_(row, row, n, n, b, ldb, false);
    ColMajor<lapack_complex_float> c_(row, row, m, n, c, ldc, true);
    lapack_int info = 0;
    ::ctrsyl(&trana, &tranb, &isgn, &m, &n, reinterpret_cast<const orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(b_.data()), b_.ld(), reinterpret_cast<orb_complex8 *>(c_.data()), c_.ld(), scale, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrsyl(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *c, lapack_int ldc, float *scale) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrsyl", 1);
  return LAPACKE_ctrsyl_work(matrix_layout, trana, tranb, isgn, m, n, a, lda, b, ldb, c, ldc, scale);
}

lapack_int LAPACKE_sgebrd_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tauq, float *taup, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sgebrd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sgebrd(&m, &n, reinterpret_cast<float *>(a_.data()), a_.ld(), d, e, reinterpret_cast<float *>(tauq), reinterpret_cast<float *>(taup), reinterpret_cast<float *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sgebrd(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tauq, float *taup) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sgebrd", 1);
  float work_size{};
  lapack_int info = LAPACKE_sgebrd_work(matrix_layout, m, n, a, lda, d, e, tauq, taup, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sgebrd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sgebrd_work(matrix_layout, m, n, a, lda, d, e, tauq, taup, work.data(), lwork);
}

lapack_int LAPACKE_cgebrd_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tauq, lapack_complex_float *taup, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cgebrd_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 5);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::cgebrd(&m, &n, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), d, e, reinterpret_cast<orb_complex8 *>(tauq), reinterpret_cast<orb_complex8 *>(taup), reinterpret_cast<orb_complex8 *>(work), &lwork, &info);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cgebrd(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tauq, lapack_complex_float *taup) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cgebrd", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cgebrd_work(matrix_layout, m, n, a, lda, d, e, tauq, taup, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cgebrd", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cgebrd_work(matrix_layout, m, n, a, lda, d, e, tauq, taup, work.data(), lwork);
}

lapack_int LAPACKE_sorgbr_work(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sorgbr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::sorgbr(&vect, &m, &n, &k, reinterpret_cast<float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sorgbr(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sorgbr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sorgbr_work(matrix_layout, vect, m, n, k, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sorgbr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sorgbr_work(matrix_layout, vect, m, n, k, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_cungbr_work(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork) {
  const char *self = "LAPACKE_cungbr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, n)) return report(self, 7);
  try {
    ColMajor<lapack_complex_float> a_(row, row && !query, m, n, a, lda, true);
    lapack_int info = 0;
    ::cungbr(&vect, &m, &n, &k, reinterpret_cast<orb_complex8 *>(a_.data()), a_.ld(), reinterpret_cast<const orb_complex8 *>(tau), reinterpret_cast<orb_complex8 *>(work), &lwork, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cungbr(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cungbr", 1);
  lapack_complex_float work_size{};
  lapack_int info = LAPACKE_cungbr_work(matrix_layout, vect, m, n, k, a, lda, tau, &work_size, -1);
  if (info != 0) return info;
  std::vector<lapack_complex_float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cungbr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cungbr_work(matrix_layout, vect, m, n, k, a, lda, tau, work.data(), lwork);
}

lapack_int LAPACKE_sormbr_work(int matrix_layout, char vect, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork) {
  const char *self = "LAPACKE_sormbr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  const bool query = lwork == -1;
  if (row && lda < std::max<lapack_int>(1, bidiag_cols(vect,side,m,n,k))) return report(self, 9);
  if (row && ldc < std::max<lapack_int>(1, n)) return report(self, 12);
  try {
    ColMajor<const float> a_(row, row && !query, bidiag_rows(vect,side,m,n,k), bidiag_cols(vect,side,m,n,k), a, lda, false);
    ColMajor<float> c_(row, row && !query, m, n, c, ldc, true);
    lapack_int info = 0;
    ::sormbr(&vect, &side, &trans, &m, &n, &k, reinterpret_cast<const float *>(a_.data()), a_.ld(), reinterpret_cast<const float *>(tau), reinterpret_cast<float *>(c_.data()), c_.ld(), reinterpret_cast<float *>(work), &lwork, &info, 1, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sormbr(int matrix_layout, char vect, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sormbr", 1);
  float work_size{};
  lapack_int info = LAPACKE_sormbr_work(matrix_layout, vect, side, trans, m, n, k, a, lda, tau, c, ldc, &work_size, -1);
  if (info != 0) return info;
  std::vector<float> work;
  lapack_int lwork = workspace_length(work_size);
  try {
    work.resize(static_cast<std::size_t>(lwork));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sormbr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sormbr_work(matrix_layout, vect, side, trans, m, n, k, a, lda, tau, c, ldc, work.data(), lwork);
}

lapack_int LAPACKE_sbdsqr_work(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, float *vt, lapack_int ldvt, float *u, lapack_int ldu, float *c, lapack_int ldc, float *work) {
  const char *self = "LAPACKE_sbdsqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldvt < std::max<lapack_int>(1, ncvt)) return report(self, 10);
  if (row && ldu < std::max<lapack_int>(1, n)) return report(self, 12);
  if (row && ldc < std::max<lapack_int>(1, ncc)) return report(self, 14);
  try {
    ColMajor<float> vt_(row, row, n, ncvt, vt, ldvt, true);
    ColMajor<float> u_(row, row, nru, n, u, ldu, true);
    ColMajor<float> c_(row, row, n, ncc, c, ldc, true);
    lapack_int info = 0;
    ::sbdsqr(&uplo, &n, &ncvt, &nru, &ncc, d, e, reinterpret_cast<float *>(vt_.data()), vt_.ld(), reinterpret_cast<float *>(u_.data()), u_.ld(), reinterpret_cast<float *>(c_.data()), c_.ld(), work, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sbdsqr(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, float *vt, lapack_int ldvt, float *u, lapack_int ldu, float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_sbdsqr", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 4*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sbdsqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sbdsqr_work(matrix_layout, uplo, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work.data());
}

lapack_int LAPACKE_cbdsqr_work(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *c, lapack_int ldc, float *work) {
  const char *self = "LAPACKE_cbdsqr_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldvt < std::max<lapack_int>(1, ncvt)) return report(self, 10);
  if (row && ldu < std::max<lapack_int>(1, n)) return report(self, 12);
  if (row && ldc < std::max<lapack_int>(1, ncc)) return report(self, 14);
  try {
    ColMajor<lapack_complex_float> vt_(row, row, n, ncvt, vt, ldvt, true);
    ColMajor<lapack_complex_float> u_(row, row, nru, n, u, ldu, true);
    ColMajor<lapack_complex_float> c_(row, row, n, ncc, c, ldc, true);
    lapack_int info = 0;
    ::cbdsqr(&uplo, &n, &ncvt, &nru, &ncc, d, e, reinterpret_cast<orb_complex8 *>(vt_.data()), vt_.ld(), reinterpret_cast<orb_complex8 *>(u_.data()), u_.ld(), reinterpret_cast<orb_complex8 *>(c_.data()), c_.ld(), work, &info, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_cbdsqr(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *c, lapack_int ldc) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_cbdsqr", 1);
  std::vector<float> work;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 4*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_cbdsqr", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_cbdsqr_work(matrix_layout, uplo, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work.data());
}

lapack_int LAPACKE_ssterf_work(lapack_int n, float *d, float *e) {
  const char *self = "LAPACKE_ssterf_work";
  try {
    lapack_int info = 0;
    ::ssterf(&n, d, e, &info);
    return info < 0 ? info : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ssterf(lapack_int n, float *d, float *e) {
  return LAPACKE_ssterf_work(n, d, e);
}

lapack_int LAPACKE_sstebz_work(char range, char order, lapack_int n, float vl, float vu, lapack_int il, lapack_int iu, float abstol, const float *d, const float *e, lapack_int *m, lapack_int *nsplit, float *w, lapack_int *iblock, lapack_int *isplit, float *work, lapack_int *iwork) {
  const char *self = "LAPACKE_sstebz_work";
  try {
    lapack_int info = 0;
    ::sstebz(&range, &order, &n, &vl, &vu, &il, &iu, &abstol, d, e, m, nsplit, w, iblock, isplit, work, iwork, &info, 1, 1);
    return info < 0 ? info : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_sstebz(char range, char order, lapack_int n, float vl, float vu, lapack_int il, lapack_int iu, float abstol, const float *d, const float *e, lapack_int *m, lapack_int *nsplit, float *w, lapack_int *iblock, lapack_int *isplit) {
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 4*n)));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 3*n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_sstebz", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_sstebz_work(range, order, n, vl, vu, il, iu, abstol, d, e, m, nsplit, w, iblock, isplit, work.data(), iwork.data());
}

lapack_int LAPACKE_strsna_work(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const float *t, lapack_int ldt, const float *vl, lapack_int ldvl, const float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m, float *work, lapack_int ldwork, lapack_int *iwork) {
  const char *self = "LAPACKE_strsna_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldt < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldvl < std::max<lapack_int>(1, trsna_cols(job,mm))) return report(self, 9);
  if (row && ldvr < std::max<lapack_int>(1, trsna_cols(job,mm))) return report(self, 11);
  try {
    ColMajor<const float> t_(row, row, n, n, t, ldt, false);
    ColMajor<const float> vl_(row, row, n, trsna_cols(job,mm), vl, ldvl, false);
    ColMajor<const float> vr_(row, row, n, trsna_cols(job,mm), vr, ldvr, false);
    lapack_int info = 0;
    ::strsna(&job, &howmny, select, &n, reinterpret_cast<const float *>(t_.data()), t_.ld(), reinterpret_cast<const float *>(vl_.data()), vl_.ld(), reinterpret_cast<const float *>(vr_.data()), vr_.ld(), s, sep, &mm, m, reinterpret_cast<float *>(work), &ldwork, iwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_strsna(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const float *t, lapack_int ldt, const float *vl, lapack_int ldvl, const float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_strsna", 1);
  std::vector<float> work;
  std::vector<lapack_int> iwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, trsna_work_rows(job,n)*(n+6))));
    iwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, 2*(n-1))));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_strsna", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_strsna_work(matrix_layout, job, howmny, select, n, t, ldt, vl, ldvl, vr, ldvr, s, sep, mm, m, work.data(), std::max<lapack_int>(1, trsna_work_rows(job,n)), iwork.data());
}

lapack_int LAPACKE_ctrsna_work(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const lapack_complex_float *t, lapack_int ldt, const lapack_complex_float *vl, lapack_int ldvl, const lapack_complex_float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m, lapack_complex_float *work, lapack_int ldwork, float *rwork) {
  const char *self = "LAPACKE_ctrsna_work";
  if (!layout_ok(matrix_layout)) return report(self, 1);
  const bool row = matrix_layout == LAPACK_ROW_MAJOR;
  if (row && ldt < std::max<lapack_int>(1, n)) return report(self, 7);
  if (row && ldvl < std::max<lapack_int>(1, trsna_cols(job,mm))) return report(self, 9);
  if (row && ldvr < std::max<lapack_int>(1, trsna_cols(job,mm))) return report(self, 11);
  try {
    ColMajor<const lapack_complex_float> t_(row, row, n, n, t, ldt, false);
    ColMajor<const lapack_complex_float> vl_(row, row, n, trsna_cols(job,mm), vl, ldvl, false);
    ColMajor<const lapack_complex_float> vr_(row, row, n, trsna_cols(job,mm), vr, ldvr, false);
    lapack_int info = 0;
    ::ctrsna(&job, &howmny, select, &n, reinterpret_cast<const orb_complex8 *>(t_.data()), t_.ld(), reinterpret_cast<const orb_complex8 *>(vl_.data()), vl_.ld(), reinterpret_cast<const orb_complex8 *>(vr_.data()), vr_.ld(), s, sep, &mm, m, reinterpret_cast<orb_complex8 *>(work), &ldwork, rwork, &info, 1, 1);
    return info < 0 ? info - 1 : info;
  } catch (const std::bad_alloc &) {
    return out_of_memory(self, LAPACK_TRANSPOSE_MEMORY_ERROR);
  }
}

lapack_int LAPACKE_ctrsna(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const lapack_complex_float *t, lapack_int ldt, const lapack_complex_float *vl, lapack_int ldvl, const lapack_complex_float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m) {
  if (!layout_ok(matrix_layout)) return report("LAPACKE_ctrsna", 1);
  std::vector<lapack_complex_float> work;
  std::vector<float> rwork;
  try {
    work.resize(static_cast<std::size_t>(std::max<lapack_int>(1, trsna_work_rows(job,n)*(n+6))));
    rwork.resize(static_cast<std::size_t>(std::max<lapack_int>(1, n)));
  } catch (const std::bad_alloc &) {
    return out_of_memory("LAPACKE_ctrsna", LAPACK_WORK_MEMORY_ERROR);
  }
  return LAPACKE_ctrsna_work(matrix_layout, job, howmny, select, n, t, ldt, vl, ldvl, vr, ldvr, s, sep, mm, m, work.data(), std::max<lapack_int>(1, trsna_work_rows(job,n)), rwork.data());
}

}  // extern "C"
