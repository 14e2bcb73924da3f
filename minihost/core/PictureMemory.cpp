#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <vector>

#include "CxPicBufAPI.h"

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
static constexpr quint64 kAutomaticPitchStep = 256;
/// The largest picture: 16384 x 16384 pixels of 8 bytes. More is a damaged format rather than a picture.
static constexpr quint64 kMaxPictureBytes = quint64(1) << 31;
/// Playback has one picture on the screen, one on its way there and one being decoded.
static constexpr std::size_t kMaxKeptBlocks = 3;

namespace {

/// The memory of all pictures. Fresh memory costs a page fault every 4096 bytes, for a large picture as
/// much as its decoding; so a few blocks of pictures freed are kept for the next picture of that size,
/// as long as any picture lives. For several threads.
class CxBlockStore
{
public:
    CxBlockStore() { m_kept.reserve(kMaxKeptBlocks + 1); }

    unsigned char* take(std::size_t bytes);
    void giveBack(unsigned char* data, std::size_t bytes);

private:
    struct SxBlock
    {
        unsigned char* data;
        std::size_t bytes;
    };

    void releaseKept();

    std::mutex m_mutex;
    std::vector<SxBlock> m_kept; ///< oldest first
    quint64 m_live = 0;          ///< blocks handed out
};

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

unsigned char* CxBlockStore::take(std::size_t bytes)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    // The block freed last comes first: it may still be in the processor's cache.
    for (auto block = m_kept.rbegin(); block != m_kept.rend(); ++block) {
        if (block->bytes != bytes)
            continue;
        unsigned char* const data = block->data;
        m_kept.erase(std::next(block).base());
        ASAN_UNPOISON_MEMORY_REGION(data, bytes);
        ++m_live;
        return data;
    }

    unsigned char* data = fx_NewBlock(bytes);
    if (!data) {
        releaseKept(); // what we hold back may be what is missing
        data = fx_NewBlock(bytes);
        if (!data)
            return nullptr;
    }
    ++m_live;
    return data;
}

void CxBlockStore::giveBack(unsigned char* data, std::size_t bytes)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_kept.push_back({data, bytes}); // within what the constructor reserved
    // Nobody may touch a block kept: the address sanitizer reports it as it would after free().
    ASAN_POISON_MEMORY_REGION(data, bytes);
    --m_live;
    if (m_live == 0) {
        releaseKept();
    } else if (m_kept.size() > kMaxKeptBlocks) {
        ASAN_UNPOISON_MEMORY_REGION(m_kept.front().data, m_kept.front().bytes);
        fx_FreeBlock(m_kept.front().data, m_kept.front().bytes);
        m_kept.erase(m_kept.begin());
    }
}

void CxBlockStore::releaseKept()
{
    for (SxBlock const& block : m_kept) {
        ASAN_UNPOISON_MEMORY_REGION(block.data, block.bytes);
        fx_FreeBlock(block.data, block.bytes);
    }
    m_kept.clear();
}

} // namespace

static CxBlockStore& fx_BlockStore()
{
    // Never destroyed: pictures held by other static objects may be freed later than that.
    static CxBlockStore* const store = new CxBlockStore;
    return *store;
}

/// Bytes of one sample, see SxPicBufInfo::sampleType.
static unsigned fx_SampleBytes(quint32 sampleType)
{
    switch (sampleType) {
    case 3:
    case 4:
    case 11:
        return 2;
    case 5:
    case 6:
    case 9:
        return 4;
    case 7:
    case 8:
    case 10:
        return 8;
    default:
        return 1;
    }
}

/// The pitch of a picture of this format: its own or, where that is 0, the automatic one. 0 when the
/// format is none that memory is given for.
static quint64 fx_Pitch(SxPicBufInfo const& format)
{
    if (format.width == 0 || format.height == 0 || format.components < 1 || format.components > 4)
        return 0;
    quint64 const rowBytes = quint64(format.width) * format.components * fx_SampleBytes(format.sampleType);
    quint64 const pitch =
        format.pitch != 0 ? format.pitch
                          : (rowBytes + kAutomaticPitchStep - 1) / kAutomaticPitchStep * kAutomaticPitchStep;
    return pitch < rowBytes || pitch > std::numeric_limits<quint32>::max() ? 0 : pitch;
}

SxPicBuf::SxPicBuf()
    : data(nullptr)
    , timestamp(0)
    , allocatedSize(0)
{}

void SxPicBuf::setPicFormat(SxPicBufInfo const& format) { static_cast<SxPicBufInfo&>(*this) = format; }

bool CxPicBufAPI::AllocPicBufFromHeap(SxPicBuf& picture, SxPicBufInfo const& format, bool zeroFill,
                                      unsigned long extraSize)
{
    quint64 const pitch = fx_Pitch(format);
    quint64 const pixelBytes = pitch * format.height;
    if (pitch == 0 || pixelBytes > kMaxPictureBytes || extraSize > kMaxPictureBytes - pixelBytes)
        return false;

    std::size_t const bytes = static_cast<std::size_t>(pixelBytes + extraSize);
    unsigned char* const data = fx_BlockStore().take(bytes);
    if (!data)
        return false;
    if (zeroFill)
        std::memset(data, 0, bytes);

    picture.setPicFormat(format);
    picture.pitch = static_cast<quint32>(pitch);
    picture.data = data;
    picture.allocatedSize = bytes;
    return true;
}

void CxPicBufAPI::FreePicBuf(SxPicBuf& picture, bool resetFormat)
{
    // Foreign memory, which has no size of ours, is only forgotten.
    if (picture.data && picture.allocatedSize != 0)
        fx_BlockStore().giveBack(picture.data, static_cast<std::size_t>(picture.allocatedSize));
    picture.data = nullptr;
    picture.allocatedSize = 0;
    if (resetFormat)
        picture.setPicFormat(SxPicBufInfo());
}
