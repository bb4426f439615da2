#include "carbon/hidden_lists.h"

#include <string>
#include <string_view>
#include <unordered_set>

#include "carbon/file_references.h"
#include "desktop/moments.h"
#include "desktop/small_files.h"

namespace files {

namespace {

const size_t largest_list = 1 << 20;

struct HiddenList {
    std::string folder;
    int64_t read_at = 0;
    std::string text;
    std::unordered_set<std::string_view> names;  // in `text`

    bool is_of(const File& file) const {
        return file.seen_at - read_at < one_moment && folder.size() == file.folder_length() &&
               folder.compare(0, folder.size(), file.folder(), folder.size()) == 0;
    }

    void read(const File& file) {
        folder.assign(file.folder(), file.folder_length());
        read_at = file.seen_at;
        names.clear();
        if (!read_small_file((folder + ".hidden").c_str(), largest_list, &text)) return;
        size_t start = 0;
        while (start < text.size()) {
            size_t end = text.find('\n', start);
            if (end == std::string::npos) end = text.size();
            if (end > start) names.insert(std::string_view(text).substr(start, end - start));
            start = end + 1;
        }
    }
};

}  // namespace

bool is_listed_hidden(const File& file) {
    if (file.folder_length() == 0) return false;  // the root folder
    static HiddenList& list = *new HiddenList;
    if (!list.is_of(file)) list.read(file);
    return !list.names.empty() &&
           list.names.count(std::string_view(file.name(), file.name_length())) != 0;
}

}  // namespace files
