// The sine stimulus by rotation. The point j places behind the start of a block is the block's
// first point, as a complex number, turned by the entry j of a table:
//   sin(p + d) = sin(p) cos(d) + cos(p) sin(d).
// The sample is the truncated sum of the mean and the turned point's sine times the amplitude. It
// can differ from the formula's only if an integer lies between the two sums: where the sum is
// closer to an integer than the two can be apart, the formula decides.
//
// How far apart, in u = 2^-53 and with P the largest phase of points and table: a phase is a
// product rounded three times, off by 3 u P at most. With sines and cosines good to 4 u, the first
// point of a block is off by 6 u + 3 u P. The table begins with 1 and is doubled nine times by a
// point of that kind, each time with 3 u for the rounded products and sums: 81 u and, as the phases
// add up to the table's last, 3 u P. The last turn and the amplitude add 5 u, the formula's own
// sine 1 u and 3 u P. Together less than 112 u + 16 u P of the amplitude; the sum with the mean is
// rounded once on either side, for which 4 u of both levels are more than enough.
#include "ITCWaveforms/SineRotation.h"

#include <algorithm>
#include <cmath>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/Maths/Turn.h"

namespace corvantis {
namespace {

constexpr int32_t kBlock = 512;
constexpr int32_t kWorthATable = 48;

struct TurnTable {
    double sine[kBlock];
    double cosine[kBlock];
};

CORVANTIS_CLONES void FillTable(TurnTable& table, const SineFormula& formula, int32_t length) {
    table.sine[0] = 0.0;
    table.cosine[0] = 1.0;
    for (int32_t m = 1; m < length; m *= 2) {
        const Turn turn = TurnBy(formula.Phase(m));
        for (int32_t j = 0; j < m; ++j) {
            table.sine[m + j] = turn.sine * table.cosine[j] + turn.cosine * table.sine[j];
            table.cosine[m + j] = turn.cosine * table.cosine[j] - turn.sine * table.sine[j];
        }
    }
}

double Bound(const SineFormula& formula, int32_t points) {
    constexpr double kUnit = 0x1p-53;
    const double phase = std::abs(formula.Phase(std::max(points, kBlock)));
    const double levels = std::abs(formula.amplitude) + std::abs(formula.mean);
    return std::abs(formula.amplitude) * kUnit * (112 + 16 * phase) + 4 * kUnit * levels;
}

// Levels that cannot leave 32 bits, and a bound that leaves most samples to the table; none of it
// holds for a NaN.
bool CanRotate(const SineFormula& formula, size_t points, double bound) {
    const double levels = std::abs(formula.amplitude) + std::abs(formula.mean);
    return points >= kWorthATable && formula.amplitude != 0.0 && levels < 2147483647.0 &&
           bound < 0.125;
}

// Whether a sum lies far enough from the integers for its truncation to be the formula's.
inline bool IsCertain(double sum, double largestDistanceFromHalf) {
    const double fraction = std::abs(sum - static_cast<int32_t>(sum));
    return std::abs(fraction - 0.5) < largestDistanceFromHalf;
}

// One block from a start that has the amplitude in it; returns how many samples are uncertain.
CORVANTIS_CLONES int64_t TurnBlock(std::span<uint16_t> samples, const TurnTable& table, Turn start,
                                   double mean, double largestDistanceFromHalf) {
    int64_t uncertain = 0;
    for (size_t j = 0; j < samples.size(); ++j) {
        const double sum = start.sine * table.cosine[j] + start.cosine * table.sine[j] + mean;
        samples[j] = LevelSample(static_cast<int32_t>(sum));
        uncertain += IsCertain(sum, largestDistanceFromHalf) ? 0 : 1;
    }
    return uncertain;
}

void WriteByFormula(std::span<uint16_t> samples, const SineFormula& formula) {
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = formula.Sample(static_cast<int32_t>(i));
    }
}

}  // namespace

void WriteSine(std::span<uint16_t> samples, const SineFormula& formula, double guardShare) {
    const auto points = static_cast<int32_t>(samples.size());
    const double bound = Bound(formula, points);
    if (!CanRotate(formula, samples.size(), bound)) return WriteByFormula(samples, formula);
    const double certain = 0.5 - guardShare * bound;
    TurnTable table;
    FillTable(table, formula, std::min(points, kBlock));
    for (int32_t first = 0; first < points; first += std::min(kBlock, points - first)) {
        const Turn turn = TurnBy(formula.Phase(first));
        const Turn start = {formula.amplitude * turn.sine, formula.amplitude * turn.cosine};
        const auto block = samples.subspan(static_cast<size_t>(first),
                                           static_cast<size_t>(std::min(kBlock, points - first)));
        if (TurnBlock(block, table, start, formula.mean, certain) == 0) continue;
        for (size_t j = 0; j < block.size(); ++j) {
            const double sum =
                start.sine * table.cosine[j] + start.cosine * table.sine[j] + formula.mean;
            if (!IsCertain(sum, certain))
                block[j] = formula.Sample(first + static_cast<int32_t>(j));
        }
    }
}

}  // namespace corvantis
