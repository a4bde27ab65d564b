// The message writer of the iterative solvers and preconditioners. A message
// is assembled from catalogue lines into one buffer (an empty line, the rule,
// the heading, then the message's lines, each bounded to 512 characters and
// ended by a line feed) and printed with "%.3079s", either on standard output
// or appended to the routine's log file in the working directory.
#pragma once

#include <initializer_list>

namespace orb::iterative::log {

// Who speaks; decides the headings, the message table and the log files.
enum class Source { kCg, kFgmres, kIlu0, kIlut };
enum class Kind { kWarning, kError };

// A value filled into a line: an integer goes where the line has "%s"
// (formatted with "%i"), a double where it has "%e".
struct Value {
  Value(int v) : is_int(true), i(v), d(0) {}
  Value(double v) : is_int(false), i(0), d(v) {}
  bool is_int;
  int i;
  double d;
};

// Writes message `number` of `source` (a CG warning or error number, an
// FGMRES number, an ILU status code). `destination` is ipar(2): 6 for the
// console, anything else for the log file. A number the table does not have
// prints the warning heading and the "wrong message request" line.
void write(Source source, Kind kind, int number, int destination,
           std::initializer_list<Value> values = {});

// The log file of a source and kind (for tests and documentation).
const char *file_name(Source source, Kind kind);

// The largest number of characters printed from one message buffer.
constexpr int kPrintLimit = 3079;
// The bound on one line of a message.
constexpr int kLineLimit = 512;

}  // namespace orb::iterative::log
