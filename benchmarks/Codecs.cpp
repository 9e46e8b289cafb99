// Arrays and headers between memory and stream; the limit is a bulk transfer of the same bytes.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "Corvantis.h"
#include "Jobs.h"
#include "reference/Definitions.h"

namespace bench {
namespace {

constexpr int32_t kShorts = 1000000;
constexpr int kHeaders = 64;

FILE* Opened(FILE* stream) {
    if (stream == nullptr) {
        std::perror("benchmarks");
        std::exit(1);
    }
    return stream;
}

void AddArrayJobs(Jobs& jobs) {
    FILE* stream = Opened(std::tmpfile());
    auto values = std::make_shared<std::vector<int16_t>>(kShorts, int16_t{1234});
    const auto rewound = [=](auto transfer) {
        return [=] {
            std::rewind(stream);
            transfer(values->data());
        };
    };
    jobs.push_back({"array of short, write", kShorts,
                    rewound([=](int16_t* v) { definition::WriteShorts(stream, v, kShorts); }),
                    rewound([=](int16_t* v) { WriteArray_short(stream, v, kShorts); }),
                    rewound([=](int16_t* v) { std::fwrite(v, sizeof *v, kShorts, stream); })});
    FILE* source = Opened(std::tmpfile());
    std::fwrite(values->data(), sizeof(int16_t), kShorts, source);
    const auto read = [=](auto transfer) {
        return [=] {
            std::rewind(source);
            transfer(values->data());
        };
    };
    jobs.push_back({"array of short, read", kShorts,
                    read([=](int16_t* v) { definition::ReadShorts(source, v, kShorts); }),
                    read([=](int16_t* v) { ReadArray_short(source, v, kShorts); }),
                    read([=](int16_t* v) { std::fread(v, sizeof *v, kShorts, source); })});
}

// The bytes go nowhere, and come out of the stream's own buffer: no system call hides the codec.
void AddHeaderJobs(Jobs& jobs) {
    FILE* sink = Opened(std::fopen("/dev/null", "wb"));
    auto header = std::make_shared<ITCEpochHeader>();
    jobs.push_back({"epoch header, write", sizeof(ITCEpochHeader),
                    [=] { definition::WriteEpochHeader(sink, *header); },
                    [=] { Write_ITCEpochHeader(sink, header.get()); },
                    [=] { std::fwrite(header.get(), sizeof *header, 1, sink); }});
    FILE* source = Opened(std::tmpfile());
    static char streamBuffer[1 << 16];
    std::setvbuf(source, streamBuffer, _IOFBF, sizeof streamBuffer);
    for (int i = 0; i < kHeaders; ++i) Write_ITCEpochHeader(source, header.get());
    const auto round = [=](auto transfer) {
        auto taken = std::make_shared<int>(0);
        return [=] {
            if ((*taken)++ % kHeaders == 0) std::fseek(source, 0, SEEK_SET);
            transfer();
        };
    };
    jobs.push_back({"epoch header, read", sizeof(ITCEpochHeader),
                    round([=] { definition::ReadEpochHeader(source, *header); }),
                    round([=] { Read_ITCEpochHeader(source, header.get(), 8); }),
                    round([=] { std::fread(header.get(), sizeof *header, 1, source); })});
}

}  // namespace

void AddCodecJobs(Jobs& jobs) {
    AddArrayJobs(jobs);
    AddHeaderJobs(jobs);
}

}  // namespace bench
