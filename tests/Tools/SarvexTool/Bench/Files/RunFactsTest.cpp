#include "Tools/SarvexTool/Bench/Files/RunFacts.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace Bench {
namespace {

RunFacts FullFacts() {
    RunFacts facts;
    facts.programVersion = "1.2.3";
    facts.clientSha256 = "cd34";
    facts.user = "Jörg";
    facts.host = "bench-7";
    facts.started = "2026-03-09T08:05:00.007Z";
    facts.ended = "2026-03-09T09:05:00.000Z";
    facts.testFile = {"/home/a b/short.csv", std::string(64, '0')};
    facts.daemon = "127.0.0.1:8738";
    facts.place = {"bench 1", "DUT-\xFF", 2};
    facts.firmware = "2.1-rc\xFF";
    facts.note = "after the repair";
    facts.macType = -3;
    facts.countryCode = "DE";
    facts.options = {.segment = 3,
                     .answerTimeout = 0.5,
                     .retries = 0,
                     .wait = 1,
                     .stopTimeout = 2,
                     .limits = "l\xFF.csv",
                     .failFast = true,
                     .force = true,
                     .client = "/opt/SarvexToolClient",
                     .firstCommand = {"-wifi-band", "\xFE"},
                     .firstCommandAnswered = true,
                     .firstCommandAccepted = true,
                     .keep = true,
                     .store = "postgresql://lab/h\xFF"};
    facts.startPassedOn = true;
    facts.stopConfirmed = true;
    facts.linesTotal = 40000;
    facts.linesDone = 17;
    facts.outcome = "interrupted";
    facts.exitCode = 3;
    facts.notes = {"one", "two"};
    facts.closesIdleConnections = true;
    return facts;
}

std::string ProblemOf(const std::string& text) {
    try {
        ParseRunFacts(text, "run.json");
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), "run.json");
        return bad.Problems().at(0).text;
    }
    return "none";
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    return text.replace(text.find(what), what.size(), with);
}

TEST(RunFactsTest, ComeBackAsTheyWere) {
    EXPECT_EQ(ParseRunFacts(ToJsonText(FullFacts()), "run.json"), FullFacts());
    EXPECT_EQ(ParseRunFacts(ToJsonText(RunFacts()), "run.json"), RunFacts());
}

TEST(RunFactsTest, AreWrittenInAFixedOrder) {
    EXPECT_EQ(ToJsonText(FullFacts()), R"({
  "format": 1,
  "programVersion": "1.2.3",
  "clientSha256": "cd34",
  "user": "J\u00f6rg",
  "host": "bench-7",
  "started": "2026-03-09T08:05:00.007Z",
  "ended": "2026-03-09T09:05:00.000Z",
  "testFile": {
    "name": "/home/a b/short.csv",
    "sha256": "0000000000000000000000000000000000000000000000000000000000000000"
  },
  "daemon": "127.0.0.1:8738",
  "bench": "bench 1",
  "deviceBase64": "RFVULf8=",
  "attempt": 2,
  "firmwareBase64": "Mi4xLXJj/w==",
  "note": "after the repair",
  "macType": -3,
  "countryCode": "DE",
  "options": {
    "segment": 3,
    "answerTimeout": 0.5,
    "retries": 0,
    "wait": 1.0,
    "stopTimeout": 2.0,
    "limitsBase64": "bP8uY3N2",
    "failFast": true,
    "force": true,
    "client": "/opt/SarvexToolClient",
    "firstCommand": [
      "-wifi-band",
      {
        "base64": "/g=="
      }
    ],
    "firstCommandAnswered": true,
    "firstCommandAccepted": true,
    "keep": true,
    "storeBase64": "cG9zdGdyZXNxbDovL2xhYi9o/w=="
  },
  "startPassedOn": true,
  "stopConfirmed": true,
  "linesTotal": 40000,
  "linesDone": 17,
  "outcome": "interrupted",
  "exitCode": 3,
  "notes": [
    "one",
    "two"
  ],
  "closesIdleConnections": true
}
)");
}

TEST(RunFactsTest, AMergedRunHasItsSources) {
    RunFacts facts = FullFacts();
    facts.isMerged = true;
    facts.sources = {
        {{2, 3}, "runs/a\xFF/1", {"bench-1", "DUT", 2}, "10.0.0.7:81", 16, "DE", "s", "e"},
        {{4, 4}, "runs/b/1", {}, "", std::nullopt, std::nullopt, "", std::nullopt}};
    facts.otherAttempts = {{facts.sources[1], 1, "interrupted"}};
    EXPECT_EQ(ParseRunFacts(ToJsonText(facts), "run.json"), facts);
    const std::string text = ToJsonText(facts);
    EXPECT_EQ(text.substr(text.find("  \"merged\"")), R"(  "merged": true,
  "sources": [
    {
      "firstLine": 2,
      "lastLine": 3,
      "directoryBase64": "cnVucy9h/y8x",
      "bench": "bench-1",
      "device": "DUT",
      "attempt": 2,
      "daemon": "10.0.0.7:81",
      "macType": 16,
      "countryCode": "DE",
      "started": "s",
      "ended": "e"
    },
    {
      "firstLine": 4,
      "lastLine": 4,
      "directory": "runs/b/1",
      "daemon": "",
      "started": ""
    }
  ],
  "otherAttempts": [
    {
      "firstLine": 4,
      "lastLine": 4,
      "directory": "runs/b/1",
      "daemon": "",
      "started": "",
      "linesDone": 1,
      "outcome": "interrupted"
    }
  ]
}
)");
}

TEST(RunFactsTest, UnknownKeysAreIgnored) {
    const std::string text = Replaced(ToJsonText(FullFacts()), "{", R"({"new": [1, {"a": null}],)");
    EXPECT_EQ(ParseRunFacts(text, "run.json"), FullFacts());
}

TEST(RunFactsTest, WhatIsMissingOrWrongIsTold) {
    const std::string text = ToJsonText(FullFacts());
    EXPECT_EQ(ProblemOf(""), "there is no object of JSON");
    EXPECT_EQ(ProblemOf(text.substr(0, text.size() - 3)), "there is no object of JSON");
    EXPECT_EQ(ProblemOf("{}"), "the key \"format\" is missing");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"format\": 1", "\"format\": 2")),
              "the run was written by another version of this program");
    EXPECT_EQ(ProblemOf(Replaced(text, "sha256", "md5")), "the key \"sha256\" is missing");
    EXPECT_EQ(ProblemOf(Replaced(text, "\"retries\": 0", "\"retries\": -1")),
              "the value of \"retries\" is no count");
}

TEST(RunFactsTest, TakeThePlaceOfTheOldOnes) {
    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.Path() + "/Prüf lauf.json";
    WriteRunFacts(name, RunFacts());
    // What a crash has left beside them does no harm.
    TestSupport::WriteBytes(directory.Path("run.json.part"), std::string(10'000, 'x'));
    const std::string plain = directory.Path("run.json");
    WriteRunFacts(plain, RunFacts());
    WriteRunFacts(plain, FullFacts());
    EXPECT_EQ(ReadRunFacts(plain), FullFacts());
    EXPECT_FALSE(std::filesystem::exists(directory.Path("run.json.part")));
    EXPECT_EQ(ReadRunFacts(name), RunFacts());
}

TEST(RunFactsTest, AVanishedFolderIsTold) {
    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.Path("none/run.json");
    try {
        WriteRunFacts(name, FullFacts());
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(std::string(error.what()).find("cannot open " + name + ".part: "), 0u);
    }
    EXPECT_THROW(ReadRunFacts(name), BadInput);
}

} // namespace
} // namespace Bench
