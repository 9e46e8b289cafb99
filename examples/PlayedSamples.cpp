// Each play as its number of samples, 64 bits, and the samples.
#include "PlayedSamples.h"

#include <stdexcept>

namespace {

template <class Stream>
Stream OpenBinary(const std::string& path) {
    Stream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path + ": cannot be opened");
    return file;
}

}  // namespace

PlayedSamplesWriter::PlayedSamplesWriter(const std::string& path)
    : file(OpenBinary<std::ofstream>(path)) {
    file.exceptions(std::ios::failbit | std::ios::badbit);
}

void PlayedSamplesWriter::Append(std::span<const uint16_t> samples) {
    const uint64_t count = samples.size();
    file.write(reinterpret_cast<const char*>(&count), sizeof count);
    file.write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size_bytes()));
    file.flush();
}

std::vector<std::vector<uint16_t>> ReadPlayedSamples(const std::string& path) {
    auto file = OpenBinary<std::ifstream>(path);
    std::vector<std::vector<uint16_t>> plays;
    uint64_t count = 0;
    while (file.read(reinterpret_cast<char*>(&count), sizeof count)) {
        std::vector<uint16_t> samples(count);
        file.read(reinterpret_cast<char*>(samples.data()),
                  static_cast<std::streamsize>(count * sizeof(uint16_t)));
        if (!file) throw std::runtime_error(path + ": ends within a play");
        plays.push_back(std::move(samples));
    }
    return plays;
}
