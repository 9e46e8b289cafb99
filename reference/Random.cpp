// The generators, step by step. Additions beyond 31 bits wrap.
#include <cmath>

#include "reference/Definitions.h"
#include "reference/OldNumbers.h"

namespace definition {
namespace {

int32_t secondState = 123456789;
int32_t table[1024];
int32_t lastOutput = 0;

int32_t Wrap(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

int32_t Step(int32_t state, int32_t a, int32_t q, int32_t r, int64_t modulus) {
    const int32_t k = state / q;
    const int32_t next = a * (state - k * q) - k * r;
    return next < 0 ? Wrap(next + modulus) : next;
}

int32_t FirstGeneratorStep(int32_t state) { return Step(state, 40014, 53668, 12211, 2147583563); }

void Restart(int32_t& word) {
    word = Wrap(-int64_t{word});
    if (word <= 0) word = 1;
    secondState = word;
    for (int j = 1056; j >= 0; --j) {
        word = FirstGeneratorStep(word);
        if (j < 1024) table[j] = word;
    }
    lastOutput = table[0];
}

struct Spare {
    bool held = false;
    float value = 0.0F;
};
Spare spare;
Spare oldSpare;

template <class Draw>
float Polar(Spare& kept, Draw draw) {
    if (kept.held) {
        kept.held = false;
        return kept.value;
    }
    float x1;
    float x2;
    float square;
    do {
        x1 = draw();
        x2 = draw();
        square = x1 * x1 + x2 * x2;
    } while (!(square < 1.0F && square != 0.0F));
    const auto factor = static_cast<float>(std::sqrt(-2.0 * std::log(double{square}) / square));
    kept = {true, factor * x1};
    return factor * x2;
}

}  // namespace

float UniformDeviate(int32_t* word) {
    if (*word <= 0) Restart(*word);
    *word = FirstGeneratorStep(*word);
    secondState = Step(secondState, 40692, 52774, 3791, 2147583399);
    const uint32_t place = static_cast<uint32_t>(lastOutput) / 2097250u;
    lastOutput = Wrap(int64_t{table[place]} - secondState);
    table[place] = *word;
    if (lastOutput < 1) lastOutput = Wrap(lastOutput + int64_t{2147583562});
    const auto deviate = static_cast<float>(lastOutput * 4.656396227037057e-10);
    return deviate > 1.0F ? 1.0F : deviate;
}

float NormalDeviate(int32_t* word) {
    return Polar(spare, [=] { return static_cast<float>(2.0 * UniformDeviate(word) - 1.0); });
}

float OldNormalDeviate() {
    return Polar(oldSpare,
                 [] { return static_cast<float>(2.0 * NextOldNumber() / 2147483647.0 - 1.0); });
}

void DropSpareDeviates() { spare.held = oldSpare.held = false; }

}  // namespace definition
