#include "Tools/Vemo/VemoClient/DynamicTest/Failure.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace PowerTest {

namespace {

std::string Printed(const std::string& messageTemplate, const std::string& text) {
    const ConsoleCapture console;
    PrintError(messageTemplate, text);
    EXPECT_EQ(console.Out(), "");
    return console.Err();
}

TEST(FailureTest, MessageIsPrintedWithoutALineEnd) {
    EXPECT_EQ(Printed("It failed: ${1}.", "reason"), "It failed: reason.");
}

TEST(FailureTest, MessagesRunTogether) {
    const ConsoleCapture console;
    PrintError("First ${1}.", "a");
    PrintError("Second ${1}.", "b");
    EXPECT_EQ(console.Err(), "First a.Second b.");
}

TEST(FailureTest, TextThatLooksLikeAPlaceholderIsPrintedAsItIs) {
    EXPECT_EQ(Printed("[${1}]", "${1}"), "[${1}]");
    EXPECT_EQ(Printed("[${1}]", "a ${1} and ${2}"), "[a ${1} and ${2}]");
    EXPECT_EQ(Printed("[${1}]", "${x}"), "[${x}]");
}

TEST(FailureTest, StepThatEndsNormallyHasNoFailure) {
    int runs = 0;
    EXPECT_EQ(FailureOf([&] { ++runs; }), std::nullopt);
    EXPECT_EQ(runs, 1);
}

TEST(FailureTest, StandardExceptionGivesItsMessage) {
    EXPECT_EQ(FailureOf([] { throw std::invalid_argument("invalid stoi argument"); }),
              "invalid stoi argument");
    EXPECT_EQ(FailureOf([] { throw std::bad_alloc(); }), std::bad_alloc().what());
}

TEST(FailureTest, ExceptionThatTravelsAsAPointerGivesItsMessageAndIsDeleted) {
    EXPECT_EQ(FailureOf([] { throw new Utilities::Exception("Failed Sending message"); }),
              "Failed Sending message");
}

TEST(FailureTest, WhatIsNoStandardExceptionPassesThrough) {
    EXPECT_THROW(FailureOf([] { throw 5; }), int);
}

} // namespace

} // namespace PowerTest
