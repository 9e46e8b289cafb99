// Data files of every stimulus type: what is read and recomputed from one, and written to another.
#include <cstring>
#include <iterator>

#include "Corvantis.h"
#include "Report.h"
#include "fuzz/SeedFiles.h"

namespace exactness {
namespace {

// Signalling NaNs, signs and bytes of every value: what a careless copy or a plain char changes.
void FillHeader() {
    const uint32_t patterns[] = {0x7F800001, 0x80000000, 0xFFFFFFFF, 0x01020384};
    for (size_t i = 0; i < ITC_USER_VALUES; ++i)
        std::memcpy(&epochhdr->userValue[i], &patterns[i % 4], sizeof patterns[0]);
    std::memcpy(epochhdr->meanOutput, patterns, sizeof patterns);
    for (size_t i = 0; i < ITC_CHANNELS; ++i)
        epochhdr->ledSetting[i] = static_cast<uint16_t>(patterns[i / 2] >> 16 * (i % 2));
    std::memset(epochhdr->epochComment, 0xE9, ITC_COMMENT_LENGTH);
}

}  // namespace

void ReportDataFiles(Report& report) {
    const std::string given = (report.folder / "given.itc").string();
    const std::string written = (report.folder / "written.itc").string();
    std::vector<uint8_t> files;
    std::vector<uint16_t> samples;
    std::vector<float> conductances(corvantis_fuzz::kPoints, -85.3F);
    for (uint32_t type = 1; type <= corvantis::kLargestType; ++type) {
        std::ofstream(given, std::ios::binary) << corvantis_fuzz::FileBytes(type, 4, 8, 0xB0);
        Require(ITCOpenFile(given.c_str()) == ITC_SUCCESS, "opening a file");
        Require(ITCRetrieveEpoch(0) == ITC_SUCCESS, "reading an epoch");
        const uint16_t* output = *ITCOutputBuffer;
        if (ITCRetrieveEpochStm(0) == ITC_SUCCESS)
            samples.insert(samples.end(), output, output + 4 * corvantis_fuzz::kPoints);
        ITCCloseFile();
        FillHeader();
        ExcitatoryG = InhibitoryG = conductances.data();
        Require(ITCCreateFile(written.c_str(), 1) == ITC_SUCCESS, "creating a file");
        (*ITCInputBuffer)[type] = static_cast<uint16_t>(0xFF00 + type);
        ITCSaveToFile();
        ITCCloseFile();
        std::ifstream file(written, std::ios::binary);
        files.insert(files.end(), std::istreambuf_iterator<char>(file), {});
        for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
    }
    report.Add<uint16_t>("data-files-recomputed", samples);
    report.Add<uint8_t>("data-files-written", files);
}

}  // namespace exactness

int main(int argc, char** argv) {
    exactness::Require(argc == 2, "usage: ExactnessDigests FOLDER");
    exactness::Report report(argv[1]);
    const int32_t capacity = 1024;
    std::vector<uint16_t> input(capacity), output(capacity);
    uint16_t *inputBuffer = input.data(), *outputBuffer = output.data();
    exactness::Require(ITCInit(&inputBuffer, &outputBuffer, &capacity, 0) == ITC_SUCCESS,
                       "starting the library");
    ReportMaths(report);
    ReportDataFiles(report);
    return ITCFinish();
}
