// The operating-system layer, run as it is on each system.
#include "service/platform/platform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <string>
#include <thread>

#ifdef _WIN32
// The one call the tests need to make an empty variable (the C runtime's
// _putenv_s removes a variable given an empty value).
extern "C" __declspec(dllimport) int __stdcall SetEnvironmentVariableA(const char *name,
                                                                       const char *value);
#endif

namespace pf = orb::platform;

namespace {

constexpr const char *kVar = "ORB_PLATFORM_TEST_VARIABLE";

// Sets `name` to `value`, or removes it when `value` is null.
void set_env(const char *name, const char *value) {
#ifdef _WIN32
  ASSERT_NE(0, SetEnvironmentVariableA(name, value));
#else
  ASSERT_EQ(0, value ? setenv(name, value, 1) : unsetenv(name));
#endif
}

struct EnvRead {
  int result;
  std::string text;
  bool canary_intact;  // nothing written at or past buf[size]
};

EnvRead read_env(int size) {
  char buf[512];
  std::memset(buf, 'x', sizeof buf);
  EnvRead r;
  r.result = pf::env_get(kVar, buf, size);
  r.text = std::string(buf, strnlen(buf, static_cast<std::size_t>(size)));
  r.canary_intact = true;
  for (int i = size; i < static_cast<int>(sizeof buf); ++i)
    if (buf[i] != 'x') r.canary_intact = false;
  return r;
}

TEST(PlatformEnv, AbsentEmptyPresentAndTooLong) {
  set_env(kVar, nullptr);
  EXPECT_EQ(-1, read_env(16).result);

  set_env(kVar, "");
  EnvRead r = read_env(16);
  EXPECT_EQ(0, r.result);
  EXPECT_EQ("", r.text);

  set_env(kVar, "hello");
  r = read_env(16);
  EXPECT_EQ(5, r.result);
  EXPECT_EQ("hello", r.text);
  r = read_env(6);  // exactly room for the value and its NUL
  EXPECT_EQ(5, r.result);
  EXPECT_EQ("hello", r.text);
  EXPECT_TRUE(r.canary_intact);
  for (int size : {5, 1}) {  // does not fit: the length, and an empty buffer
    r = read_env(size);
    EXPECT_EQ(5, r.result) << "size " << size;
    EXPECT_EQ("", r.text) << "size " << size;
    EXPECT_TRUE(r.canary_intact) << "size " << size;
  }

  const std::string long_value(300, 'v');
  set_env(kVar, long_value.c_str());
  r = read_env(16);
  EXPECT_EQ(300, r.result);
  EXPECT_EQ("", r.text);
  EXPECT_TRUE(r.canary_intact);
  r = read_env(301);
  EXPECT_EQ(300, r.result);
  EXPECT_EQ(long_value, r.text);

  set_env(kVar, nullptr);
  EXPECT_EQ(-1, read_env(16).result);
}

TEST(PlatformModule, MissingIsNullPresentResolves) {
  EXPECT_EQ(nullptr, pf::module_load("orb_no_such_module"));
  EXPECT_EQ(nullptr, pf::module_load_path("no_such_dir/orb_no_such_module"));
  EXPECT_EQ(nullptr, pf::module_symbol(nullptr, "cos"));
#ifdef _WIN32
  // Base name and file name both reach kernel32.dll.
  void *by_base = pf::module_load("kernel32");
  void *by_path = pf::module_load_path("kernel32.dll");
  ASSERT_NE(nullptr, by_base);
  EXPECT_EQ(by_base, by_path);
  using TickCount = unsigned long(__stdcall *)();
  auto tick = reinterpret_cast<TickCount>(pf::module_symbol(by_base, "GetTickCount"));
  ASSERT_NE(nullptr, tick);
  tick();
  EXPECT_EQ(nullptr, pf::module_symbol(by_base, "OrbNoSuchExport"));
  char buf[64] = "x";
  EXPECT_EQ(-1, pf::module_message(by_base, 0x2fff0000u, 0, buf, sizeof buf));
  EXPECT_STREQ("", buf);
  EXPECT_NE(0u, pf::thread_locale());
  pf::module_release(by_path);
  pf::module_release(by_base);
#else
  void *m = pf::module_load_path("libm.so.6");
  ASSERT_NE(nullptr, m);
  auto cosine = reinterpret_cast<double (*)(double)>(pf::module_symbol(m, "cos"));
  ASSERT_NE(nullptr, cosine);
  EXPECT_EQ(1.0, cosine(0.0));
  EXPECT_EQ(nullptr, pf::module_symbol(m, "orb_no_such_symbol"));
  char buf[64] = "x";
  EXPECT_EQ(-1, pf::module_message(m, 1, 0, buf, sizeof buf));
  EXPECT_STREQ("", buf);
  pf::module_release(m);
#endif
}

TEST(PlatformTls, EachThreadSeesItsOwnValue) {
  pf::TlsKey key;
  ASSERT_TRUE(pf::tls_create(&key));
  int mine = 0, theirs = 0;
  pf::tls_set(key, &mine);
  void *seen_before = &mine, *seen_after = nullptr;
  std::thread other([&] {
    seen_before = pf::tls_get(key);
    pf::tls_set(key, &theirs);
    seen_after = pf::tls_get(key);
  });
  other.join();
  EXPECT_EQ(nullptr, seen_before);
  EXPECT_EQ(&theirs, seen_after);
  EXPECT_EQ(&mine, pf::tls_get(key));
  pf::tls_destroy(key);

  // A new key (often the slot just freed) starts out null.
  pf::TlsKey fresh;
  ASSERT_TRUE(pf::tls_create(&fresh));
  EXPECT_EQ(nullptr, pf::tls_get(fresh));
  pf::tls_destroy(fresh);
}

TEST(PlatformAffinity, PinToLowestProcessorAndRestore) {
  std::uint64_t process = 0, system = 0;
  ASSERT_TRUE(pf::affinity_masks(&process, &system));
  ASSERT_NE(0u, process);
  EXPECT_EQ(0u, process & ~system);
  const std::uint64_t lowest = process & (~process + 1);

  // On a thread of its own, so that the test's thread keeps its mask.
  bool pinned = false, restored = false, rechecked = false, empty_refused = false;
  std::uint64_t before = 0, while_pinned = 0, after = 0;
  std::thread worker([&] {
    pinned = pf::thread_pin(lowest, &before);
    restored = pf::thread_pin(before, &while_pinned);
    rechecked = pf::thread_pin(before, &after);
    empty_refused = !pf::thread_pin(0, nullptr);
  });
  worker.join();
  ASSERT_TRUE(pinned);
  EXPECT_EQ(process, before);
  ASSERT_TRUE(restored);
  EXPECT_EQ(lowest, while_pinned);
  ASSERT_TRUE(rechecked);
  EXPECT_EQ(process, after);
  EXPECT_TRUE(empty_refused);
}

TEST(PlatformClock, CountersAdvanceWithASleep) {
  std::int64_t freq = 0, t0 = 0, t1 = 0, t2 = 0;
  ASSERT_TRUE(pf::perf_frequency(&freq));
  EXPECT_GE(freq, 1000000);
  EXPECT_LE(freq, 10000000000LL);

  // After late 2020, and the same instant as the C library's clock.
  const std::uint64_t ft0 = pf::system_time_filetime();
  const std::time_t now = std::time(nullptr);
  EXPECT_GT(ft0, 132500000000000000ull);
  const std::int64_t unix_seconds = static_cast<std::int64_t>(ft0 / 10000000u) - 11644473600LL;
  EXPECT_NEAR(static_cast<double>(now), static_cast<double>(unix_seconds), 2.0);

  ASSERT_TRUE(pf::perf_counter(&t0));
  ASSERT_TRUE(pf::perf_counter(&t1));
  EXPECT_GE(t1, t0);
  pf::yield();
  pf::sleep_ms(50);
  ASSERT_TRUE(pf::perf_counter(&t2));
  const std::uint64_t ft1 = pf::system_time_filetime();

  const double perf_ms = 1e3 * static_cast<double>(t2 - t1) / static_cast<double>(freq);
  const double file_ms = static_cast<double>(ft1 - ft0) / 1e4;
  EXPECT_GE(perf_ms, 40.0);
  EXPECT_LE(perf_ms, 2000.0);
  EXPECT_GE(file_ms, 40.0);
  EXPECT_LE(file_ms, 2000.0);
}

}  // namespace
