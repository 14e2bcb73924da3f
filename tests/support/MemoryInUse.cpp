#include "support/MemoryInUse.h"

#include <malloc.h>
#include <unistd.h>

#include <fstream>

std::size_t fx_HeapBytes()
{
#ifdef TARN_ADDRESS_SANITIZER
    return __sanitizer_get_current_allocated_bytes();
#else
    struct mallinfo2 const info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

std::size_t fx_MemoryBytes()
{
#ifdef TARN_ADDRESS_SANITIZER
    return fx_HeapBytes();
#else
    std::ifstream statm("/proc/self/statm");
    std::size_t pages[6] = {}; // the last: what is private and writable
    for (std::size_t& count : pages)
        statm >> count;
    struct mallinfo2 const info = mallinfo2();
    return pages[5] * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) - info.arena + info.uordblks;
#endif
}
