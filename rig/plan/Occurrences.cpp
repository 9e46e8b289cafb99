// Going through families, in order or shuffled.
#include "plan/Occurrences.h"

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>

namespace corvantis::rig {
namespace {

constexpr size_t kMostPlays = 1000000;

struct Family {
    std::string name;
    std::vector<std::string> values;
    bool isShuffled = false;
    std::mt19937 generator;
};

std::vector<std::string> ListedValues(const Node& list) {
    std::vector<std::string> values;
    for (const double number : list.value->numbers) values.push_back(ValueText(number, ""));
    for (const Value& item : list.value->items) {
        values.push_back(item.kind == Kind::kText ? item.text : ValueText(item.number, ""));
    }
    return values;
}

std::vector<std::string> SteppedValues(const Node& family) {
    const Node start = family["start"], step = family["step"], count = family["count"];
    if (!start || !step || !count) family.Fail("takes values, or start, step and count");
    const Term first = OnlyTerm(start, {}), each = OnlyTerm(step, {});
    if (first.unit != each.unit) {
        step.Fail("is to have the unit of start, which " +
                  (first.unit.empty() ? "has none" : "is " + first.unit));
    }
    const auto steps = static_cast<int32_t>(count.value->number);
    std::vector<std::string> values;
    values.reserve(static_cast<size_t>(steps));
    for (int32_t k = 0; k < steps; ++k) {
        values.push_back(ValueText(first.number + k * each.number, first.unit));
    }
    return values;
}

Family FamilyOf(const Node& node, const std::string& name) {
    Family family;
    family.name = name;
    const Node values = node["values"], order = node["order"], seed = node["seed"];
    if (values && node["start"]) node["start"].Fail("stands beside values, which say all");
    family.values = values ? ListedValues(values) : SteppedValues(node);
    if (family.values.empty()) node.Fail("has no values");
    family.isShuffled = order && order.value->text == "shuffled";
    if (family.isShuffled && !seed) node.Fail("is shuffled and so has a seed");
    if (seed) family.generator.seed(static_cast<uint32_t>(seed.value->number));
    return family;
}

std::vector<Family> FamiliesOf(const Protocol& protocol, const Node& epoch) {
    std::vector<Family> families;
    const Node nodes = protocol.FieldOf(epoch, "families");
    for (size_t k = 0; nodes && k < nodes.value->items.size(); ++k) {
        const std::string& name = nodes.value->names[k];
        if (name == "repeat") nodes.Item(k).Fail("has the name of the repeats' number");
        families.push_back(FamilyOf(nodes.Item(k), name));
    }
    return families;
}

// Evenly among the places that are left (Durstenfeld), the same on every machine.
void Shuffle(Family& family) {
    for (size_t left = family.values.size(); left > 1; --left) {
        const size_t choice = family.generator() % left;
        std::swap(family.values[left - 1], family.values[choice]);
    }
}

void AppendWithLeak(std::vector<Occurrence>& plays, const Node& leak, const Occurrence& play) {
    if (leak) {
        Occurrence small = play;
        small.divisor = static_cast<int32_t>(leak["divisor"].value->number);
        if (small.divisor == 0) leak["divisor"].Fail("is not to be 0");
        small.leakPlays = std::abs(small.divisor);
        for (small.leakPlay = 1; small.leakPlay <= small.leakPlays; ++small.leakPlay) {
            plays.push_back(small);
        }
    }
    plays.push_back(play);
}

struct Walk {
    std::vector<Family>& families;
    Node leak;
    std::vector<Occurrence>& plays;
};

void GoThrough(Walk& walk, size_t depth, const Occurrence& play, const Node& epoch) {
    if (walk.plays.size() > kMostPlays) epoch.Fail("more epochs than a recording can take");
    if (depth == walk.families.size()) return AppendWithLeak(walk.plays, walk.leak, play);
    for (const std::string& value : walk.families[depth].values) {
        Occurrence next = play;
        next.names[walk.families[depth].name] = value;
        GoThrough(walk, depth + 1, next, epoch);
    }
}

int64_t RepeatsOf(const Protocol& protocol, const Node& epoch) {
    const Node repeats = protocol.FieldOf(epoch, "repeats");
    return repeats ? Rounded(repeats, AmountOf(repeats, {}, {}), 1, kMostPlays) : 1;
}

}  // namespace

std::vector<Occurrence> OccurrencesOf(const Protocol& protocol) {
    std::vector<Occurrence> plays;
    for (size_t k = 0; k < protocol.Epochs(); ++k) {
        const Node epoch = protocol.Epoch(k);
        std::vector<Family> families = FamiliesOf(protocol, epoch);
        Walk walk = {families, protocol.FieldOf(epoch, "leakSubtraction"), plays};
        const int64_t repeats = RepeatsOf(protocol, epoch);
        for (int64_t repeat = 1; repeat <= repeats; ++repeat) {
            for (Family& family : families) {
                if (family.isShuffled) Shuffle(family);
            }
            Occurrence play;
            play.epoch = k;
            play.names["repeat"] = std::to_string(repeat);
            GoThrough(walk, 0, play, epoch);
        }
    }
    return plays;
}

}  // namespace corvantis::rig
