#include "io/plist.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "test_data.h"

namespace zolt::plist {
namespace {

const char* const kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

std::string written(Value* v) {
    Ref owner(v);
    return write(v);
}

// The line of a written real, e.g. "<real>0.5</real>".
std::string realLine(double r) {
    std::string text = written(createReal(r));
    const size_t begin = std::string(kHeader).size();
    return text.substr(begin, text.size() - begin - std::string("\n</plist>\n").size());
}

TEST(PlistWriter, RealsFollowTheDecimalRule) {
    EXPECT_EQ(realLine(2.0), "<real>2</real>");
    EXPECT_EQ(realLine(0.5), "<real>0.5</real>");
    EXPECT_EQ(realLine(-2.5), "<real>-2.5</real>");
    // 16 - e decimals, e the truncated logarithm: -1 for 0.1 (17), 3 for 1234.1 (13), -3 for
    // 0.000123 (19, clamped from -3.9) and negative values (no logarithm).
    EXPECT_EQ(realLine(0.1), "<real>0.10000000000000001</real>");
    EXPECT_EQ(realLine(1234.1), "<real>1234.0999999999999</real>");
    EXPECT_EQ(realLine(0.000123), "<real>0.000123</real>");
    EXPECT_EQ(realLine(6.02e-23), "<real>0</real>");  // below 1e-15 above its floor
    EXPECT_EQ(realLine(-1e-20), "<real>-0.</real>");  // all 19 decimals are zeros
    EXPECT_EQ(realLine(3e9), "<real>3000000000</real>");
}

TEST(PlistWriter, DictionaryKeysSortByUnsignedBytesAndDuplicatesStay) {
    Ref d(createDictionary());
    addToDictionary(d.get(), "\xC3\xA9t\xC3\xA9", createInteger(1));
    addToDictionary(d.get(), "b", createInteger(2));
    addToDictionary(d.get(), "B", createInteger(3));
    addToDictionary(d.get(), "b", createInteger(4));
    addToDictionary(d.get(), "! f-index", createInteger(5));
    EXPECT_EQ(write(d.get()), std::string(kHeader) +
                                  "<dict>\n"
                                  "\t<key>! f-index</key>\n\t<integer>5</integer>\n"
                                  "\t<key>B</key>\n\t<integer>3</integer>\n"
                                  "\t<key>b</key>\n\t<integer>2</integer>\n"
                                  "\t<key>b</key>\n\t<integer>4</integer>\n"
                                  "\t<key>\xC3\xA9t\xC3\xA9</key>\n\t<integer>1</integer>\n"
                                  "</dict>\n</plist>\n");
    EXPECT_EQ(lookUp(d.get(), "b")->integer, 2);
    EXPECT_EQ(lookUp(d.get(), "c"), nullptr);

    Ref back(read(write(d.get())));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->items.size(), 5u);
    EXPECT_EQ(lookUp(back.get(), "b")->integer, 2);
}

TEST(PlistWriter, DataIsBase64InLinesOfSixty) {
    std::string bytes;
    for (int i = 0; i < 100; ++i) bytes += static_cast<char>(i * 7);
    const std::string text = written(createData(bytes));
    EXPECT_EQ(text.substr(text.find("<data>")),
              "<data>\nAAcOFRwjKjE4P0ZNVFtiaXB3foWMk5qhqK+2vcTL0tng5+71/AMKERgfJi00\n"
              "O0JJUFdeZWxzeoGIj5adpKuyucDHztXc4+rx+P8GDRQbIikwNz5FTFNaYWhv\n"
              "dn2Ei5KZoKeutQ==\n</data>\n</plist>\n");
    Ref back(read(text));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->text, bytes);
}

TEST(PlistSetters, FillNestedContainersInPlaceAndKeepDuplicates) {
    Ref d(createDictionary());
    setInteger(d.get(), "n", -7);
    Value* phases = setArray(d.get(), "phase correction");
    appendReal(phases, 0.5);
    appendInteger(phases, 3);
    setBoolean(setDictionary(d.get(), "inner"), "interleaved", false);
    setString(d.get(), "n", "second");
    setReal(d.get(), "width", 2.0);
    EXPECT_EQ(write(d.get()), std::string(kHeader) +
                                  "<dict>\n"
                                  "\t<key>inner</key>\n\t<dict>\n"
                                  "\t\t<key>interleaved</key>\n\t\t<false/>\n\t</dict>\n"
                                  "\t<key>n</key>\n\t<integer>-7</integer>\n"
                                  "\t<key>n</key>\n\t<string>second</string>\n"
                                  "\t<key>phase correction</key>\n\t<array>\n"
                                  "\t\t<real>0.5</real>\n\t\t<integer>3</integer>\n\t</array>\n"
                                  "\t<key>width</key>\n\t<real>2</real>\n"
                                  "</dict>\n</plist>\n");
    EXPECT_EQ(integerOf(lookUp(d.get(), "n")), -7);
    // Without a container nothing is made, nothing leaks and nothing crashes.
    EXPECT_EQ(setArray(nullptr, "a"), nullptr);
    EXPECT_EQ(setDictionary(nullptr, "d"), nullptr);
    setInteger(nullptr, "n", 1);
    appendReal(nullptr, 1.0);
}

TEST(PlistRoundTrip, EveryKindReadsBackEqual) {
    Ref d(createDictionary());
    addToDictionary(d.get(), "string", createStringFromWide(u"\u00b9H \u03b4 \u2013 ppm"));
    addToDictionary(d.get(), "integer", createInteger(-2147483647 - 1));
    addToDictionary(d.get(), "real", createReal(-123.456789012345));
    addToDictionary(d.get(), "small real", createReal(6.02e-23));
    addToDictionary(d.get(), "true", createBoolean(true));
    addToDictionary(d.get(), "false", createBoolean(false));
    addToDictionary(d.get(), "data", createData(std::string("\0\x01\xff\x80zz", 6)));
    addToDictionary(d.get(), "empty data", createData(""));
    addToDictionary(d.get(), "date", createDate("2024-03-01T12:00:00Z"));
    addToDictionary(d.get(), "empty", createString(""));
    Value* a = createArray();
    appendToArray(a, createReal(1.5));
    appendToArray(a, createDictionary());
    addToDictionary(d.get(), "array", a);

    Ref back(read(write(d.get())));
    ASSERT_TRUE(back);
    EXPECT_EQ(toWide(lookUp(back.get(), "string")), u"\u00b9H \u03b4 \u2013 ppm");
    EXPECT_EQ(lookUp(back.get(), "string")->wideLength, 10);
    EXPECT_DOUBLE_EQ(*numberOf(lookUp(back.get(), "small real")), 0.0);  // written as 0
    // A date comes back as the string it was written as.
    EXPECT_EQ(lookUp(back.get(), "date")->kind, Kind::String);
    EXPECT_EQ(*textOf(lookUp(back.get(), "date")), "2024-03-01T12:00:00Z");
    // Every other value reads back as it was: the tree writes the same text again.
    EXPECT_EQ(write(back.get()), write(d.get()));
}

TEST(PlistWide, ThreeFormsPerCodeUnitWithoutPairing) {
    const std::u16string wide = u"A\u00e9\u4e2d\U0001F600";
    const std::string utf8 = utf8FromWide(wide);
    // 1 + 2 + 3 bytes, then each surrogate alone in three bytes.
    EXPECT_EQ(utf8, "A\xC3\xA9\xE4\xB8\xAD\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(wideFromUtf8(utf8), wide);
    Ref s(createStringFromWide(wide));
    EXPECT_EQ(s->wideLength, 5);
    // Truncated forms decode bytewise and never read past the end.
    EXPECT_EQ(wideFromUtf8("\xE4\xB8"), std::u16string(u"\u00e4\u00b8"));
}

TEST(PlistReader, ReadsTheCommonForms) {
    Ref a(read("<array/>"));
    ASSERT_TRUE(a);
    EXPECT_EQ(a->kind, Kind::Array);
    EXPECT_TRUE(a->items.empty());

    Ref nested(
        read("<plist><array><array><integer> 12 </integer></array><array/>"
             "<real>2.5e3</real></array></plist>"));
    ASSERT_TRUE(nested);
    ASSERT_EQ(nested->items.size(), 3u);
    EXPECT_EQ(nested->items[0]->items[0]->integer, 12);
    EXPECT_TRUE(nested->items[1]->items.empty());
    EXPECT_EQ(nested->items[2]->real, 2500.0);

    // Entities stay as written; unknown elements are absent entries.
    Ref d(
        read("<dict><key>a</key><string>x &lt; y</string><key>u</key><unknown/>"
             "<key>b</key><integer>3</integer></dict>"));
    ASSERT_TRUE(d);
    EXPECT_EQ(*textOf(lookUp(d.get(), "a")), "x &lt; y");
    EXPECT_EQ(lookUp(d.get(), "u"), nullptr);
    EXPECT_EQ(integerOf(lookUp(d.get(), "b")), 3);
}

TEST(PlistReader, StringWithAngleBracketIsWrittenRawAndCannotComeBackWhole) {
    Ref d(createDictionary());
    addToDictionary(d.get(), "t", createString("a<b"));
    const std::string text = write(d.get());
    EXPECT_NE(text.find("<string>a<b</string>"), std::string::npos);
    Ref back(read(text));
    ASSERT_TRUE(back);
    EXPECT_EQ(lookUp(back.get(), "t"), nullptr);
}

TEST(PlistReader, DamagedTextGivesNothing) {
    for (const char* text : {"", "no markup at all", "<", "<integer>5", "<real>5</rea",
                             "<string>abc</strin", "<dict><key>a</key><integer>1</integer>",
                             "<array><array></array>", "<d", "<doodle>", "\x01\xff<\x80<<>>"})
        EXPECT_EQ(read(text), nullptr) << text;

    // Truncating a real document anywhere never crashes and never reads a partial root.
    Ref d(createDictionary());
    addToDictionary(d.get(), "n", createInteger(1));
    addToDictionary(d.get(), "data", createData("abcdef"));
    const std::string text = write(d.get());
    for (size_t n = 0; n + 10 < text.size(); ++n) {
        Ref cut(read(text.substr(0, n)));
        EXPECT_FALSE(cut) << n;
    }

    // A missing closing tag inside a container drops that entry only.
    Ref partial(read("<array><integer>1</integer><string>open</array>"));
    ASSERT_TRUE(partial);
    ASSERT_EQ(partial->items.size(), 1u);
}

TEST(PlistReader, DeepNestingIsRefusedButModerateNestingReads) {
    auto nest = [](int depth) {
        std::string s;
        for (int i = 0; i < depth; ++i) s += "<array>";
        s += "<true/>";
        for (int i = 0; i < depth; ++i) s += "</array>";
        return s;
    };
    Ref ok(read(nest(kMaxReadDepth)));
    EXPECT_TRUE(ok);
    EXPECT_EQ(read(nest(kMaxReadDepth + 2)), nullptr);
    EXPECT_EQ(read(std::string(200000, '<') + "dict>"), nullptr);
    std::string unclosed;
    for (int i = 0; i < 100000; ++i) unclosed += "<dict><key>k</key><string>";
    EXPECT_EQ(read(unclosed), nullptr);
}

TEST(PlistReferenceCounts, ReleaseLowersSharedCountsAndSparesPermanentValues) {
    Value* shared = createString("provenance");
    EXPECT_EQ(retain(shared), shared);
    EXPECT_EQ(shared->refCount, 1);
    Value* tree = createArray();
    appendToArray(tree, shared);
    release(tree);  // the tree's owner is gone; the live owner still holds the string
    EXPECT_EQ(shared->refCount, 0);
    EXPECT_EQ(shared->text, "provenance");

    Value* permanent = createInteger(42);
    permanent->refCount = kNeverFreed - 1;
    retain(permanent);
    retain(permanent);
    EXPECT_EQ(permanent->refCount, kNeverFreed);
    Value* d = createDictionary();
    addToDictionary(d, "x", permanent);
    release(d);
    release(permanent);
    EXPECT_EQ(permanent->refCount, kNeverFreed);
    EXPECT_EQ(permanent->integer, 42);

    permanent->refCount = 0;
    release(permanent);
    release(shared);
}

TEST(PlistFile, WritesWholeFileAndFailsWithoutFolder) {
    const std::string dir = testdata::freshTempDir("plist");
    const auto files = [&] {
        const std::filesystem::directory_iterator all(dir);
        return std::distance(begin(all), end(all));
    };
    Ref d(createDictionary());
    addToDictionary(d.get(), "version", createInteger(711));
    const std::string path = dir + "/doc.zolt";
    ASSERT_TRUE(writeFile(d.get(), path));
    EXPECT_EQ(testdata::readFile(path), write(d.get()));
    // Replacing an existing file leaves no temporary behind.
    addToDictionary(d.get(), "more", createBoolean(true));
    ASSERT_TRUE(writeFile(d.get(), path));
    EXPECT_EQ(testdata::readFile(path), write(d.get()));
    EXPECT_EQ(files(), 1);
    const std::string missing = dir + "/no such folder";
    EXPECT_FALSE(writeFile(d.get(), missing + "/doc.zolt"));
    EXPECT_FALSE(std::filesystem::exists(missing));
    EXPECT_EQ(files(), 1);
}

}  // namespace
}  // namespace zolt::plist
