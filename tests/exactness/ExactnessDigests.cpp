// Computes what must be the same on every host and writes it, with digests, into a folder.
#include <dlfcn.h>
#include <gnu/libc-version.h>

#include <bit>
#include <cfloat>
#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "Corvantis.h"
#include "Sections.h"

namespace {

// Where a maths function lies in its library: tells which of its variants this run uses.
std::string Variant(const char* function) {
    void* const address = dlsym(RTLD_DEFAULT, function);
    Dl_info place = {};
    if (address == nullptr || dladdr(address, &place) == 0) return "unknown";
    std::ostringstream text;
    text << "0x" << std::hex
         << reinterpret_cast<uintptr_t>(address) - reinterpret_cast<uintptr_t>(place.dli_fbase);
    return text.str();
}

void DescribeHost(exactness::Report& report) {
    std::ostringstream text;
    text << "glibc " << gnu_get_libc_version() << ", "
         << (std::endian::native == std::endian::big ? "big" : "little") << "-endian, "
         << 8 * sizeof(void*) << " bits, char " << (std::is_signed_v<char> ? "signed" : "unsigned")
         << ", FLT_EVAL_METHOD " << FLT_EVAL_METHOD;
    report.Remark(text.str());
    report.Remark("variants: sin " + Variant("sin") + " log " + Variant("log") + " pow " +
                  Variant("pow") + " fma " + Variant("fma"));
}

}  // namespace

int main(int argc, char** argv) {
    exactness::Require(argc == 2, "usage: ExactnessDigests FOLDER");
    exactness::Report report(argv[1]);
    DescribeHost(report);

    const int32_t capacity = 1 << 17;
    std::vector<uint16_t> input(static_cast<size_t>(capacity));
    std::vector<uint16_t> output(static_cast<size_t>(capacity));
    uint16_t* inputBuffer = input.data();
    uint16_t* outputBuffer = output.data();
    exactness::Require(ITCInit(&inputBuffer, &outputBuffer, &capacity, 0) == ITC_SUCCESS,
                       "starting the library");
    exactness::ReportMaths(report);
    exactness::ReportRandomNumbers(report);
    exactness::ReportTransforms(report);
    exactness::ReportWaveforms(report);
    exactness::ReportNoise(report);
    exactness::ReportSums(report);
    exactness::ReportCodecs(report);
    exactness::ReportDataFile(report);
    return ITCFinish();
}
