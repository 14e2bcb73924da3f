#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define TARN_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ADDRESS_SANITIZER
#endif
#endif
#ifdef TARN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
// From sanitizer/allocator_interface.h, which GCC leaves out.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(void);
#endif

constexpr std::size_t kMiB = 1024 * 1024;

/// Bytes that the process has from the heap, large blocks included.
std::size_t fx_HeapBytes();

/// Those and what is mapped beside the heap, which is where large pictures lie.
std::size_t fx_MemoryBytes();
