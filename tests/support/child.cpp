#include "support/child.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#define popen _popen
#define pclose _pclose
#else
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace orb::test {
namespace {

std::map<std::string, ChildFn> &registry() {
  static std::map<std::string, ChildFn> r;
  return r;
}

std::string self_path() {
#ifdef _WIN32
  char buf[MAX_PATH];
  DWORD n = GetModuleFileNameA(nullptr, buf, sizeof buf);
  return std::string(buf, n);
#else
  char buf[4096];
  ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
  return n > 0 ? std::string(buf, static_cast<size_t>(n)) : std::string();
#endif
}

std::optional<std::string> get_var(const char *name) {
  const char *v = std::getenv(name);
  if (v == nullptr) return std::nullopt;
  return std::string(v);
}

}  // namespace

void set_env(const char *name, const char *value) {
#ifdef _WIN32
  // SetEnvironmentVariableA keeps empty values, which _putenv cannot.
  SetEnvironmentVariableA(name, value);
  _putenv_s(name, value ? value : "");
  if (value && *value == '\0') SetEnvironmentVariableA(name, "");
#else
  if (value)
    setenv(name, value, 1);
  else
    unsetenv(name);
#endif
}

ChildRegistrar::ChildRegistrar(const char *name, ChildFn fn) {
  registry()[name] = fn;
}

int run_registered_child(const char *name) {
  auto it = registry().find(name);
  if (it == registry().end()) {
    std::printf("no child named %s\n", name);
    return 99;
  }
  int rc = it->second();
  std::fflush(nullptr);
  return rc;
}

ChildResult run_child(const char *name, std::initializer_list<EnvVar> env,
                      const std::string &prefix) {
  std::vector<std::pair<const char *, std::optional<std::string>>> saved;
  for (const EnvVar &e : env) {
    saved.emplace_back(e.name, get_var(e.name));
    set_env(e.name, e.value);
  }
  std::string cmd = prefix.empty() ? "" : prefix + " ";
  cmd += "\"" + self_path() + "\" --orb-child=" + name;
#ifdef _WIN32
  cmd = "\"" + cmd + "\"";  // cmd.exe strips one outer pair of quotes
#endif
  ChildResult result;
  std::fflush(nullptr);
  FILE *pipe = popen(cmd.c_str(), "r");
  if (pipe != nullptr) {
    char buf[4096];
    size_t got;
    while ((got = std::fread(buf, 1, sizeof buf, pipe)) > 0) result.out.append(buf, got);
    int status = pclose(pipe);
#ifdef _WIN32
    result.exit_code = status;
#else
    result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
#endif
  }
  for (auto it = saved.rbegin(); it != saved.rend(); ++it)
    set_env(it->first, it->second ? it->second->c_str() : nullptr);
#ifdef _WIN32
  // Output of the child's C runtime arrives with CR LF line ends.
  std::string clean;
  for (size_t i = 0; i < result.out.size(); ++i)
    if (!(result.out[i] == '\r' && i + 1 < result.out.size() && result.out[i + 1] == '\n'))
      clean += result.out[i];
  result.out.swap(clean);
#endif
  return result;
}

}  // namespace orb::test
