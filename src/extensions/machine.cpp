// Machine constants in the classic numbering, for IEEE double (D1MACH) and
// single (R1MACH) precision, base 2.
#include <limits>

#include "orb.h"
#include "service/report.h"

namespace orb::ext {
namespace {

// 1 the smallest positive normal number, 2 the largest, 3 the smallest
// relative spacing b^-t, 4 the largest b^(1-t), 5 log10(b); another index is
// reported as a bad parameter 1 and gives 0.
template <class T>
T machine(const char *name6, const int *index) {
  const int i = *index;
  using L = std::numeric_limits<T>;
  static_assert(L::is_iec559 && L::radix == 2);
  switch (i) {
    case 1:
      return L::min();
    case 2:
      return L::max();
    case 3:
      return L::epsilon() / 2;
    case 4:
      return L::epsilon();
    case 5:
      return static_cast<T>(0.301029995663981195213738894724493027L);
    default:
      report_code(name6, 1);
      return 0;
  }
}

}  // namespace
}  // namespace orb::ext

extern "C" {

ORB_API double D1MACH(const int *i) {
  return orb::ext::machine<double>("D1MACH", i);
}

ORB_API float R1MACH(const int *i) {
  return orb::ext::machine<float>("R1MACH", i);
}

}  // extern "C"
