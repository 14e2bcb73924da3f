#include "ShortMemory.h"

#include <sys/mman.h>

bool fx_IsMemoryShort(quint64 bytes)
{
    void* const block =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (block == MAP_FAILED)
        return true;
    munmap(block, bytes);
    return false;
}
