// An open recording: where its epochs lie, each found when it is asked for and then remembered.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "ITCUtilities/Mutex.h"
#include "bytes/FileView.h"
#include "epochs/EpochLayout.h"
#include "recording/HeaderDigest.h"
#include "recording/Problem.h"
#include "stimuli/NoiseHistory.h"
#include "survey/Findings.h"
#include "survey/Survey.h"

namespace corvantis::reading {

// What a walk through the whole file has found.
struct Walked {
    Survey survey;
    std::vector<Finding> findings;
    int64_t numbers = 0;
};

// Remembered by all threads, of each epoch, without a lock: 0 stands for what is not known yet.
class Remembered {
  public:
    explicit Remembered(int64_t count) : values_(static_cast<size_t>(count)) {}
    int64_t Count() const { return static_cast<int64_t>(values_.size()); }
    uint32_t Get(int64_t index) const {
        return values_[static_cast<size_t>(index)].load(std::memory_order_relaxed);
    }
    void Set(int64_t index, uint32_t value) const {
        values_[static_cast<size_t>(index)].store(value, std::memory_order_relaxed);
    }

  private:
    mutable std::vector<std::atomic<uint32_t>> values_;
};

// From an earlier opening; the places by ascending numbers.
struct Known {
    CorvantisRecordingInfo info = {};
    std::span<const CorvantisPlace> places;
};

// A recording as it was at one moment. But for what is found out late, and then stays, it is
// constant: any number of threads may read from it.
class Contents {
  public:
    // Examines what the snapshot says of the file; null for what cannot be read or is no recording.
    static std::unique_ptr<Contents> Examine(const ByteSource& source, const std::string& name,
                                             const Snapshot& snapshot, const Reporter& reporter);

    // Takes what is known from before instead of examining; null if the snapshot is another one.
    static std::unique_ptr<Contents> Recall(const ByteSource& source, const std::string& name,
                                            const Snapshot& snapshot, const Known& known,
                                            const Reporter& reporter);

    const Snapshot& Moment() const { return snapshot_; }
    const std::string& Name() const { return name_; }
    CorvantisFound Found() const { return isByTable_ ? CORVANTIS_BY_TABLE : CORVANTIS_BY_WALKING; }
    int64_t Count() const { return count_; }
    int64_t TablePosition() const { return tablePosition_; }
    // For one operation of one thread.
    FileView View() const { return FileView(source_, snapshot_); }

    // Where the epoch is, its header and, if asked for, its records.
    int32_t Find(const FileView& view, int64_t number, Depth depth, EpochReading& reading,
                 const Reporter& reporter) const;
    // The walk through the whole file, made once; null if the file's bytes do not come.
    const Walked* Walk(const Reporter& reporter) const;
    // What noise continues, found once; null if the file's bytes do not come.
    const NoiseHistory* History(const Reporter& reporter) const;

    // Takes over the places of an earlier moment's epochs. False if they are not the same epochs.
    bool Continue(const Contents& earlier, const Reporter& reporter);
    // Leaves out what may be of a save under way.
    void LeaveOutSave(const Contents& earlier);

  private:
    Contents(const ByteSource& source, std::string name, const Snapshot& snapshot);
    bool TakeTable(const FileView& view);
    bool IsSoundByTable(const FileView& view);
    const CorvantisPlace* KnownPlace(int64_t number) const;
    static int32_t FindByPlace(const FileView& view, const CorvantisPlace& place, Depth depth,
                               EpochReading& reading, const Reporter& reporter);
    bool Refuse(const FileView& view, const Reporter& reporter) const;
    bool AddByWalking(const Reporter& reporter);
    bool FindByTable(const FileView& view, int64_t number, Depth depth,
                     EpochReading& reading) const;
    int32_t FindByWalking(const FileView& view, int64_t number, Depth depth, EpochReading& reading,
                          const Reporter& reporter) const;
    int64_t StartOf(const FileView& view, int64_t number) const;
    bool IsAsBefore(int64_t index, const EpochReading& reading) const;
    int32_t ReadNoise(const FileView& view, int64_t number, NoiseEpoch& noise,
                      const Reporter& reporter) const;
    std::vector<NoiseEpoch> NoiseOfAll(const Reporter& reporter, bool& isComplete) const;

    const ByteSource& source_;
    const std::string name_;
    const Snapshot snapshot_;
    bool isByTable_ = false;
    int64_t count_ = 0;
    int64_t tablePosition_ = 0;
    std::vector<CorvantisPlace> places_;           // of epochs, known from before
    std::unique_ptr<Remembered> starts_;           // of epochs, by the table
    mutable std::unique_ptr<Remembered> digests_;  // of headers that were read
    mutable Mutex mutex_;
    mutable std::unique_ptr<Walked> walked_;
    mutable std::atomic<const Walked*> isWalked_ = nullptr;
    mutable Mutex historyMutex_;
    mutable std::unique_ptr<NoiseHistory> history_;
    mutable std::atomic<const NoiseHistory*> hasHistory_ = nullptr;
};

}  // namespace corvantis::reading

struct CorvantisRecording {
    corvantis::reading::ByteSource source;
    std::string name;
    std::unique_ptr<corvantis::reading::Contents> contents;

    CorvantisRecording() = default;
    CorvantisRecording(const CorvantisRecording&) = delete;
    CorvantisRecording& operator=(const CorvantisRecording&) = delete;
    ~CorvantisRecording() {
        if (source.source.close != nullptr) source.source.close(source.source.context);
    }
};
