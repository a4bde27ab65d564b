# Cross build for 32-bit x86 Windows with Debian's mingw-w64 compiler, posix
# thread model. The runtime (libgcc, libstdc++, libgomp, winpthreads) is linked
# in statically so that orb.dll and the test programs stand alone.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(_prefix i686-w64-mingw32)
set(CMAKE_C_COMPILER ${_prefix}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_prefix}-g++-posix)
set(CMAKE_RC_COMPILER ${_prefix}-windres)
set(CMAKE_NM ${_prefix}-nm)
set(CMAKE_OBJDUMP ${_prefix}-objdump)
set(CMAKE_FIND_ROOT_PATH /usr/${_prefix})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# The processor baseline; the top-level CMakeLists.txt adds SSE2 scalar
# arithmetic for portable code, and kernels add their own flags.
set(CMAKE_C_FLAGS_INIT "-march=i686")
set(CMAKE_CXX_FLAGS_INIT "-march=i686")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
# OpenMP's library lookup would take the import library libgomp.dll.a, which
# -static does not override; point it at the archive.
execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=libgomp.a
                OUTPUT_VARIABLE _libgomp OUTPUT_STRIP_TRAILING_WHITESPACE)
set(OpenMP_gomp_LIBRARY ${_libgomp} CACHE FILEPATH "libgomp, linked in statically")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
# Test programs run under 32-bit wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run)
