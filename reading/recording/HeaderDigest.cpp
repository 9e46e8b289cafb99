// Mixing the words of a header as it lies in a file.
#include "recording/HeaderDigest.h"

#include "ITCFileIO/RecordCodec.h"

namespace corvantis::reading {
namespace {

template <class Header>
uint64_t Mix(const Header& header) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    const EncodedRecord<Header> bytes = Encode(header);
    static_assert(bytes.size() % sizeof(uint32_t) == 0);
    uint64_t digest = bytes.size();
    for (size_t i = 0; i < bytes.size(); i += sizeof(uint32_t)) {
        uint32_t word;
        LoadBigEndian(bytes.data() + i, word);
        digest = (digest ^ word) * kOdd;
        digest ^= digest >> 29;
    }
    return digest;
}

}  // namespace

uint64_t DigestOf(const ITCFileHeader& header) { return Mix(header); }
uint64_t DigestOf(const ITCEpochHeader& header) { return Mix(header); }

}  // namespace corvantis::reading
