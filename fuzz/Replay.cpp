// Runs a fuzz target on the files and folders that are named, without a fuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void ReplayFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(stream)), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int count, char** names) {
    int files = 0;
    for (int i = 1; i < count; ++i) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(names[i])) {
            if (!entry.is_regular_file()) continue;
            ReplayFile(entry.path());
            ++files;
        }
    }
    std::fprintf(stderr, "%d inputs replayed\n", files);
    return files > 0 ? 0 : 1;
}
