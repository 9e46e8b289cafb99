// What there is to say of many epochs, in one pass.
#include <algorithm>
#include <cstring>
#include <string>

#include "interface/Boundary.h"
#include "interface/Doubts.h"
#include "interface/EpochInfo.h"
#include "stimuli/Computation.h"
#include "stimuli/StimulusJson.h"
#include "stimuli/StimulusWords.h"
#include "units/Scale.h"

namespace corvantis::reading {
namespace {

constexpr const char* kBetweenEntries = " | ";

// Of one epoch; the texts that nobody asks for stay empty.
struct Description {
    std::string texts[CORVANTIS_SAY_DAMAGE + 1];
    int32_t doubt = CORVANTIS_NO_DOUBT;
    bool isDamaged = false;

    std::string& Of(int32_t subject) { return texts[subject]; }
};

struct Wanted {
    std::span<const CorvantisTexts> texts;
    bool doubts;

    bool Has(int32_t subject) const {
        return std::any_of(texts.begin(), texts.end(), [subject](const CorvantisTexts& each) {
            return each.subject == subject;
        });
    }
};

void SayStimuli(const Contents& contents, const EpochReading& reading, const Wanted& wanted,
                Description& description) {
    const ITCEpochHeader& header = reading.content.header;
    std::string& words = description.Of(CORVANTIS_SAY_STIMULUS);
    std::string& json = description.Of(CORVANTIS_SAY_JSON);
    const bool inWords = wanted.Has(CORVANTIS_SAY_STIMULUS),
               asJson = wanted.Has(CORVANTIS_SAY_JSON);
    for (size_t entry = 0; entry < reading.content.stimuli.size(); ++entry) {
        const Stimulus& stimulus = reading.content.stimuli[entry];
        const Scale scale = StimulusScale(contents.Moment().header, header, entry);
        if (inWords && entry > 0) words += kBetweenEntries;
        if (inWords) words += StimulusWords(stimulus, scale, header.samplingInterval);
        if (asJson) json.append(entry > 0 ? "," : "[").append(StimulusJson(stimulus, scale));
    }
    if (asJson) json += json.empty() ? "[]" : "]";
}

int32_t SayDoubt(const Contents& contents, const EpochReading& reading, const Reporter& reporter,
                 Description& description) {
    std::string& text = description.Of(CORVANTIS_SAY_DOUBT);
    for (size_t entry = 0; entry < reading.content.stimuli.size() && text.empty(); ++entry) {
        text = WhyNotComputed(reading.content, entry);
    }
    if (!text.empty()) {
        description.doubt = CORVANTIS_NOT_COMPUTED;
        return CORVANTIS_SUCCESS;
    }
    const NoiseHistory* history = HistoryOf(contents, reading, reporter);
    if (history == nullptr) return CORVANTIS_FILE_ERROR;
    const CorvantisDoubt doubt = DoubtOf(reading, *history, CORVANTIS_ALL_ENTRIES);
    description.doubt = doubt.reason;
    text = doubt.text;
    return CORVANTIS_SUCCESS;
}

int32_t DescribeEpoch(const Contents& contents, const FileView& view, int64_t number,
                      const Wanted& wanted, const Reporter& reporter, Description& description,
                      CorvantisEpochInfo& info) {
    EpochReading reading;
    CorvantisProblem damage;
    const Reporter toDamage(contents.Name(), wanted.Has(CORVANTIS_SAY_DAMAGE) ? &damage : nullptr);
    int32_t result = contents.Find(view, number, Depth::kRecords, reading, toDamage);
    if (result == CORVANTIS_DAMAGED) {
        description.isDamaged = true;
        if (!toDamage.IsQuiet()) description.Of(CORVANTIS_SAY_DAMAGE) = damage.text + damage.reason;
        return CORVANTIS_SUCCESS;
    }
    // Once more, so that the caller is told why.
    if (result != CORVANTIS_SUCCESS) {
        result = contents.Find(view, number, Depth::kRecords, reading, reporter);
    }
    if (result != CORVANTIS_SUCCESS) return result;
    info = InfoOf(reading);
    SayStimuli(contents, reading, wanted, description);
    if (wanted.doubts) result = SayDoubt(contents, reading, reporter, description);
    return result;
}

// False if a text has no room; those before it may then have been stored, and are not counted.
bool Store(const Wanted& wanted, int64_t index, Description& description) {
    for (const CorvantisTexts& each : wanted.texts) {
        const std::string& text = description.Of(each.subject);
        const int64_t begin = index == 0 ? 0 : each.ends[index - 1];
        const auto size = static_cast<int64_t>(text.size());
        if (size > each.capacity - begin) return false;
        if (size > 0) std::memcpy(each.text + begin, text.data(), text.size());
        each.ends[index] = begin + size;
    }
    return true;
}

bool IsText(const CorvantisTexts& each) {
    const bool isSubject =
        each.subject >= CORVANTIS_SAY_STIMULUS && each.subject <= CORVANTIS_SAY_DAMAGE;
    const bool hasRoom = each.capacity == 0 || (each.capacity > 0 && each.text != nullptr);
    return isSubject && hasRoom && each.ends != nullptr;
}

}  // namespace
}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisDescribe(const CorvantisRecording* recording, int64_t first, int64_t epochs,
                          const CorvantisTexts* texts, int32_t count, CorvantisEpochInfo* infos,
                          int32_t* doubts, uint8_t* missing, int64_t* described,
                          CorvantisProblem* problem) {
    return WithContents(
        recording, problem, [&](const Contents& contents, const Reporter& reporter) -> int32_t {
            const bool areThere = count == 0 || (count > 0 && texts != nullptr);
            if (!areThere || missing == nullptr || described == nullptr) return Missing(reporter);
            Wanted wanted = {{texts, static_cast<size_t>(count)}, doubts != nullptr};
            wanted.doubts = wanted.doubts || wanted.Has(CORVANTIS_SAY_DOUBT);
            if (!std::all_of(wanted.texts.begin(), wanted.texts.end(), IsText)) {
                return reporter.Report(CORVANTIS_BAD_ARGUMENT, -1,
                                       "a text has no subject or no room");
            }
            if (const int32_t wrong = CheckEpochs(contents, first, epochs, reporter)) return wrong;
            const FileView view = contents.View();
            for (*described = 0; *described < epochs; ++*described) {
                const int64_t index = *described;
                Description description;
                CorvantisEpochInfo info = {};
                const int32_t result = DescribeEpoch(contents, view, first + index, wanted,
                                                     reporter, description, info);
                if (result != CORVANTIS_SUCCESS) return result;
                if (!Store(wanted, index, description)) break;
                missing[index] = description.isDamaged ? 1 : 0;
                if (infos != nullptr) infos[index] = info;
                if (doubts != nullptr) doubts[index] = description.doubt;
            }
            return CORVANTIS_SUCCESS;
        });
}
