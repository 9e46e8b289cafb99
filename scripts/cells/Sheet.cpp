// Prints what docs/cells.md shows of the simulated cells: the table of settings, or responses.
//   cell-sheet settings    the table, as Markdown
//   cell-sheet responses   model, command [pA], time [ms] and potential [mV], as lines of text
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "simulator/cells/Preparation.h"

namespace {

std::string Range(const PlayerSettingInfo& setting) {
    if (setting.choices != nullptr) {
        std::string choices;
        for (const char letter : std::string_view(setting.choices))
            choices += letter == '|' ? std::string("`, `") : std::string(1, letter);
        return "`" + choices + "`";
    }
    char range[80];
    std::snprintf(range, sizeof range, "%g to %.16g", setting.least, setting.most);
    return range;
}

void PrintSettings() {
    std::puts("| Setting | Unit | What it is | Values | Unless given |\n|---|---|---|---|---|");
    for (const PlayerSettingInfo& setting : itc18::PreparationSettingInfo())
        std::printf("| `%s` | %s | %s | %s | %s |\n", setting.name, setting.unit, setting.meaning,
                    Range(setting).c_str(), setting.unless);
}

struct Shown {
    const char* model;
    double lower, upper;  // commands [pA]
};

constexpr Shown kShown[] = {{"squidAxon", -100, 200},
                            {"passive", -100, 100},
                            {"regularSpiking", -300, 750},
                            {"fastSpiking", -100, 500},
                            {"connorStevens", -40, 200},
                            {"connorStevensWithoutA", -40, 160},
                            {"wangBuzsaki", -4, 20},
                            {"adexBretteGerstner", -200, 700},
                            {"adexTonic", -100, 500},
                            {"adexAdaptation", -100, 500},
                            {"adexInitialBurst", -100, 400},
                            {"adexRegularBursting", -50, 210},
                            {"adexDelayedAccelerating", -10, 300},
                            {"adexTransient", -50, 180}};

// At rest for 50 ms, at the command for 400 ms, at rest again; in points of 50 µs.
void PrintResponse(const char* model, double command) {
    itc18::PreparationSettings settings;
    std::string problem;
    itc18::Assign(settings, {"cell.model", model, 0}, problem);
    itc18::Preparation preparation(settings);
    const double counts =
        command * ITC18Simulator_CountsPerVolt / ITC18Simulator_PicoamperesPerVolt;
    for (int32_t point = 0; point < 10000; ++point) {
        std::printf("%s %g %.2f %.3f\n", model, command, point * 0.05 - 50,
                    preparation.Signal() / ITC18Simulator_CountsPerMillivolt);
        preparation.Advance(point >= 1000 && point < 9000 ? counts : 0, 50);
    }
}

}  // namespace

int main(int count, char** words) {
    const std::string_view what = count == 2 ? words[1] : "";
    if (what == "settings") {
        PrintSettings();
    } else if (what == "responses") {
        for (const Shown& shown : kShown) {
            PrintResponse(shown.model, shown.lower);
            PrintResponse(shown.model, shown.upper);
        }
    } else {
        std::fputs("cell-sheet settings | responses\n", stderr);
        return 2;
    }
    return 0;
}
