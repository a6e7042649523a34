// Runs the commands of a mine's record again, one after the other and with nothing in between: the least time in which
// they can follow each other.
//
//     zuvo_bare_commands RECORD     prints the seconds that all of them took

#include "base/Json.h"

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/// The record's own limit of size: some ten thousand commands.
constexpr std::size_t recordBytes = 64UL * 1024 * 1024;

struct Command {
    std::string program;
    std::vector<std::string> arguments; ///< the program's name first
};

std::vector<Command> readCommands(const char* path) {
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const auto record = text.size() <= recordBytes ? zuvo::parseForeignJson(text) : std::nullopt;
    std::vector<Command> commands;
    if (!record)
        return commands;
    for (const auto& child : record->at("children")) {
        Command command{child.at("program").get<std::string>(), {}};
        command.arguments.push_back(command.program);
        for (const auto& argument : child.at("arguments"))
            command.arguments.push_back(argument.get<std::string>());
        commands.push_back(std::move(command));
    }
    return commands;
}

/// Whether the command ended with status 0. All of its streams are the null device.
bool run(Command& command) {
    std::vector<char*> arguments;
    for (auto& argument : command.arguments)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_addopen(&streams, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&streams, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    const bool launched =
        posix_spawn(&child, command.program.c_str(), &streams, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&streams);
    return launched && waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("zuvo_bare_commands RECORD\n", stderr);
        return 2;
    }
    auto commands = readCommands(argv[1]);
    if (commands.empty()) {
        std::fprintf(stderr, "%s holds no commands\n", argv[1]);
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    for (auto& command : commands) {
        if (!run(command)) {
            std::fprintf(stderr, "failed: %s ... %s\n", command.program.c_str(), command.arguments.back().c_str());
            return 1;
        }
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", taken.count());
    return 0;
}
