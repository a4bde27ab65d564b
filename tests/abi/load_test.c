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
