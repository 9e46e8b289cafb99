// record-demo FILE: plays the demo's experiment on the simulated interface and records it. FILE
// must not exist yet; FILE.played keeps what was played, FILE.log what the library printed.
#include <cstdio>
#include <exception>
#include <string>

#include "OwnOutput.h"
#include "Protocol.h"
#include "Rig.h"

namespace {

void RecordExperiment(const std::string& path) {
    const OwnOutput own(path + ".log");
    Rig rig(path);
    const std::vector<EpochPlan> plans = DemoProtocol();
    for (const EpochPlan& plan : plans) rig.Record(plan);
    std::fprintf(own.Stream(), "recorded %zu epochs into %s\n", plans.size(), path.c_str());
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::fputs("usage: record-demo FILE\n", stderr);
        return 2;
    }
    RecordExperiment(argv[1]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "record-demo: %s\n", error.what());
    return 2;
}
