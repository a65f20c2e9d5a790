// The three-sigma cut of the signal detector against the ordered one it replaces: every mark and
// the bits of every threshold, on the differences of every real spectrum and on edge cases.
#include "processing/outlier_marking.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "operations/phase_operations.h"
#include "processing/baseline.h"
#include "test_data.h"

namespace zolt {
namespace {

// The reference: every pass sums the unmarked values in index order, one addition after another.
double orderedCut(const double* d, size_t n, uint8_t* mask) {
    std::vector<double> value;
    std::vector<size_t> place;
    for (size_t i = 0; i < n; ++i)
        if (!mask[i]) value.push_back(d[i]), place.push_back(i);
    double threshold = 0.0;
    for (;;) {
        if (value.empty()) return threshold;
        double sum = 0.0, sumSq = 0.0;
        for (const double v : value) sum += v, sumSq += v * v;
        const double mean = sum / value.size();
        const double variance = sumSq / value.size() - mean * mean;
        threshold = mean + 3.0 * std::sqrt(variance > 0.0 ? variance : 0.0);
        size_t kept = 0;
        for (size_t r = 0; r < value.size(); ++r) {
            const bool outlier = value[r] > threshold;
            mask[place[r]] |= static_cast<uint8_t>(outlier);
            value[kept] = value[r], place[kept] = place[r];
            kept += !outlier;
        }
        if (kept == value.size()) return threshold;
        value.resize(kept), place.resize(kept);
    }
}

// Both cuts from the same starting marks; the reference's threshold for carrying on.
double expectSameCut(const std::vector<double>& d, const std::vector<uint8_t>& start,
                     const std::string& what) {
    std::vector<uint8_t> expected = start, got = start;
    const double reference = orderedCut(d.data(), d.size(), expected.data());
    const double threshold = markOutliers(d.data(), d.size(), got.data());
    EXPECT_EQ(std::bit_cast<uint64_t>(threshold), std::bit_cast<uint64_t>(reference))
        << what << ": " << threshold << " vs " << reference;
    if (got != expected) {
        size_t i = 0;
        while (got[i] == expected[i]) ++i;
        ADD_FAILURE() << what << ": mark " << i << " of " << d.size() << " differs";
    }
    return reference;
}

double expectSameCut(const std::vector<double>& d, const std::string& what) {
    return expectSameCut(d, std::vector<uint8_t>(d.size(), 0), what);
}

// The magnitudes of the steps of the moving sums of 2 hw + 1 points, as the detector takes them.
std::vector<double> differences(const float* row, size_t n, size_t hw) {
    std::vector<double> d;
    if (n < 2 * hw + 3) return d;
    double s = 0.0;
    for (size_t j = 0; j <= 2 * hw; ++j) s += row[j];
    for (size_t i = hw + 1; i + hw < n; ++i) {
        const double next = s + row[i + hw] - row[i - hw - 1];
        d.push_back(std::fabs(next - s));
        s = next;
    }
    return d;
}

// Every row along every axis, each with a fresh threshold and as one carried run (points above
// twice the carried threshold marked before the cut).
size_t compareAlongEveryAxis(SpectrumMatrix& m, const std::vector<size_t>& halfWidths,
                             const std::string& name) {
    size_t rows = 0;
    for (int f = 1; f < 4; ++f) {
        if (m.dims[f].points < 2) continue;
        for (const size_t hw : halfWidths) {
            double carried = 0.0;
            const std::string what =
                name + " axis " + std::to_string(f) + " hw " + std::to_string(hw);
            EXPECT_TRUE(forEachRealRow(m, f, [&](float* row, size_t n) {
                const auto d = differences(row, n, hw);
                if (d.empty()) return;
                expectSameCut(d, what);
                std::vector<uint8_t> start(d.size());
                for (size_t i = 0; i < d.size(); ++i) start[i] = d[i] > 2.0 * carried;
                carried = std::max(carried, expectSameCut(d, start, what + " carried"));
                ++rows;
            }));
        }
    }
    return rows;
}

TEST(OutlierMarking, MatchesTheOrderedCutOnEveryRowOfEveryBrukerSet) {
    const char* oneD[] = {"aspirin-1h", "aspirin-1h-processed", "naphtoicAcid-1h", "strychnine-1h",
                          "cyclosporin-1h"};
    for (const char* name : oneD) {
        const auto doc = testdata::openTransformed(name);
        ASSERT_TRUE(doc) << name;
        automaticPhase(*doc, false);
        EXPECT_EQ(compareAlongEveryAxis(doc->matrix, {1, 2, 4, 20}, name), 4u) << name;
    }
    const char* twoD[] = {"cyclosporin-cosy", "cyclosporin-hsqc",   "cyclosporin-hmbc", "cosy-nus",
                          "hsqc-nus",         "inversion-recovery", "t1rho-1h"};
    for (const char* name : twoD) {
        const auto doc = testdata::openTransformed(name);
        ASSERT_TRUE(doc) << name;
        EXPECT_GT(compareAlongEveryAxis(doc->matrix, {2, 8}, name), 8u) << name;
    }
}

TEST(OutlierMarking, MatchesTheOrderedCutOnEdgeCases) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    // Constant rows: the variance is a rounding residue and the mean may round to either side of
    // the value; large ones overflow the sums of squares or the sums themselves.
    for (const double c : {0.0, 1.0, 0.1, 1.0 / 3.0, 7e-300, 4e-320, 1e150, 1e200, 1e308})
        for (const size_t n : {1, 2, 3, 10, 999, 65536})
            expectSameCut(std::vector<double>(n, c),
                          "constant " + std::to_string(c) + " x " + std::to_string(n));
    // Blocks of nine zeros and one x: mean x/10 and sigma 3x/10, so x lies on the threshold.
    for (const double x : {1.0, 0.1, 3.7, 1e-5, 12345.678})
        for (const size_t blocks : {1, 7, 6553}) {
            std::vector<double> d;
            for (size_t b = 0; b < blocks; ++b) d.insert(d.end(), {0, 0, 0, 0, 0, 0, 0, 0, 0, x});
            expectSameCut(d, "ties " + std::to_string(x) + " x " + std::to_string(blocks));
        }
    std::mt19937_64 gen(11);
    std::normal_distribution<double> normal;
    // Noise with spikes, from a tiny spread around 1 to a range of 1e-300 to 1e12; each row is
    // run again with its last value set to the previous final threshold, a tie on the last pass.
    const double spreads[] = {1e-15, 1e-9, 1e-3, 1.0};
    for (const double spread : spreads)
        for (const size_t n : {5, 300, 65536}) {
            std::vector<double> d(n);
            for (double& v : d) v = 1.0 + spread * std::fabs(normal(gen));
            for (size_t i = 0; i < n; i += 97) d[i] = 1e12;
            for (size_t i = 3; i < n; i += 41) d[i] = 1e-300;
            for (int again = 0; again < 3; ++again)
                d.back() =
                    expectSameCut(d, "noise " + std::to_string(spread) + " x " + std::to_string(n));
        }
    // Small integers: ties everywhere, thresholds often integers.
    for (int trial = 0; trial < 300; ++trial) {
        std::vector<double> d(2 + gen() % 400);
        for (double& v : d) v = static_cast<double>(gen() % (trial % 5 == 0 ? 2 : 6));
        if (trial % 3 == 0) d[gen() % d.size()] = 40.0;
        expectSameCut(d, "integers " + std::to_string(trial));
    }
    // Values the sums cannot carry, and rows marked before the cut.
    expectSameCut({1.0, 2.0, nan, 3.0}, "NaN");
    expectSameCut({1.0, 2.0, inf, 3.0}, "infinity");
    expectSameCut({1.0, 2.0, nan, 3.0, 100.0}, {0, 0, 1, 0, 0}, "NaN marked before");
    expectSameCut({1.0, 2.0, 3.0}, {1, 1, 1}, "all marked before");
    expectSameCut({}, "empty");
}

}  // namespace
}  // namespace zolt
