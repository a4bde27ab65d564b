#include "iterative/rci_log.h"

#include <cstdio>
#include <cstring>

#include "iterative/params.h"
#include "service/catalogue.h"

namespace orb::iterative::log {
namespace {

// Catalogue numbers of the shared lines (messages_rci.def, messages_ilu.def).
enum Line : int {
  kRule = 100,
  kWarningWritten = 101,
  kErrorWritten = 102,
  kCannotCreate = 103,
  kCannotSave = 104,
  kWrongRequest = 105,
  kCgWarningHeading = 110,
  kCgErrorHeading = 111,
  kFgmresWarningHeading = 112,
  kFgmresErrorHeading = 113,
  kIlu0ErrorHeading = 300,
  kIlu0WarningHeading = 301,
  kIlutErrorHeading = 302,
  kIlutWarningHeading = 303,
};

// A message: its number (or status code) and its lines, `count` consecutive
// catalogue numbers from `first`.
struct Entry {
  int number;
  int first;
  int count;
};

constexpr Entry kCgWarnings[] = {{1, 120, 2}, {2, 122, 3}, {3, 125, 3}, {4, 128, 3}, {5, 131, 3},
                                 {6, 134, 1}, {7, 135, 2}, {8, 137, 3}, {9, 140, 3}, {10, 143, 2}};
constexpr Entry kCgErrors[] = {{1, 150, 3}, {2, 153, 4}, {3, 157, 3}};
constexpr Entry kFgmresErrors[] = {{0, 160, 4},  {1, 164, 3},  {2, 167, 3},  {3, 170, 2},
                                   {4, 172, 3},  {5, 175, 1},  {6, 176, 4},  {7, 180, 3},
                                   {8, 183, 4},  {9, 187, 4},  {10, 191, 3}, {11, 194, 3},
                                   {12, 197, 3}, {13, 200, 3}, {14, 203, 3}, {15, 206, 3},
                                   {16, 209, 3}, {17, 212, 3}, {18, 215, 3}};
constexpr Entry kFgmresWarnings[] = {{300, 220, 4}, {301, 224, 2}, {302, 226, 2}, {303, 228, 3},
                                     {304, 231, 2}, {305, 233, 2}, {306, 235, 2}, {307, 237, 2},
                                     {308, 239, 3}, {309, 242, 3}, {310, 245, 3}, {311, 248, 2}};
constexpr Entry kIlu0Codes[] = {{-101, 310, 2}, {-102, 312, 2}, {-103, 314, 2},
                                {-104, 316, 2}, {-105, 318, 2}, {-106, 320, 2}};
constexpr Entry kIlutCodes[] = {{101, 330, 3},  {102, 333, 2},  {103, 335, 3},  {104, 338, 3},
                                {-101, 341, 3}, {-102, 344, 5}, {-103, 349, 2}, {-104, 351, 2},
                                {-105, 353, 2}, {-106, 355, 2}, {-107, 357, 2}};

template <std::size_t N>
const Entry *find(const Entry (&table)[N], int number) {
  for (const Entry &e : table)
    if (e.number == number) return &e;
  return nullptr;
}

struct Voice {
  int warning_heading;
  int error_heading;
  const char *warning_file;
  const char *error_file;
  bool notice;  // a console line names the file a message went to
};

Voice voice(Source source) {
  switch (source) {
    case Source::kCg:
      return {kCgWarningHeading, kCgErrorHeading, "Dcg_check_warnings.txt", "Dcg_errors.txt", true};
    case Source::kFgmres:
      return {kFgmresWarningHeading, kFgmresErrorHeading, "ORB_RCI_FGMRES_Log.txt",
              "ORB_RCI_FGMRES_Log.txt", false};
    case Source::kIlu0:
      return {kIlu0WarningHeading, kIlu0ErrorHeading, "ORB_PREC_log.txt", "ORB_PREC_log.txt", true};
    case Source::kIlut:
      break;
  }
  return {kIlutWarningHeading, kIlutErrorHeading, "ORB_PREC_DILUT_log.txt",
          "ORB_PREC_DILUT_log.txt", true};
}

const Entry *lookup(Source source, Kind kind, int number) {
  switch (source) {
    case Source::kCg:
      return kind == Kind::kError ? find(kCgErrors, number) : find(kCgWarnings, number);
    case Source::kFgmres:
      return kind == Kind::kError ? find(kFgmresErrors, number) : find(kFgmresWarnings, number);
    case Source::kIlu0:
      return find(kIlu0Codes, number);
    case Source::kIlut:
      return find(kIlutCodes, number);
  }
  return nullptr;
}

// The message buffer: every line fits (at most 8 lines of 512 characters and
// their line feeds); printing stops at kPrintLimit characters.
class Buffer {
 public:
  // Appends catalogue line `number` with the values it asks for, at most
  // kLineLimit characters of it, and a line feed.
  void line(int number, const Value *&next, const Value *end) {
    const char *format = msg::text(number);
    if (format == nullptr) format = "";
    char text[kLineLimit + 1];
    int length = 0;
    auto put = [&](const char *s) {
      while (*s != '\0' && length < kLineLimit) text[length++] = *s++;
    };
    for (const char *p = format; *p != '\0' && length < kLineLimit; ++p) {
      if (p[0] == '%' && (p[1] == 's' || p[1] == 'e')) {
        char value[64] = "";
        if (next != end) {
          if (p[1] == 's' && next->is_int)
            std::snprintf(value, sizeof value, "%i", next->i);
          else
            std::snprintf(value, sizeof value, "%e", next->is_int ? next->i : next->d);
          ++next;
        }
        put(value);
        ++p;
      } else if (p[0] == '%' && p[1] == '%') {
        text[length++] = '%';
        ++p;
      } else {
        text[length++] = *p;
      }
    }
    text[length] = '\0';
    append(text);
    append("\n");
  }
  const char *str() const { return data_; }

 private:
  void append(const char *s) {
    while (*s != '\0' && size_ < kCapacity - 1) data_[size_++] = *s++;
    data_[size_] = '\0';
  }
  static constexpr int kCapacity = 8 * (kLineLimit + 1) + 1;
  char data_[kCapacity] = "";
  int size_ = 0;
};

}  // namespace

const char *file_name(Source source, Kind kind) {
  const Voice v = voice(source);
  return kind == Kind::kError ? v.error_file : v.warning_file;
}

void write(Source source, Kind kind, int number, int destination,
           std::initializer_list<Value> values) {
  // A preconditioner's status code says by its sign what it is.
  if (source == Source::kIlu0 || source == Source::kIlut)
    kind = number < 0 ? Kind::kError : Kind::kWarning;
  const Voice v = voice(source);
  const Entry *entry = lookup(source, kind, number);
  const Value *next = values.begin();
  Buffer buffer;
  buffer.line(msg::kEmpty, next, next);
  buffer.line(kRule, next, next);
  if (entry != nullptr) {
    buffer.line(kind == Kind::kError ? v.error_heading : v.warning_heading, next, next);
    for (int i = 0; i < entry->count; ++i) buffer.line(entry->first + i, next, values.end());
  } else {
    buffer.line(v.warning_heading, next, next);
    buffer.line(kWrongRequest, next, next);
  }

  if (destination == kConsole) {
    std::printf("%.3079s", buffer.str());
    std::fflush(stdout);
    return;
  }
  const char *file = kind == Kind::kError ? v.error_file : v.warning_file;
  std::FILE *f = std::fopen(file, "a+");
  if (f == nullptr) {
    msg::print(kCannotCreate, file);
    msg::print(kCannotSave);
    return;
  }
  if (v.notice) msg::print(kind == Kind::kError ? kErrorWritten : kWarningWritten, file);
  std::fprintf(f, "%.3079s", buffer.str());
  std::fclose(f);
}

}  // namespace orb::iterative::log
