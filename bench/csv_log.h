// Machine-readable results beside the printed tables: each benchmark given
// --csv FILE appends one row per library and measurement, which
// tools/perf_plot.py draws.
//
//   routine,shape,threads,library,target,value,unit,spread_pct
//
// value is in unit (GFLOP/s, GB/s, us or s); spread_pct is the slowest repeat
// against the fastest, in percent (empty with a single repeat).
#pragma once

#include <cstdio>
#include <string>

namespace orb::bench {

#if defined(_WIN32)
inline constexpr const char *kTarget = "win32";
#else
inline constexpr const char *kTarget = "linux-x64";
#endif

class CsvLog {
 public:
  ~CsvLog() {
    if (file_) std::fclose(file_);
  }
  // Appends to path, starting it with the column names when it is new.
  bool open(const char *path) {
    file_ = std::fopen(path, "a");
    if (!file_) return false;
    std::fseek(file_, 0, SEEK_END);
    if (std::ftell(file_) == 0)
      std::fputs("routine,shape,threads,library,target,value,unit,spread_pct\n", file_);
    return true;
  }
  void row(const std::string &routine, const std::string &shape, int threads,
           const std::string &library, double value, const char *unit, double spread_pct) {
    if (!file_ || !(value > 0)) return;
    std::fprintf(file_, "%s,%s,%d,%s,%s,%.6g,%s,", routine.c_str(), shape.c_str(), threads,
                 library.c_str(), kTarget, value, unit);
    if (spread_pct >= 0) std::fprintf(file_, "%.2f", spread_pct);
    std::fputc('\n', file_);
    std::fflush(file_);
  }

 private:
  std::FILE *file_ = nullptr;
};

// The log of this run (closed until a benchmark opens it).
inline CsvLog &csv() {
  static CsvLog log;
  return log;
}

}  // namespace orb::bench
