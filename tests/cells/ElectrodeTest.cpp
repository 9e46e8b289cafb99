// The electrode and the amplifier on cells whose answers are known in closed form.
#include <array>
#include <cmath>

#include "cells/Rehearsal.h"
#include "simulator/cells/OutputFilter.h"

namespace {

// A cell of 200 MOhm and 100 pF behind 10 MOhm, held at rest and stepped by -5 mV:
// I(t) = -5 mV * (1/(Rs+Rm) + (1/Rs - 1/(Rs+Rm)) e^(-t/tau)), tau = Cm Rs Rm / (Rs+Rm).
TEST(ElectrodeTest, APassiveCellBehindAResistanceAnswersAsItsFormulaDoes) {
    constexpr double kPeak = -500, kSteady = -23.8095238095, kTau = 0.952380952381;
    for (const double interval : {4.0, 50.0, 1000.0}) {
        Rehearsal clamp{{"amplifier.mode", "voltageClamp"},
                        {"cell.model", "passive"},
                        {"electrode.accessResistance", 10}};
        clamp.Settle(-70);
        EXPECT_NEAR(clamp.Signal(), 0, 1e-9);
        for (int point = 1; point * interval <= 12000; ++point) {
            const double time = point * interval / 1000;
            EXPECT_NEAR(clamp.Advance(-75, interval),
                        kSteady + (kPeak - kSteady) * std::exp(-time / kTau), 1e-6);
        }
    }
}

struct ChargeCase {
    double compensation, capacitanceCompensation, tau, charge;  // [%], [pF], [ms], [fC]
};

// Charges over the steady current, of the cell, Cm dV (Rm/(Rs+Rm))^2, and of 5 pF of pipette.
TEST(ElectrodeTest, CompensationSpeedsTheClampUpAndTakesThePipettesChargeAway) {
    for (const ChargeCase& of : {ChargeCase{0, 5, 0.952381, -453.515},
                                 {0, 0, 0.952381, -478.515},
                                 {80, 5, 0.19802, -490.148},
                                 {100, 2, 0, -515}}) {
        Rehearsal clamp{{"amplifier.mode", "voltageClamp"},
                        {"amplifier.seriesCompensation", of.compensation},
                        {"amplifier.capacitanceCompensation", of.capacitanceCompensation},
                        {"amplifier.filter", "bessel"},
                        {"cell.model", "passive"},
                        {"electrode.pipetteCapacitance", 5},
                        {"electrode.accessResistance", 10}};
        clamp.Settle(-70);
        std::array<double, 40000> current{};
        for (double& sample : current) sample = clamp.Advance(-75, 1);
        double charge = 0;
        for (const double sample : current) charge += (sample - current.back()) / 1000;
        // The filter of 10 kHz hands the steady current on 2.11392 / (2 pi 10 kHz) later.
        EXPECT_NEAR(charge, of.charge - current.back() * 0.0336441, 0.3);
        if (of.tau == 0) continue;
        const double ratio = (current[600] - current.back()) / (current[500] - current.back());
        EXPECT_NEAR(-0.1 / std::log(ratio), of.tau, 1e-3 * of.tau);
    }
}

// 100 pA through 10 MOhm are 1 mV, through 200 MOhm 20 mV, which its 100 pF reach with 20 ms.
TEST(ElectrodeTest, TheBridgeTakesThePipettesDropAwayAndTheJunctionAdds) {
    for (const auto& [bridge, error] : {std::pair(0.0, 1.0), {10.0, 0.0}, {12.0, -0.2}}) {
        Rehearsal cell{{"cell.model", "passive"},
                       {"electrode.accessResistance", 10},
                       {"amplifier.bridge", bridge},
                       {"electrode.junctionPotential", -11}};
        EXPECT_NEAR(cell.Signal(), -81, 1e-9);
        EXPECT_NEAR(cell.Advance(100, 20000), -81 + 20 * (1 - std::exp(-1)) + error, 1e-9);
        EXPECT_NEAR(cell.preparation.MembranePotential(), -70 + 20 * (1 - std::exp(-1)), 1e-9);
        EXPECT_NEAR(cell.Advance(100, 2e6), -61 + error, 1e-9);
        cell.Settle(100);
        EXPECT_NEAR(cell.Signal(), -61 + error, 1e-9);
    }
    Rehearsal clamp{{"amplifier.mode", "voltageClamp"},
                    {"cell.model", "passive"},
                    {"electrode.junctionPotential", -11}};
    clamp.Settle(-81);
    EXPECT_NEAR(clamp.Signal(), 0, 1e-9) << "the cell is at rest";
}

// Pipette and cell at four times after 100 pA began, by the eigenvectors of both equations in
// NumPy: 5 pF, 10 MOhm, 100 pF, 200 MOhm.
TEST(ElectrodeTest, ThePipettesCapacitanceSlowsItsPotentialInCurrentClamp) {
    Rehearsal cell{{"cell.model", "passive"},
                   {"electrode.accessResistance", 10},
                   {"electrode.pipetteCapacitance", 8},
                   {"amplifier.capacitanceCompensation", 3}};
    struct {
        double interval, pipette, cell;
    } const kPoints[] = {{50, 0.63724118, 0.01812161},
                         {150, 1.08356446, 0.14521824},
                         {800, 1.84101514, 0.88662659},
                         {19000, 13.24674553, 12.26520357}};
    for (const auto& point : kPoints) {
        EXPECT_NEAR(cell.Advance(100, point.interval) + 70, point.pipette, 1e-7);
        EXPECT_NEAR(cell.preparation.MembranePotential() + 70, point.cell, 1e-7);
    }
}

// Of a cell of 100 pF under an ideal clamp that takes 50 µs, all current but 25 pA is capacitive.
TEST(ElectrodeTest, AClampThatTakesTimeShowsTheCapacitance) {
    Rehearsal clamp{
        {"amplifier.mode", "voltageClamp"}, {"amplifier.clampTime", 50}, {"cell.model", "passive"}};
    clamp.Settle(-70);
    for (int point = 1; point <= 20; ++point) {
        const double left = std::exp(-point * 20 / 50.0);
        EXPECT_NEAR(clamp.Advance(-75, 20), -25 * (1 - left) - 100 * 5 / 0.05 * left, 1e-6);
    }
}

// Of the Bessel filter of fourth order, by its poles from SciPy: 10 to 90 % take 0.3501 of the
// cutoff's period, half is there after 0.3294 of it, and 0.8354 % more than the step at most.
TEST(ElectrodeTest, TheBesselFilterRisesAsOneOfFourthOrderDoes) {
    itc18::OutputFilter filter(itc18::AmplifierFilter::kBessel, 1000);
    filter.Settle(0);
    double tenth = 0, half = 0, most = 0, nine = 0;
    for (int step = 1; step <= 3000; ++step) {
        filter.Advance(1, 0.001);
        const double time = step * 0.001;
        if (filter.Output() < 0.1) tenth = time;
        if (filter.Output() < 0.5) half = time;
        if (filter.Output() < 0.9) nine = time;
        most = std::max(most, filter.Output());
    }
    EXPECT_NEAR(nine - tenth, 0.3501, 0.002);
    EXPECT_NEAR(half, 0.3294, 0.002);
    EXPECT_NEAR(most, 1.008354, 1e-5);
    EXPECT_NEAR(filter.Output(), 1, 1e-6);
}

// 5 nS to 0 mV beside 5 nS to -70 mV end at -35 mV. Until the signal of the latency has moved, the
// injected current is that at rest, 350 pA.
TEST(ElectrodeTest, DynamicClampInjectsTheCurrentOfAnEarlierPotential) {
    constexpr double kLeft = 0.951229424500714;  // of a deviation after 1 ms of 20 ms
    for (const int latency : {0, 1, 3}) {
        Rehearsal cell{{"cell.model", "passive"}};
        ASSERT_TRUE(cell.preparation.StartDynamicClamp({latency, 0, -75}));
        std::vector<double> potentials(static_cast<size_t>(latency) + 1, -70);
        for (int point = 0; point < 400; ++point) {
            const double current = -5 * potentials[static_cast<size_t>(point)];
            const double target = -70 + current / 5;
            potentials.push_back(target + (potentials.back() - target) * kLeft);
            cell.preparation.Advance(0, 1000, {5, 0});
            ASSERT_NEAR(cell.Signal(), potentials.back(), 1e-7);
        }
        EXPECT_NEAR(cell.Signal(), -35, 1e-6);
    }
    Rehearsal cell{{"cell.model", "passive"}};
    ASSERT_TRUE(cell.preparation.StartDynamicClamp({0, 0, -75}));
    for (const double conductance : {HUGE_VAL, std::nan(""), 1e300, -1e9})
        for (int point = 0; point < 9; ++point) cell.preparation.Advance(0, 1000, {conductance, 1});
    EXPECT_LE(std::abs(cell.Signal()), 70 + 4096 * 0.2) << "the converter's 4,096 pA";
    EXPECT_FALSE(cell.preparation.StartDynamicClamp({-1, 0, 0}));
    EXPECT_FALSE(cell.preparation.StartDynamicClamp({itc18::kLongestLatency + 1, 0, 0}));
}

// Between epochs the amplifier's mode and filter change; the cell is where it was.
TEST(ElectrodeTest, AChangeOfTheAmplifierLeavesTheCellAlone) {
    Rehearsal cell{{"cell.model", "regularSpiking"}, {"electrode.accessResistance", 10}};
    for (int point = 0; point < 400; ++point) cell.Advance(800, 50);
    const double before = cell.preparation.MembranePotential();
    cell.settings.mode = itc18::AmplifierMode::kVoltageClamp;
    cell.preparation.Change(cell.settings);
    EXPECT_EQ(cell.preparation.MembranePotential(), before);
    EXPECT_NEAR(cell.Signal(), 0, 1e-9) << "the pipette starts at the cell's potential";
    cell.settings.model = itc18::CellModel::kPassive;
    cell.settings.mode = itc18::AmplifierMode::kZeroCurrent;
    cell.preparation.Change(cell.settings);
    EXPECT_NEAR(cell.Advance(1000, 50), -70, 1e-9) << "another cell, and no current";
}

// The whole converter's range at the largest sensitivities, through every circuit, at any interval.
TEST(ElectrodeTest, NoCommandMakesAnyCellAnythingButFinite) {
    for (int model = 0; model <= static_cast<int>(itc18::CellModel::kAdexTransient); ++model) {
        for (int mode = 0; mode < 12; ++mode) {
            itc18::PreparationSettings settings;
            settings.model = static_cast<itc18::CellModel>(model);
            settings.mode = static_cast<itc18::AmplifierMode>(mode % 3);
            settings.accessResistance = mode % 2 * 0.01;
            settings.pipetteCapacitance = mode / 6 * 0.001;
            settings.clampTime = mode / 6;
            settings.currentCommand = 1e5;
            settings.voltageCommand = 1000;
            settings.filter = itc18::AmplifierFilter::kBessel;
            settings.channelConductance = mode == 11 ? 1000 : 0;
            settings.rates = static_cast<itc18::GateRates>(mode / 3 % 2);
            itc18::Preparation preparation(settings);
            for (const double settled : {0.0, 32767.0, -32768.0}) {
                preparation.Settle(settled);
                for (const double command : {-32768.0, 32767.0, 0.0, -32768.0})
                    for (const double interval : {4.0, 4.0, 101.0}) {
                        preparation.Advance(command, interval);
                        ASSERT_TRUE(std::isfinite(preparation.Signal()))
                            << "model " << model << " mode " << mode;
                    }
            }
        }
    }
}

}  // namespace
