// The cells' figures as other programs gave them for the same equations: fourth order Runge-Kutta
// in steps of 5 µs (adaptive exponential cells: 1 µs) on a cell settled at rest, a step of 1 s.
#include <cmath>
#include <vector>

#include "cells/Rehearsal.h"

namespace {

struct Spikes {
    std::vector<double> times;  // upward crossings of -20 mV, or the peak's sample [ms]
    double end;                 // [mV]
};

Spikes Play(const char* model, double picoamperes, double interval, const char* rates,
            double seconds = 1) {
    Rehearsal cell{{"cell.model", model}, {"cell.rates", rates}};
    Spikes spikes{{}, cell.Signal()};
    for (int point = 1; point * interval <= 1e6 * seconds; ++point) {
        const double before = spikes.end;
        spikes.end = cell.Advance(picoamperes, interval);
        if (before < -20 && spikes.end >= -20)
            spikes.times.push_back((point - (spikes.end + 20) / (spikes.end - before)) * interval /
                                   1000);
    }
    return spikes;
}

struct Model {
    const char* name;
    double rest, resistance, firesOnce, firesFive;  // [mV], [MOhm], from [pA] on
};

// Membranes told by area have 2000 µm². The squid axon's figures are those of a NEURON 8.2.2
// section with `hh`, of second order in steps of 5 µs.
const Model kModels[] = {
    {"squidAxon", -64.9997, 43.0205, 44.8193, 124.712},
    {"regularSpiking", -70.5712, 32.1351, 560.42, 685.35},
    {"fastSpiking", -70.0000, 47.2728, 384.18, 385.1},
    {"connorStevens", -67.9781, 27.6923, 162.486, 165.392},
    {"connorStevensWithoutA", -70.0221, 162.549, 121.862, 157.018},
    {"wangBuzsaki", -64.0176, 701.549, 3.2146, 3.4912},
    {"adexBretteGerstner", -70.5999, 29.4128, 577, 643.32},
    {"adexTonic", -69.9999, 83.3364, 218.65, 221.72},
    {"adexAdaptation", -69.9999, 71.4314, 229.1, 296.17},
    {"adexInitialBurst", -57.9696, 46.1487, 118.53, 167.24},
    {"adexRegularBursting", -57.9690, 84.6177, 70.34, 92.44},
    {"adexDelayedAccelerating", -69.9995, 413.811, 73.434, 84.414},
    {"adexTransient", -64.9994, 50.0137, 171.49, 279.83},
};

TEST(FiguresTest, CellsRestAndBeginToFireWhereTheyShould) {
    for (const Model& model : kModels) {
        SCOPED_TRACE(model.name);
        Rehearsal cell{{"cell.model", model.name}};
        EXPECT_NEAR(cell.Signal(), model.rest, 2e-4);
        const double below = Play(model.name, -1, 50, "tabulated", 3).end;
        EXPECT_NEAR(1000 * (cell.Signal() - below), model.resistance, 0.001 * model.resistance);
        const double part = 0.0005;
        for (const auto& [least, count] : {std::pair(model.firesOnce, 1U), {model.firesFive, 5U}}) {
            EXPECT_LT(Play(model.name, least * (1 - part), 50, "tabulated").times.size(), count);
            EXPECT_GE(Play(model.name, least * (1 + part), 50, "tabulated").times.size(), count);
        }
    }
}

struct Step {
    const char* model;
    double picoamperes;
    size_t spikes;
    double end;                            // of a step without spikes [mV]
    double first = 0, next = 0, last = 0;  // spike, interval after it, last interval [ms]
};

// The squid axon's are of steps of 1 µs.
const Step kSteps[] = {
    {"squidAxon", 50, 1, 0, 5.7945},
    {"squidAxon", 100, 1, 0, 2.9050},
    {"squidAxon", 150, 61, 0, 2.1895, 16.668, 16.508},
    {"squidAxon", 200, 69, 0, 1.8185, 14.902, 14.638},
    {"squidAxon", 400, 87, 0, 1.1895, 12.026, 11.5655},
    {"regularSpiking", -300, 0, -80.5043},
    {"regularSpiking", 400, 0, -58.6429},
    {"regularSpiking", 500, 0, -55.9868},
    {"regularSpiking", 750, 9, 0, 20.4882, 27.9531, 155.1448},
    {"regularSpiking", 1000, 29, 0, 12.2567, 15.1326, 39.1604},
    {"regularSpiking", 1500, 70, 0, 7.1632, 9.0586, 14.9717},
    {"fastSpiking", -100, 0, -74.7273},
    {"fastSpiking", 300, 0, -55.7509},
    {"fastSpiking", 500, 49, 0, 16.9698, 20.1708, 20.1704},
    {"fastSpiking", 750, 94, 0, 8.0166, 10.6552, 10.6465},
    {"fastSpiking", 1000, 128, 0, 5.4840, 7.8358, 7.8129},
    {"fastSpiking", 1500, 182, 0, 3.4707, 5.5413, 5.4915},
    {"connorStevens", -40, 0, -69.0229},
    {"connorStevens", 170, 9, 0, 118.4283, 102.7949, 102.7949},
    {"connorStevens", 180, 18, 0, 66.3208, 53.9179, 53.9179},
    {"connorStevens", 200, 33, 0, 38.0675, 29.3723, 29.3721},
    {"connorStevens", 300, 90, 0, 13.5838, 11.0091, 10.9798},
    {"connorStevens", 400, 132, 0, 8.3888, 7.6296, 7.5585},
    {"connorStevens", 600, 191, 0, 4.5633, 5.3718, 5.2293},
    {"connorStevensWithoutA", 100, 0, -57.7911},
    {"connorStevensWithoutA", 160, 81, 0, 4.4206, 12.4334, 12.3868},
    {"connorStevensWithoutA", 200, 112, 0, 3.2761, 8.9313, 8.9013},
    {"connorStevensWithoutA", 300, 151, 0, 2.1029, 6.6749, 6.6343},
    {"connorStevensWithoutA", 400, 177, 0, 1.5934, 5.7141, 5.6578},
    {"connorStevensWithoutA", 600, 215, 0, 1.1087, 4.7381, 4.6487},
    {"wangBuzsaki", -4, 0, -66.5822},
    {"wangBuzsaki", 4, 8, 0, 103.1046, 116.0010, 116.0010},
    {"wangBuzsaki", 10, 32, 0, 23.5447, 31.0394, 31.0394},
    {"wangBuzsaki", 20, 60, 0, 11.6976, 16.7507, 16.7500},
    {"wangBuzsaki", 40, 102, 0, 6.2406, 9.8476, 9.8246},
    {"wangBuzsaki", 100, 190, 0, 2.8463, 5.3770, 5.2735},
    {"wangBuzsaki", 200, 285, 0, 1.6028, 3.6554, 3.5095},
    {"wangBuzsaki", 400, 407, 0, 0.9110, 2.6503, 2.4566},
    {"adexBretteGerstner", -200, 0, -76.4827},
    {"adexBretteGerstner", 600, 1, 0, 49.4420},
    {"adexBretteGerstner", 700, 9, 0, 24.6120, 38.6110, 128.0450},
    {"adexBretteGerstner", 800, 17, 0, 17.7200, 22.7660, 66.9400},
    {"adexBretteGerstner", 1000, 31, 0, 11.7920, 13.5850, 36.0820},
    {"adexTonic", 500, 104, 0, 14.2240, 8.9300, 9.5860},
    {"adexAdaptation", 500, 17, 0, 14.9050, 11.2690, 75.9100},
    {"adexInitialBurst", 400, 18, 0, 5.4560, 3.4210, 63.9530},
    {"adexRegularBursting", 210, 17, 0, 16.1340, 2.9190, 5.3520},
    {"adexDelayedAccelerating", 300, 86, 0, 33.5730, 20.5940, 9.6070},
    {"adexTransient", 180, 1, 0, 30.2940},
};

TEST(FiguresTest, StepsGiveTheSpikesOfOtherProgramsAtAnySamplingInterval) {
    struct Way {
        double interval;
        const char* rates;
    };
    for (const Step& step : kSteps) {
        for (const Way way : {Way{20, "computed"}, Way{100, "tabulated"}}) {
            SCOPED_TRACE(testing::Message() << step.model << ' ' << step.picoamperes << " pA, "
                                            << way.interval << " µs, " << way.rates);
            const auto [times, end] = Play(step.model, step.picoamperes, way.interval, way.rates);
            ASSERT_EQ(times.size(), step.spikes);
            if (times.empty()) {
                EXPECT_NEAR(end, step.end, 2e-4);
                continue;
            }
            // A sampled upstroke crosses anywhere within its interval.
            const double sampling = way.interval / 1000, part = 2e-4;
            EXPECT_NEAR(times.front(), step.first, sampling + part * step.first);
            if (times.size() < 2) continue;
            EXPECT_NEAR(times[1] - times[0], step.next, sampling + part * step.next);
            EXPECT_NEAR(times.back() - times[times.size() - 2], step.last,
                        sampling + part * step.last);
        }
    }
}

// Every interval divides into steps of 5 µs at most, so only the halves at its ends tell one from
// another.
TEST(FiguresTest, APotentialDoesNotDependOnHowOftenItIsLookedAt) {
    for (const Model& model : kModels) {
        SCOPED_TRACE(model.name);
        std::vector<Rehearsal> cells(5, Rehearsal{{"cell.model", model.name}});
        for (int milliseconds = 0; milliseconds < 100; ++milliseconds) {
            const double intervals[] = {1000, 100, 50, 20, 5};
            for (size_t i = 0; i < cells.size(); ++i)
                for (double passed = 0; passed < 1000; passed += intervals[i])
                    cells[i].Advance(1.5 * model.firesFive, intervals[i]);
            for (const Rehearsal& other : cells)
                ASSERT_NEAR(other.preparation.MembranePotential(),
                            cells[0].preparation.MembranePotential(), 1e-4);
        }
    }
}

}  // namespace
