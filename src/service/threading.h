// Threading control: how many threads the library's threaded routines may use.
//
// The answer comes from the application's calls (the ORB_*_Threads and
// ORB_*_Dynamic exports), from environment variables read once, at the first
// thread-count or dynamic query, from the OpenMP runtime's own maximum and, in
// dynamic mode, from a count of the machine's physical cores made at that same
// first query.
//
// Settings are kept per domain. A domain without a count of its own uses the
// all-domains count; a domain code outside 0 to 3 is taken as 0.
#pragma once

#include <cstdint>

namespace orb::threads {

constexpr int kDomainAll = 0;   // the whole library ("ORB_ALL")
constexpr int kDomainBlas = 1;  // BLAS and LAPACK ("ORB_BLAS")
constexpr int kDomainFft = 2;   // FFT ("ORB_FFT"); kept for a complete interface
constexpr int kDomainVml = 3;   // vector math ("ORB_VML")

// The thread count for `domain`: the library's own use of
// ORB_Domain_Get_Max_Threads. Level-3 BLAS asks for kDomainBlas, LAPACK and
// the sparse solver for kDomainAll. Returns 1 in dynamic mode when the caller
// is already inside a parallel region.
int max_threads(int domain = kDomainAll);

// The dynamic flag (0 off, 1 on), after the environment has been read.
int dynamic();

// What the topology count found, after the environment has been read: the
// number of physical cores (1 when the process may not run on every
// processor) and the number of processors it ran on.
int physical_cores();
int logical_processors();

namespace detail {

// Bit widths of the fields of an initial APIC identifier, from the processor's
// identification leaves 0, 1 and 4 (through cpu::cpuid, so tests can replay
// recorded processors).
struct TopologyWidths {
  int logical_per_package;  // width of the logical processors per package
  int logical_per_core;     // width of the logical processors per core
  int cores_per_package;    // width of the cores per package
};
TopologyWidths topology_widths();

// The key that identifies the core of the processor with initial APIC
// identifier `apic_id`: its package bits and core bits. Logical processors
// of one core share a key.
std::uint32_t core_key(std::uint32_t apic_id, const TopologyWidths &widths);

}  // namespace detail
}  // namespace orb::threads
