// The accessors of the current headers, each against the whole header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

template <class Record>
Bytes ImageOf(const Record& record) {
    Bytes image(sizeof(Record));
    std::memcpy(image.data(), &record, sizeof(Record));
    return image;
}

// Headers full of bytes that no writer gives, so that any change shows.
class HeaderFieldsTest : public testing::Test {
  protected:
    HeaderFieldsTest() {
        std::memset(filehdr, 0x35, sizeof(*filehdr));
        std::memset(epochhdr, 0x35, sizeof(*epochhdr));
    }

    const LibrarySession session;
};

TEST_F(HeaderFieldsTest, WritersSetTheirFieldsAloneAndReadersDeliverThem) {
    ITCFileHeader file = *filehdr;
    ITCEpochHeader expected = *epochhdr;
    for (const int32_t channel : {0, 3}) {
        const float number = 0.1F + static_cast<float>(channel);
        ITCWriteAmpGain(number, -7 * number, static_cast<int8_t>(-128 + channel), channel);
        expected.ampGain[channel] = number;
        expected.ampValue[channel] = -7 * number;
        expected.ampCode[channel] = static_cast<int8_t>(-128 + channel);
        ITCWriteConvFactor(-20 * number, channel);
        expected.convFactor[channel] = -20 * number;
        ITCWriteAmpMode(static_cast<int8_t>(-2 - channel), channel);
        expected.ampMode[channel] = static_cast<int8_t>(-2 - channel);
        ITCWriteMeanOutput(INT32_MIN + channel, channel);
        expected.meanOutput[channel] = INT32_MIN + channel;
        ITCWriteNDF(3 * number, channel);
        expected.ndf[channel] = 3 * number;
        ITCWriteLEDSetting(static_cast<uint16_t>(65535 - channel), channel);
        expected.ledSetting[channel] = static_cast<uint16_t>(65535 - channel);
        float gain = 0, value = 0;
        int8_t code = 0;
        ITCGetAmpSettings(&gain, &value, &code, channel);
        EXPECT_EQ(gain, number);
        EXPECT_EQ(value, -7 * number);
        EXPECT_EQ(code, -128 + channel);
        EXPECT_EQ(ITCGetConvFactor(channel), double{-20 * number});
    }
    ITCWriteUserValue(expected.userValue[23] = -1.5F, 23);
    ITCWriteTemperature(expected.temperature = -3.5F);
    ITCWriteDigitalOutput(expected.digitalOutput = 0x8001);
    ITCWriteWavelength(expected.wavelength = 65000);
    ITCWriteOffset(file.offset = 0.1F);
    EXPECT_EQ(ImageOf(*epochhdr), ImageOf(expected));
    EXPECT_EQ(ImageOf(*filehdr), ImageOf(file));
}

TEST_F(HeaderFieldsTest, ReadersDeliverFieldsWithoutAWriter) {
    filehdr->numEpochs = -9;
    filehdr->offset = 0.1F;
    epochhdr->epochTime = 1e-3F;
    epochhdr->sequenceLength = 3;
    epochhdr->epochPoints = 1000000;
    epochhdr->samplingInterval = -100;
    epochhdr->stimType[0] = -128;
    epochhdr->stimType[3] = 11;
    EXPECT_EQ(ITCGetNumEpochs(), -9);
    EXPECT_EQ(ITCGetOffset(), double{0.1F});
    EXPECT_EQ(ITCGetEpochTime(), double{1e-3F});
    EXPECT_EQ(ITCGetSegments(), 3);
    EXPECT_EQ(ITCGetDataPts(), 1000000);
    EXPECT_EQ(ITCGetSampInterval(), -100);
    EXPECT_EQ(ITCGetStimType(0), -128);
    EXPECT_EQ(ITCGetStimType(3), 11);
}

// Up to 511 characters and their terminator; behind it, everything stays. Units have 16 characters
// and no room for a terminator; fewer are filled up with zeros.
TEST_F(HeaderFieldsTest, TextsAreCutToTheirField) {
    for (const size_t length : {511U, 3U, 0U, 512U, 510U, 2000U, 16U, 2U, 15U}) {
        const std::string text(length, static_cast<char>('a' + length % 26));
        const std::string kept = text.substr(0, 511);
        ITCFileHeader file = *filehdr;
        ITCEpochHeader expected = *epochhdr;
        EXPECT_EQ(ITCWriteFileCom(text.c_str()), ITCGetFileCom());
        EXPECT_EQ(ITCWriteEpochCom(text.c_str()), ITCGetEpochCom());
        std::memcpy(file.fileComment, kept.c_str(), kept.size() + 1);
        std::memcpy(expected.epochComment, kept.c_str(), kept.size() + 1);
        for (const int32_t channel : {0, 3}) {
            EXPECT_EQ(ITCWriteInputUnits(text.c_str(), channel), ITCGetInputUnits(channel));
            EXPECT_EQ(ITCWriteOutputUnits(text.c_str(), channel), ITCGetOutputUnits(channel));
            EXPECT_EQ(ITCGetInputUnits(channel), epochhdr->inputUnits[channel]);
            EXPECT_EQ(ITCGetOutputUnits(channel), epochhdr->outputUnits[channel]);
            std::strncpy(expected.inputUnits[channel], text.c_str(), 16);
            std::strncpy(expected.outputUnits[channel], text.c_str(), 16);
        }
        EXPECT_EQ(ImageOf(*filehdr), ImageOf(file));
        EXPECT_EQ(ImageOf(*epochhdr), ImageOf(expected));
    }
    EXPECT_EQ(ITCGetFileCom(), filehdr->fileComment);
    EXPECT_EQ(ITCGetEpochCom(), epochhdr->epochComment);
}

TEST_F(HeaderFieldsTest, StimulusRecordsAreCopiedByTheByte) {
    SetUpPulseEpoch();
    const Bytes record = ImageOf(kPulse);
    const auto expectCopied = [&](int32_t channel, uint32_t count, size_t copied) {
        Bytes copy(64, 0xA5);
        Bytes expected = copy;
        std::copy_n(record.begin(), copied, expected.begin());
        EXPECT_EQ(ITCGetStimParams(channel, copy.data(), count), copy.data());
        EXPECT_EQ(copy, expected) << channel << ", " << count;
    };
    for (const uint32_t count : {0U, 1U, 31U, 32U, 33U, 1000U, UINT32_MAX})
        expectCopied(0, count, std::min(count, 32U));
    for (const int32_t none : {1, 3, 4, -1, INT32_MAX}) expectCopied(none, 64, 0);
}

// Whatever the index, no byte of the header changes, and none beyond it is read.
TEST_F(HeaderFieldsTest, IndicesOutsideTheirArraysTouchNothing) {
    const Bytes before = ImageOf(*epochhdr);
    for (const int32_t none : {4, -1, 24, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(none);
        ITCWriteAmpGain(1, 2, 3, none);
        ITCWriteConvFactor(1, none);
        ITCWriteAmpMode(1, none);
        ITCWriteMeanOutput(1, none);
        ITCWriteNDF(1, none);
        ITCWriteLEDSetting(1, none);
        if (none != 4) ITCWriteUserValue(1, none);
        EXPECT_STREQ(ITCWriteInputUnits("mV", none), "");
        EXPECT_STREQ(ITCWriteOutputUnits("pA", none), "");
        EXPECT_STREQ(ITCGetInputUnits(none), "");
        EXPECT_STREQ(ITCGetOutputUnits(none), "");
        float gain = 1, value = 1;
        int8_t code = 1;
        ITCGetAmpSettings(&gain, &value, &code, none);
        EXPECT_TRUE(gain == 0 && value == 0 && code == 0);
        EXPECT_EQ(ITCGetConvFactor(none), 0);
        EXPECT_EQ(ITCGetStimType(none), 0);
    }
    EXPECT_EQ(ITCWriteEpochCom(nullptr), epochhdr->epochComment);
    EXPECT_EQ(ITCWriteInputUnits(nullptr, 2), epochhdr->inputUnits[2]);
    EXPECT_EQ(ImageOf(*epochhdr), before);
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
        EXPECT_STREQ(ITCWriteOutputUnits("pA", 3), ITCGetOutputUnits(3));
        EXPECT_EQ(ITCGetSegments(), 0);
        uint8_t byte = 0xA5;
        EXPECT_EQ(ITCGetStimParams(0, &byte, 1), &byte);
        EXPECT_EQ(byte, 0xA5);
    }
}

}  // namespace
