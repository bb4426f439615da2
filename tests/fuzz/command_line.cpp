// The command's arguments, one after each zero byte.
#include "command/command_line.h"

#include <fcntl.h>
#include <unistd.h>

#include "input.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* const nowhere = fopen("/dev/null", "we");
    fuzz::Input input(data, size);
    std::vector<std::string> words = {"delvio"};
    while (input.left() > 0 && words.size() < 32) words.push_back(input.word());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    FILE *const out = stdout, *const err = stderr;
    stdout = stderr = nowhere;
    const CommandLine line = read_command_line(static_cast<int>(words.size()), pointers.data());
    stdout = out;
    stderr = err;
    const bool ended = line.command == CommandLine::finished;
    fuzz::require(!ended || line.status == exit_done || line.status == exit_misused, "a status");
    if (line.command != CommandLine::menu) return 0;
    fuzz::require(!line.menu_request.files.empty(), "a menu of files");
    fuzz::require(line.menu_request.depth >= 0, "a depth");
    return 0;
}
