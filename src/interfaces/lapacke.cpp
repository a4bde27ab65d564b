// The message of the LAPACKE entries: a bad argument goes through XERBLA
// under the entry's name with its position in the C argument list; a failed
// allocation is written to the error stream.
#include <cstdio>
#include <cstring>

#include "lapacke_support.h"

extern "C" ORB_API void LAPACKE_xerbla(const char *name, lapack_int info) {
  if (info == LAPACK_WORK_MEMORY_ERROR || info == LAPACK_TRANSPOSE_MEMORY_ERROR) {
    std::fprintf(stderr, "%s: not enough memory to allocate the %s\n", name,
                 info == LAPACK_WORK_MEMORY_ERROR ? "workspace" : "transposed matrix");
    return;
  }
  if (info >= 0) return;
  int position = -info;
  XERBLA(name, &position, static_cast<int>(std::strlen(name)));
}
