// The getters of header fields and sequence channels by epoch number, on files made by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "AnalysisFile.h"
#include "AnalysisGetters.h"
#include "Corvantis.h"
#include "FileBytes.h"

namespace {

using namespace corvantis_test;

// Fields of unlike values in a header that is otherwise zero, behind it three empty records.
Bytes SettingsEpoch() {
    Bytes header = EpochHeaderBytes(300, 4, {14, 14, 14});
    Put(header, 516, Hex("3FA00000 BF000000 00000000 461C4000"));  // gains
    Put(header, 737, Hex("80 FF 00 7F"));                          // amplifier modes
    Put(header, 744, Hex("00000001 FFFFFFFE 80000000 7FFFFFFF"));  // mean outputs
    Put(header, 760, Hex("41CC0000 FEDC 8001"));                   // temperature, digital, length
    Put(header, 768, Hex("3E800000 40000000 C0400000 40A00000"));  // filters
    Put(header, 784, Hex("0001 8000 0003 FFFF"));                  // LEDs
    Put(header, 792, Hex("3F800000"));                             // user values
    Put(header, 884, Hex("C28C0000"));
    return Join({header, Bytes(48)});
}

const std::vector<Field>& HeaderFields() {
    static const std::vector<Field> fields = {
        Plain("segments", ITCGetEpochSegments, 3),
        Plain("size", ITCGetEpochSize, 4),
        Plain("interval", ITCGetSamplingInterval, 300),
        Indexed("gain", ITCGetAmpGain, 0, 1.25),
        Indexed("gain", ITCGetAmpGain, 3, 10000),
        Indexed("mode", ITCGetAmpMode, 0, -128),
        Indexed("mode", ITCGetAmpMode, 3, 127),
        Indexed("mean output", ITCGetMeanOutput, 1, -2),
        Indexed("mean output", ITCGetMeanOutput, 3, INT32_MAX),
        Indexed("user value", ITCGetUserValue, 0, 1),
        Indexed("user value", ITCGetUserValue, 23, -70),
        Indexed("LED", ITCGetLEDSetting, 1, 32768),
        Indexed("LED", ITCGetLEDSetting, 3, 65535),
        Indexed("filter", ITCGetNDF, 0, 0.25),
        Indexed("filter", ITCGetNDF, 3, 5),
        Plain("wavelength", ITCGetWavelength, 32769),
        Plain("digital output", ITCGetDigitalOutput, 65244),
        Plain("temperature", ITCGetTemperature, 25.5),
        Indexed("input", ITCGetInputChan, 2, 2),
        Indexed("output", ITCGetOutputChan, 2, 2),
        Indexed("entry of output", ITCGetSegmentForOutputChan, 0, 0),
        Indexed("entry of input", ITCGetSegmentForInputChan, 0, 0),
    };
    return fields;
}

// A read's own code comes through: 7 for what cannot be read, 1 before a start-up.
TEST_F(AnalysisTest, HeaderFields) {
    Open(DataFileBytes(8, {SettingsEpoch(), Bytes(100)}));
    for (const Field& field : HeaderFields()) {
        ExpectResult(field, 0, ITC_SUCCESS);
        for (const int32_t epoch : {-1, 1, 2}) ExpectResult(field, epoch, ITC_FILE_ERROR);
        InitFlag = 0;
        ExpectResult(field, 0, ITC_NOT_STARTED);
        InitFlag = 1;
    }
}

TEST_F(AnalysisTest, IndicesOutOfRange) {
    Open(DataFileBytes(8, {SettingsEpoch()}));
    for (const int32_t index : {-1, 24, INT32_MIN, INT32_MAX}) {
        ExpectResult(Indexed("user value", ITCGetUserValue, index, 0), 0, ITC_BAD_ARGUMENT);
        for (const int32_t channel : {4, index}) {
            for (const Field& field : {Indexed("gain", ITCGetAmpGain, channel, 0),
                                       Indexed("mode", ITCGetAmpMode, channel, 0),
                                       Indexed("mean output", ITCGetMeanOutput, channel, 0),
                                       Indexed("LED", ITCGetLEDSetting, channel, 0),
                                       Indexed("filter", ITCGetNDF, channel, 0),
                                       Indexed("input", ITCGetInputChan, channel, 0),
                                       Indexed("output", ITCGetOutputChan, channel, 0)}) {
                ExpectResult(field, 0, ITC_BAD_ARGUMENT);
            }
        }
    }
}

TEST_F(AnalysisTest, FieldsOfTheFileHeader) {
    Bytes file = DataFileBytes(8, {SettingsEpoch(), SettingsEpoch()});
    file[550] = 0xFD;
    Open(file);
    for (const int32_t flag : {1, 0}) {
        InitFlag = flag;
        int32_t epochs = 0, format = 0;
        EXPECT_EQ(ITCGetNumberEpochs(&epochs), ITC_SUCCESS);
        EXPECT_EQ(ITCGetStmDataFormat(&format), ITC_SUCCESS);
        EXPECT_EQ(epochs, 2);
        EXPECT_EQ(format, -3);
    }
    InitFlag = 1;
}

// An epoch of spatial stimuli with these sequence words; a length other than 0 to 4 has no records.
Bytes SequenceEpoch(int32_t length, const std::vector<uint32_t>& words) {
    Bytes header = EpochHeaderBytes(100, 0, Bytes(4, 14));
    Put(header, 580, Big32(static_cast<uint32_t>(length)));
    for (size_t i = 0; i < words.size(); ++i) Put(header, 584 + 4 * i, Big32(words[i]));
    return Join({header, Bytes(length < 0 ? 0 : static_cast<size_t>(length) * 16)});
}

// Every combination of the bits that select, amid all others.
TEST_F(AnalysisTest, ChannelsOfSequenceWords) {
    std::vector<Bytes> epochs;
    for (uint32_t code = 0; code < 128; ++code) {
        const uint32_t word = code << 7;
        epochs.push_back(SequenceEpoch(2, {word, word | 0xFFFFC07F}));
    }
    Open(DataFileBytes(8, epochs));
    for (int32_t code = 0; code < 128; ++code) {
        const int32_t input = code % 16, output = code / 16;
        for (const int32_t entry : {0, 1}) {
            ExpectResult(Indexed("input", ITCGetInputChan, entry, input < 8 ? input : 8), code, 0);
            ExpectResult(Indexed("output", ITCGetOutputChan, entry, output < 4 ? output : 4), code,
                         0);
        }
    }
}

struct LookupCase {
    int32_t length;
    std::vector<uint32_t> words;
    std::optional<int32_t> output0, input0, output3, input7;
};

TEST_F(AnalysisTest, EntriesOfChannels) {
    std::vector<LookupCase> cases = {
        {3, {0x880, 0x1100, 0xD980}, 0, 0, {}, {}},  // as the library builds them: always 0
        {4, {0x09, 0x40, 0x27, 0xC000}, 2, 1, {}, {}},
        {2, {0x7F, 0xC07F, 0, 0}, {}, {}, {}, {}},
        {0, {0, 0}, {}, {}, {}, {}},
        {-1, {0x7F}, 0, 0, 0, 0},
        {INT32_MIN, {0x7F}, 0, 0, 0, 0},
    };
    for (uint32_t bit = 0; bit < 32; ++bit) {
        const bool hidesOutput = bit == 3 || bit == 4 || bit == 6;
        const bool hidesInput = bit < 3 || bit == 5;
        cases.push_back({2, {1U << bit, 0}, hidesOutput ? 1 : 0, hidesInput ? 1 : 0, {}, {}});
    }
    std::vector<Bytes> epochs;
    epochs.reserve(cases.size());
    for (const LookupCase& each : cases) epochs.push_back(SequenceEpoch(each.length, each.words));
    Open(DataFileBytes(8, epochs));
    int32_t epoch = 0;
    for (const LookupCase& each : cases) {
        const auto expect = [&](auto get, int32_t channel, std::optional<int32_t> entry) {
            ExpectResult(Indexed("lookup", get, channel, entry.value_or(0)), epoch,
                         entry ? ITC_SUCCESS : ITC_BAD_ARGUMENT);
        };
        expect(ITCGetSegmentForOutputChan, 0, each.output0);
        expect(ITCGetSegmentForOutputChan, 3, each.output3);
        expect(ITCGetSegmentForInputChan, 0, each.input0);
        expect(ITCGetSegmentForInputChan, 7, each.input7);
        ++epoch;
    }
    for (const int32_t channel : {4, 8, -1, INT32_MIN}) {  // refused before anything is read
        ExpectResult(Indexed("lookup", ITCGetSegmentForOutputChan, channel, 0), 99, 6);
        if (channel == 4) continue;
        ExpectResult(Indexed("lookup", ITCGetSegmentForInputChan, channel, 0), 99, 6);
    }
}

}  // namespace
