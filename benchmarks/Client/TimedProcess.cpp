#include "benchmarks/Client/TimedProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>

namespace Bench {

namespace {

/// A pipe whose writing end already holds a short text and is closed.
int FilledPipe(const std::string& text) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0 ||
        ::write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("no pipe");
    ::close(ends[1]);
    return ends[0];
}

pid_t Start(const Command& command, int input, int output) {
    std::vector<char*> words;
    for (const std::string& word : command.words)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, 1);
    pid_t child = 0;
    const int error = ::posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + command.words[0]);
    return child;
}

double MillisecondsOf(const timeval& time) {
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
}

void ReadToEnd(int descriptor) {
    static std::array<char, 1 << 16> buffer;
    while (::read(descriptor, buffer.data(), buffer.size()) > 0) {
    }
}

} // namespace

ProcessFigures FiguresOf(const Command& command) {
    using Clock = std::chrono::steady_clock;
    const int input = FilledPipe(command.standardInput);
    std::array<int, 2> output{};
    if (::pipe2(output.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const Clock::time_point start = Clock::now();
    const pid_t child = Start(command, input, output[1]);
    ::close(output[1]);
    ReadToEnd(output[0]);
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    ::close(output[0]);
    ::close(input);
    constexpr std::uint64_t unit = 1024;
    return {time.count(), MillisecondsOf(usage.ru_utime) + MillisecondsOf(usage.ru_stime),
            static_cast<std::uint64_t>(usage.ru_maxrss) * unit,
            WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

double MillisecondsOf(const Command& command) {
    const ProcessFigures figures = FiguresOf(command);
    if (figures.exitCode != 0)
        throw std::runtime_error(command.words[0] + " failed");
    return figures.milliseconds;
}

} // namespace Bench
