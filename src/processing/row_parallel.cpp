#include "processing/row_parallel.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace zolt {
namespace {

std::atomic<size_t> chosenThreads{0};

size_t defaultThreads() {
    if (const char* text = std::getenv("ZOLT_THREADS")) {
        char* end = nullptr;
        const unsigned long n = std::strtoul(text, &end, 10);
        if (end != text && *end == '\0' && n >= 1) return std::min<size_t>(n, kMaxRowThreads);
    }
    return std::clamp<size_t>(std::thread::hardware_concurrency(), 1, kMaxRowThreads);
}

}  // namespace

size_t rowThreads() {
    const size_t chosen = chosenThreads.load(std::memory_order_relaxed);
    if (chosen) return chosen;
    static const size_t fromEnvironment = defaultThreads();
    return fromEnvironment;
}

void setRowThreads(size_t threads) {
    chosenThreads.store(std::min(threads, kMaxRowThreads), std::memory_order_relaxed);
}

void forEachRowRange(size_t rows, size_t minRows, const std::function<void(size_t, size_t)>& fn) {
    const size_t threads = std::min(rowThreads(), rows / std::max<size_t>(minRows, 1));
    if (threads <= 1) {
        if (rows) fn(0, rows);
        return;
    }
    const auto begin = [&](size_t k) { return rows * k / threads; };
    std::vector<std::exception_ptr> failures(threads);
    const auto run = [&](size_t k) {
        try {
            fn(begin(k), begin(k + 1));
        } catch (...) {
            failures[k] = std::current_exception();
        }
    };
    std::vector<std::thread> workers;
    workers.reserve(threads - 1);
    for (size_t k = 1; k < threads; ++k) {
        try {
            workers.emplace_back(run, k);
        } catch (const std::system_error&) {
            run(k);  // no thread to be had: the range is done here instead
        }
    }
    run(0);
    for (std::thread& worker : workers) worker.join();
    for (const std::exception_ptr& failure : failures)
        if (failure) std::rethrow_exception(failure);
}

void onRowThreads(size_t count, const std::function<void()>& fn) {
    forEachRowRange(count, 1, [&](size_t, size_t) { fn(); });
}

}  // namespace zolt
