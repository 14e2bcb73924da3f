#pragma once

#include <QtGlobal>
#include <cstddef>
#include <mutex>
#include <vector>

/// The memory of all pictures. Fresh memory costs a page fault every 4096 bytes, for a large picture as
/// much as its decoding; so a few blocks of pictures freed are kept for the next picture of that size,
/// as long as any picture lives. The very last is kept a moment longer, for a host that holds no picture
/// between one and the next; it goes when none was wanted for a while. For several threads.
class CxBlockStore
{
public:
    static CxBlockStore& instance();

    unsigned char* take(std::size_t bytes); ///< null when there is no memory
    void giveBack(unsigned char* data, std::size_t bytes);

private:
    CxBlockStore();

    struct SxBlock
    {
        unsigned char* data;
        std::size_t bytes;
    };

    unsigned char* takeKept(std::size_t bytes);
    void keepAtMost(std::size_t count);
    void watchForIdling();
    void onLook();

    std::mutex m_mutex;
    std::vector<SxBlock> m_kept; ///< oldest first
    quint64 m_live = 0;          ///< blocks handed out
    quint64 m_taken = 0;         ///< blocks handed out since the start
    quint64 m_takenAtLook = 0;   ///< those when it was last looked whether anyone still wants some
    bool m_isWatched = false;    ///< such a look is due
};
