#include "BlockStore.h"

#include <sys/mman.h>

#include <QCoreApplication>
#include <QTimer>
#include <cstdint>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define TARN_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ADDRESS_SANITIZER
#endif
#endif
#ifdef TARN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(data, bytes) (static_cast<void>(data), static_cast<void>(bytes))
#define ASAN_UNPOISON_MEMORY_REGION(data, bytes) (static_cast<void>(data), static_cast<void>(bytes))
#endif

static constexpr std::size_t kAlignment = 64; // a cache line, and the widest vector
static constexpr std::size_t kHugePage = std::size_t(2) << 20;
/// Playback has one picture on the screen, one on its way there and one being decoded.
static constexpr std::size_t kMaxKeptBlocks = 3;
static constexpr int kIdleMs = 1000;

/// Whether a block is mapped by itself, in huge pages: with pages of 4096 bytes the address look-ups alone
/// take a tenth of the time of writing a large picture. The address sanitizer sees more of blocks on the
/// heap.
static bool fx_IsMapped(std::size_t bytes)
{
#ifdef TARN_ADDRESS_SANITIZER
    static_cast<void>(bytes);
    return false;
#else
    return bytes >= 2 * kHugePage;
#endif
}

/// Up to the next multiple of a huge page.
static std::size_t fx_HugePages(std::size_t bytes) { return (bytes + kHugePage - 1) / kHugePage * kHugePage; }

/// Huge pages at a multiple of their size; null when there are none.
static unsigned char* fx_Map(std::size_t bytes)
{
    std::size_t const size = fx_HugePages(bytes);
    void* const mapping =
        mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        return nullptr;
    unsigned char* const start = static_cast<unsigned char*>(mapping);
    std::size_t const before = (kHugePage - reinterpret_cast<std::uintptr_t>(start) % kHugePage) % kHugePage;
    if (before > 0)
        munmap(start, before);
    munmap(start + before + size, kHugePage - before);
    madvise(start + before, size, MADV_HUGEPAGE); // advice: a system that has none leaves it
    return start + before;
}

/// Fresh memory; null when there is none.
static unsigned char* fx_NewBlock(std::size_t bytes)
{
    if (fx_IsMapped(bytes))
        return fx_Map(bytes);
    void* data = nullptr;
    return posix_memalign(&data, kAlignment, bytes) == 0 ? static_cast<unsigned char*>(data) : nullptr;
}

static void fx_FreeBlock(unsigned char* data, std::size_t bytes)
{
    if (fx_IsMapped(bytes))
        munmap(data, fx_HugePages(bytes));
    else
        std::free(data);
}

CxBlockStore::CxBlockStore() { m_kept.reserve(kMaxKeptBlocks + 1); }

CxBlockStore& CxBlockStore::instance()
{
    // Never destroyed: pictures held by other static objects may be freed later than that.
    static CxBlockStore* const store = new CxBlockStore;
    return *store;
}

unsigned char* CxBlockStore::takeKept(std::size_t bytes)
{
    // The block freed last comes first: it may still be in the processor's cache.
    for (auto block = m_kept.rbegin(); block != m_kept.rend(); ++block) {
        if (block->bytes != bytes)
            continue;
        unsigned char* const data = block->data;
        m_kept.erase(std::next(block).base());
        ASAN_UNPOISON_MEMORY_REGION(data, bytes);
        return data;
    }
    return nullptr;
}

unsigned char* CxBlockStore::take(std::size_t bytes)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    unsigned char* data = takeKept(bytes);
    if (!data && m_live == 0)
        keepAtMost(0); // the one of before, of another size: nobody needs both
    if (!data)
        data = fx_NewBlock(bytes);
    if (!data) {
        keepAtMost(0); // what we hold back may be what is missing
        data = fx_NewBlock(bytes);
        if (!data)
            return nullptr;
    }
    ++m_live;
    ++m_taken;
    return data;
}

void CxBlockStore::giveBack(unsigned char* data, std::size_t bytes)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_kept.push_back({data, bytes}); // within what the constructor reserved
    // Nobody may touch a block kept: the address sanitizer reports it as it would after free().
    ASAN_POISON_MEMORY_REGION(data, bytes);
    --m_live;
    keepAtMost(m_live == 0 ? 1 : kMaxKeptBlocks);
    if (m_live == 0)
        watchForIdling();
}

/// Frees the oldest that are more.
void CxBlockStore::keepAtMost(std::size_t count)
{
    while (m_kept.size() > count) {
        SxBlock const block = m_kept.front();
        ASAN_UNPOISON_MEMORY_REGION(block.data, block.bytes);
        fx_FreeBlock(block.data, block.bytes);
        m_kept.erase(m_kept.begin());
    }
}

/// Without an application there is nobody to look later, so nothing is kept.
void CxBlockStore::watchForIdling()
{
    QCoreApplication* const application = QCoreApplication::instance();
    if (!application) {
        keepAtMost(0);
        return;
    }
    if (m_isWatched)
        return;
    m_isWatched = true;
    m_takenAtLook = m_taken;
    QMetaObject::invokeMethod(
        application, [this, application] { QTimer::singleShot(kIdleMs, application, [this] { onLook(); }); },
        Qt::QueuedConnection);
}

void CxBlockStore::onLook()
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_isWatched = false;
    if (m_live > 0)
        return;
    if (m_taken != m_takenAtLook)
        watchForIdling();
    else
        keepAtMost(0);
}
