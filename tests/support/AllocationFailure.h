#pragma once

#include <cstddef>

/// While it lives, malloc() and calloc() called from the test program's own objects fail for blocks of
/// \p size bytes or more. The program must be linked with -Wl,--wrap=malloc,--wrap=calloc; libraries
/// keep their memory.
class CxAllocationFailure
{
public:
    explicit CxAllocationFailure(std::size_t size);
    ~CxAllocationFailure();
    CxAllocationFailure(CxAllocationFailure const&) = delete;
    CxAllocationFailure& operator=(CxAllocationFailure const&) = delete;
};
