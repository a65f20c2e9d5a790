// Tiled windows cover the work space exactly, whatever the division leaves over; cascaded ones
// keep their usual size and step towards the front one.
#include "app/window_arrangement.h"

#include <gtest/gtest.h>

using namespace zolt;

TEST(WindowArrangement, TilesCoverTheWorkSpaceWithoutOverlap) {
    for (Tiling tiling : {Tiling::Vertical, Tiling::Horizontal})
        for (int count : {1, 3, 7}) {
            const std::vector<WindowRect> rects = tileWindows(count, 1001, 653, tiling);
            ASSERT_EQ(rects.size(), size_t(count));
            int end = 0;
            for (const WindowRect& r : rects) {
                // Each one begins where the one before it ended and spans the other direction.
                EXPECT_EQ(tiling == Tiling::Vertical ? r.x : r.y, end);
                EXPECT_EQ(tiling == Tiling::Vertical ? r.height : r.width,
                          tiling == Tiling::Vertical ? 653 : 1001);
                end += tiling == Tiling::Vertical ? r.width : r.height;
            }
            EXPECT_EQ(end, tiling == Tiling::Vertical ? 1001 : 653);
        }
    EXPECT_EQ(tileWindows(3, 1000, 600, Tiling::Vertical)[2], (WindowRect{666, 0, 334, 600}));
    EXPECT_TRUE(tileWindows(0, 1000, 600, Tiling::Vertical).empty());
    EXPECT_TRUE(tileWindows(2, 0, 600, Tiling::Horizontal).empty());
}

TEST(WindowArrangement, CascadeStepsTowardsTheFrontWindow) {
    const std::vector<WindowRect> rects = cascadeWindows(3, 1200, 800);
    EXPECT_EQ(rects[0], (WindowRect{56, 56, 820, 560}));
    EXPECT_EQ(rects[2], (WindowRect{0, 0, 820, 560}));
    // A small work space shrinks the windows and starts the steps again.
    EXPECT_EQ(cascadeWindows(3, 300, 100)[0], (WindowRect{0, 0, 300, 100}));
}
