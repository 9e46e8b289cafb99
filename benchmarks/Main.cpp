// Registers every job's three forms with the benchmark library, which interleaves and repeats them.
#include <benchmark/benchmark.h>

#include "Jobs.h"

namespace {

void Register(const bench::Job& job, const char* form, const std::function<void()>& function) {
    if (!function) return;
    const std::string name = job.name + "/" + std::to_string(job.size) + "/" + form;
    benchmark::RegisterBenchmark(name.c_str(), [function](benchmark::State& state) {
        for (auto _ : state) function();
    });
}

}  // namespace

int main(int argc, char** argv) {
    bench::StartLibrary();
    bench::Jobs jobs;
    bench::AddTransformJobs(jobs);
    bench::AddGeneratorJobs(jobs);
    bench::AddWaveformJobs(jobs);
    bench::AddInterleavingJobs(jobs);
    bench::AddCodecJobs(jobs);
    bench::AddSessionJobs(jobs);
    for (const bench::Job& job : jobs) {
        Register(job, "plain", job.plain);
        Register(job, "library", job.library);
        Register(job, "limit", job.limit);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
