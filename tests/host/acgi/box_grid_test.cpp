// The grid finds every box that meets a part, and not many others.
#include "host/acgi/display/box_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

using Box = std::array<float, 4>;

/// Small ones in a drawing of 1000 by 700, long ones across it, strays far out; every seventh is nowhere
/// known.
static std::vector<Box> someBoxes()
{
    std::mt19937 random(20240917);
    std::uniform_real_distribution<float> x(0.0F, 1000.0F), y(0.0F, 700.0F), size(0.0F, 6.0F);
    std::vector<Box> boxes;
    for (int i = 0; i < 6000; ++i) {
        const float left = x(random), bottom = y(random);
        boxes.push_back({left, bottom, left + size(random), bottom + size(random)});
    }
    for (float at = 0.0F; at < 700.0F; at += 35.0F)
        boxes.push_back({-100.0F, at, 1100.0F, at});
    for (const float far : {-1e9F, -2000.0F, 5000.0F, 3e7F})
        boxes.push_back({far, far, far + 10.0F, far + 10.0F});
    return boxes;
}

TEST(BoxGrid, FindsWhateverMeetsThePart)
{
    const std::vector<Box> boxes = someBoxes();
    std::vector<acgi::BoxGrid::Entry> entries;
    for (std::uint32_t i = 0; i < boxes.size(); ++i)
        entries.push_back({i * 3, i % 7 == 0 ? nullptr : boxes[i].data()});
    const acgi::BoxGrid grid(entries);
    for (const Box &part :
         {Box{500, 0, 510, 700}, Box{0, 350, 1000, 351}, Box{-5, -5, 0, 0}, Box{990, 690, 2e9F, 2e9F},
          Box{-3e9F, -3e9F, -500, -500}, Box{4990, 4990, 5001, 5001}, Box{333, 333, 333, 333}}) {
        SCOPED_TRACE(testing::PrintToString(part));
        const auto found = grid.find(part[0], part[1], part[2], part[3]);
        ASSERT_TRUE(found);
        EXPECT_TRUE(std::ranges::is_sorted(*found, std::less_equal<>()));
        std::size_t wanted = 0;
        for (const acgi::BoxGrid::Entry &entry : entries) {
            const float *const box = entry.box;
            if (box && (box[0] > part[2] || box[2] < part[0] || box[1] > part[3] || box[3] < part[1]))
                continue;
            ++wanted;
            EXPECT_TRUE(std::ranges::binary_search(*found, entry.number)) << entry.number;
        }
        EXPECT_LT(found->size(), wanted + entries.size() / 4);
    }
    EXPECT_FALSE(grid.find(0, 0, 1000, 700));
}

TEST(BoxGrid, TakesBoxesThatLieOnOneAnotherOrNone)
{
    const Box same{5, 5, 5, 5};
    const std::vector<acgi::BoxGrid::Entry> entries(5000, {8, same.data()});
    for (const auto &few : {std::span(entries), std::span(entries).first(0)}) {
        const acgi::BoxGrid grid(few);
        const auto found = grid.find(4, 4, 6, 6);
        EXPECT_TRUE(!found || *found == std::vector<std::uint32_t>(few.empty() ? 0 : 1, 8));
    }
}
