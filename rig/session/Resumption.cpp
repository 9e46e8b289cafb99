// Counting the epochs that are there.
#include "session/Resumption.h"

#include "Corvantis.h"
#include "CorvantisReading.h"
#include "files/DataFile.h"
#include "files/Failure.h"

namespace corvantis::rig {
namespace {

using tool::Require;

// Those that can be read: one that a killed save left behind is played again.
int64_t WholeEpochs(const CorvantisRecording* recording) {
    int64_t whole = 0;
    for (int64_t k = 0; k < CorvantisEpochs(recording); ++k) {
        CorvantisEpochInfo info;
        if (CorvantisEpoch(recording, k, &info, nullptr) == CORVANTIS_SUCCESS) ++whole;
    }
    return whole;
}

}  // namespace

Resumption ResumptionOf(const std::string& recording) {
    const tool::DataFile opened(recording);
    ITCFileHeader header;
    Require(CorvantisFileHeader(opened.Recording(), &header), {});
    header.fileComment[ITC_COMMENT_LENGTH - 1] = '\0';
    std::optional<Origin> origin = OriginOf(header.fileComment);
    if (!origin) throw tool::Failure(recording, "its comment names no protocol to go on with");
    origin->first += WholeEpochs(opened.Recording());
    return {ProtocolPath(recording), *origin};
}

}  // namespace corvantis::rig
