// Waiting on another thread of a team for a word it stores with release:
// spinning briefly, then giving the processor away, since the thread waited
// for may need it when the machine is busy.
#pragma once

#include <thread>

namespace orb::lapack {

inline void cpu_pause() {
#if defined(__i386__) || defined(__x86_64__)
  __builtin_ia32_pause();
#endif
}

// One round of a wait that has made no progress for `idle` rounds.
inline void idle_step(int idle, int spins = 64) {
  if (idle < spins)
    cpu_pause();
  else
    std::this_thread::yield();
}

// Polls ready() until it returns true.
template <class Ready>
void spin_until(Ready ready, int spins = 64) {
  for (int idle = 0; !ready(); ++idle) idle_step(idle, spins);
}

}  // namespace orb::lapack
