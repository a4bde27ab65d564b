// Argument-error reporting: the internal reporter, the process-wide error hook
// and the library's forwarder to XERBLA.
#pragma once

namespace orb {

// Same arguments as XERBLA: name (not NUL-terminated), pointer to the code,
// the name's length.
using ReportFn = void (*)(const char *name, const int *code, int name_len);

// Reports through the error hook when it is set, otherwise straight to XERBLA.
// Every routine that is not an entry reports through this.
void report(const char *name, const int *code, int name_len);

// Convenience: report(name, &code, 6) for a six-character name literal.
void report_code(const char *name6, int code);

// Stores the library's XERBLA forwarder in the error hook (every LAPACK entry
// does this first; the forwarder is the only value the hook ever holds).
void install_error_hook();

// The current hook (null until a LAPACK entry ran); for tests.
ReportFn error_hook();

// The library's forwarder: calls the exported XERBLA with its arguments unchanged.
void xerbla_forwarder(const char *name, const int *code, int name_len);

}  // namespace orb
