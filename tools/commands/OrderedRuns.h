// Threads that work through a list, whose results are taken in its order.
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace corvantis::tool {

template <class Result>
class OrderedRuns {
  public:
    // run(index) may not throw, and is called by several threads at once.
    OrderedRuns(size_t count, size_t threads, std::function<Result(size_t)> run)
        : count_(count), ahead_(2 * threads), run_(std::move(run)) {
        for (size_t i = 0; i < threads; ++i) {
            if (!BeginThread() && threads_.empty()) throw std::runtime_error("no thread begins");
        }
    }
    OrderedRuns(const OrderedRuns&) = delete;
    OrderedRuns& operator=(const OrderedRuns&) = delete;
    ~OrderedRuns() {
        const std::scoped_lock lock(mutex_);
        count_ = 0;
        changed_.notify_all();
    }

    // Of the next index.
    Result Take() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return done_.contains(taken_); });
        Result result = std::move(done_.extract(taken_++).mapped());
        changed_.notify_all();
        return result;
    }

  private:
    // Fewer than wanted do as well.
    bool BeginThread() {
        try {
            threads_.emplace_back([this] { Work(); });
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }

    // Not far ahead of what has been taken, since results take memory.
    void Work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [&] { return begun_ >= count_ || begun_ < taken_ + ahead_; });
            if (begun_ >= count_) return;
            const size_t index = begun_++;
            lock.unlock();
            Result result = run_(index);
            lock.lock();
            done_.emplace(index, std::move(result));
            changed_.notify_all();
        }
    }

    size_t count_;
    const size_t ahead_;
    const std::function<Result(size_t)> run_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<size_t, Result> done_;
    size_t begun_ = 0;
    size_t taken_ = 0;
    std::vector<std::jthread> threads_;  // the first to go
};

}  // namespace corvantis::tool
