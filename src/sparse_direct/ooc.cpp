// Out-of-core storage: settings, the file layer and a factor's files.
#include "sparse_direct/ooc.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "service/catalogue.h"
#include "sparse_direct/messages.h"

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace orb::sparse::ooc {

namespace {

constexpr int kBuffer = 1000;  // characters of an environment value or a line

// An environment variable's value, or false when it is unset or does not
// fit the buffer.
bool environment(const char *name, char (&value)[kBuffer]) {
  const char *v = std::getenv(name);
  if (!v || std::strlen(v) >= std::size_t(kBuffer)) return false;
  std::strcpy(value, v);
  return true;
}

const char *const kKeyPath = "orb_tessera_ooc_path";
const char *const kKeyMaxCore = "orb_tessera_ooc_max_core_size";
const char *const kKeyKeep = "orb_tessera_ooc_keep_file";

void trim_right(std::string &s) {
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.pop_back();
}

// One line of the configuration file: a comment cut, a key, "=", a value.
// Keys whose variable was set (`fixed`) and unknown keys are ignored.
void parse_line(const char *line, const bool fixed[3], Settings *out) {
  char body[kBuffer], field[kBuffer], key[kBuffer];
  // The part before the first "#"; nothing for a comment or an empty line.
  if (std::sscanf(line, "%999[^#\n]", body) != 1) return;
  if (std::sscanf(body, "%999[^#=\t\n]", field) != 1) return;
  if (std::sscanf(field, "%999s", key) != 1) return;
  for (char *c = key; *c; ++c) *c = char(std::tolower(static_cast<unsigned char>(*c)));
  const int which = std::strcmp(key, kKeyPath) == 0      ? 0
                    : std::strcmp(key, kKeyMaxCore) == 0 ? 1
                    : std::strcmp(key, kKeyKeep) == 0    ? 2
                                                         : -1;
  if (which < 0 || fixed[which] || !std::strchr(body, '=')) return;
  // Split at "=" and blanks: the key again, then the value's first word and
  // the rest of the line.
  const char *p = body;
  const char *const seps = " \t=";
  p += std::strspn(p, seps);
  p += std::strcspn(p, seps);
  p += std::strspn(p, seps);
  if (!*p) return;
  if (which == 0) {
    const std::size_t word = std::strcspn(p, " \t");
    std::string value(p, word);
    const char *rest = p + word;
    rest += std::strspn(rest, " \t");
    if (*rest) value += ' ' + std::string(rest);
    trim_right(value);
    out->path = value;
  } else {
    int v;
    if (std::sscanf(p, "%d", &v) != 1) return;
    (which == 1 ? out->max_core_mb : out->keep_files) = v;
  }
}

}  // namespace

std::string config_file_name(const std::string &directory, const std::string &name) {
  // The separator is put in even without a directory: the file is then
  // looked for at the root of the current drive.
  return directory + "\\" + name;
}

Settings read_settings(int msglvl) {
  Settings st;
  const bool echo = msglvl > 0;
  char value[kBuffer];
  std::string directory, name = "tessera_ooc.cfg";
  if (environment("ORB_TESSERA_OOC_CFG_PATH", value)) {
    directory = value;
    if (echo) msg::print(msg::kOocConfigPath, value);
  }
  if (environment("ORB_TESSERA_OOC_CFG_FILE_NAME", value)) {
    name = value;
    if (echo) msg::print(msg::kOocConfigFileName, value);
  }
  const std::string file = config_file_name(directory, name);
  bool fixed[3] = {false, false, false};
  if (environment("ORB_TESSERA_OOC_PATH", value)) {
    st.path = value;
    fixed[0] = true;
    if (echo) msg::print(msg::kOocDataPath, value);
  }
  if (environment("ORB_TESSERA_OOC_MAX_CORE_SIZE", value)) {
    int v;
    if (std::sscanf(value, "%d", &v) == 1) st.max_core_mb = v;
    fixed[1] = true;
    if (echo) msg::print(msg::kOocMaxCoreSize, value);
  }
  if (environment("ORB_TESSERA_OOC_KEEP_FILE", value)) {
    int v;
    if (std::sscanf(value, "%d", &v) == 1) st.keep_files = v;
    fixed[2] = true;
    if (echo) msg::print(msg::kOocKeepFile, value);
  }
  if (fixed[0] && fixed[1] && fixed[2]) return st;

  std::FILE *f = std::fopen(file.c_str(), "r+t");
  if (!f) {
    if (echo) msg::print(msg::kOocConfigOpenFailed, file.c_str());
    return st;
  }
  st.config_opened = true;
  // A line, then its line end; a last line without one is still taken.
  std::vector<char> line(kBuffer), ends(kBuffer);
  for (;;) {
    line[0] = '\0';
    if (std::fscanf(f, "%999[^\n]", line.data()) == EOF) break;
    const bool last = std::fscanf(f, "%999[\n]", ends.data()) == EOF;
    parse_line(line.data(), fixed, &st);
    if (last) break;
  }
  std::fclose(f);
  return st;
}

const char *condition_format(Condition c) {
  switch (c) {
    case Condition::kOpen:
      return " TESSERA_OOC_OPEN_FILE_ERROR occured: %s";
    case Condition::kOpenMode:
      return " TESSERA_OOC_OPEN_MODE_FILE_ERROR occured: %s";
    case Condition::kClose:
      return " TESSERA_OOC_CLOSE_FILE_ERROR occured: %s";
    case Condition::kDelete:
      return " TESSERA_OOC_DELETE_FILE_ERROR occured: %s";
    case Condition::kReadNothing:
      return " TESSERA_OOC_NUMBER_OF_READ_EQUAL_ZERO occured: %s";
    case Condition::kReadShort:
      return " TESSERA_OOC_NUMBER_OF_READ_NOT_EQUAL_COUNT occured: %s";
    case Condition::kWriteNothing:
      return " TESSERA_OOC_NUMBER_OF_WRITE_EQUAL_ZERO occured: %s";
    case Condition::kWriteShort:
      return " TESSERA_OOC_NUMBER_OF_WRITE_NOT_EQUAL_COUNT occured: %s";
    case Condition::kReadEof:
      return " TESSERA_OOC_READ_EOF_ERROR occured: %s";
    case Condition::kWriteEof:
      return " TESSERA_OOC_WRITE_EOF_ERROR occured: %s";
    case Condition::kReadSeek:
      return " TESSERA_OOC_READ_SEEK_ERROR occured: %s";
    case Condition::kWriteSeek:
      return " TESSERA_OOC_WRITE_SEEK_ERROR occured: %s";
    case Condition::kReadArguments:
      return " TESSERA_OOC_READ_INPUT_PARAMETERS_INCORRECT occured: %s";
    case Condition::kWriteArguments:
      return " TESSERA_OOC_WRITE_INPUT_PARAMETERS_INCORRECT occured: %s";
  }
  return "";
}

std::string data_file_stem(const std::string &prefix, int handle_serial, int mnum) {
#ifdef _WIN32
  const int process = _getpid();
#else
  const int process = int(getpid());
#endif
  return prefix + "_" + std::to_string(process) + "_" + std::to_string(handle_serial) + "_" +
         std::to_string(mnum) + ".";
}

int next_handle_serial() {
  static std::atomic<int> serial{0};
  return ++serial;
}

namespace {

void report(Condition c, const char *label) {
  text::put(text::format(condition_format(c), label));
}

[[noreturn]] void fail(Condition c, const char *label) {
  report(c, label);
  throw Failure{c, label};
}

// One data file through the C runtime's streams.
class DataFile {
 public:
  DataFile() = default;
  DataFile(const DataFile &) = delete;
  DataFile &operator=(const DataFile &) = delete;
  ~DataFile() {
    if (f_) std::fclose(f_);
  }

  bool is_open() const { return f_ != nullptr; }

  void open(const std::string &name, const char *mode, const char *label) {
    if (std::strcmp(mode, "wb") != 0 && std::strcmp(mode, "rb") != 0)
      fail(Condition::kOpenMode, label);
    f_ = std::fopen(name.c_str(), mode);
    if (!f_) fail(Condition::kOpen, label);
    // Large transfers go straight through; the buffer serves the small ones.
    std::setvbuf(f_, nullptr, _IOFBF, std::size_t(1) << 20);
  }

  void write(const void *p, std::size_t size, std::size_t count, const char *label) {
    if (!f_ || (!p && count > 0)) fail(Condition::kWriteArguments, label);
    if (count == 0) return;
    const std::size_t done = std::fwrite(p, size, count, f_);
    if (done == 0) fail(Condition::kWriteNothing, label);
    if (done != count) fail(Condition::kWriteShort, label);
  }

  void read(void *p, std::size_t size, std::size_t count, const char *label) {
    if (!f_ || (!p && count > 0)) fail(Condition::kReadArguments, label);
    if (count == 0) return;
    const std::size_t done = std::fread(p, size, count, f_);
    if (done == 0) fail(std::feof(f_) ? Condition::kReadEof : Condition::kReadNothing, label);
    if (done != count) fail(Condition::kReadShort, label);
  }

  void seek(std::int64_t offset, const char *label) {
#ifdef _WIN32
    const int r = _fseeki64(f_, offset, SEEK_SET);
#else
    const int r = fseeko(f_, off_t(offset), SEEK_SET);
#endif
    if (r != 0) fail(Condition::kReadSeek, label);
  }

  void flush(const char *label) {
    if (f_ && std::fflush(f_) != 0) fail(Condition::kWriteShort, label);
  }

  // Closing flushes: a full disk may show here first.
  void close(const char *label) {
    if (!f_) return;
    std::FILE *f = f_;
    f_ = nullptr;
    if (std::fclose(f) != 0) fail(Condition::kClose, label);
  }

 private:
  std::FILE *f_ = nullptr;
};

template <class T>
class FactorFiles final : public BlockStore<T> {
 public:
  FactorFiles(FactorKind kind, const std::string &stem, std::int64_t budget, bool keep)
      : lu_(kind == FactorKind::kLu),
        pivoted_(kind != FactorKind::kCholesky),
        stem_(stem),
        budget_(budget),
        keep_(keep) {}

  ~FactorFiles() override {
    in_values_.reset();
    in_rows_.reset();
    back_lower_.reset();
    back_upper_.reset();
    out_lower_.reset();
    out_upper_.reset();
    out_rows_.reset();
    if (keep_) return;
    for (const char *cls : {"lnz", "unz", "lindx", "luperm"}) {
      const std::string name = stem_ + cls;
      if (!created(cls)) continue;
      // A file already gone is not a failure.
      errno = 0;
      if (std::remove(name.c_str()) != 0 && errno != ENOENT)
        report(Condition::kDelete, "release: delete data file");
    }
  }

  std::int64_t budget() const override { return budget_; }
  const Symbolic &symbolic() const override { return s_; }

  void begin_write(Symbolic s) override {
    s_ = std::move(s);
    // Solve panels: runs of consecutive supernodes of at most half the
    // budget of values (one supernode when it alone is larger).
    const std::int64_t panel_bytes = std::max<std::int64_t>(budget_ / 2, 1);
    panel_first_.assign(1, 0);
    for (int t = 0; t < s_.nsuper; ++t) {
      const std::int64_t start = s_.value_ptr[panel_first_.back()];
      if (t > panel_first_.back() &&
          std::int64_t(sizeof(T)) * (s_.value_ptr[t + 1] - start) > panel_bytes)
        panel_first_.push_back(t);
    }
    panel_first_.push_back(s_.nsuper);
    panel_of_.resize(s_.nsuper);
    for (std::size_t p = 0; p + 1 < panel_first_.size(); ++p)
      for (int t = panel_first_[p]; t < panel_first_[p + 1]; ++t) panel_of_[t] = int(p);

    const char *open_lnz =
        lu_ ? "blklu_unsym_ooc: open file for storing lnz" : "blkl: open file for storing lnz";
    out_lower_ = std::make_unique<DataFile>();
    made_ |= 1;
    out_lower_->open(stem_ + "lnz", "wb", open_lnz);
    if (lu_) {
      out_upper_ = std::make_unique<DataFile>();
      made_ |= 2;
      out_upper_->open(stem_ + "unz", "wb", "blklu_unsym_ooc: open file for storing unz");
    }
    out_rows_ = std::make_unique<DataFile>();
    made_ |= 4;
    out_rows_->open(stem_ + "lindx", "wb", "blkl: open file for storing lindx");
  }

  void put(int t, const T *lower, const T *upper) override {
    const std::size_t size = std::size_t(s_.nrows(t)) * s_.ncols(t);
    out_lower_->write(lower, sizeof(T), size,
                      lu_ ? "blklu_unsym_ooc write lnz 2" : "blkl: write lnz");
    if (lu_) out_upper_->write(upper, sizeof(T), size, "blklu_unsym_ooc write unz 2");
    out_rows_->write(s_.rows.data() + s_.row_ptr[t], sizeof(int), std::size_t(s_.nrows(t)),
                     "blkl: write lindx");
    written_ = t + 1;
  }

  void load(int t, T *lower, T *upper) override {
    // What the stream still buffers goes to the files first.
    if (t >= flushed_) {
      out_lower_->flush(lu_ ? "blklu_unsym_ooc write lnz 2" : "blkl: write lnz");
      if (lu_) out_upper_->flush("blklu_unsym_ooc write unz 2");
      flushed_ = written_;
    }
    if (!back_lower_) {
      back_lower_ = std::make_unique<DataFile>();
      back_lower_->open(stem_ + "lnz", "rb", "blkl: open file for reading lnz");
      if (lu_) {
        back_upper_ = std::make_unique<DataFile>();
        back_upper_->open(stem_ + "unz", "rb", "blkl: open file for reading unz");
      }
    }
    const std::size_t size = std::size_t(s_.nrows(t)) * s_.ncols(t);
    const std::int64_t at = s_.value_ptr[t] * std::int64_t(sizeof(T));
    const char *lower_label = lu_ ? "blklu_unsym_ooc read lnz 1" : "blkl: read lnz";
    back_lower_->seek(at, lower_label);
    back_lower_->read(lower, sizeof(T), size, lower_label);
    if (lu_) {
      back_upper_->seek(at, "blklu_unsym_ooc read unz 1");
      back_upper_->read(upper, sizeof(T), size, "blklu_unsym_ooc read unz 1");
    }
  }

  void end_write(const std::vector<int> &pivot) override {
    back_lower_.reset();
    back_upper_.reset();
    out_lower_->close(lu_ ? "blklu_unsym_ooc: close file with lnz" : "blkl: close file with lnz");
    if (lu_) out_upper_->close("blklu_unsym_ooc: close file with unz");
    out_rows_->close("blkl: close file with lindx");
    if (!pivoted_) return;
    DataFile perm;
    made_ |= 8;
    perm.open(stem_ + "luperm", "wb", "do_all: open file for storing luperm");
    const std::size_t n = std::size_t(s_.n);
    perm.write(pivot.data(), sizeof(int), n, "inv_perm_mod_mod: write luperm");
    perm.write(pivot.data() + n, sizeof(int), n, "inv_perm_mod_mod: write luperm(part2)");
    perm.close("do_all: close file with luperm");
  }

  void begin_read(bool upper, bool backward) override {
    in_values_ = std::make_unique<DataFile>();
    in_rows_ = std::make_unique<DataFile>();
    upper_ = upper;
    backward_ = backward;
    loaded_ = -1;
    in_values_->open(stem_ + (upper ? "unz" : "lnz"), "rb",
                     upper ? "blkl: open file for reading unz" : "blkl: open file for reading lnz");
    in_rows_->open(stem_ + "lindx", "rb", "blkl: open file for reading lindx");
  }

  const T *get(int t, const int **rows) override {
    const int p = panel_of_[t];
    if (p != loaded_) load(p);
    const int t0 = panel_first_[p];
    *rows = rows_.data() + (s_.row_ptr[t] - s_.row_ptr[t0]);
    return values_.data() + (s_.value_ptr[t] - s_.value_ptr[t0]);
  }

  const int *pivot() override {
    DataFile perm;
    perm.open(stem_ + "luperm", "rb", "do_all: open file for reading luperm");
    pivot_.resize(2 * std::size_t(s_.n));
    perm.read(pivot_.data(), sizeof(int), pivot_.size(), "do_all: read luperm");
    perm.close("do_all: close file with luperm");
    return pivot_.data();
  }

 private:
  bool created(const char *cls) const {
    const int bit = std::strcmp(cls, "lnz") == 0     ? 1
                    : std::strcmp(cls, "unz") == 0   ? 2
                    : std::strcmp(cls, "lindx") == 0 ? 4
                                                     : 8;
    return (made_ & bit) != 0;
  }

  // Panel p of the pass's factor and of the row indices; the files close
  // once the pass's last panel is in.
  void load(int p) {
    const int t0 = panel_first_[p], t1 = panel_first_[p + 1];
    const char *values_label = !backward_ ? "blkslv_unsym_ooc read for forward step"
                               : upper_   ? "blkslv_unsym_ooc read unz for backward step"
                                          : "blkslv_unsym_ooc read lnz for backward step";
    const char *rows_label = backward_ ? "blkslv_unsym_ooc read lindx for backward step"
                                       : "blkslv_unsym_ooc read 1 lindx";
    if (!in_values_->is_open()) fail(Condition::kReadArguments, values_label);
    const std::int64_t v0 = s_.value_ptr[t0], v1 = s_.value_ptr[t1];
    const std::int64_t r0 = s_.row_ptr[t0], r1 = s_.row_ptr[t1];
    values_.resize(std::size_t(v1 - v0));
    rows_.resize(std::size_t(r1 - r0));
    in_values_->seek(v0 * std::int64_t(sizeof(T)), values_label);
    in_values_->read(values_.data(), sizeof(T), values_.size(), values_label);
    in_rows_->seek(r0 * std::int64_t(sizeof(int)), rows_label);
    in_rows_->read(rows_.data(), sizeof(int), rows_.size(), rows_label);
    loaded_ = p;
    const int last = backward_ ? 0 : int(panel_first_.size()) - 2;
    if (p == last) {
      in_values_->close(upper_ ? "blklu_unsym_ooc: close file with unz"
                               : "blkl: close file with lnz");
      in_rows_->close("blkl: close file with lindx");
    }
  }

  Symbolic s_;
  const bool lu_, pivoted_;
  const std::string stem_;
  const std::int64_t budget_;
  const bool keep_;
  int written_ = 0, flushed_ = 0;  // supernodes written, and flushed to the files
  int made_ = 0;                   // the files created, by class bit
  std::vector<int> panel_first_, panel_of_;
  std::unique_ptr<DataFile> out_lower_, out_upper_, out_rows_;
  std::unique_ptr<DataFile> back_lower_, back_upper_;  // the factorization's reads
  std::unique_ptr<DataFile> in_values_, in_rows_;
  bool upper_ = false, backward_ = false;
  int loaded_ = -1;
  std::vector<T> values_;
  std::vector<int> rows_, pivot_;
};

}  // namespace

template <class T>
std::shared_ptr<BlockStore<T>> make_factor_files(FactorKind kind, const std::string &stem,
                                                 std::int64_t budget, bool keep_files) {
  return std::make_shared<FactorFiles<T>>(kind, stem, budget, keep_files);
}

template std::shared_ptr<BlockStore<double>> make_factor_files<double>(FactorKind,
                                                                       const std::string &,
                                                                       std::int64_t, bool);
template std::shared_ptr<BlockStore<std::complex<double>>> make_factor_files<std::complex<double>>(
    FactorKind, const std::string &, std::int64_t, bool);

}  // namespace orb::sparse::ooc
