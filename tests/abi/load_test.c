/* Hosts load the library at run time: it must load into a running process
   (no initial-exec thread-local storage beyond the loader's reserve), resolve
   its names and work. This program is not linked against it. */
#include <stdio.h>

#ifdef _WIN32
#include <windows.h>
#define OPEN(path) ((void *)LoadLibraryA(path))
#define SYM(h, name) ((void *)GetProcAddress((HMODULE)(h), name))
#else
#include <dlfcn.h>
#define OPEN(path) dlopen(path, RTLD_NOW | RTLD_LOCAL)
#define SYM(h, name) dlsym(h, name)
#endif

int main(void) {
  void *lib = OPEN(ORB_LIBRARY_PATH);
  if (!lib) {
#ifndef _WIN32
    printf("cannot load %s: %s\n", ORB_LIBRARY_PATH, dlerror());
#else
    printf("cannot load %s\n", ORB_LIBRARY_PATH);
#endif
    printf("0 passed, 1 failed\n");
    return 1;
  }
  /* The first call goes through the library's first thread-local access
     and first work buffer: a product with a long strided vector. The
     compiler may keep alpha in a vector register across that access, which
     the loader must then preserve. */
  typedef void (*sgemv_fn)(const char *, const int *, const int *, const float *, const float *,
                           const int *, const float *, const int *, const float *, float *,
                           const int *, int);
  sgemv_fn sgemv = (sgemv_fn)SYM(lib, "sgemv");
  static float a[4 * 600], x[2 * 600], y[4];
  for (int i = 0; i < 4 * 600; ++i) a[i] = 1.0f;
  for (int i = 0; i < 2 * 600; ++i) x[i] = 1.0f;
  const int m = 4, n = 600, inc = 2, one = 1;
  const float alpha = 0.5f, beta = 0.0f;
  if (!sgemv) {
    printf("0 passed, 1 failed\n");
    return 1;
  }
  sgemv("N", &m, &n, &alpha, a, &m, x, &inc, &beta, y, &one, 1);
  if (y[0] != 300.0f || y[3] != 300.0f) {
    printf("first sgemv gave %g, not 300\n", y[0]);
    printf("0 passed, 1 failed\n");
    return 1;
  }
  typedef double (*dsecnd_fn)(void);
  typedef void (*free_fn)(void);
  dsecnd_fn dsecnd = (dsecnd_fn)SYM(lib, "DSECND");
  free_fn free_buffers = (free_fn)SYM(lib, "ORB_FreeBuffers");
  if (!dsecnd || !free_buffers || dsecnd() < 0) {
    printf("0 passed, 1 failed\n");
    return 1;
  }
  free_buffers();
  printf("1 passed, 0 failed\n");
  return 0;
}
