#include "file_managers/entry_file.h"

#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

namespace {

const char* const line_start = "Made by delvio install; folders made for it: ";

bool lacks_mode(const EntryFile& file) {
    struct stat status;
    return stat(file.path.c_str(), &status) == 0 && (file.mode & 0100) && !(status.st_mode & 0100);
}

// Whether the file was changed.
bool carry_out(const EntryFile& file, const FileText& now, const Edit& edit, std::string* problem) {
    *problem = edit.problem;
    if (!edit.problem.empty()) return false;
    if (!edit.text) return now && remove_user_file(file.path, edit.folders, problem);
    if (edit.text == now && !lacks_mode(file)) return false;
    return write_user_file(file.path, *edit.text, file.mode, problem);
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
    FileText now;
    if (!read_user_file(file.path, &now, problem)) return false;
    return carry_out(file, now, file.put_in(now, count_missing_folders(file.path)), problem);
}

bool take_out(const EntryFile& file, std::string* problem) {
    FileText now;
    if (!read_user_file(file.path, &now, problem)) return false;
    const Edit edit = file.take_out(now);
    *problem = edit.problem;
    return edit.problem.empty() && edit.text != now && carry_out(file, now, edit, problem);
}

std::string made_by_delvio(int folders) { return line_start + std::to_string(folders); }

int folders_made_for(const std::string& text) {
    const size_t place = text.find(line_start);
    int folders = -1;
    if (place != std::string::npos) {
        sscanf(text.c_str() + place + strlen(line_start), "%d", &folders);
    }
    return folders;
}

EntryFile whole_file(const std::string& path, mode_t mode,
                     const std::function<std::string(const std::string& line)>& text) {
    EntryFile file{path, mode, {}, {}};
    file.put_in = [path, text](const FileText& now, int missing) {
        const int folders = now ? folders_made_for(*now) : missing;
        if (folders >= 0) return Edit{text(made_by_delvio(folders)), 0, {}};
        return Edit{now, 0, path + " is not Delvio's; it was left as it is"};
    };
    file.take_out = [](const FileText& now) {
        const int folders = now ? folders_made_for(*now) : -1;
        return folders >= 0 ? Edit{{}, folders, {}} : Edit{now, 0, {}};
    };
    return file;
}
