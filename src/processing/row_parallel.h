// Independent rows of a matrix worked on several threads at once. Each row is computed exactly
// as one thread would, so the points do not depend on how many threads ran.
#pragma once

#include <cstddef>
#include <functional>

namespace zolt {

// Most threads a row loop uses: the machines the program runs on gain little past this.
inline constexpr size_t kMaxRowThreads = 8;

// Threads the row loops use: the number set by setRowThreads, else the environment variable
// ZOLT_THREADS (1 keeps all work on the calling thread), else the hardware's concurrency; at
// least 1 and at most kMaxRowThreads.
size_t rowThreads();
// 0 returns to the environment variable or the hardware.
void setRowThreads(size_t threads);

// Calls fn(begin, end) on consecutive ranges that together cover [0, rows), one range a thread,
// the calling thread taking the first. The ranges depend only on rows and the thread count; no
// thread gets fewer than minRows rows, so small loops stay on the calling thread. fn must write
// nothing shared but its own rows and keep its scratch to itself. An exception of a worker is
// caught there and thrown again on the calling thread once all have finished.
void forEachRowRange(size_t rows, size_t minRows, const std::function<void(size_t, size_t)>& fn);

// Runs fn once on each of min(count, rowThreads()) threads, the calling thread one of them, for
// work that hands itself out; exceptions as above.
void onRowThreads(size_t count, const std::function<void()>& fn);

}  // namespace zolt
