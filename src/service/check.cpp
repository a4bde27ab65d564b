#include "service/check.h"

#include <cstring>

#include "service/report.h"

namespace orb::check {
namespace {

int dim_value(const Dim &d, Args args) {
  if (d.if_pos == 0) return int_arg(args, d.then_pos);
  const int pos = char_arg(args, d.if_pos) == d.ch ? d.then_pos : d.else_pos;
  return pos == 0 ? 0 : int_arg(args, pos);
}

bool passes(const Test &t, const void *const *args) {
  switch (t.kind) {
    case Kind::kOption: {
      char c = char_arg(args, t.pos);
      return c != '\0' && std::strchr(t.options, c) != nullptr;
    }
    case Kind::kNonNegative:
      return int_arg(args, t.pos) >= 0;
    case Kind::kNonZero:
      return int_arg(args, t.pos) != 0;
    case Kind::kLeadingDim: {
      int rows = dim_value(t.dim, args);
      return int_arg(args, t.pos) >= (rows > 1 ? rows : 1);
    }
    case Kind::kWork: {
      const int lwork = int_arg(args, t.pos);
      return lwork == -1 || lwork >= t.min(args);
    }
    case Kind::kHolds:
      return t.pred(args);
  }
  return false;
}

}  // namespace

int first_failure(const Checker &checker, const void *const *args, std::size_t nargs) {
  for (std::size_t i = 0; i < checker.count; ++i) {
    const Test &t = checker.tests[i];
    if (t.pos == 0 || t.pos > nargs) return -1;  // a malformed table, caught by the tests
    if (!passes(t, args)) return t.pos;
  }
  return 0;
}

int run(const Checker &checker, std::initializer_list<const void *> args) {
  int code = first_failure(checker, args.begin(), args.size());
  if (code != 0) {
    xerbla_forwarder(checker.name, &code, 6);
  }
  return code;
}

bool run_lapack(const Checker &checker, int *info, Args args, std::size_t nargs) {
  const int code = first_failure(checker, args, nargs);
  if (code == 0) return true;
  if (info) *info = -code;
  report(checker.name, &code, 6);
  return false;
}

}  // namespace orb::check
