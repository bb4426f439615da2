#include "file_managers/entry_file.h"

#include <host/text.h>

#include <string.h>
#include <sys/stat.h>

#include <charconv>

namespace {

const char* const line_start = "Made by delvio install; folders made for it: ";

bool lacks_mode(const EntryFile& file) {
    struct stat status;
    return stat(file.path.c_str(), &status) == 0 && (file.mode & 0100) && !(status.st_mode & 0100);
}

Change carry_out(const EntryFile& file, const FileText& now, const Edit& edit,
                 std::string* problem) {
    if (!edit.text) return remove_user_file(file.path, *now, edit.folders, problem);
    return write_user_file(file.path, now, *edit.text, file.mode, problem);
}

// Makes the edit anew for as long as another program changes the file in between. `adds_mode`: also
// if only the permission to execute the file is missing. Whether the file was changed.
bool change_file(const EntryFile& file, const std::function<Edit(const FileText&)>& edit_of,
                 bool adds_mode, std::string* problem) {
    constexpr int most_turns = 20;
    for (int turn = 0; turn < most_turns; turn++) {
        FileText now;
        if (!read_user_file(file.path, &now, problem)) return false;
        const Edit edit = edit_of(now);
        *problem = edit.problem;
        const bool is_right = edit.text == now && !(adds_mode && lacks_mode(file));
        if (!edit.problem.empty() || is_right) return false;
        const Change change = carry_out(file, now, edit, problem);
        if (change != Change::outdated) return change == Change::done;
    }
    *problem = translated("another program keeps changing %s; it was left as it is", {file.path});
    return false;
}

}  // namespace

EntryState state_of(const EntryFile& file, std::string* problem) {
    FileText now;
    if (!read_user_file(file.path, &now, problem)) return EntryState::refused;
    const Edit in = file.put_in(now, 0);
    *problem = in.problem;
    if (!in.problem.empty()) return EntryState::refused;
    if (in.text == now) return lacks_mode(file) ? EntryState::other : EntryState::present;
    return file.take_out(now).text == now ? EntryState::absent : EntryState::other;
}

bool put_in(const EntryFile& file, std::string* problem) {
    const auto edit = [&file](const FileText& now) {
        return file.put_in(now, count_missing_folders(file.path));
    };
    return change_file(file, edit, true, problem);
}

bool take_out(const EntryFile& file, std::string* problem) {
    return change_file(file, file.take_out, false, problem);
}

std::string made_by_delvio(int folders) { return line_start + std::to_string(folders); }

int folders_made_for(const std::string& text) {
    const size_t place = text.find(line_start);
    int folders = -1;
    if (place != std::string::npos) {
        const char* const number = text.data() + place + strlen(line_start);
        std::from_chars(number, text.data() + text.size(), folders);
    }
    return folders;
}

EntryFile whole_file(const std::string& path, mode_t mode,
                     const std::function<std::string(const std::string& line)>& text) {
    EntryFile file{path, mode, {}, {}};
    file.put_in = [path, text](const FileText& now, int missing) {
        const int folders = now ? folders_made_for(*now) : missing;
        if (folders >= 0) return Edit{text(made_by_delvio(folders)), 0, {}};
        return Edit{now, 0, translated("%s is not Delvio's; it was left as it is", {path})};
    };
    file.take_out = [](const FileText& now) {
        const int folders = now ? folders_made_for(*now) : -1;
        return folders >= 0 ? Edit{{}, folders, {}} : Edit{now, 0, {}};
    };
    return file;
}
