// Out-of-core storage of the sparse direct solver: the settings (environment
// and configuration file), the file layer with its failure vocabulary, and
// the files that hold a factor.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "sparse_direct/numeric.h"

namespace orb::sparse::ooc {

// The settings of out-of-core mode.
struct Settings {
  std::string path = "ooc_temp";  // prefix of the data files
  int max_core_mb = 2000;         // the most core the factor may take, megabytes
  int keep_files = 1;             // 0: the data files are deleted at release
  bool config_opened = false;     // the configuration file was read
};

// Reads the settings: the defaults, the environment, then the configuration
// file for whatever the environment left unset. With msglvl > 0 every
// variable found is echoed and a configuration file that cannot be opened is
// reported. A missing file is not an error.
Settings read_settings(int msglvl);

// The configuration file's full name: the directory, a backslash, the name.
std::string config_file_name(const std::string &directory, const std::string &name);

// Conditions of the file layer.
enum class Condition {
  kOpen,
  kOpenMode,
  kClose,
  kDelete,
  kReadNothing,
  kReadShort,
  kWriteNothing,
  kWriteShort,
  kReadEof,
  kWriteEof,
  kReadSeek,
  kWriteSeek,
  kReadArguments,
  kWriteArguments,
};
// " TESSERA_OOC_..._ERROR occured: %s"
const char *condition_format(Condition c);

// A failure of the file layer, printed when it is raised and thrown to the
// phase driver, which ends the phase with it.
struct Failure {
  Condition condition;
  const char *label;  // the failing operation
};

// Data files of one factorization: `prefix` + "_<process>_<handle>_<mnum>."
// + the array class ("lnz", "unz", "lindx", "luperm").
std::string data_file_stem(const std::string &prefix, int handle_serial, int mnum);

// A serial number per handle of the process, for the data files' names.
int next_handle_serial();

// The files of one out-of-core factor of at most `budget` bytes in core. The
// blocks are written in postorder as the factorization finishes them; a
// solve pass reads them back in panels of consecutive supernodes of at most
// half the budget (one block when a block is larger), forward or backward.
template <class T>
std::shared_ptr<BlockStore<T>> make_factor_files(FactorKind kind, const std::string &stem,
                                                 std::int64_t budget, bool keep_files);

}  // namespace orb::sparse::ooc
