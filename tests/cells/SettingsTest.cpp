// The table of settings: what it takes, what it refuses and how it says so.
#include <cmath>
#include <cstdlib>

#include "cells/Rehearsal.h"

namespace {

using itc18::Assignment;

struct Refusal {
    PlayerSetting setting;
    Assignment result;
    const char* problem;
};

TEST(SettingsTest, WhatCannotBeTakenIsNamedAndChangesNothing) {
    const double none = std::nan("");
    for (const Refusal& of :
         {Refusal{{"cell.modl", "passive", none},
                  Assignment::kUnknownName,
                  "no setting is called cell.modl"},
          {{"amplifier.mode", "voltage", none},
           Assignment::kBadValue,
           "amplifier.mode is one of currentClamp|voltageClamp|zeroCurrent"},
          {{"amplifier.filter", nullptr, 1},
           Assignment::kBadValue,
           "amplifier.filter is one of none|lowPass|bessel"},
          {{"electrode.accessResistance", "wide", none},
           Assignment::kBadValue,
           "electrode.accessResistance is a number from 0 to 1000 MOhm"},
          {{"electrode.accessResistance", "-1", -1},
           Assignment::kBadValue,
           "electrode.accessResistance is a number from 0 to 1000 MOhm"},
          {{"noise.seed", "1.5", 1.5},
           Assignment::kBadValue,
           "noise.seed is a whole number from 0 to 9007199254740991"},
          {{nullptr, nullptr, 0}, Assignment::kUnknownName, "no setting is called "}}) {
        itc18::PreparationSettings settings;
        settings.bridge = 3;
        const itc18::PreparationSettings before = settings;
        std::string problem;
        EXPECT_EQ(itc18::Assign(settings, of.setting, problem), of.result);
        EXPECT_EQ(problem, of.problem);
        EXPECT_TRUE(settings == before);
    }
    itc18::PreparationSettings settings;
    settings.capacitanceCompensation = 6;
    EXPECT_NE(itc18::Contradiction(settings).find("electrode.pipetteCapacitance"),
              std::string::npos);
}

// Given as the table writes them, all defaults make the preparation that nothing makes, and each
// setting has a name of its own.
TEST(SettingsTest, DefaultsAreWhatHoldsWithoutThem) {
    const auto told = itc18::PreparationSettingInfo();
    for (size_t i = 0; i < told.size(); ++i) {
        itc18::PreparationSettings settings, unchanged;
        std::string problem;
        const PlayerSetting asTold{told[i].name, told[i].unless,
                                   std::strtod(told[i].unless, nullptr)};
        EXPECT_EQ(itc18::Assign(settings, asTold, problem), Assignment::kDone) << problem;
        EXPECT_TRUE(settings == unchanged) << told[i].name;
        for (size_t other = 0; other < i; ++other) EXPECT_STRNE(told[i].name, told[other].name);
    }
}

}  // namespace
