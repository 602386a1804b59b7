#include "Tools/SarvexTool/Bench/Files/Manifest.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <string>

namespace Bench {
namespace {

Manifest TwoChunks() {
    return {"1.2.3",
            {"/home/a b/plan.csv", std::string(64, 'a'), 5},
            {{"chunk-0001.csv", std::string(64, '1'), {2, 4}},
             {"chunk-0002.csv", std::string(64, '2'), {5, 6}}}};
}

std::string ProblemOf(const std::string& text) {
    try {
        ParseManifest(text, "manifest.json");
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), "manifest.json");
        return bad.Problems().at(0).text;
    }
    return "none";
}

std::string ProblemOf(const Manifest& manifest) {
    return ProblemOf(ToJsonText(manifest));
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    return text.replace(text.find(what), what.size(), with);
}

TEST(ManifestTest, IsWrittenInAFixedOrder) {
    EXPECT_EQ(ToJsonText(TwoChunks()), R"({
  "format": 1,
  "programVersion": "1.2.3",
  "plan": {
    "name": "/home/a b/plan.csv",
    "sha256": "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa",
    "lines": 5
  },
  "chunks": [
    {
      "file": "chunk-0001.csv",
      "sha256": "1111111111111111111111111111111111111111111111111111111111111111",
      "firstLine": 2,
      "lastLine": 4
    },
    {
      "file": "chunk-0002.csv",
      "sha256": "2222222222222222222222222222222222222222222222222222222222222222",
      "firstLine": 5,
      "lastLine": 6
    }
  ]
}
)");
}

TEST(ManifestTest, ComesBackAsItWas) {
    EXPECT_EQ(ParseManifest(ToJsonText(TwoChunks()), ""), TwoChunks());
    Manifest odd = TwoChunks();
    odd.plan.name = "/Pl\xFFn.csv";
    EXPECT_EQ(ParseManifest(ToJsonText(odd), ""), odd);
    const TestSupport::TemporaryDirectory directory;
    EXPECT_EQ(ReadManifest(directory.Create(ManifestName, ToJsonText(TwoChunks()))), TwoChunks());
    EXPECT_THROW(ReadManifest(directory.Path("none")), BadInput);
}

TEST(ManifestTest, UnknownKeysAreIgnored) {
    const std::string text = ToJsonText(TwoChunks());
    EXPECT_EQ(ParseManifest(Replaced(text, "{", R"({"new": [{}],)"), ""), TwoChunks());
    EXPECT_EQ(ParseManifest(Replaced(text, "\"firstLine\"", R"("new": 1, "firstLine")"), ""),
              TwoChunks());
}

TEST(ManifestTest, WhatIsMissingOrWrongIsTold) {
    const std::string text = ToJsonText(TwoChunks());
    EXPECT_EQ(ProblemOf(""), "there is no object of JSON");
    EXPECT_EQ(ProblemOf(text.substr(0, text.size() - 3)), "there is no object of JSON");
    EXPECT_EQ(ProblemOf("{}"), "the key \"format\" is missing");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"format\": 1", "\"format\": 2")),
              "the plan was split by another version of this program");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"lines\": 5", "\"lines\": 0")), "the plan has no lines");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"chunks\"", "\"parts\"")),
              "the key \"chunks\" is missing");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"file\"", "\"name\"")), "the key \"file\" is missing");
    for (const std::string& hash :
         {std::string(), std::string("11"), std::string(64, 'A'), std::string(65, '1')})
        EXPECT_EQ(ProblemOf(Replaced(text, std::string(64, '1'), hash)),
                  "the value of \"sha256\" is not 64 hexadecimal digits in small letters");
}

TEST(ManifestTest, AChunkIsInTheManifestsFolder) {
    for (const std::string name : {"", "../chunk-0001.csv", "/tmp/chunk-0001.csv", "plan.csv",
                                   "chunk-1.csv", "chunk-00a1.csv", "chunk-0001.csv2"}) {
        Manifest manifest = TwoChunks();
        manifest.chunks[0].file = name;
        EXPECT_EQ(ProblemOf(manifest), "\"" + name + "\" is no name of a chunk");
    }
}

TEST(ManifestTest, ChunksHoldEachLineOnce) {
    const std::string start = "the chunks do not hold each line of the plan once: ";
    Manifest manifest = TwoChunks();
    manifest.chunks[0].lines.first = 3;
    EXPECT_EQ(ProblemOf(manifest), start + "chunk-0001.csv begins at line 3 and not at 2");
    manifest = TwoChunks();
    manifest.chunks[1].lines.first = 4;
    EXPECT_EQ(ProblemOf(manifest), start + "chunk-0002.csv begins at line 4 and not at 5");
    manifest = TwoChunks();
    manifest.chunks[0].lines.last = 1;
    EXPECT_EQ(ProblemOf(manifest), start + "chunk-0001.csv ends before it begins");
    manifest = TwoChunks();
    manifest.chunks[1].lines.last = 4294967295U;
    EXPECT_EQ(ProblemOf(manifest), start + "they end at line 4294967295 and the plan at line 6");
    manifest = TwoChunks();
    manifest.chunks.pop_back();
    EXPECT_EQ(ProblemOf(manifest), start + "they end at line 4 and the plan at line 6");
    manifest.chunks.clear();
    EXPECT_EQ(ProblemOf(manifest), start + "they end at line 1 and the plan at line 6");
    manifest = TwoChunks();
    manifest.chunks[1].file = "chunk-0001.csv";
    EXPECT_EQ(ProblemOf(manifest), start + "chunk-0001.csv is there twice");
}

TEST(ManifestTest, NamesOfChunksHaveAsManyDigitsAsTheLastOne) {
    EXPECT_EQ(ChunkName(1, 1), "chunk-0001.csv");
    EXPECT_EQ(ChunkName(9999, 9999), "chunk-9999.csv");
    EXPECT_EQ(ChunkName(7, 10000), "chunk-00007.csv");
    EXPECT_EQ(ChunkName(1000000, 1000000), "chunk-1000000.csv");
    EXPECT_TRUE(IsChunkName(ChunkName(7, 10000)));
}

} // namespace
} // namespace Bench
