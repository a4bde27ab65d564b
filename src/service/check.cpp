#include "service/check.h"

#include <cstring>

#include "service/report.h"

namespace orb::check {
namespace {

int int_arg(const void *const *args, int pos) {
  return *static_cast<const int *>(args[pos - 1]);
}
char char_arg(const void *const *args, int pos) {
  return upper(*static_cast<const char *>(args[pos - 1]));
}

int dim_value(const Dim &d, const void *const *args) {
  if (d.if_pos == 0) return int_arg(args, d.then_pos);
  return char_arg(args, d.if_pos) == d.ch ? int_arg(args, d.then_pos) : int_arg(args, d.else_pos);
}

bool passes(const Test &t, const void *const *args) {
  switch (t.op) {
    case Op::kOption: {
      char c = char_arg(args, t.pos);
      return c != '\0' && std::strchr(t.options, c) != nullptr;
    }
    case Op::kNonNegative:
      return int_arg(args, t.pos) >= 0;
    case Op::kNonZero:
      return int_arg(args, t.pos) != 0;
    case Op::kLeadingDim: {
      int rows = dim_value(t.dim, args);
      return int_arg(args, t.pos) >= (rows > 1 ? rows : 1);
    }
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

}  // namespace orb::check
