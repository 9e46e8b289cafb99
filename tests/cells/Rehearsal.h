// A preparation made of settings as a protocol writes them, played and looked at in units.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "simulator/cells/Preparation.h"

constexpr double kCountsPerVolt = 3200;

struct Given {
    const char* name;
    const char* text;  // null for a number
    double number;
    Given(const char* setting, const char* choice) : name(setting), text(choice), number(0) {}
    Given(const char* setting, double value) : name(setting), text(nullptr), number(value) {}
};

inline itc18::PreparationSettings SettingsOf(std::initializer_list<Given> given) {
    itc18::PreparationSettings settings;
    for (const Given& one : given) {
        std::string problem;
        const PlayerSetting setting{one.name, one.text == nullptr ? "" : one.text, one.number};
        EXPECT_EQ(itc18::Assign(settings, setting, problem), itc18::Assignment::kDone) << problem;
    }
    EXPECT_EQ(itc18::Contradiction(settings), "");
    return settings;
}

// Commands in pA or mV, signals in mV or pA, whatever the amplifier makes of them.
class Rehearsal {
  public:
    Rehearsal(std::initializer_list<Given> given)
        : settings(SettingsOf(given)), preparation(settings) {}

    double CountsOf(double command) const {
        const bool clampsVoltage = settings.mode == itc18::AmplifierMode::kVoltageClamp;
        return command * kCountsPerVolt /
               (clampsVoltage ? settings.voltageCommand : settings.currentCommand);
    }

    void Settle(double command) { preparation.Settle(CountsOf(command)); }

    double Advance(double command, double microseconds) {
        preparation.Advance(CountsOf(command), microseconds);
        return Signal();
    }

    double Signal() const {
        const bool clampsVoltage = settings.mode == itc18::AmplifierMode::kVoltageClamp;
        return preparation.Signal() / kCountsPerVolt *
               (clampsVoltage ? settings.currentOutput : settings.potentialOutput);
    }

    itc18::PreparationSettings settings;
    itc18::Preparation preparation;
};
