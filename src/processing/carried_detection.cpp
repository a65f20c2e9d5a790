#include "processing/carried_detection.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>

#include "processing/baseline_detection.h"
#include "processing/real_rows.h"
#include "processing/row_parallel.h"

namespace zolt {
namespace {

using autosampling_mode::kCarryThreshold;

// The run between two rows: the mode and the threshold the next row is marked with.
struct RunState {
    unsigned mode = 0;
    double carried = 0.0;
};

// How one row was marked: the state it was marked from and its threshold afterwards.
struct Marking {
    RunState from;
    double carriedOut = 0.0;
};

// The rows one after another, each read whole before it is marked. A row whose detection runs
// out of memory stays undetected.
void detectInOrder(const SpectrumMatrix& m, int fIndex, size_t lo, size_t n, int w,
                   std::vector<uint8_t>& masks, std::vector<uint8_t>& detected) {
    const size_t rows = detected.size();
    std::vector<float> batch;
    std::vector<double> d;
    try {
        batch.resize(kDifferenceRows * n);
        d.resize(hasDifferences(n, w) ? kDifferenceRows * n : 0);
    } catch (const std::bad_alloc&) {
        return;
    }
    RunState state;
    size_t index = 0, held = 0;
    const auto mark = [&] {
        const float* rowsHeld[kDifferenceRows];
        for (size_t k = 0; k < held; ++k) rowsHeld[k] = batch.data() + k * n;
        movingDifferences(rowsHeld, held, n, w, d.data());
        for (size_t k = 0; k < held; ++k, ++index) {
            try {
                markBaselinePoints(d.data() + k * n, n, w, state.mode, masks.data() + index * n,
                                   state.carried);
                state.mode = kCarryThreshold;
                detected[index] = 1;
            } catch (const std::bad_alloc&) {
                // The row stays as it was.
            }
        }
        held = 0;
    };
    forEachRealRowRead(m, fIndex, [&](const float* row, size_t) {
        if (index + held >= rows) return;
        std::copy_n(row + lo, n, batch.data() + held * n);
        if (++held == kDifferenceRows) mark();
    });
    if (held) mark();
}

// Whether a row marked from `marked` has the mask it has when marked from `state`, and a
// threshold that carries as its own would. A first row starts afresh. After it, the carried
// threshold only marks at once the differences above twice its value, so a row marked from a
// lower threshold is marked alike unless a difference lies between the two limits; its carried
// threshold is then the greater of its own and the lower one, and taking the greater with the
// higher gives the one it carries. From a higher threshold (ahead of a row marked again) its own
// is lost in the greater: such a row is marked again.
bool markedAlike(const double* d, size_t n, int w, const RunState& marked, const RunState& state) {
    if (marked.mode != state.mode) return false;
    if (!(state.mode & kCarryThreshold) || marked.carried == state.carried) return true;
    if (marked.carried > state.carried) return false;
    if (!hasDifferences(n, w)) return true;
    const double low = 2.0 * marked.carried, high = 2.0 * state.carried;
    const size_t hw = static_cast<size_t>(std::max(w, 0));
    for (size_t i = hw + 1; i <= n - hw - 1; ++i)
        if (d[i] > low && d[i] <= high) return false;
    return true;
}

// Groups held between their marking and their acceptance: a few for each thread, fewer on rows
// so long that their differences would take more than kSlotMemory.
constexpr size_t kSlotMemory = size_t{32} << 20;

size_t slotCount(size_t n, size_t threads) {
    const size_t fit = kSlotMemory / (kRowGroup * std::max<size_t>(n, 1) * sizeof(double));
    return std::clamp<size_t>(fit, 2, 4 * threads);
}

// The rows marked ahead on several threads. Each thread takes the next group of rows and marks
// them from the state the run has reached so far; the groups are then taken in order, each row
// kept when it is marked alike from the run's true state, marked again from it otherwise. The
// threshold rises on few rows, so nearly every row is marked once.
class MarkingAhead {
public:
    MarkingAhead(const SpectrumMatrix& m, int fIndex, size_t lo, size_t n, int w,
                 std::vector<uint8_t>& masks, std::vector<uint8_t>& detected, size_t groups,
                 size_t threads)
        : m_(m),
          fIndex_(fIndex),
          lo_(lo),
          n_(n),
          w_(w),
          masks_(masks),
          detected_(detected),
          groups_(groups),
          slots_(slotCount(n, threads)) {
        for (Slot& slot : slots_) slot.d.resize(hasDifferences(n, w) ? kRowGroup * n : 0);
    }

    // One thread's share: groups until none is left or a thread ran out of memory.
    void work() {
        std::vector<float> buffer;
        for (;;) {
            const size_t g = next_.fetch_add(1);
            if (g >= groups_) return;
            RunState from;
            Slot* slot = nullptr;
            {
                std::unique_lock<std::mutex> lock(mutex_);
                // Each group waits for a slot: the earliest unaccepted one never waits.
                roomFreed_.wait(lock, [&] { return failed_ || g < accepted_ + slots_.size(); });
                if (failed_) return;
                from = state_;
                slot = &slots_[g % slots_.size()];
            }
            try {
                markGroup(g, from, buffer, *slot);
            } catch (const std::bad_alloc&) {
                fail();
                return;
            }
            std::lock_guard<std::mutex> lock(mutex_);
            slot->ready = true;
            acceptReadyGroups();
            roomFreed_.notify_all();
        }
    }

    bool failed() const { return failed_; }

private:
    struct Slot {
        std::vector<double> d;
        Marking marks[kRowGroup];
        size_t first = 0, count = 0;
        bool ready = false;
    };

    void markGroup(size_t g, RunState state, std::vector<float>& buffer, Slot& slot) {
        const float* rows[kRowGroup];
        size_t first = 0;
        size_t count = readRealRowGroup(m_, fIndex_, g, buffer, rows, first);
        count = first < detected_.size() ? std::min(count, detected_.size() - first) : 0;
        for (size_t k = 0; k < count; ++k) rows[k] += lo_;
        movingDifferences(rows, count, n_, w_, slot.d.data());
        for (size_t k = 0; k < count; ++k) {
            slot.marks[k].from = state;
            markBaselinePoints(slot.d.data() + k * n_, n_, w_, state.mode,
                               masks_.data() + (first + k) * n_, state.carried);
            slot.marks[k].carriedOut = state.carried;
            state.mode = kCarryThreshold;
        }
        slot.first = first;
        slot.count = count;
    }

    // Called with the lock held.
    void acceptReadyGroups() {
        while (!failed_ && accepted_ < groups_) {
            Slot& slot = slots_[accepted_ % slots_.size()];
            if (!slot.ready) return;
            try {
                for (size_t k = 0; k < slot.count; ++k) accept(slot, k);
            } catch (const std::bad_alloc&) {
                failed_ = true;
                return;
            }
            slot.ready = false;
            ++accepted_;
        }
    }

    void accept(const Slot& slot, size_t k) {
        const double* d = slot.d.data() + k * n_;
        const Marking& marked = slot.marks[k];
        const size_t row = slot.first + k;
        if (markedAlike(d, n_, w_, marked.from, state_)) {
            state_.carried = state_.mode & kCarryThreshold
                                 ? std::max(state_.carried, marked.carriedOut)
                                 : marked.carriedOut;
        } else {
            markBaselinePoints(d, n_, w_, state_.mode, masks_.data() + row * n_, state_.carried);
        }
        state_.mode = kCarryThreshold;
        detected_[row] = 1;
    }

    void fail() {
        std::lock_guard<std::mutex> lock(mutex_);
        failed_ = true;
        roomFreed_.notify_all();
    }

    const SpectrumMatrix& m_;
    const int fIndex_;
    const size_t lo_, n_;
    const int w_;
    std::vector<uint8_t>& masks_;
    std::vector<uint8_t>& detected_;
    const size_t groups_;
    std::vector<Slot> slots_;
    std::atomic<size_t> next_{0};
    std::mutex mutex_;
    std::condition_variable roomFreed_;
    size_t accepted_ = 0;
    RunState state_;
    bool failed_ = false;
};

}  // namespace

void detectBaselineRows(const SpectrumMatrix& m, int fIndex, size_t lo, size_t n, int w,
                        std::vector<uint8_t>& masks, std::vector<uint8_t>& detected) {
    const size_t groups = realRowGroupCount(m, fIndex);
    const size_t threads = std::min(rowThreads(), groups);
    if (threads > 1) {
        try {
            MarkingAhead ahead(m, fIndex, lo, n, w, masks, detected, groups, threads);
            onRowThreads(threads, [&] { ahead.work(); });
            if (!ahead.failed()) return;
        } catch (const std::bad_alloc&) {
        }
        // Short of memory on the way: the rows one after another, as far as memory allows.
        std::fill(detected.begin(), detected.end(), uint8_t{0});
    }
    detectInOrder(m, fIndex, lo, n, w, masks, detected);
}

}  // namespace zolt
