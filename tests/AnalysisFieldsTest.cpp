// The getters of header fields and sequence channels by epoch number, on files made by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "AnalysisFile.h"
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

// A read's own code comes through: 7 for what cannot be read, 1 before a start-up.
TEST_F(AnalysisTest, HeaderFields) {
    const std::vector<std::pair<Getter, double>> fields = {
        {Of(ITCGetEpochSegments), 3},
        {Of(ITCGetEpochSize), 4},
        {Of(ITCGetSamplingInterval), 300},
        {Of(ITCGetAmpGain, 0), 1.25},
        {Of(ITCGetAmpGain, 3), 10000},
        {Of(ITCGetAmpMode, 0), -128},
        {Of(ITCGetAmpMode, 3), 127},
        {Of(ITCGetMeanOutput, 1), -2},
        {Of(ITCGetMeanOutput, 3), INT32_MAX},
        {Of(ITCGetUserValue, 0), 1},
        {Of(ITCGetUserValue, 23), -70},
        {Of(ITCGetLEDSetting, 1), 32768},
        {Of(ITCGetLEDSetting, 3), 65535},
        {Of(ITCGetNDF, 0), 0.25},
        {Of(ITCGetNDF, 3), 5},
        {Of(ITCGetWavelength), 32769},
        {Of(ITCGetDigitalOutput), 65244},
        {Of(ITCGetTemperature), 25.5},
        {Of(ITCGetInputChan, 2), 2},
        {Of(ITCGetOutputChan, 2), 2},
        {Of(ITCGetSegmentForOutputChan, 0), 0},
        {Of(ITCGetSegmentForInputChan, 0), 0},
    };
    Bytes file = DataFileBytes({SettingsEpoch(), Bytes(100)});
    file[550] = 0xFD;
    Open(file);
    int32_t epochs = 0, format = 0;
    EXPECT_EQ(ITCGetNumberEpochs(&epochs), ITC_SUCCESS);
    EXPECT_EQ(ITCGetStmDataFormat(&format), ITC_SUCCESS);
    EXPECT_EQ(epochs, 2);
    EXPECT_EQ(format, -3);
    for (const auto& [get, expected] : fields) {
        ExpectValue(get, 0, expected);
        for (const int32_t epoch : {-1, 1, 2}) ExpectFailure(get, epoch, ITC_FILE_ERROR);
        InitFlag = 0;
        ExpectFailure(get, 0, ITC_NOT_STARTED);
        InitFlag = 1;
    }
    for (const int32_t index : {4, -1, 24, INT32_MIN, INT32_MAX}) {
        for (const Getter& get :
             {Of(ITCGetAmpGain, index), Of(ITCGetAmpMode, index), Of(ITCGetMeanOutput, index),
              Of(ITCGetLEDSetting, index), Of(ITCGetNDF, index), Of(ITCGetInputChan, index),
              Of(ITCGetOutputChan, index), Of(ITCGetUserValue, index == 4 ? 24 : index)}) {
            ExpectFailure(get, 0, ITC_BAD_ARGUMENT);
            InitFlag = 0;
            ExpectFailure(get, 0, ITC_NOT_STARTED);
            InitFlag = 1;
        }
    }
}

// An epoch of spatial stimuli with these sequence words.
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
    Open(DataFileBytes(epochs));
    for (int32_t code = 0; code < 128; ++code) {
        const int32_t input = code % 16, output = code / 16;
        for (const int32_t entry : {0, 1}) {
            ExpectValue(Of(ITCGetInputChan, entry), code, input < 8 ? input : 8);
            ExpectValue(Of(ITCGetOutputChan, entry), code, output < 4 ? output : 4);
        }
    }
}

TEST_F(AnalysisTest, EntriesOfChannels) {
    struct Case {
        int32_t length;
        std::vector<uint32_t> words;
        std::optional<int32_t> output0, input0, output3, input7;
    };
    const std::vector<Case> cases = {
        {3, {0x880, 0x1100, 0xD980}, 0, 0, {}, {}},  // as the library builds them: always 0
        {4, {0x09, 0x40, 0x27, 0xC000}, 2, 1, {}, {}},
        {2, {0x7F, 0xC07F, 0, 0}, {}, {}, {}, {}},
        {3, {0x10, 0x20, 0x02, 0}, 1, 0, {}, {}},
        {4, {0x02, 0x04, 0x40, 0xFFFFFF80}, 0, 2, {}, {}},
        {0, {0, 0}, {}, {}, {}, {}},
        {-1, {0x7F}, 0, 0, 0, 0},
    };
    std::vector<Bytes> epochs;
    for (const Case& each : cases) epochs.push_back(SequenceEpoch(each.length, each.words));
    Open(DataFileBytes(epochs));
    int32_t epoch = 0;
    const auto expect = [&](const Getter& get, std::optional<int32_t> entry) {
        if (entry) ExpectValue(get, epoch, *entry);
        if (!entry) ExpectFailure(get, epoch, ITC_BAD_ARGUMENT);
    };
    for (const Case& each : cases) {
        expect(Of(ITCGetSegmentForOutputChan, 0), each.output0);
        expect(Of(ITCGetSegmentForOutputChan, 3), each.output3);
        expect(Of(ITCGetSegmentForInputChan, 0), each.input0);
        expect(Of(ITCGetSegmentForInputChan, 7), each.input7);
        ++epoch;
    }
    for (const int32_t channel : {8, -1, INT32_MIN}) {  // refused before anything is read
        ExpectFailure(Of(ITCGetSegmentForOutputChan, channel == 8 ? 4 : channel), 99,
                      ITC_BAD_ARGUMENT);
        ExpectFailure(Of(ITCGetSegmentForInputChan, channel), 99, ITC_BAD_ARGUMENT);
    }
}

}  // namespace
