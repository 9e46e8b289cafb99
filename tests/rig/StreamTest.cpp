// Streams of the simulated interface: pieces, pipeline, skew, pace, trigger and faults.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "SimulatedRig.h"

namespace {

using namespace corvantis_test;

const Words kNeuronAndEcho = {0x0000, 0xC880};  // input and output 0, and 1
const Words kEcho = {0xC880};

class Streams : public SimulatedRig {
  public:
    Streams(Words sequence, std::vector<PlayerSetting> settings, int32_t entryInterval = 10)
        : SimulatedRig(std::move(sequence), entryInterval) {
        const auto count = static_cast<int32_t>(settings.size());
        EXPECT_EQ(ITC18Simulator_Connect(device, settings.data(), count, &problem), 0)
            << problem.text;
    }

    void Start(int32_t points, int32_t trigger = 0) {
        Prepare();
        const Samples length(static_cast<size_t>(points * Entries()));
        const PlayerEpoch epoch = Epoch(length, trigger);
        EXPECT_EQ(ITC18Simulator_Start(device, &epoch, &delay, &problem), 0) << problem.text;
    }
    int32_t Write(const Samples& samples) {
        int32_t written = -1;
        result = ITC18Simulator_Write(device, samples.data(), static_cast<int32_t>(samples.size()),
                                      &written, &problem);
        return written;
    }
    Samples Read(size_t most = 100000) {
        Samples samples(most);
        int32_t taken = 0;
        result = ITC18Simulator_Read(device, samples.data(), static_cast<int32_t>(most), &taken,
                                     &problem);
        samples.resize(static_cast<size_t>(taken));
        return samples;
    }
    ITC18Simulator_Room Room() {
        ITC18Simulator_Room room{-1, -1};
        result = ITC18Simulator_GetRoom(device, &room, &problem);
        return room;
    }
    void Wait(int64_t microseconds, const Samples& levels) {
        EXPECT_EQ(ITC18Simulator_Wait(device, microseconds, levels.data(), &problem), 0);
    }
    void Stop() { EXPECT_EQ(ITC18Simulator_Stop(device, &problem), 0) << problem.text; }

    PlayerProblem problem{};
    int32_t delay = -1;
    int32_t result = 0;
};

// A step for output 0 and counting for output 1; behind it what a pipeline asks for.
Samples StepAndCount(int32_t points, int32_t delay) {
    Samples samples;
    for (int32_t point = 0; point < points; ++point) {
        samples.push_back(point < points / 4 ? 0 : 1600);
        samples.push_back(static_cast<uint16_t>(point));
    }
    samples.resize(samples.size() + static_cast<size_t>(delay));
    return samples;
}

// Two epochs of 500 points, whose calls move at most so many samples.
Samples TwoEpochs(const std::vector<PlayerSetting>& settings, int32_t delay, size_t piece) {
    Streams streams(kNeuronAndEcho, settings);
    Samples all;
    for (int epoch = 0; epoch < 2; ++epoch) {
        const Samples stimulus = StepAndCount(500, delay);
        streams.Start(500);
        size_t written = 0;
        for (size_t read = 0; read < stimulus.size();) {
            const size_t end = std::min(written + piece, stimulus.size());
            written +=
                static_cast<size_t>(streams.Write({stimulus.begin() + static_cast<int64_t>(written),
                                                   stimulus.begin() + static_cast<int64_t>(end)}));
            const Samples taken = streams.Read(piece);
            all.insert(all.end(), taken.begin(), taken.end());
            read += taken.size();
        }
        streams.Stop();
    }
    return all;
}

TEST(StreamTest, PiecesOfAnySizeGiveTheSamplesOfTheWhole) {
    for (const int32_t delay : {0, 1, 5}) {
        for (const char* skew : {"false", "true"}) {
            const std::vector<PlayerSetting> settings = {
                Number("interface.pipeline", delay), Text("interface.skew", skew),
                Number("interface.outputBuffer", 1100), Number("interface.inputBuffer", 1100)};
            const Samples whole = TwoEpochs(settings, delay, 100000);
            ASSERT_EQ(whole.size(), 2 * (1000 + static_cast<size_t>(delay)));
            for (const size_t piece : {1, 2, 3, 7, 333})
                EXPECT_EQ(TwoEpochs(settings, delay, piece), whole);
            std::vector<PlayerSetting> drawn = settings;
            drawn.push_back(Number("interface.mostMoved", 50));
            drawn.push_back(Number("interface.seed", 7));
            EXPECT_EQ(TwoEpochs(drawn, delay, 100000), whole) << "a call moves 0 to 50";
            drawn[2].number = drawn[3].number = 4;
            EXPECT_EQ(TwoEpochs(drawn, delay, 100000), whole) << "hardly any buffers";
        }
    }
}

TEST(StreamTest, GivesWhatPlayingAtOnceGives) {
    Streams streams(kNeuronAndEcho, {});
    const Samples stimulus = StepAndCount(2000, 0);
    Samples atOnce(stimulus.size());
    ASSERT_EQ(ITC18Simulator_Play(streams.device, stimulus.data(), atOnce.data(), 2000), 0);
    streams.Start(2000);
    streams.Write(stimulus);
    EXPECT_EQ(streams.Read(), atOnce);
}

// Entries 1 and 1 again: the later output stands for both if they act together.
TEST(StreamTest, EntriesActTogetherOrOneAfterTheOther) {
    const Words twice = {0x0880, 0xC880};
    for (const bool skewed : {false, true}) {
        Streams streams(twice, {Text("interface.skew", skewed ? "true" : "false")});
        streams.Start(2);
        streams.Write({1, 2, 3, 4});
        EXPECT_EQ(streams.Read(), skewed ? (Samples{1, 2, 3, 4}) : (Samples{2, 2, 4, 4}));
    }
}

TEST(StreamTest, PipelineShowsWhatStoodBefore) {
    Streams streams(kEcho, {Number("interface.pipeline", 5)});
    streams.Wait(0, {0, 77, 0, 0, 0});
    streams.Start(3);
    EXPECT_EQ(streams.delay, 5);
    streams.Write({1, 2, 3, 90, 91, 92, 93, 94});
    EXPECT_EQ(streams.Read(), (Samples{77, 77, 77, 77, 77, 1, 2, 3}));
    streams.Stop();
    streams.Start(1);
    streams.Write({4, 4, 4, 4, 4, 4});
    EXPECT_EQ(streams.Read(), (Samples{3, 3, 3, 3, 3, 4})) << "the last played one stands";
}

// 100 pA from the one epoch to the next: no part of the charging is lost or happens twice.
TEST(StreamTest, TheCellLivesOnBetweenEpochs) {
    const auto counts = [](int32_t epochs) {
        Streams streams({0xC000}, {}, 20);
        Samples all;
        for (int32_t epoch = 0; epoch < epochs; ++epoch) {
            const Samples stimulus(static_cast<size_t>(600 / epochs), 800);
            streams.Start(600 / epochs);
            streams.Write(stimulus);
            const Samples taken = streams.Read();
            all.insert(all.end(), taken.begin(), taken.end());
            streams.Stop();
        }
        return all;
    };
    EXPECT_EQ(counts(1), counts(3));
}

TEST(StreamTest, RealTimeFollowsTheClock) {
    Streams streams(kEcho,
                    {Text("interface.pacing", "realTime"), Number("interface.outputBuffer", 8),
                     Number("interface.inputBuffer", 4)});
    ITC18Simulator_AdvanceClock(0);
    EXPECT_EQ(streams.Write({1, 2, 3, 4, 5, 6, 7, 8, 9}), 8);
    streams.Start(100);
    ITC18Simulator_AdvanceClock(29);  // two ticks of 10 µs, and nearly a third
    EXPECT_EQ(streams.Room().readable, 2);
    EXPECT_EQ(streams.Room().writable, 2);
    EXPECT_EQ(streams.Read(), (Samples{1, 2}));
    ITC18Simulator_AdvanceClock(41);
    EXPECT_EQ(streams.Read(0).size(), 0U);
    EXPECT_EQ(streams.result, Player_Overflow) << "the fifth of the unread finds no room";
    streams.Stop();

    streams.Write({1, 2, 3});
    streams.Start(100);
    ITC18Simulator_AdvanceClock(30);
    EXPECT_EQ(streams.Read(), (Samples{1, 2, 3}));
    ITC18Simulator_AdvanceClock(10);
    EXPECT_EQ(streams.Write({4}), -1);
    EXPECT_EQ(streams.result, Player_Underrun);
}

TEST(StreamTest, PaceDoesNotChangeTheSamples) {
    const Samples stimulus = StepAndCount(500, 5);
    const auto response = [&](const char* pacing) {
        Streams streams(kNeuronAndEcho,
                        {Text("interface.pacing", pacing), Number("interface.pipeline", 5)});
        ITC18Simulator_AdvanceClock(0);
        streams.Write(stimulus);
        streams.Start(500);
        Samples all;
        while (all.size() < stimulus.size()) {
            ITC18Simulator_AdvanceClock(77);
            const Samples taken = streams.Read();
            all.insert(all.end(), taken.begin(), taken.end());
        }
        return all;
    };
    EXPECT_EQ(response("realTime"), response("fast"));
}

TEST(StreamTest, WaitsForItsTrigger) {
    Streams streams(kEcho,
                    {Text("interface.pacing", "realTime"), Number("interface.triggerAfter", -1)});
    ITC18Simulator_AdvanceClock(0);
    streams.Write({1, 2, 3});
    streams.Start(3, 1);
    ITC18Simulator_AdvanceClock(1000000);
    EXPECT_EQ(streams.Room().readable, 0);
    EXPECT_EQ(ITC18Simulator_Trigger(streams.device), 0);
    ITC18Simulator_AdvanceClock(20);
    EXPECT_EQ(streams.Room().readable, 2);
    streams.Stop();

    const PlayerSetting after = Number("interface.triggerAfter", 2);
    EXPECT_EQ(ITC18Simulator_Change(streams.device, &after, 1, nullptr), Player_Success);
    streams.Write({1, 2, 3});
    streams.Start(3, 1);
    ITC18Simulator_AdvanceClock(1999);
    EXPECT_EQ(streams.Room().readable, 0);
    ITC18Simulator_AdvanceClock(21);
    EXPECT_EQ(streams.Room().readable, 2);
}

TEST(StreamTest, StallsForAWhileAndGoesOn) {
    for (const char* pacing : {"fast", "realTime"}) {
        Streams streams(kEcho, {Text("interface.pacing", pacing), Number("interface.stallAt", 0.02),
                                Number("interface.stallFor", 5)});
        ITC18Simulator_AdvanceClock(0);
        streams.Write({1, 2, 3, 4});
        streams.Start(4);
        ITC18Simulator_AdvanceClock(3000);
        EXPECT_EQ(streams.Read().size(), 0U) << pacing;
        EXPECT_EQ(streams.Write({5}), 0);
        EXPECT_EQ(streams.Room().readable + streams.Room().writable, 0);
        ITC18Simulator_AdvanceClock(5000);
        EXPECT_EQ(streams.Read(), (Samples{1, 2, 3, 4})) << pacing;
    }
}

TEST(StreamTest, IsLostInMidEpochUntilItIsOpenedAgain) {
    Streams streams(kEcho, {Number("interface.loseAt", 0.02)});
    streams.Start(4);
    EXPECT_EQ(streams.Write({1, 2, 3, 4}), 4);
    EXPECT_EQ(streams.result, Player_Lost);
    streams.Read();
    EXPECT_EQ(streams.result, Player_Lost);
    EXPECT_EQ(ITC18Simulator_Stop(streams.device, nullptr), Player_Lost);
    EXPECT_NE(ITC18_InitializeAcquisition(streams.device), 0);
    EXPECT_NE(ITC18_Initialize(streams.device, 0), 0);
    ITC18_Open(streams.device, 0);
    EXPECT_EQ(ITC18_Initialize(streams.device, 0), 0);
}

TEST(StreamTest, TheNthCallOfAKindFails) {
    Streams streams(kEcho, {Text("interface.failCall", "read"), Number("interface.failAt", 2)});
    streams.Start(4);
    streams.Write({1, 2, 3, 4});
    EXPECT_EQ(streams.Read(1), Samples{1});
    streams.Read(1);
    EXPECT_EQ(streams.result, Player_Refused);
    EXPECT_EQ(streams.Read(), (Samples{2, 3, 4})) << "the refused call has taken nothing";
    ITC18Simulator_FailNthCall(ITC18Simulator_CallClose, 2, 99);
    EXPECT_EQ(ITC18_Close(streams.device), 0);
    EXPECT_EQ(ITC18_Close(streams.device), 99);
}

TEST(StreamTest, RefusesWhatIsOutOfOrder) {
    SimulatedRig rig(kEcho, 10);
    PlayerProblem problem{};
    uint16_t sample = 0;
    int32_t moved = 0;
    const auto read = [&] { return ITC18Simulator_Read(rig.device, &sample, 1, &moved, &problem); };
    EXPECT_EQ(read(), Player_Refused) << "nothing is connected";
    EXPECT_EQ(ITC18Simulator_Connect(rig.device, nullptr, 0, nullptr), Player_Success);
    EXPECT_EQ(read(), Player_Refused) << "nothing is started";
    const Samples stimulus(10);
    const auto start = [&](auto change) {
        PlayerEpoch epoch = rig.Epoch(stimulus);
        change(epoch);
        return ITC18Simulator_Start(rig.device, &epoch, &moved, &problem);
    };
    const uint32_t other = 0xC000;
    const float conductance = 0;
    EXPECT_EQ(start([&](PlayerEpoch& epoch) { epoch.sequence = &other; }), Player_Refused);
    EXPECT_EQ(start([](PlayerEpoch& epoch) { epoch.interval = 11; }), Player_Refused);
    EXPECT_EQ(start([](PlayerEpoch& epoch) { epoch.points = 0; }), Player_Refused);
    EXPECT_EQ(start([&](PlayerEpoch& epoch) { epoch.excitatory = &conductance; }), Player_Refused);
    EXPECT_EQ(start([](PlayerEpoch&) {}), Player_Success);
    EXPECT_EQ(start([](PlayerEpoch&) {}), Player_Refused) << "an epoch is under way";
    EXPECT_EQ(ITC18Simulator_Change(rig.device, nullptr, 0, &problem), Player_Refused);
    EXPECT_EQ(ITC18Simulator_Wait(rig.device, 1, nullptr, &problem), Player_Refused);
    EXPECT_EQ(ITC18Simulator_Stop(rig.device, &problem), Player_Success);
    EXPECT_EQ(start([](PlayerEpoch&) {}), Player_Refused) << "no acquisition is prepared";
}

TEST(StreamTest, SettingsAreTakenAllOrNone) {
    Streams streams(kEcho, {});
    const PlayerSetting good = Number("interface.pipeline", 5);
    for (const PlayerSetting& bad :
         {Number("interface.pipeline", 65), Number("interface.pipeline", 0.5),
          Text("interface.pipeline", "5"), Text("interface.skew", "yes"), Number("interface.x", 1),
          Number("nothing", 1), PlayerSetting{nullptr, nullptr, 0}}) {
        const PlayerSetting both[] = {good, bad};
        EXPECT_EQ(ITC18Simulator_Change(streams.device, both, 2, &streams.problem),
                  Player_BadSetting);
        EXPECT_EQ(streams.problem.setting, 1) << streams.problem.text;
    }
    streams.Start(1);
    EXPECT_EQ(streams.delay, 0);
}

}  // namespace
