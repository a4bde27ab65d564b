// The plain loops the streaming benchmark holds ORB's host routines against
// (host_stream_plain.cpp, compiled for the build machine).
#pragma once

#include "orb.h"

namespace orb::bench::plain {

void add_value(const float *s, float *d, float v, unsigned n);
void scale_by_value_c(const orb_complex8 *s, orb_complex8 *d, const orb_complex8 *v, unsigned n);
void div_vec_cc(const orb_complex8 *a, const orb_complex8 *b, orb_complex8 *d, unsigned n);
void pack_strided(unsigned n, const orb_complex8 *s, int inc, orb_complex8 *d);
void unpack_strided(unsigned n, const orb_complex8 *s, orb_complex8 *d, int inc);
unsigned pack_by_mask(unsigned n, const float *s, float *d, const int *mask);
unsigned cum_sum(const float *s, float *d, unsigned n);
void pack_strided_real(int n, const float *a, int inc, float *y);
void unpack_strided_real(int n, const float *a, float *y, int inc);

}  // namespace orb::bench::plain
