// How much faster than real time the simulated cells are, on one core: corvantis-cells [CHUNKS]
//
// Each cell is recorded at 20 kHz with a current at which it fires, in chunks of 50 ms. The fastest
// of 100 chunks, or as many as are named, tells what the program takes when nothing else runs.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "simulator/cells/Preparation.h"

namespace {

struct Setting {
    const char* name;
    const char* text;
    double number;
};

struct Job {
    const char* what;
    const char* model;
    double picoamperes;
    Setting more[3];
};

constexpr Job kJobs[] = {
    {"squid axon", "squidAxon", 200, {}},
    {"regular spiking", "regularSpiking", 1000, {}},
    {"fast spiking", "fastSpiking", 750, {}},
    {"Connor, with A", "connorStevens", 200, {}},
    {"Wang, Buzsaki", "wangBuzsaki", 20, {}},
    {"adaptive exponential", "adexBretteGerstner", 700, {}},
    {"passive", "passive", 100, {}},
    {"squid axon, pipette and Bessel filter",
     "squidAxon",
     200,
     {{"electrode.accessResistance", "", 10},
      {"electrode.pipetteCapacitance", "", 5},
      {"amplifier.filter", "bessel", 0}}},
    {"squid axon, both synapses noisy",
     "squidAxon",
     200,
     {{"synapses.excitatoryDeviation", "", 1}, {"synapses.inhibitoryDeviation", "", 1}}},
    {"squid axon, channels of 20 pS", "squidAxon", 200, {{"cell.channelConductance", "", 20}}}};

itc18::PreparationSettings SettingsOf(const Job& job, const char* rates) {
    itc18::PreparationSettings settings;
    std::string problem;
    settings.currentCommand = ITC18Simulator_CountsPerVolt;
    itc18::Assign(settings, {"cell.model", job.model, 0}, problem);
    itc18::Assign(settings, {"cell.rates", rates, 0}, problem);
    for (const Setting& one : job.more)
        if (one.name != nullptr) itc18::Assign(settings, {one.name, one.text, one.number}, problem);
    return settings;
}

double FastestSeconds(const Job& job, const char* rates, int chunks) {
    using Clock = std::chrono::steady_clock;
    itc18::Preparation preparation(SettingsOf(job, rates));
    double fastest = 1e9;
    for (int chunk = 0; chunk < chunks; ++chunk) {
        const auto begin = Clock::now();
        for (int point = 0; point < 1000; ++point) preparation.Advance(job.picoamperes, 50);
        fastest = std::min(fastest, std::chrono::duration<double>(Clock::now() - begin).count());
    }
    return fastest;
}

}  // namespace

int main(int count, char** words) {
    const int chunks = count > 1 ? std::max(1, std::atoi(words[1])) : 100;
    std::puts("| Cell | Computed | | Tabulated | |\n|---|---|---|---|---|");
    for (const Job& job : kJobs) {
        std::printf("| %s |", job.what);
        for (const char* rates : {"computed", "tabulated"}) {
            const double seconds = FastestSeconds(job, rates, chunks);
            std::printf(" %.0f times | %.0f ns a step |", 0.05 / seconds, seconds / 1e4 * 1e9);
        }
        std::puts("");
    }
    return 0;
}
