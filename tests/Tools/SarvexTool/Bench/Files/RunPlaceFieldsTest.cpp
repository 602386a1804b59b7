#include "Tools/SarvexTool/Bench/Files/RunPlaceFields.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Bench {
namespace {

class RunPlaceFieldsTest : public testing::Test {
protected:
    RunPlace Read(const std::string& facts) const {
        return ReadPlace(m_directory.Create("run.json", facts));
    }

    TestSupport::TemporaryDirectory m_directory;
};

TEST_F(RunPlaceFieldsTest, OnlyWhatIsKnownIsWritten) {
    Json json = Json::object();
    PutPlace(json, {});
    EXPECT_EQ(LineOf(json), "{}\n");
    PutPlace(json, {"a", std::nullopt, 3});
    EXPECT_EQ(LineOf(json), "{\"bench\":\"a\",\"attempt\":3}\n");
}

TEST_F(RunPlaceFieldsTest, APlaceComesBackAsItWas) {
    for (const RunPlace& place :
         {RunPlace{}, {"bench1", "DUT-42", 1}, {"", "\xFF", std::nullopt}}) {
        Json json = Json::object();
        PutPlace(json, place);
        EXPECT_EQ(Read(LineOf(json)), place) << json;
    }
}

TEST_F(RunPlaceFieldsTest, WhatIsMissingIsNotKnown) {
    EXPECT_EQ(Read(R"({"linesTotal": 2})"), RunPlace());
    EXPECT_EQ(Read(R"({"bench": null, "device": "d"})"),
              (RunPlace{std::nullopt, "d", std::nullopt}));
    EXPECT_EQ(ReadPlace(m_directory.Path("missing.json")), RunPlace());
}

TEST_F(RunPlaceFieldsTest, WhatCannotBeReadIsTold) {
    for (const char* facts :
         {"", "[]", R"({"bench": 1})", R"({"device": ["d"]})", R"({"attempt": "1"})",
          R"({"attempt": -1})", R"({"attempt": 4294967296})", R"({"benchBase64": "?"})"})
        EXPECT_THROW(Read(facts), BadInput) << facts;
    std::filesystem::create_directory(m_directory.Path("folder"));
    EXPECT_THROW(ReadPlace(m_directory.Path("folder")), BadInput);
}

} // namespace
} // namespace Bench
