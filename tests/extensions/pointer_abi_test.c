/* The element-access routines through the shared library's export names:
 * each of the seven names is looked up by its undecorated name and called
 * through a pointer of the callee-pops convention; the stack pointer must be
 * the same before and after each call, so the routine removed its own
 * arguments. (On x86-64 there is one convention and the check is vacuous;
 * the routines are still called and their results checked.) */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "orb.h"

#ifdef _WIN32
#include <windows.h>
static void *lookup(const char *name) {
  return (void *)GetProcAddress(GetModuleHandleA("orb.dll"), name);
}
#else
#include <dlfcn.h>
static void *lookup(const char *name) {
  return dlsym(RTLD_DEFAULT, name);
}
#endif

#if defined(__i386__)
#define READ_SP(x) __asm__ volatile("movl %%esp, %0" : "=r"(x) : : "memory")
#else
#define READ_SP(x) __asm__ volatile("movq %%rsp, %0" : "=r"(x) : : "memory")
#endif

/* Runs `call` and records whether the stack pointer came back unchanged. */
#define CALL_KEEPS_STACK(ok, call) \
  do {                             \
    uintptr_t before_, after_;     \
    READ_SP(before_);              \
    call;                          \
    READ_SP(after_);               \
    ok = before_ == after_;        \
  } while (0)

typedef int(ORB_STDCALL *SetValFn)(int *, int);
typedef void(ORB_STDCALL *GetValFn)(const int *, int *);
typedef void(ORB_STDCALL *SetValcFn)(orb_complex8 *, const orb_complex8 *);
typedef void(ORB_STDCALL *GetValcFn)(const orb_complex8 *, orb_complex8 *);
typedef float(ORB_STDCALL *GetValfFn)(const float *);

static int failures;

static void check(int cond, const char *name, const char *what) {
  if (!cond) {
    printf("FAILED: %s: %s\n", name, what);
    ++failures;
  }
}

int main(void) {
  /* An ordinary call first, so the library is certainly loaded. */
  vdpackic_s(0, NULL, 1, NULL);

  const char *set_names[] = {"SetValToPtr_s", "SetValIToPtr"};
  const char *get_names[] = {"GetValFromPtr_s", "GetValIFromPtr"};
  for (int i = 0; i < 2; ++i) {
    SetValFn set = (SetValFn)lookup(set_names[i]);
    GetValFn get = (GetValFn)lookup(get_names[i]);
    check(set != NULL, set_names[i], "not exported");
    check(get != NULL, get_names[i], "not exported");
    if (!set || !get) continue;
    int word = 0, ret = 0, out = 0, ok;
    CALL_KEEPS_STACK(ok, ret = set(&word, -123456789));
    check(ok, set_names[i], "stack pointer moved");
    check(word == -123456789 && ret == -123456789, set_names[i], "wrong value");
    CALL_KEEPS_STACK(ok, get(&word, &out));
    check(ok, get_names[i], "stack pointer moved");
    check(out == -123456789, get_names[i], "wrong value");
  }

  SetValcFn setc = (SetValcFn)lookup("SetValcToPtr_s");
  GetValcFn getc = (GetValcFn)lookup("GetValcFromPtr_s");
  GetValfFn getf = (GetValfFn)lookup("GetValFromPtrf_s");
  check(setc != NULL, "SetValcToPtr_s", "not exported");
  check(getc != NULL, "GetValcFromPtr_s", "not exported");
  check(getf != NULL, "GetValFromPtrf_s", "not exported");
  /* A signalling NaN in the real part: the complex copies move words. */
  const uint32_t bits[2] = {0x7fa00001u, 0xbf800000u};
  orb_complex8 src, a, b;
  memcpy(&src, bits, sizeof src);
  memset(&a, 0, sizeof a);
  memset(&b, 0, sizeof b);
  int ok;
  if (setc) {
    CALL_KEEPS_STACK(ok, setc(&a, &src));
    check(ok, "SetValcToPtr_s", "stack pointer moved");
    check(memcmp(&a, bits, sizeof a) == 0, "SetValcToPtr_s", "wrong bits");
  }
  if (getc) {
    CALL_KEEPS_STACK(ok, getc(&src, &b));
    check(ok, "GetValcFromPtr_s", "stack pointer moved");
    check(memcmp(&b, bits, sizeof b) == 0, "GetValcFromPtr_s", "wrong bits");
  }
  if (getf) {
    const float x = -2.5f;
    float r = 0;
    CALL_KEEPS_STACK(ok, r = getf(&x));
    check(ok, "GetValFromPtrf_s", "stack pointer moved");
    check(r == -2.5f, "GetValFromPtrf_s", "wrong value");
  }

  /* The same routines called by their declarations, linked through the
   * import library (which must carry their callee-pops symbols). */
  {
    int w = 0, out = 0;
    check(SetValToPtr_s(&w, 11) == 11 && w == 11, "SetValToPtr_s", "direct call");
    check(SetValIToPtr(&w, 12) == 12 && w == 12, "SetValIToPtr", "direct call");
    GetValFromPtr_s(&w, &out);
    check(out == 12, "GetValFromPtr_s", "direct call");
    w = 13;
    GetValIFromPtr(&w, &out);
    check(out == 13, "GetValIFromPtr", "direct call");
    const orb_complex8 c = {1.5f, -2.0f};
    orb_complex8 d = {0, 0}, e = {0, 0};
    SetValcToPtr_s(&d, &c);
    GetValcFromPtr_s(&d, &e);
    check(e.re == 1.5f && e.im == -2.0f, "SetValcToPtr_s/GetValcFromPtr_s", "direct call");
    check(GetValFromPtrf_s(&c.im) == -2.0f, "GetValFromPtrf_s", "direct call");
  }

  printf("%s: %d failure(s)\n", failures ? "FAILED" : "passed", failures);
  return failures != 0;
}
