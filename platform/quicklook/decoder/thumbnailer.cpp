// The helper program that makes the thumbnails of untrusted files. It opens the file, sets limits,
// and becomes the decoder for the file, in bubblewrap where that works.
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "quicklook/decoder/bubblewrap.h"
#include "quicklook/decoder/open_input.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/restrictions.h"
#include "quicklook/file_kind.h"
#include "quicklook/helper_words.h"

namespace {

using namespace thumbnails;
using namespace thumbnails::helper_words;
using Words = std::vector<std::string>;

struct Mode {
    std::string program;  // in our folder
    bool is_for_program;
    bool has_file;
};

const std::string decoder_prefix = "delvio-decode-", runner = "delvio-run-thumbnailer";

std::optional<Mode> mode_named(const std::string& name) {
    for (const OwnDecoder& decoder : decoders) {
        if (name == decoder.name) return Mode{decoder_prefix + name, false, true};
    }
    if (name == "program") return Mode{runner, true, true};
    if (name == "ready") return Mode{decoder_prefix + "image", false, false};
    if (name == "ready-program") return Mode{runner, true, false};
    return {};
}

std::string own_folder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

// Returns only when it fails.
void become(const Words& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
}

// The arguments of the next program: the box, the file and, for a thumbnailer, its command.
Words next_words(const Mode& mode, bool is_caged, char** words, int count) {
    const std::string file = words[path];
    const std::string name = file.substr(file.rfind('/') + 1);
    const std::string program = own_folder() + "/" + mode.program;
    if (!mode.is_for_program) {
        if (!mode.has_file) return {program, words[cage]};
        return {program, words[cage],  words[width], words[height],
                name,    words[scale], words[paper], words[sizes]};
    }
    if (!mode.has_file) return {program};
    Words next = {program, words[width], words[height]};
    next.push_back(is_caged ? std::string(caged_input) + "/" + name : file);
    next.push_back(is_caged ? caged_output : "");
    for (int i = command; i < count; i++) next.push_back(words[i]);
    return next;
}

Words caged(const Mode& mode, const Words& next, char** words, int count) {
    Cage around = {mode.is_for_program, own_folder(), "", ""};
    const std::string file = words[path];
    if (mode.has_file) around.input_name = file.substr(file.rfind('/') + 1);
    if (count > command + 1) around.program = words[command + 1];
    Words all = bubblewrap_words(around);
    all.insert(all.end(), next.begin(), next.end());
    return all;
}

}  // namespace

int main(int count, char** words) {
    const std::optional<Mode> wanted = count > path ? mode_named(words[mode]) : std::nullopt;
    if (!wanted || (strcmp(words[mode], "program") == 0 && count <= command + 1)) return 2;
    const auto number = [words](int at) { return strtoul(words[at], nullptr, 10); };
    limit_resources(number(megabytes), static_cast<unsigned>(number(processor_seconds)),
                    static_cast<unsigned>(number(seconds)));
    if (wanted->has_file) {
        const int file = open_plain_file(words[path]);
        if (file < 0 || !hand_over(file)) {
            write_reply(Outcome::none);
            return 0;
        }
    }
    const bool is_caged = strcmp(words[cage], "bubblewrap") == 0;
    const Words next = next_words(*wanted, is_caged, words, count);
    become(is_caged ? caged(*wanted, next, words, count) : next);
    write_reply(Outcome::none);
    return 1;
}
