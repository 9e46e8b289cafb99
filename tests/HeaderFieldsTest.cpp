// The accessors of the current headers, each against the whole header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

template <class Header>
Bytes ImageOf(const Header& header) {
    Bytes image(sizeof(Header));
    std::memcpy(image.data(), &header, sizeof(Header));
    return image;
}

// Headers full of bytes that no writer gives, so that any change shows.
class HeaderFieldsTest : public testing::Test {
  protected:
    HeaderFieldsTest() {
        std::memset(filehdr, 0x35, sizeof(*filehdr));
        std::memset(epochhdr, 0x35, sizeof(*epochhdr));
    }
    // The call changes the header exactly as the assignment changes a copy of it.
    template <class Header, class Call, class Assign>
    static void ExpectChange(Header& header, Call call, Assign assign) {
        Header expected = header;
        assign(expected);
        call();
        EXPECT_EQ(ImageOf(header), ImageOf(expected));
    }

    const LibrarySession session;
};

struct WriterCase {
    const char* name;
    std::function<void()> call;
    std::function<void(ITCEpochHeader&)> assign;
};

void Nothing(ITCEpochHeader& /*header*/) {}

TEST_F(HeaderFieldsTest, AWriterSetsItsFieldsAlone) {
    const WriterCase cases[] = {
        {"gain", [] { ITCWriteAmpGain(2.5F, -7, -128, 0); },
         [](ITCEpochHeader& h) { h.ampGain[0] = 2.5F, h.ampValue[0] = -7, h.ampCode[0] = -128; }},
        {"gain", [] { ITCWriteAmpGain(0.1F, 1e9F, 127, 3); },
         [](ITCEpochHeader& h) { h.ampGain[3] = 0.1F, h.ampValue[3] = 1e9F, h.ampCode[3] = 127; }},
        {"factor", [] { ITCWriteConvFactor(-20, 2); },
         [](ITCEpochHeader& h) { h.convFactor[2] = -20; }},
        {"mode", [] { ITCWriteAmpMode(-2, 3); }, [](ITCEpochHeader& h) { h.ampMode[3] = -2; }},
        {"mean", [] { ITCWriteMeanOutput(INT32_MIN, 0); },
         [](ITCEpochHeader& h) { h.meanOutput[0] = INT32_MIN; }},
        {"mean", [] { ITCWriteMeanOutput(40000, 3); },
         [](ITCEpochHeader& h) { h.meanOutput[3] = 40000; }},
        {"mean", [] { ITCWriteMeanOutput(1, 4); }, Nothing},
        {"mean", [] { ITCWriteMeanOutput(1, INT32_MAX); }, Nothing},
        {"filter", [] { ITCWriteNDF(0.3F, 3); }, [](ITCEpochHeader& h) { h.ndf[3] = 0.3F; }},
        {"filter", [] { ITCWriteNDF(1, 4); }, Nothing},
        {"LED", [] { ITCWriteLEDSetting(65535, 3); },
         [](ITCEpochHeader& h) { h.ledSetting[3] = 65535; }},
        {"LED", [] { ITCWriteLEDSetting(1, 4); }, Nothing},
        {"user", [] { ITCWriteUserValue(-1.5F, 23); },
         [](ITCEpochHeader& h) { h.userValue[23] = -1.5F; }},
        {"user", [] { ITCWriteUserValue(1, 24); }, Nothing},
        {"user", [] { ITCWriteUserValue(1, INT32_MAX); }, Nothing},
        {"temperature", [] { ITCWriteTemperature(-3.5F); },
         [](ITCEpochHeader& h) { h.temperature = -3.5F; }},
        {"digital", [] { ITCWriteDigitalOutput(0x8001); },
         [](ITCEpochHeader& h) { h.digitalOutput = 0x8001; }},
        {"wavelength", [] { ITCWriteWavelength(65000); },
         [](ITCEpochHeader& h) { h.wavelength = 65000; }},
    };
    for (const WriterCase& each : cases) {
        SCOPED_TRACE(each.name);
        ExpectChange(*epochhdr, each.call, each.assign);
    }
    ExpectChange(
        *filehdr, [] { ITCWriteOffset(0.1F); }, [](ITCFileHeader& h) { h.offset = 0.1F; });
}

TEST_F(HeaderFieldsTest, ReadersDeliverTheField) {
    filehdr->numEpochs = -9;
    filehdr->offset = 0.1F;
    epochhdr->epochTime = 1e-3F;
    epochhdr->sequenceLength = 3;
    epochhdr->epochPoints = 1000000;
    epochhdr->samplingInterval = -100;
    EXPECT_EQ(ITCGetNumEpochs(), -9);
    EXPECT_EQ(ITCGetOffset(), double{0.1F});
    EXPECT_EQ(ITCGetEpochTime(), double{1e-3F});
    EXPECT_EQ(ITCGetSegments(), 3);
    EXPECT_EQ(ITCGetDataPts(), 1000000);
    EXPECT_EQ(ITCGetSampInterval(), -100);
    const int8_t types[] = {7, 11, -128, -1};
    for (int32_t channel = 0; channel < 4; ++channel) {
        epochhdr->stimType[channel] = types[channel];
        epochhdr->convFactor[channel] = 0.7F + static_cast<float>(channel);
        EXPECT_EQ(ITCGetStimType(channel), types[channel]);
        EXPECT_EQ(ITCGetConvFactor(channel), double{0.7F + static_cast<float>(channel)});
        ITCWriteAmpGain(1.5F, -2, static_cast<int8_t>(-channel), channel);
        float gain = 0, value = 0;
        int8_t code = 99;
        ITCGetAmpSettings(&gain, &value, &code, channel);
        EXPECT_EQ(gain, 1.5F);
        EXPECT_EQ(value, -2);
        EXPECT_EQ(code, -channel);
    }
}

// Up to 511 characters and their terminator; behind it, everything stays.
TEST_F(HeaderFieldsTest, CommentsAreCutToTheirField) {
    for (const size_t length : {511U, 3U, 0U, 512U, 510U, 2000U, 1U}) {
        std::string text(length, static_cast<char>('a' + length % 26));
        const size_t kept = std::min<size_t>(length, 511);
        const auto assign = [&](auto& comment) {
            std::memcpy(comment, text.data(), kept);
            comment[kept] = '\0';
        };
        ExpectChange(
            *filehdr, [&] { EXPECT_EQ(ITCWriteFileCom(text.c_str()), filehdr->fileComment); },
            [&](ITCFileHeader& h) { assign(h.fileComment); });
        ExpectChange(
            *epochhdr, [&] { EXPECT_EQ(ITCWriteEpochCom(text.c_str()), epochhdr->epochComment); },
            [&](ITCEpochHeader& h) { assign(h.epochComment); });
        EXPECT_EQ(ITCGetFileCom(), filehdr->fileComment);
        EXPECT_EQ(ITCGetEpochCom(), epochhdr->epochComment);
    }
}

// 16 characters leave no room for a terminator; fewer are filled up with zeros.
TEST_F(HeaderFieldsTest, UnitsFillTheirField) {
    for (const std::string text : {"mV", "", "0123456789abcdef", "0123456789abcdefghij", "pA"}) {
        for (int32_t channel = 0; channel < 4; ++channel) {
            const auto assign = [&](char(&units)[16]) { std::strncpy(units, text.c_str(), 16); };
            ExpectChange(
                *epochhdr,
                [&] {
                    EXPECT_EQ(ITCWriteInputUnits(text.c_str(), channel), ITCGetInputUnits(channel));
                },
                [&](ITCEpochHeader& h) { assign(h.inputUnits[channel]); });
            ExpectChange(
                *epochhdr,
                [&] {
                    EXPECT_EQ(ITCWriteOutputUnits(text.c_str(), channel),
                              ITCGetOutputUnits(channel));
                },
                [&](ITCEpochHeader& h) { assign(h.outputUnits[channel]); });
            EXPECT_EQ(ITCGetInputUnits(channel), epochhdr->inputUnits[channel]);
            EXPECT_EQ(ITCGetOutputUnits(channel), epochhdr->outputUnits[channel]);
        }
    }
}

TEST_F(HeaderFieldsTest, StimulusRecordsAreCopiedByTheByte) {
    SetUpPulseEpoch();
    const Bytes record = ImageOf(kPulse);
    for (const uint32_t count : {0U, 1U, 20U, 31U, 32U, 33U, 1000U, UINT32_MAX}) {
        Bytes copy(64, 0xA5);
        Bytes expected = copy;
        std::copy_n(record.begin(), std::min(count, 32U), expected.begin());
        EXPECT_EQ(ITCGetStimParams(0, copy.data(), count), copy.data());
        EXPECT_EQ(copy, expected) << count;
    }
    const QuietOutput quiet;
    for (const int32_t none : {1, 3, 4, -1, INT32_MAX}) {
        Bytes copy(64, 0xA5);
        EXPECT_EQ(ITCGetStimParams(none, copy.data(), 64), copy.data());
        EXPECT_EQ(copy, Bytes(64, 0xA5)) << none;
    }
}

// Whatever the index, no byte of the header changes, and none beyond it is read.
TEST_F(HeaderFieldsTest, IndicesOutsideTheirArraysTouchNothing) {
    for (const int32_t none : {4, -1, 24, 1000000, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(none);
        ExpectChange(
            *epochhdr,
            [&] {
                ITCWriteAmpGain(1, 2, 3, none);
                ITCWriteConvFactor(1, none);
                ITCWriteAmpMode(1, none);
                ITCWriteMeanOutput(1, none);
                ITCWriteNDF(1, none);
                ITCWriteLEDSetting(1, none);
                if (none != 4) ITCWriteUserValue(1, none);
                EXPECT_STREQ(ITCWriteInputUnits("mV", none), "");
                EXPECT_STREQ(ITCWriteOutputUnits("pA", none), "");
            },
            Nothing);
        float gain = 1, value = 1;
        int8_t code = 1;
        ITCGetAmpSettings(&gain, &value, &code, none);
        EXPECT_EQ(gain, 0);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(code, 0);
        EXPECT_EQ(ITCGetConvFactor(none), 0);
        EXPECT_EQ(ITCGetStimType(none), 0);
        EXPECT_STREQ(ITCGetInputUnits(none), "");
        EXPECT_STREQ(ITCGetOutputUnits(none), "");
    }
    ExpectChange(
        *epochhdr,
        [] {
            EXPECT_EQ(ITCWriteEpochCom(nullptr), epochhdr->epochComment);
            EXPECT_EQ(ITCWriteInputUnits(nullptr, 2), epochhdr->inputUnits[2]);
        },
        Nothing);
}

// As in a program that has just loaded the library, and after an ending.
TEST(HeaderFields, WithoutASessionTheyActOnBlankHeaders) {
    for (const bool afterAnEnding : {false, true}) {
        if (afterAnEnding) {
            const LibrarySession ended;
        } else {
            filehdr = nullptr;
            epochhdr = nullptr;
            InitFlag = 0;
        }
        EXPECT_EQ(ITCGetNumEpochs(), 0);
        EXPECT_STREQ(ITCWriteFileCom("file"), "file");
        EXPECT_STREQ(ITCWriteEpochCom("epoch"), "epoch");
        EXPECT_STREQ(ITCGetEpochCom(), "epoch");
        EXPECT_STREQ(ITCWriteOutputUnits("pA", 3), ITCGetOutputUnits(3));
        ITCWriteOffset(2);
        EXPECT_EQ(ITCGetOffset(), 2);
        ITCWriteAmpGain(1, 2, 3, 3);
        ITCWriteAmpMode(1, 3);
        ITCWriteMeanOutput(1, 3);
        ITCWriteUserValue(1, 23);
        ITCWriteTemperature(20);
        float gain = 0, value = 0;
        int8_t code = 0;
        ITCGetAmpSettings(&gain, &value, &code, 3);
        EXPECT_EQ(gain, 1);
        EXPECT_EQ(code, 3);
        EXPECT_EQ(ITCGetSegments(), 0);
        EXPECT_EQ(ITCGetEpochTime(), 0);
        EXPECT_EQ(ITCGetStimType(3), 0);
        uint8_t byte = 0xA5;
        EXPECT_EQ(ITCGetStimParams(0, &byte, 1), &byte);
        EXPECT_EQ(byte, 0xA5);
    }
}

}  // namespace
