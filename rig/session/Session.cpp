// The library's calls, in the order of its header.
#include "session/Session.h"

#include "Corvantis.h"
#include "files/Failure.h"
#include "session/Builders.h"

namespace corvantis::rig {
namespace {

using tool::Failure;

// Meanings as in the library's header.
const char* ReasonOf(int32_t result) {
    switch (result) {
        case ITC_NOT_STARTED:
            return "the device refused: is it on, connected and not in use?";
        case ITC_STIMULUS_ERROR:
            return "a stimulus cannot be computed";
        case ITC_TOO_LARGE:
            return "the device refused the sampling interval";
        case ITC_OUT_OF_MEMORY:
            return "out of memory";
        case ITC_BAD_ARGUMENT:
            return "its sequence, interval, latency or lengths are refused";
        case ITC_FILE_ERROR:
            return "it exists already, is recorded by another program, or cannot be written";
        default:
            return "failed";
    }
}

void Require(int32_t result, const std::string& what) {
    if (result != ITC_SUCCESS) throw Failure(what, ReasonOf(result));
}

void FreeSlots() {
    for (uint32_t slot = 0; slot < ITC_CHANNELS; ++slot) ITCFreeParams(slot);
}

// The library knows the sequence's words; everything else is planned.
void TakeHeader(const ITCEpochHeader& planned, double time) {
    ITCEpochHeader header = planned;
    header.epochTime = static_cast<float>(time);
    header.sequenceLength = epochhdr->sequenceLength;
    std::copy(std::begin(epochhdr->channelSequence), std::end(epochhdr->channelSequence),
              header.channelSequence);
    *epochhdr = header;
}

// Where each output stands before its stimulus begins.
void StoreMeanOutputs(std::span<const uint16_t> stimulus) {
    for (int32_t entry = 0; entry < epochhdr->sequenceLength; ++entry) {
        ITCWriteMeanOutput(static_cast<int16_t>(stimulus[static_cast<size_t>(entry)]), entry);
    }
}

}  // namespace

Session::Session(int32_t device, int64_t samples)
    : acquired_(static_cast<size_t>(samples)),
      stimulus_(static_cast<size_t>(samples)),
      acquiredSamples_(acquired_.data()),
      stimulusSamples_(stimulus_.data()) {
    const auto capacity = static_cast<int32_t>(samples);
    Require(ITCInit(&acquiredSamples_, &stimulusSamples_, &capacity, device), "interface");
}

Session::~Session() {
    if (hasFile_) ITCCloseFile();
    FreeSlots();
    ExcitatoryG = InhibitoryG = nullptr;
    ITCFinish();
    // These stay behind an ending.
    ITCFree(itc);
    ITCFree(ITCbufsize);
    itc = nullptr;
    ITCbufsize = nullptr;
}

// The library's state is the process's; a session is who may ask for it.
// NOLINTBEGIN(readability-convert-member-functions-to-static)
void* Session::Device() const { return itc; }

void Session::CreateFile(const std::string& path, const std::string& comment) {
    ITCWriteFileCom(comment.c_str());
    Require(ITCCreateFile(path.c_str(), 0), path);
    hasFile_ = true;
}

void Session::Compute(const PlannedEpoch& epoch, double time) {
    const ITCEpochHeader& header = epoch.content.header;
    Require(ITCSetSeq(epoch.inputs.c_str(), epoch.outputs.c_str()), "channel sequence");
    Require(ITCSetAcqParams(header.samplingInterval, header.epochPoints, header.acqSettingA,
                            header.acqSettingB),
            "sampling interval");
    TakeHeader(header, time);
    FreeSlots();
    for (size_t entry = 0; entry < epoch.content.stimuli.size(); ++entry) {
        Require(BuildStimulus(static_cast<int32_t>(entry), epoch.content.stimuli[entry],
                              header.pointsLatency),
                "stimulus");
    }
    // Written with the epoch; whoever planned it keeps them until then.
    ExcitatoryG = const_cast<float*>(epoch.excitatory.data());
    InhibitoryG = const_cast<float*>(epoch.inhibitory.data());
    Require(ITCUpdateStm(), "stimulus");
}

void Session::Prepare(const PlannedEpoch& epoch, double time) {
    Compute(epoch, time);
    StoreMeanOutputs(stimulus_);
    Require(ITCInitAcq(), "interface");
}

std::span<const uint16_t> Session::Stimulus() const {
    return {stimulus_.data(), static_cast<size_t>(epochhdr->epochPoints) *
                                  static_cast<size_t>(epochhdr->sequenceLength)};
}

std::span<uint16_t> Session::Response() { return {acquired_.data(), Stimulus().size()}; }

const uint32_t* Session::Sequence() const { return epochhdr->channelSequence; }

void Session::SetComment(const std::string& comment) { ITCWriteEpochCom(comment.c_str()); }

bool Session::Save() {
    const int32_t before = filehdr->numEpochs;
    const bool isSaved = ITCSaveToFile() == ITC_SUCCESS;
    // A failed save has counted its epoch; the same epoch tried again is not a second one.
    if (!isSaved) filehdr->numEpochs = before;
    return isSaved;
}

// NOLINTEND(readability-convert-member-functions-to-static)

}  // namespace corvantis::rig
