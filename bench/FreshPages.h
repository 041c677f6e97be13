#ifndef ORVANE_BENCH_FRESHPAGES_H
#define ORVANE_BENCH_FRESHPAGES_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sys/mman.h>

namespace Orvane::Bench {

// What memory fresh from the system costs whoever uses it: `bytes` mapped as the node block pool
// maps its regions (2 MB aligned, huge pages where the kernel gives them), written once and
// given back. Beside a case that builds a scene in fresh memory, this is the floor under it.
inline void touchFreshPages(std::size_t bytes)
{
    constexpr std::size_t region = std::size_t(2) << 20;
    const std::size_t     size = (bytes + region - 1) / region * region;
    void*                 mapped = mmap(nullptr, size + region, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return;
    const auto at = (reinterpret_cast<std::uintptr_t>(mapped) + region - 1) & ~std::uintptr_t(region - 1);
    char*      start = reinterpret_cast<char*>(at);
#ifdef MADV_HUGEPAGE
    madvise(start, size, MADV_HUGEPAGE);
#endif
    std::memset(start, 1, bytes);
    benchmark::DoNotOptimize(start);
    munmap(mapped, size + region);
}

} // namespace Orvane::Bench

#endif
