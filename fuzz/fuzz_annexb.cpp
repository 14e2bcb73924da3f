// Any bytes as a stream: the frames are those of the plain scan.
#include <cstdint>

#include "AnnexB.h"
#include "Expect.h"
#include "support/ReferenceScan.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFrameScanner scanner(data, size);
    SxScan scan;
    for (SxFrameRange frame; scanner.next(frame);)
        scan.frames.push_back(frame);
    if (scanner.spsPayload()) {
        scan.hasSps = true;
        scan.spsPayload = static_cast<std::size_t>(scanner.spsPayload() - data);
    }
    scan.spsLength = scanner.spsLength();
    TARN_EXPECT(scan == fx_ReferenceScan(Bytes(data, data + size)));
    return 0;
}
