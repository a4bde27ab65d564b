// Child processes for tests of behaviour that is fixed once per process (the
// environment is read once) or that ends the process. A test binary can run
// any function registered with ORB_CHILD as a child of itself, with extra
// environment variables, and collect its standard output and exit code.
#pragma once

#include <initializer_list>
#include <string>

namespace orb::test {

using ChildFn = int (*)();

struct ChildRegistrar {
  ChildRegistrar(const char *name, ChildFn fn);
};

// ORB_CHILD(name) { ...; return exit_code; }
#define ORB_CHILD(name)                                                                   \
  static int orb_child_##name();                                                          \
  static const ::orb::test::ChildRegistrar orb_child_reg_##name(#name, orb_child_##name); \
  static int orb_child_##name()

struct EnvVar {
  const char *name;
  const char *value;  // null: the variable is removed for the child
};

struct ChildResult {
  int exit_code = -1;
  std::string out;  // everything the child wrote to standard output
};

// Runs registered child `name` in a new process of this test binary. `prefix`
// is put in front of the command line (for example "taskset -c 0" on Linux).
ChildResult run_child(const char *name, std::initializer_list<EnvVar> env = {},
                      const std::string &prefix = "");

// Sets an environment variable of this process for both the C runtime and,
// on Windows, the system's copy; a null value removes it.
void set_env(const char *name, const char *value);

// Used by the test main: runs a registered child and returns its exit code.
int run_registered_child(const char *name);

}  // namespace orb::test
