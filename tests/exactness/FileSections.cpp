// Sums and output buffers, and a whole data file with what is read and recomputed from it.
#include <algorithm>
#include <fstream>
#include <iterator>

#include "Corvantis.h"
#include "Epochs.h"
#include "Sections.h"

namespace exactness {
namespace {

void Extend(Samples& samples, const Samples& more) {
    samples.insert(samples.end(), more.begin(), more.end());
}

void Record(int32_t epoch, std::vector<float>& conductances) {
    SetUpEpoch(epoch);
    const size_t points = static_cast<size_t>(epochhdr->epochPoints);
    for (size_t i = 0; i < 2 * points; ++i) {
        conductances[i] = static_cast<float>(i) / 7 - 100;
    }
    ExcitatoryG = conductances.data();
    InhibitoryG = conductances.data() + points;
    const size_t samples = points * static_cast<size_t>(epochhdr->sequenceLength);
    for (size_t i = 0; i < samples; ++i) {
        (*ITCInputBuffer)[i] = static_cast<uint16_t>(31 * i + static_cast<size_t>(epoch));
    }
    Require(ITCSaveToFile() == ITC_SUCCESS, "saving an epoch");
}

Bytes Content(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(stream), {});
}

Samples ReadBack(int32_t epoch) {
    Require(ITCRetrieveEpoch(epoch) == ITC_SUCCESS, "reading an epoch");
    const int32_t samples = epochhdr->epochPoints * epochhdr->sequenceLength;
    Samples read(*ITCInputBuffer, *ITCInputBuffer + samples);
    if (!IsComputable(epoch)) return read;
    Require(ITCRetrieveEpochStm(epoch) == ITC_SUCCESS, "recomputing an epoch");
    Extend(read, Outputs());
    return read;
}

}  // namespace

void ReportSums(Report& report) {
    Samples samples;
    for (int32_t epoch = 0; epoch < kEpochs; ++epoch) {
        SetUpEpoch(epoch);
        if (!IsComputable(epoch)) continue;
        Require(ITCUpdateStm() == ITC_SUCCESS, "computing the output");
        Extend(samples, Outputs());
    }
    report.Add("output-update", samples);
}

void ReportDataFile(Report& report) {
    const std::filesystem::path path = report.folder / "every-type.itc";
    ITCWriteFileCom("every stimulus type, 37 \xB0 C");
    ITCWriteOffset(-0.1F);
    Require(ITCCreateFile(path.c_str(), 1) == ITC_SUCCESS, "creating the data file");
    SetUpEpoch(0);
    std::vector<float> conductances(2 * static_cast<size_t>(epochhdr->epochPoints));
    for (int32_t epoch = 0; epoch < kEpochs; ++epoch) Record(epoch, conductances);
    Require(ITCCloseFile() == 0, "closing the data file");
    report.Add("data-file", Content(path));

    Require(ITCOpenFile(path.c_str()) == ITC_SUCCESS, "opening the data file");
    Samples samples;
    for (int32_t epoch = 0; epoch < kEpochs; ++epoch) Extend(samples, ReadBack(epoch));
    report.Add("data-file-read-and-recomputed", samples);
    std::fill(conductances.begin(), conductances.end(), 0.0F);
    Require(ITCRetrieveEpochStmGClamp(kEpochs - 1, 0) == ITC_SUCCESS, "reading conductances");
    report.Add("data-file-conductances", conductances);
    Require(ITCCloseFile() == 0, "closing the data file");
}

}  // namespace exactness
