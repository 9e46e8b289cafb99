// Fields of the headers and values of the stimuli: stored by their accessors and delivered by every
// getter, of the current epoch and by epoch number.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"
#include "StimulusRecords.h"

namespace {

using namespace corvantis_test;

// Where any getter may deliver its result; 77 if it has none.
struct Target {
    operator int32_t*() { return &whole; }
    operator uint16_t*() { return &half; }
    operator float*() { return &real; }
    int32_t whole = 77;
    uint16_t half = 77;
    float real = 77;
};

using Getter = int32_t (*)(int32_t epoch, int32_t index, int32_t component, Target& target);
constexpr double kNone = 77;

template <auto get>
int32_t Get(int32_t epoch, int32_t index, int32_t component, Target& target) {
    if constexpr (requires { get(epoch, target); })
        return get(epoch, target);
    else if constexpr (requires { get(epoch, index, target); })
        return get(epoch, index, target);
    else
        return get(epoch, index, component, target);
}

void Expect(Getter get, int32_t epoch, int32_t index, int32_t component, double value,
            int failure) {
    Target target;
    EXPECT_EQ(get(epoch, index, component, target), value == kNone ? failure : 0)
        << index << component;
    EXPECT_EQ(double{target.real} + target.whole + target.half - 2 * kNone, value);
}

class Fields : public RecordingTest {
  protected:
    // Of the first epoch; the second one cannot be read whole.
    static void ExpectReads(Getter get, int32_t index, double value, int failure, int unreadable,
                            int notStarted) {
        Expect(get, 0, index, 0, value, failure);
        for (const int32_t epoch : {-1, 1, 2}) Expect(get, epoch, index, 0, kNone, unreadable);
        InitFlag = 0;
        Expect(get, 0, index, 0, kNone, notStarted);
        InitFlag = 1;
    }
};

// The bytes of the first and the last element.
const struct {
    size_t place;
    const char* bytes;
    int32_t count;
    Getter get;
    double value;
} kFields[] = {{516, "3FA00000", 4, Get<ITCGetAmpGain>, 1.25},
               {532, "C0200000", 4, nullptr, 0},
               {548, "41A00000", 4, nullptr, 0},
               {564, "80", 4, nullptr, 0},
               {572, "0000012C", 1, Get<ITCGetSamplingInterval>, 300},
               {576, "00000002", 1, Get<ITCGetEpochSize>, 2},
               {580, "00000001", 1, Get<ITCGetEpochSegments>, 1},
               {609, "70410000000000000000000000000000", 4, nullptr, 0},
               {673, "30313233343536373839616263646566", 4, nullptr, 0},
               {737, "FE", 4, Get<ITCGetAmpMode>, -2},
               {744, "80000001", 4, Get<ITCGetMeanOutput>, -0x7FFFFFFF},
               {760, "41CC0000", 1, Get<ITCGetTemperature>, 25.5},
               {764, "FEDC", 1, Get<ITCGetDigitalOutput>, 65244},
               {766, "8001", 1, Get<ITCGetWavelength>, 32769},
               {768, "3E800000", 4, Get<ITCGetNDF>, 0.25},
               {784, "FFFE", 4, Get<ITCGetLEDSetting>, 65534},
               {792, "C28C0000", 24, Get<ITCGetUserValue>, -70}};

// Whatever the index, nothing beyond a field is written or read.
TEST_F(Fields, AreStoredAtTheirPlaceAndDelivered) {
    std::memset(epochhdr, 0x35, sizeof *epochhdr);
    const auto header = [] {
        const Stream stream = StreamOver();
        Write_ITCEpochHeader(stream.get(), epochhdr);
        return Content(stream.get());
    };
    Bytes expected = header();
    epochhdr->samplingInterval = 300;
    epochhdr->epochPoints = 2;
    epochhdr->sequenceLength = 1;
    ITCWriteTemperature(25.5F);
    ITCWriteDigitalOutput(65244);
    ITCWriteWavelength(32769);
    for (const int32_t i : {0, 3, 4, -1, INT32_MIN}) {
        const bool inside = i == 0 || i == 3;
        ITCWriteAmpGain(1.25F, -2.5F, -128, i);
        ITCWriteConvFactor(20, i);
        ITCWriteAmpMode(-2, i);
        ITCWriteMeanOutput(-0x7FFFFFFF, i);
        ITCWriteNDF(0.25F, i);
        ITCWriteLEDSetting(65534, i);
        ITCWriteUserValue(-70, i < 3 ? i : i + 20);
        EXPECT_STREQ(ITCWriteOutputUnits("pA", i), inside ? "pA" : "");
        EXPECT_EQ(ITCWriteInputUnits("0123456789abcdefg", i), ITCGetInputUnits(i));
        float gain = 1, value = 1;
        int8_t code = 1;
        ITCGetAmpSettings(&gain, &value, &code, i);
        EXPECT_TRUE(gain == (inside ? 1.25F : 0) && value == -2 * gain);
        EXPECT_EQ(code, inside ? -128 : 0);
        EXPECT_EQ(ITCGetStimType(i), inside ? 0x35 : 0);
        EXPECT_EQ(ITCGetConvFactor(i), inside ? 20 : 0);
        EXPECT_STREQ(ITCGetOutputUnits(i), inside ? "pA" : "");
    }
    for (const auto& [place, digits, count, get, value] : kFields)
        for (const Bytes& bytes = Hex(digits); const int32_t i : {0, count - 1})
            Put(expected, place + i * bytes.size(), bytes);
    EXPECT_EQ(header(), expected);
    expected[605] = 14;
    Open(DataFileBytes({Join({expected, Bytes(20)}), expected}));
    for (const auto& [place, digits, count, get, value] : kFields) {
        for (const int32_t i : {0, count - 1, count, -1}) {
            const bool inside = count == 1 || (i >= 0 && i < count);
            if (get != nullptr) ExpectReads(get, i, inside ? value : kNone, 6, inside ? 7 : 6, 1);
        }
    }
    int32_t epochs = 0, format = 0;
    EXPECT_TRUE(ITCGetNumberEpochs(&epochs) == 0 && ITCGetStmDataFormat(&format) == 0);
    EXPECT_TRUE(epochs == 2 && ITCGetNumEpochs() == 2 && format == filehdr->stmDataFormat);
    EXPECT_TRUE(ITCGetSampInterval() == 300 && ITCGetDataPts() == 2 && ITCGetSegments() == 1);
    ITCWriteOffset(0.1F);
    EXPECT_TRUE(filehdr->offset == 0.1F && ITCGetOffset() == double{0.1F});
    epochhdr->epochTime = 1e-3F;
    EXPECT_EQ(ITCGetEpochTime(), double{1e-3F});
}

// A comment has up to 511 characters and their terminator; behind it, everything stays.
TEST_F(Fields, CommentsAreCutToTheirField) {
    for (const size_t length : {0U, 511U, 512U, 2000U}) {
        const std::string text(length, 'x'), kept = text.substr(0, 511) + '\0';
        for (char* const comment : {filehdr->fileComment, epochhdr->epochComment}) {
            const bool ofFile = comment == filehdr->fileComment;
            std::fill_n(comment, 516, '5');
            for (const char* given : {text.c_str(), static_cast<const char*>(nullptr)})
                EXPECT_EQ((ofFile ? ITCWriteFileCom : ITCWriteEpochCom)(given), comment);
            EXPECT_EQ((ofFile ? ITCGetFileCom : ITCGetEpochCom)(), comment);
            EXPECT_EQ(std::string(comment, 516), kept + std::string(516 - kept.size(), '5'));
        }
    }
}

TEST_F(Fields, StimulusRecordsAreCopiedByTheByte) {
    SetUpPulseEpoch();
    for (const uint32_t count : {0U, 31U, 32U, 33U, UINT32_MAX}) {
        Bytes copy(64, 0xA5), expected = copy;
        std::memcpy(expected.data(), &kPulse, std::min(count, 32U));
        for (const int32_t channel : {0, 1, 4, -1}) ITCGetStimParams(channel, copy.data(), count);
        EXPECT_EQ(copy, expected) << count;
    }
}

constexpr Getter kValues[] = {Get<ITCGetStmAmp>,     Get<ITCGetStmMean>,   Get<ITCGetStmPts>,
                              Get<ITCGetStmTailPts>, Get<ITCGetStmPrePts>, Get<ITCGetSeed>};

// Every type as a channel of its own and, beside it, as a component; the fields are 1, 2, 3 …
TEST_F(Fields, ValuesOfEveryStimulus) {
    for (const Stimulus& stimulus : kStimuli) {
        SCOPED_TRACE(int{stimulus.type});
        const int32_t type = stimulus.type;
        if (type == 7) continue;
        Bytes fields;
        for (uint32_t i = 1; type != 5 && type != 8 && 4 * i <= stimulus.size; ++i)
            fields = Join({fields, Big32(i)});
        const Bytes types(255, static_cast<uint8_t>(type));
        const Bytes header = EpochHeaderBytes(100, 0, {types[0], 7});
        const Bytes sum = Join({Big32(1), types, Hex("80"), Bytes(1024)});
        Open(DataFileBytes({Join({header, fields, sum, fields}), header}));
        for (size_t v = 0; v < std::size(kValues); ++v) {
            const char field = v < 5 ? stimulus.fields[v] : type == 2 ? '3' : '-';
            const auto number = std::string("0123456789ABC").find(field);
            const double value = field == '-' ? kNone : static_cast<double>(number);
            ExpectReads(kValues[v], 0, value, 2, 7, 7);
            Expect(kValues[v], 0, 1, 0, value, ITC_STIMULUS_ERROR);
            for (const int32_t none : {1, 256, -1}) Expect(kValues[v], 0, 1, none, kNone, 2);
            for (const int32_t none : {2, 4, -1}) Expect(kValues[v], 0, none, 0, kNone, 2);
        }
        for (const int32_t component : {0, 254})
            Expect(Get<ITCGetStmType>, 0, 1, component, type, 2);
        for (const int32_t none : {256, -1}) Expect(Get<ITCGetStmType>, 0, 1, none, kNone, 2);
        for (const int32_t none : {4, -1}) Expect(Get<ITCGetStmType>, 0, none, 0, kNone, 2);
        Expect(Get<ITCGetStmType>, 0, 1, 255, -128, 2);
        // Reversal potentials of once and twice the smallest float.
        for (const int32_t channel : {0, 1, 4}) {
            float excitatory = 77, inhibitory = 77;
            const bool clamp = type == 11 && channel == 0;
            EXPECT_EQ(ITCGetGClampERev(0, channel, &excitatory), clamp ? 0 : 2);
            EXPECT_EQ(ITCGetGClampIRev(0, channel, &inhibitory), clamp ? 0 : 2);
            EXPECT_TRUE(excitatory == (clamp ? 0x1p-149F : 77));
            EXPECT_TRUE(inhibitory == (clamp ? 0x1p-148F : 77));
        }
        int32_t seed = 77;
        for (const uint32_t channel : {0U, 1U, 2U, 4U})
            EXPECT_EQ(ITCRetrieveRandomSeed(&seed, channel), type == 2 && channel == 0 ? 0 : 2);
        EXPECT_EQ(seed, type == 2 ? 3 : 77);
    }
}

// A channel that the sequence has not answers for its type, and with the record of its slot.
TEST_F(Fields, ChannelsThatTheSequenceHasNot) {
    SetUpPulseEpoch(2);
    Bytes epoch = PulseEpochBytes({1, 2, 3, 4});
    Put(epoch, 606, {3, 0x80, 7});
    Open(DataFileBytes({epoch}));
    for (const auto& [channel, type] : {std::pair{1, 3.0}, {2, -128.0}, {3, kNone}})
        Expect(Get<ITCGetStmType>, 0, channel, 0, type, ITC_STIMULUS_ERROR);
    Expect(Get<ITCGetStmAmp>, 0, 1, 0, 1000, 0);
}

// An epoch of spatial stimuli with these sequence words.
Bytes SequenceEpoch(int32_t length, const std::vector<uint32_t>& words) {
    Bytes header = EpochHeaderBytes(100, 0, Bytes(4, 14));
    Put(header, 580, Big32(static_cast<uint32_t>(length)));
    for (size_t i = 0; i < words.size(); ++i) Put(header, 584 + 4 * i, Big32(words[i]));
    return Join({header, Bytes(16 * std::max(length, 0))});
}

// Every combination of the bits that select, amid all others; a channel is found at its first.
TEST_F(Fields, ChannelsOfSequenceWordsAndTheirEntries) {
    std::vector<Bytes> epochs;
    for (uint32_t code = 0; code < 128; ++code)
        epochs.push_back(SequenceEpoch(2, {code << 7, code << 7 | 0xFFFFC07F}));
    Open(DataFileBytes(epochs));
    for (const int32_t entry : {0, 1, 4, -1}) {
        for (int32_t code = 0; code < 128; ++code) {
            const bool inside = entry == 0 || entry == 1;
            const double input = std::min(code % 16, 8), output = std::min(code / 16, 4);
            Expect(Get<ITCGetInputChan>, code, entry, 0, inside ? input : kNone, 6);
            Expect(Get<ITCGetOutputChan>, code, entry, 0, inside ? output : kNone, 6);
        }
    }
    using Case = std::tuple<Bytes, double, double>;  // entries of output 0 and of input 0
    for (const auto& [epoch, output0, input0] :
         {Case(SequenceEpoch(4, {0x09, 0x40, 0x27, 0xC000}), 2, 1),
          Case(SequenceEpoch(4, {0x02, 0x04, 0x40, 0xFFFFFF80}), 0, 2),
          Case(SequenceEpoch(2, {0x7F, 0xC07F, 0, 0}), kNone, kNone),
          Case(SequenceEpoch(-1, {0x7F}), 0, 0)}) {
        Open(DataFileBytes({epoch}));
        Expect(Get<ITCGetSegmentForOutputChan>, 0, 0, 0, output0, 6);
        Expect(Get<ITCGetSegmentForInputChan>, 0, 0, 0, input0, 6);
    }
    for (const int32_t channel : {-1, 8}) {  // refused before anything is read
        Expect(Get<ITCGetSegmentForOutputChan>, 99, std::min(channel, 4), 0, kNone, 6);
        Expect(Get<ITCGetSegmentForInputChan>, 99, channel, 0, kNone, 6);
    }
}

}  // namespace
