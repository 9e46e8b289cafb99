// What is measured: each job as the plain formula, as the library, and as a limit of the machine.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// Each function does the whole job once; a job without a limit, or a plain form, leaves it empty.
struct Job {
    std::string name;
    int64_t size;
    std::function<void()> plain;
    std::function<void()> library;
    std::function<void()> limit;
};
using Jobs = std::vector<Job>;

void AddGeneratorJobs(Jobs& jobs);
void AddTransformJobs(Jobs& jobs);
void AddWaveformJobs(Jobs& jobs);
void AddInterleavingJobs(Jobs& jobs);
void AddCodecJobs(Jobs& jobs);
void AddSessionJobs(Jobs& jobs);

// The library started without a device, with sample buffers of its own.
void StartLibrary();

}  // namespace bench
