#include "Tools/SarvexTool/Bench/Files/RunSourceFields.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(RunSourceFieldsTest, OnlyWhatIsKnownOfAPlaceIsWritten) {
    Json json = Json::object();
    PutPlace(json, {});
    EXPECT_EQ(LineOf(json), "{}\n");
    PutPlace(json, {"a", std::nullopt, 3});
    EXPECT_EQ(LineOf(json), "{\"bench\":\"a\",\"attempt\":3}\n");
}

TEST(RunSourceFieldsTest, APlaceComesBackAsItWas) {
    for (const RunPlace& place :
         {RunPlace{}, {"bench1", "DUT-42", 1}, {"", "\xFF", std::nullopt}}) {
        Json json = Json::object();
        PutPlace(json, place);
        EXPECT_EQ(PlaceOf(JsonFields::Parse(LineOf(json))), place) << json;
    }
}

TEST(RunSourceFieldsTest, WhatIsMissingOfAPlaceIsNotKnown) {
    EXPECT_EQ(PlaceOf(JsonFields::Parse(R"({"linesTotal": 2})")), RunPlace());
    EXPECT_EQ(PlaceOf(JsonFields::Parse(R"({"bench": null, "device": "d"})")),
              (RunPlace{std::nullopt, "d", std::nullopt}));
}

TEST(RunSourceFieldsTest, APlaceOfAnotherTypeIsTold) {
    for (const char* fields :
         {R"({"bench": 1})", R"({"device": ["d"]})", R"({"attempt": "1"})", R"({"attempt": -1})",
          R"({"attempt": 4294967296})", R"({"benchBase64": "?"})"})
        EXPECT_THROW(PlaceOf(JsonFields::Parse(fields)), WrongJson) << fields;
}

} // namespace
} // namespace Bench
