// Small pieces the band routines share.
#pragma once

#include "common/scalar.h"

namespace orb::lapack::band_detail {

// The real work vectors of the routines that take them from WORK for real
// data and from RWORK for complex data.
template <class T>
real_t<T> *real_work(T *work, real_t<T> *rwork) {
  if constexpr (is_complex_v<T>) {
    (void)work;
    return rwork;
  } else {
    (void)rwork;
    return work;
  }
}

}  // namespace orb::lapack::band_detail
