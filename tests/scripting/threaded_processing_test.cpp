// The rows of a 2-D workflow shared out among threads give the very points of one thread.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "app/application.h"
#include "app/recording_platform.h"
#include "processing/row_parallel.h"
#include "test_data.h"

namespace zolt {
namespace {

SpectrumMatrix processedOn(size_t threads, const std::string& name) {
    setRowThreads(threads);
    testing::RecordingPlatform platform;
    Application app(platform);
    EXPECT_EQ(app.open(testdata::bruker(name)), 1) << name;
    if (!app.frontDocument()) return {};
    EXPECT_TRUE(app.scriptHost().executeInput("wft() wft() aph() abc()")) << name;
    setRowThreads(0);
    return app.frontDocument()->matrix;
}

bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

TEST(ThreadedProcessing, WorkflowGivesTheSamePointsOnOneThreadAsOnSeveral) {
    // The HSQC through every row loop; the NUS set with its expanded grid; the HMBC through
    // the magnitude transform and back.
    for (const char* name : {"cyclosporin-hsqc", "hsqc-nus", "cyclosporin-hmbc"}) {
        const SpectrumMatrix one = processedOn(1, name);
        ASSERT_GT(one.re.size(), 100000u) << name;
        for (size_t threads : {2, 3, 8}) {
            const SpectrumMatrix several = processedOn(threads, name);
            EXPECT_TRUE(sameBits(one.re, several.re) && sameBits(one.im, several.im))
                << name << " on " << threads << " threads";
        }
    }
}

TEST(ThreadedProcessing, RangesCoverTheRowsOnceInOrderAndFailuresReachTheCaller) {
    setRowThreads(3);
    // Each range writes only its own slots: the visits of its rows and its end at its start.
    const auto split = [](size_t rows, size_t minRows) {
        std::vector<int> visits(rows, 0);
        std::vector<size_t> endAt(rows, 0);
        forEachRowRange(rows, minRows, [&](size_t begin, size_t end) {
            endAt[begin] = end;
            for (size_t r = begin; r < end; ++r) ++visits[r];
        });
        EXPECT_EQ(visits, std::vector<int>(rows, 1));
        std::vector<size_t> ends;
        for (size_t r = 0; r < rows && endAt[r] > r; r = endAt[r]) ends.push_back(endAt[r]);
        return ends;
    };
    EXPECT_EQ(split(100, 10), (std::vector<size_t>{33, 66, 100}));
    EXPECT_EQ(split(29, 10), (std::vector<size_t>{14, 29}));  // no thread below 10 rows
    EXPECT_EQ(split(9, 10), (std::vector<size_t>{9}));
    EXPECT_THROW(forEachRowRange(100, 1,
                                 [](size_t begin, size_t) {
                                     if (begin > 0) throw std::bad_alloc();
                                 }),
                 std::bad_alloc);
    setRowThreads(0);
}

}  // namespace
}  // namespace zolt
