// Out-of-core mode of the sparse direct solver: the configuration file's
// grammar and its precedence under the environment, the mode decision, the
// factor in files against the factor in core, and failures of the files.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "sparse_direct/ooc.h"
#include "support/child.h"
#include "tessera_kit.h"

#ifndef _WIN32
#include <sys/resource.h>
#include <csignal>
#endif

namespace {

using orb::test::set_env;

using namespace orb::test::tessera;
namespace fs = std::filesystem;
namespace ooc = orb::sparse::ooc;

const char *const kVariables[] = {"ORB_TESSERA_OOC_CFG_PATH", "ORB_TESSERA_OOC_CFG_FILE_NAME",
                                  "ORB_TESSERA_OOC_PATH", "ORB_TESSERA_OOC_MAX_CORE_SIZE",
                                  "ORB_TESSERA_OOC_KEEP_FILE"};

// The environment of one case: the five variables cleared, then those given.
struct Environment {
  explicit Environment(std::initializer_list<std::pair<const char *, const char *>> vars) {
    for (const char *v : kVariables) set_env(v, nullptr);
    for (auto &p : vars) set_env(p.first, p.second);
  }
  ~Environment() {
    for (const char *v : kVariables) set_env(v, nullptr);
  }
};

void write_file(const std::string &name, const std::string &text) {
  std::ofstream(name, std::ios::binary) << text;
}

// The configuration directory of the tests: "cfg" beside the test's working
// directory, and the file name the solver builds from it.
const char *const kDir = "ooc_cfg";
std::string config_at(const char *name) {
  fs::create_directory(kDir);
  return ooc::config_file_name(kDir, name);
}

TEST(OocSettings, TheGrammarCaseByCase) {
  struct Case {
    const char *text;
    const char *path;
    int max_core, keep;
  } cases[] = {
      {"orb_tessera_ooc_path = data/run one\norb_tessera_ooc_max_core_size=500\n"
       "orb_tessera_ooc_keep_file = 0\n",
       "data/run one", 500, 0},
      // Keys are not case-sensitive; blanks around "=" are optional.
      {"ORB_TESSERA_OOC_MAX_CORE_SIZE=12\nOrb_Tessera_Ooc_Keep_File   =   3\n", "ooc_temp", 12, 3},
      // Comments, empty lines, a comment behind a value, a tab before "=".
      {"# a comment\n\n   \norb_tessera_ooc_max_core_size\t= 77 # in megabytes\n"
       "#orb_tessera_ooc_keep_file = 0\n",
       "ooc_temp", 77, 1},
      // A key and a value without "=", an unknown key, a line of "=" only.
      {"orb_tessera_ooc_max_core_size 77\nsome_other_key = 5\n=\n orb_tessera_ooc_path =\n",
       "ooc_temp", 2000, 1},
      // Later lines win; the last line needs no line end.
      {"orb_tessera_ooc_keep_file = 0\norb_tessera_ooc_keep_file = 4", "ooc_temp", 2000, 4},
      // A path keeps its inner blanks, loses the comment and the blanks behind.
      {"orb_tessera_ooc_path =  /scratch/my   factors/f x  # where\r\n", "/scratch/my factors/f x",
       2000, 1},
      // A value that is not a number leaves the setting alone.
      {"orb_tessera_ooc_max_core_size = lots\n", "ooc_temp", 2000, 1},
  };
  Environment env{{"ORB_TESSERA_OOC_CFG_PATH", kDir},
                  {"ORB_TESSERA_OOC_CFG_FILE_NAME", "case.cfg"}};
  const std::string file = config_at("case.cfg");
  // The name is a path under Windows, one file's literal name elsewhere.
  write_file(file, "");
#ifdef _WIN32
  EXPECT_TRUE(fs::exists(fs::path(kDir) / "case.cfg"));
#else
  EXPECT_TRUE(fs::exists("ooc_cfg\\case.cfg"));
  EXPECT_FALSE(fs::exists(fs::path(kDir) / "case.cfg"));
#endif
  for (const Case &c : cases) {
    write_file(file, c.text);
    const ooc::Settings s = ooc::read_settings(0);
    EXPECT_TRUE(s.config_opened);
    EXPECT_EQ(s.path, c.path) << c.text;
    EXPECT_EQ(s.max_core_mb, c.max_core) << c.text;
    EXPECT_EQ(s.keep_files, c.keep) << c.text;
  }
  std::remove(file.c_str());
  fs::remove_all(kDir);
}

TEST(OocSettings, TheEnvironmentWinsAndAllThreeSkipTheFile) {
  const std::string file = config_at("tessera_ooc.cfg");
  write_file(file,
             "orb_tessera_ooc_path = from_file\norb_tessera_ooc_max_core_size = 500\n"
             "orb_tessera_ooc_keep_file = 0\n");
  {
    Environment env{{"ORB_TESSERA_OOC_CFG_PATH", kDir}, {"ORB_TESSERA_OOC_MAX_CORE_SIZE", "9"}};
    const ooc::Settings s = ooc::read_settings(0);
    EXPECT_EQ(s.path, "from_file");
    EXPECT_EQ(s.max_core_mb, 9);
    EXPECT_EQ(s.keep_files, 0);
  }
  {
    Environment env{{"ORB_TESSERA_OOC_CFG_PATH", kDir},
                    {"ORB_TESSERA_OOC_PATH", "env path"},
                    {"ORB_TESSERA_OOC_MAX_CORE_SIZE", "9"},
                    {"ORB_TESSERA_OOC_KEEP_FILE", "7"}};
    const ooc::Settings s = ooc::read_settings(0);
    EXPECT_FALSE(s.config_opened);
    EXPECT_EQ(s.path, "env path");
    EXPECT_EQ(s.keep_files, 7);
  }
  {
    // A value of 1000 characters or more is not read.
    const std::string long_path(1000, 'p');
    Environment env{{"ORB_TESSERA_OOC_CFG_PATH", kDir},
                    {"ORB_TESSERA_OOC_PATH", long_path.c_str()}};
    EXPECT_EQ(ooc::read_settings(0).path, "from_file");
  }
  std::remove(file.c_str());
  fs::remove_all(kDir);
}

#ifndef _WIN32
// Without a directory the name starts with the separator: on this system a
// file of that literal name in the working directory.
TEST(OocSettings, WithoutADirectoryTheNameStartsWithABackslash) {
  Environment env{};
  EXPECT_EQ(ooc::config_file_name("", "tessera_ooc.cfg"), "\\tessera_ooc.cfg");
  write_file("\\tessera_ooc.cfg", "orb_tessera_ooc_keep_file = 0\n");
  EXPECT_EQ(ooc::read_settings(0).keep_files, 0);
  std::remove("\\tessera_ooc.cfg");
}
#endif

// Messages 956-961 with msglvl 1, and nothing printed with msglvl 0.
ORB_CHILD(ooc_echo) {
  ooc::read_settings(0);
  std::printf("--\n");
  ooc::read_settings(1);
  return 0;
}

TEST(OocSettings, VariablesAreEchoedAndAMissingFileReported) {
  const auto r = orb::test::run_child("ooc_echo", {{"ORB_TESSERA_OOC_CFG_PATH", "nowhere"},
                                                   {"ORB_TESSERA_OOC_CFG_FILE_NAME", "x.cfg"},
                                                   {"ORB_TESSERA_OOC_KEEP_FILE", "0"}});
  EXPECT_EQ(r.exit_code, 0);
  EXPECT_EQ(r.out.substr(0, 3), "--\n");
  EXPECT_NE(r.out.find("ORB_TESSERA_OOC_CFG_PATH = nowhere"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("ORB_TESSERA_OOC_CFG_FILE_NAME = x.cfg"), std::string::npos);
  EXPECT_NE(r.out.find("ORB_TESSERA_OOC_KEEP_FILE = 0"), std::string::npos);
  EXPECT_EQ(r.out.find("ORB_TESSERA_OOC_PATH ="), std::string::npos);
  EXPECT_NE(r.out.find("nowhere\\x.cfg"), std::string::npos);
}

// ---- the factor in files -------------------------------------------------------

// The data files of the solver's runs in this test: prefix "ooc_data/f".
const char *const kDataDir = "ooc_data";
int data_files() {
  int count = 0;
  if (fs::exists(kDataDir))
    for (auto &e : fs::directory_iterator(kDataDir)) count += e.is_regular_file();
  return count;
}
std::vector<fs::path> files_named(const std::string &suffix) {
  std::vector<fs::path> out;
  for (auto &e : fs::directory_iterator(kDataDir)) {
    const std::string name = e.path().filename().string();
    if (name.size() > suffix.size() &&
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
      out.push_back(e.path());
  }
  return out;
}

// Runs phase 13 in core and out of core with panels of single supernodes
// (maximal in-core size 0) and returns the largest difference of the two
// solutions relative to the largest entry.
template <class T>
double out_of_core_difference(Csr<T> &m, int mtype, int op, int nrhs) {
  std::vector<T> x[2];
  for (int mode : {0, 2}) {
    Solver s;
    s.mtype = mtype;
    s.nrhs = nrhs;
    s.iparam[59] = mode;
    // iparam(60) survives the defaults only with iparam(1) = 1.
    s.iparam[0] = 1;
    s.iparam[1] = 2;
    s.iparam[9] = mtype == 2 || mtype == 4 ? 0 : mtype == -2 || mtype == -4 || mtype == 6 ? 8 : 13;
    s.iparam[10] = s.iparam[12] = mtype == 11 || mtype == 13 ? 1 : 0;
    s.iparam[11] = op;
    s.iparam[20] = mtype == -2 || mtype == -4 || mtype == 6 ? 1 : 0;
    std::vector<T> b = rhs<T>(m.n, nrhs);
    x[mode / 2].assign(b.size(), T(0));
    EXPECT_EQ(s.call(13, m, b.data(), x[mode / 2].data()), 0) << mtype;
    if (mode == 2) {
      EXPECT_EQ(s.iparam[2], 1);
      EXPECT_GT(data_files(), 0);
    }
  }
  double diff = 0, big = 0;
  for (std::size_t i = 0; i < x[0].size(); ++i) {
    diff = std::max(diff, mag(x[0][i] - x[1][i]));
    big = std::max(big, mag(x[0][i]));
  }
  return diff / big;
}

class OocFactor : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directory(kDataDir); }
  void TearDown() override { fs::remove_all(kDataDir); }
  Environment env{{"ORB_TESSERA_OOC_CFG_PATH", "nowhere"},
                  {"ORB_TESSERA_OOC_PATH", "ooc_data/f"},
                  {"ORB_TESSERA_OOC_MAX_CORE_SIZE", "0"},
                  {"ORB_TESSERA_OOC_KEEP_FILE", "0"}};
};

TEST_F(OocFactor, EqualsTheFactorInCoreForEveryType) {
  auto spd = grid<double>(24, true, 4, -1, -1, -1, -1);
  EXPECT_LT(out_of_core_difference(spd, 2, 0, 2), 1e-12);
  auto sp = saddle(16);
  EXPECT_LT(out_of_core_difference(sp, -2, 0, 1), 1e-12);
  auto cd = grid<double>(24, false, 4, -1.4, -0.6, -1.2, -0.8);
  for (int mt : {1, 11})
    for (int op : {0, 2}) EXPECT_LT(out_of_core_difference(cd, mt, op, 2), 1e-12) << mt << op;
  const c16 i1(0, 1);
  auto herm =
      grid<c16>(20, true, 4.5, -1.0 + 0.3 * i1, -1.0 - 0.3 * i1, -1.0 + 0.2 * i1, -1.0 - 0.2 * i1);
  EXPECT_LT(out_of_core_difference(herm, 4, 0, 1), 1e-12);
  auto hind = grid<c16>(20, true, 4.0 - 1.7, -1.0 + 0.3 * i1, -1.0 - 0.3 * i1, -1.0, -1.0);
  EXPECT_LT(out_of_core_difference(hind, -4, 2, 1), 1e-12);
  auto helm = grid<c16>(20, true, 4.0 - 1.5 + 0.05 * i1, -1, -1, -1, -1);
  EXPECT_LT(out_of_core_difference(helm, 6, 1, 1), 1e-10);
  auto cu = grid<c16>(20, false, c16(4, 1), c16(-1.3, 0.2), c16(-0.7, -0.1), -1.1, -0.9);
  for (int mt : {3, 13}) EXPECT_LT(out_of_core_difference(cu, mt, 1, 2), 1e-12) << mt;
  // The keep-file flag 0: every file went with its handle.
  EXPECT_EQ(data_files(), 0);
}

TEST_F(OocFactor, SolveManyRefactorAndTwoFactorsOnDisk) {
  // One panel holds the whole factor here.
  set_env("ORB_TESSERA_OOC_MAX_CORE_SIZE", "1");
  auto m = grid<double>(20, false, 4, -1.4, -0.6, -1.2, -0.8);
  auto m2 = m;
  for (auto &v : m2.a) v *= 2;
  Solver s;
  s.mtype = 11;
  s.maxfct = 2;
  s.iparam[0] = 1;
  s.iparam[59] = 2;
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n);
  EXPECT_EQ(s.call(11, m, b.data(), x.data()), 0);
  EXPECT_GT(s.iparam[62], 0);  // the memory out-of-core mode needs
  EXPECT_EQ(s.call(22, m, b.data(), x.data()), 0);
  s.mnum = 2;
  EXPECT_EQ(s.call(22, m2, b.data(), x.data()), 0);
  EXPECT_EQ(files_named(".lnz").size(), 2u);
  for (int round = 0; round < 3; ++round)
    for (int mnum : {1, 2}) {
      s.mnum = mnum;
      EXPECT_EQ(s.call(33, mnum == 1 ? m : m2, b.data(), x.data()), 0);
      EXPECT_LT(backward_error(mnum == 1 ? m : m2, 11, 0, x, b, 1), 1e-14);
    }
  // Factorization 1 refactored from m2, then released with phase 0.
  s.mnum = 1;
  EXPECT_EQ(s.call(23, m2, b.data(), x.data()), 0);
  EXPECT_LT(backward_error(m2, 11, 0, x, b, 1), 1e-14);
  EXPECT_EQ(s.call(0, m2, b.data(), x.data()), 0);
  EXPECT_EQ(files_named(".lnz").size(), 1u);
  s.release();
  EXPECT_EQ(data_files(), 0);
}

TEST_F(OocFactor, ModeDecisionAndThreads) {
  auto m = grid<double>(20, true, 4, -1, -1, -1, -1);
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n);
  {
    // iparam(60) = 0: no files and the thread count is not forced.
    Solver s;
    s.mtype = 2;
    EXPECT_EQ(s.call(13, m, b.data(), x.data()), 0);
    EXPECT_EQ(s.iparam[2], std::min(m.n, ORB_Get_Max_Threads()));
    EXPECT_EQ(data_files(), 0);
  }
  for (const char *max_core : {"0", "100"}) {
    // iparam(60) = 1: out of core only when the factor exceeds the maximum.
    set_env("ORB_TESSERA_OOC_MAX_CORE_SIZE", max_core);
    set_env("ORB_TESSERA_OOC_KEEP_FILE", "1");
    Solver s;
    s.mtype = 2;
    s.iparam[0] = 1;
    s.iparam[59] = 1;
    EXPECT_EQ(s.call(12, m, b.data(), x.data()), 0);
    EXPECT_EQ(s.iparam[2], 1);
    EXPECT_EQ(data_files() > 0, max_core[0] == '0') << max_core;
    // The keep-file flag 1 leaves the files after the release.
    const int files = data_files();
    s.release();
    EXPECT_EQ(data_files(), files);
    fs::remove_all(kDataDir);
    fs::create_directory(kDataDir);
  }
}

// The mode lines and a failure's report, as printed.
ORB_CHILD(ooc_lines) {
  auto m = grid<double>(12, true, 4, -1, -1, -1, -1);
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n);
  for (int mode : {0, 1, 2}) {
    Solver s;
    s.mtype = 2;
    s.msglvl = 1;
    s.iparam[0] = 1;
    s.iparam[59] = mode;
    if (s.call(13, m, b.data(), x.data()) != (mode == 2 ? -10 : 0)) return 1;
  }
  return 0;
}

TEST(OocReport, ModeLinesAndTheOpenFailure) {
  const auto r = orb::test::run_child("ooc_lines", {{"ORB_TESSERA_OOC_PATH", "no_such_dir/f"},
                                                    {"ORB_TESSERA_OOC_MAX_CORE_SIZE", "100"},
                                                    {"ORB_TESSERA_OOC_KEEP_FILE", "0"}});
  EXPECT_EQ(r.exit_code, 0) << r.out;
  for (const char *line :
       {"=== TESSERA is running in In-Core mode, because iparam(60)=0 ===",
        "=== TESSERA is running in In-Core mode, because iparam(60)=1 and there is enough RAM for "
        "In-Core ===",
        " TESSERA_OOC_OPEN_FILE_ERROR occured: blkl: open file for storing lnz",
        "*** Error in TESSERA  (      open OOC tmp files) error_num= -10"})
    EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
}

// A file removed or cut short between the factorization and the solve: the
// solve's forward step reports it (phase 33 itself always ends with 0 and
// leaves x alone), and the handle is released as usual.
TEST_F(OocFactor, FilesRemovedOrTruncatedBeforeTheSolve) {
  auto m = grid<double>(20, true, 4 - 1.3, -1, -1, -1, -1);
  for (int damage : {0, 1}) {
    Solver s;
    s.mtype = -2;
    s.iparam[0] = 1;
    s.iparam[59] = 2;
    std::vector<double> b = rhs<double>(m.n, 1), x(m.n, 0.5);
    ASSERT_EQ(s.call(12, m, b.data(), x.data()), 0);
    const fs::path lnz = files_named(".lnz").at(0);
    if (damage == 0)
      fs::remove(lnz);
    else
      fs::resize_file(lnz, fs::file_size(lnz) / 2);
    EXPECT_EQ(s.call(331, m, b.data(), x.data()), damage == 0 ? -10 : -11);
    EXPECT_EQ(s.call(33, m, b.data(), x.data()), 0);
    for (double v : x) EXPECT_EQ(v, 0.5);
    s.release();
  }
  EXPECT_EQ(data_files(), 0);
}

#ifndef _WIN32
// A full disk, as a file size limit: the factorization ends with the
// read/write code and the handle is released as usual.
ORB_CHILD(ooc_full_disk) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{1 << 16, 1 << 16};
  setrlimit(RLIMIT_FSIZE, &limit);
  auto m = grid<double>(60, true, 4, -1, -1, -1, -1);
  std::vector<double> b = rhs<double>(m.n, 1), x(m.n);
  Solver s;
  s.mtype = 2;
  s.iparam[0] = 1;
  s.iparam[59] = 2;
  const int err = s.call(13, m, b.data(), x.data());
  s.release();
  return err == -11 ? 0 : 1;
}

TEST_F(OocFactor, AFullDiskEndsTheFactorization) {
  const auto r = orb::test::run_child("ooc_full_disk");
  EXPECT_EQ(r.exit_code, 0) << r.out;
  EXPECT_NE(r.out.find("TESSERA_OOC_NUMBER_OF_WRITE"), std::string::npos) << r.out;
  EXPECT_EQ(data_files(), 0);
}
#endif

}  // namespace
