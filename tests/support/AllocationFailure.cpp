#include "support/AllocationFailure.h"

#include <cstdint>

static std::size_t s_failingSize = SIZE_MAX;

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those that the linker's --wrap makes.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

void* __wrap_malloc(std::size_t size) { return size >= s_failingSize ? nullptr : __real_malloc(size); }

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return count * size >= s_failingSize ? nullptr : __real_calloc(count, size);
}
// NOLINTEND(bugprone-reserved-identifier)

CxAllocationFailure::CxAllocationFailure(std::size_t size) { s_failingSize = size; }

CxAllocationFailure::~CxAllocationFailure() { s_failingSize = SIZE_MAX; }
