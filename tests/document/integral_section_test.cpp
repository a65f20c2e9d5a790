// The integral keys of a document file read from damaged or hostile values.
#include "document/integral_section.h"

#include <gtest/gtest.h>

#include <limits>

namespace zolt {
namespace {

TEST(IntegralSection, KeepsWhatIsSixNumbersAndDropsTheRest) {
    SpectrumDocument saved;
    IntegralRegion r;
    r.fields = {8.25f, 7.5f, 10000.0f, -10000.0f, 10000.0f, 3.0f};
    saved.integrals = {r};
    plist::Ref root(plist::createDictionary());
    addIntegralSection(root.get(), saved);
    plist::Value* list = plist::lookUp(root.get(), "integral regions");
    ASSERT_TRUE(list);
    plist::Value* huge = plist::createArray();
    for (int k = 0; k < 6; ++k) plist::appendReal(huge, k ? 1e300 : -1e300);
    plist::appendToArray(list, huge);
    plist::Value* short5 = plist::createArray();
    for (int k = 0; k < 5; ++k) plist::appendReal(short5, 1.0);
    plist::appendToArray(list, short5);
    plist::appendToArray(list, plist::createString("8.0"));

    SpectrumDocument read;
    integralSectionFromTree(root.get(), read);
    ASSERT_EQ(read.integrals.size(), 2u);
    EXPECT_EQ(read.integrals[0].fields, r.fields);
    EXPECT_EQ(read.integrals[1].fields[0], -std::numeric_limits<float>::max());
    EXPECT_EQ(read.integrals[1].fields[5], std::numeric_limits<float>::max());
    integralSectionFromTree(nullptr, read);
    EXPECT_TRUE(read.integrals.empty());
}

}  // namespace
}  // namespace zolt
