// Recording the epochs of a plan one after the other, until the last, an interruption or a loss.
#pragma once

#include <fstream>
#include <optional>
#include <string>

#include "acquisition/EpochPlay.h"
#include "output/Terminal.h"
#include "player/OpenPlayer.h"
#include "session/Session.h"

namespace corvantis::rig {

struct RecordingPlan {
    const Protocol& protocol;
    std::vector<Occurrence> epochs;
    size_t first = 0;      // of them
    size_t drawnFrom = 0;  // the first of them whose noise is drawn, be it played or not
};

struct RecordingChoice {
    std::string file;
    std::string played;       // side file of the samples that were played, or empty
    double waitForRoom = 60;  // how long a save that found no room is tried again [s]
};

class Recorder {
  public:
    Recorder(const RecordingPlan& plan, const RecordingChoice& choice, Session& session,
             OpenPlayer& player, const tool::Terminal& terminal);
    // Whether all epochs are in the file now. Throws a Failure.
    bool Run();

  private:
    bool RecordEpoch(size_t index, const PlannedEpoch& epoch);
    bool Tell(const PlannedEpoch& epoch, std::string& why);
    bool Play(const PlannedEpoch& epoch, std::string& why);
    bool Save(std::string& why);
    bool Pause(const PlannedEpoch& epoch, std::string& why);
    bool Prepare(const PlannedEpoch& epoch, std::string& why);
    void ShowSeal(const PlannedEpoch& epoch);
    void Report(size_t index, const PlannedEpoch& epoch);
    bool EndEarly(size_t next, const std::string& what);

    const RecordingPlan& plan_;
    const RecordingChoice& choice_;
    Session& session_;
    OpenPlayer& player_;
    const tool::Terminal& terminal_;
    std::ofstream played_;
    double time_ = 0;  // of the experiment [s]
    uint16_t levels_[5] = {};
};

}  // namespace corvantis::rig
