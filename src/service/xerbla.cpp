#include <atomic>
#include <cstring>

#include "orb.h"
#include "service/catalogue.h"
#include "service/report.h"

namespace orb {
namespace {

constexpr int kMaxNameLength = 20;

// Empty at load; written without a lock, every writer storing the same value.
std::atomic<ReportFn> g_hook{nullptr};

}  // namespace

void xerbla_forwarder(const char *name, const int *code, int name_len) {
  XERBLA(name, code, name_len);
}

void install_error_hook() {
  g_hook.store(&xerbla_forwarder, std::memory_order_relaxed);
}

ReportFn error_hook() {
  return g_hook.load(std::memory_order_relaxed);
}

void report(const char *name, const int *code, int name_len) {
  if (ReportFn hook = g_hook.load(std::memory_order_relaxed))
    hook(name, code, name_len);
  else
    XERBLA(name, code, name_len);
}

void report_code(const char *name6, int code) {
  report(name6, &code, 6);
}

}  // namespace orb

extern "C" ORB_API void XERBLA(const char *name, const int *info, int name_len) {
  char local[orb::kMaxNameLength + 1];
  int length = name_len < 0 ? 0 : (name_len > orb::kMaxNameLength ? orb::kMaxNameLength : name_len);
  if (length > 0) std::memcpy(local, name, static_cast<size_t>(length));
  local[length] = '\0';

  const int code = *info;
  if (code == 1000)
    orb::msg::print(orb::msg::kNoWorkMemory, local);
  else if (code == 1001)
    orb::msg::print(orb::msg::kIncompatibleOptions, local);
  else if (code <= 0)
    orb::msg::print(orb::msg::kCondition, -code, local);
  else
    orb::msg::print(orb::msg::kParameterIncorrect, code, local);
}
