#pragma once

#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/WorkingDirectory.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

/// A test on a daemon that answers what it is told to, one answer an exchange, in a working
/// directory of its own. A run asks for the MAC type and the country code first; then each line
/// makes two exchanges.
class DynamicTestFixture : public testing::Test {
protected:
    DynamicTestFixture() { OSAL::Fake::TheWorld().files["/bench/Socket.cfg"].content = "8738"; }

    /// The next answer. An empty one is that of a daemon that closes the connection.
    static void Answer(const std::string& text) {
        constexpr std::size_t pieceSize = 512;
        auto& received = OSAL::Fake::TheWorld().received;
        const std::string answer = text.empty() ? "" : "HTTP/1.1 200 OK\r\n\r\n" + text + "Done";
        received.push_back(answer.substr(0, pieceSize));
        for (std::size_t position = pieceSize; position < answer.size(); position += pieceSize)
            received.push_back(answer.substr(position, pieceSize));
    }

    /// The answers to a line: the powers that the daemon reports, and what it says to the stop.
    static void AnswerLine(const std::string& reply) {
        Answer(reply);
        Answer("Stopped.\n");
    }

    /// The answers to the two queries.
    static void AnswerQueries(const std::string& macType = "Mac Type: 5\n",
                              const std::string& country = "Current MCC: US\n") {
        Answer(macType);
        Answer(country);
    }

    static std::string PowerA(const std::string& power) {
        return "Target Power: Chain A (1) " + power + " dBm\n";
    }
    static std::string PowerB(const std::string& power) {
        return "Target Power: Chain B (2) " + power + " dBm\n";
    }

    /// The command lines that the daemon was given, without "CLI -1 -vemo ".
    static std::vector<std::string> Commands() {
        const std::string start = "\r\n\r\nCLI -1 -vemo ";
        const std::string& sent = OSAL::Fake::TheWorld().sent;
        std::vector<std::string> commands;
        for (std::size_t hit = sent.find(start); hit != std::string::npos;
             hit = sent.find(start, hit + 1)) {
            const std::size_t begin = hit + start.size();
            commands.push_back(sent.substr(begin, sent.find("POST /", begin) - begin));
        }
        return commands;
    }

    /// Runs a test file of that content, byte for byte.
    int Run(const std::string& content) {
        WriteFile("test.csv", content);
        return DynamicTest("test.csv").Run();
    }

    struct FreshWorld {
        FreshWorld() { OSAL::Fake::Reset(); }
    } freshWorld;
    WorkingDirectory directory{"sarvex-dynamictest-test"};
    ConsoleCapture console;

    const std::string start = "-wifi-calibrate-tx -wifi-mode tx_modulated -wifi-start";
    const std::string stop = "-wifi-stop";
    const std::string committing = "Commiting and testing follwing config:\n";
};
