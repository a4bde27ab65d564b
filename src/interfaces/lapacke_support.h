// The pieces every generated LAPACKE entry shares: the layout test, the
// argument report, the workspace length from a query, and the column-major
// copy of a row-major matrix argument.
#ifndef ORB_INTERFACES_LAPACKE_SUPPORT_H
#define ORB_INTERFACES_LAPACKE_SUPPORT_H

#include <algorithm>
#include <complex>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "orb.h"
#include "orb_lapacke.h"

namespace orb::lapacke {

inline bool layout_ok(int layout) {
  return layout == LAPACK_ROW_MAJOR || layout == LAPACK_COL_MAJOR;
}

// Whether a side argument puts the orthogonal factor on the left.
inline bool left(char side) {
  return side == 'L' || side == 'l';
}

// The shapes of gesdd's singular vectors: U is m x svd_u_cols, V^T is
// svd_vt_rows x n; a factor that is not computed has no columns (rows).
inline lapack_int svd_u_cols(char jobz, lapack_int m, lapack_int n) {
  const char j = static_cast<char>(jobz | 0x20);
  if (j == 'a') return m;
  if (j == 's' || (j == 'o' && m < n)) return std::min(m, n);
  return 0;
}
inline lapack_int svd_vt_rows(char jobz, lapack_int m, lapack_int n) {
  const char j = static_cast<char>(jobz | 0x20);
  if (j == 'a' || (j == 'o' && m >= n)) return n;
  if (j == 's') return std::min(m, n);
  return 0;
}
// The shape of gesvd's singular vectors for job jobu (jobvt): all `full`
// columns of U (rows of V^T), the leading min(m, n), or none.
inline lapack_int svd_vectors(char job, lapack_int full, lapack_int m, lapack_int n) {
  const char j = static_cast<char>(job | 0x20);
  if (j == 'a') return full;
  if (j == 's') return std::min(m, n);
  return 0;
}
// The columns of geev's left or right eigenvector matrix.
inline lapack_int eig_v_cols(char job, lapack_int n) {
  return (job | 0x20) == 'v' ? n : 0;
}
// The columns of an eigenvector matrix the compz argument asks to form or
// update ('N': none).
inline lapack_int z_cols(char compz, lapack_int n) {
  return (compz | 0x20) == 'n' ? 0 : n;
}
// The columns of trevc's left (which = 'l') or right ('r') vectors: mm when
// side asks for them or for both.
inline lapack_int side_cols(char side, char which, lapack_int mm) {
  const char s = static_cast<char>(side | 0x20);
  return s == 'b' || s == which ? mm : 0;
}
// The reflector array of ormbr: with vect 'Q' an nq x min(nq, k) array of
// the column reflectors, with 'P' a min(nq, k) x nq array of the row ones,
// nq being the order of the factor applied.
inline lapack_int bidiag_rows(char vect, char side, lapack_int m, lapack_int n, lapack_int k) {
  const lapack_int nq = left(side) ? m : n;
  return (vect | 0x20) == 'q' ? nq : std::min(nq, k);
}
inline lapack_int bidiag_cols(char vect, char side, lapack_int m, lapack_int n, lapack_int k) {
  const lapack_int nq = left(side) ? m : n;
  return (vect | 0x20) == 'q' ? std::min(nq, k) : nq;
}
// trsna reads the eigenvector matrices (mm columns) unless job asks for the
// separations alone ('V'), and needs its work matrix only for them.
inline lapack_int trsna_cols(char job, lapack_int mm) {
  return (job | 0x20) == 'v' ? 0 : mm;
}
inline lapack_int trsna_work_rows(char job, lapack_int n) {
  return (job | 0x20) == 'e' ? 1 : n;
}
// The real workspace of cgesdd.
inline lapack_int svd_rwork(char jobz, lapack_int m, lapack_int n) {
  const lapack_int k = std::min(m, n), l = std::max(m, n);
  if ((jobz | 0x20) == 'n') return 7 * k;
  return k * std::max(5 * k + 7, 2 * l + 2 * k + 1);
}

// The columns of the eigenvector matrix of a ranged eigensolver: all n for
// the whole spectrum or an interval, iu - il + 1 for an index range, none
// without vectors.
inline lapack_int eig_z_cols(char jobz, char range, lapack_int n, lapack_int il, lapack_int iu) {
  if ((jobz | 0x20) != 'v') return 0;
  if ((range | 0x20) == 'i') return std::max<lapack_int>(0, iu - il + 1);
  return n;
}

// Reports argument `position` of `name` and returns the code the entry gives.
inline lapack_int report(const char *name, lapack_int position) {
  LAPACKE_xerbla(name, -position);
  return -position;
}
inline lapack_int out_of_memory(const char *name, lapack_int code) {
  LAPACKE_xerbla(name, code);
  return code;
}

// The optimal length a workspace query returned in its first element.
inline lapack_int workspace_length(float size) {
  return std::max<lapack_int>(1, static_cast<lapack_int>(size));
}
inline lapack_int workspace_length(lapack_int size) {
  return std::max<lapack_int>(1, size);
}
inline lapack_int workspace_length(std::complex<float> size) {
  return workspace_length(size.real());
}

// The column-major view of a caller's matrix. Column-major arguments are used
// in place; a row-major one is transposed into a packed copy (leading
// dimension max(1, rows)) and, if the routine writes it, back on destruction.
// Without `copy` (a workspace query) only the leading dimension is adjusted.
template <class T>
class ColMajor {
  using Value = std::remove_const_t<T>;

 public:
  ColMajor(bool row, bool copy, lapack_int rows, lapack_int cols, T *user, lapack_int ld,
           bool write_back)
      : user_(user), rows_(rows), cols_(cols), user_ld_(ld), write_back_(write_back && copy) {
    ld_ = row ? std::max<lapack_int>(1, rows) : ld;
    if (!row || !copy || user == nullptr) return;
    copy_.resize(static_cast<std::size_t>(ld_) * static_cast<std::size_t>(std::max(cols, 0)));
    for (lapack_int i = 0; i < rows; ++i)
      for (lapack_int j = 0; j < cols; ++j) copy_[at(i, j, ld_)] = user[at(j, i, user_ld_)];
    copied_ = true;
  }
  ~ColMajor() {
    if (!copied_ || !write_back_) return;
    if constexpr (!std::is_const_v<T>)
      for (lapack_int i = 0; i < rows_; ++i)
        for (lapack_int j = 0; j < cols_; ++j) user_[at(j, i, user_ld_)] = copy_[at(i, j, ld_)];
  }
  ColMajor(const ColMajor &) = delete;
  ColMajor &operator=(const ColMajor &) = delete;

  T *data() { return copied_ ? copy_.data() : user_; }
  const lapack_int *ld() const { return &ld_; }

 private:
  static std::size_t at(lapack_int i, lapack_int j, lapack_int ld) {
    return static_cast<std::size_t>(i) + static_cast<std::size_t>(j) * static_cast<std::size_t>(ld);
  }
  T *user_;
  lapack_int rows_, cols_, user_ld_, ld_;
  bool write_back_, copied_ = false;
  std::vector<Value> copy_;
};

}  // namespace orb::lapacke

#endif
