#include "quicklook/decoder/bubblewrap.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "quicklook/reply.h"

namespace thumbnails {

namespace {

using Words = std::vector<std::string>;

const char largest_output[] = "67108864";

void add(Words& words, const Words& more) { words.insert(words.end(), more.begin(), more.end()); }

bool is_of_system(const std::string& path) {
    for (const char* folder : {"/usr/", "/bin/", "/lib/", "/sbin/"}) {
        if (path.compare(0, std::char_traits<char>::length(folder), folder) == 0) return true;
    }
    return false;
}

// These folders are links into /usr on a modern system and real folders on an older one.
void add_system_folder(Words& words, const char* folder) {
    std::error_code error;
    const std::string target = std::filesystem::read_symlink(folder, error);
    if (!error) {
        add(words, {"--symlink", target, folder});
    } else {
        add(words, {"--ro-bind-try", folder, folder});
    }
}

void add_system(Words& words, bool is_for_program) {
    add(words, {"--ro-bind", "/usr", "/usr"});
    for (const char* folder : {"/bin", "/lib", "/lib32", "/lib64", "/sbin"}) {
        add_system_folder(words, folder);
    }
    if (is_for_program) {
        add(words, {"--ro-bind", "/etc", "/etc", "--ro-bind-try", "/opt", "/opt"});
    } else {
        for (const char* place : {"/etc/fonts", "/etc/ld.so.cache", "/etc/alternatives"}) {
            add(words, {"--ro-bind-try", place, place});
        }
    }
    add(words, {"--ro-bind-try", "/var/cache/fontconfig", "/var/cache/fontconfig"});
    add(words, {"--dev", "/dev"});
}

void add_program(Words& words, const Cage& cage) {
    add(words, {"--proc", "/proc", "--size", largest_output, "--tmpfs", caged_output});
    add(words, {"--size", largest_output, "--tmpfs", "/tmp", "--setenv", "HOME", caged_output});
    if (!cage.program.empty() && !is_of_system(cage.program)) {
        add(words, {"--ro-bind", cage.program, cage.program});
    }
    if (!cage.input_name.empty()) {
        // Binds the open file itself, wherever its path leads now.
        add(words, {"--ro-bind", "/proc/self/fd/" + std::to_string(file_descriptor),
                    std::string(caged_input) + "/" + cage.input_name});
    }
}

}  // namespace

Words bubblewrap_words(const Cage& cage) {
    Words words = {"bwrap",      "--unshare-all", "--die-with-parent",
                   "--cap-drop", "ALL",           "--clearenv",
                   "--setenv",   "PATH",          "/usr/local/bin:/usr/bin:/bin",
                   "--setenv",   "LANG",          "C.UTF-8"};
    add_system(words, cage.is_for_program);
    if (!is_of_system(cage.helper_folder + "/")) {
        add(words, {"--ro-bind", cage.helper_folder, cage.helper_folder});
    }
    if (cage.is_for_program) add_program(words, cage);
    add(words, {"--chdir", "/", "--"});
    return words;
}

}  // namespace thumbnails
