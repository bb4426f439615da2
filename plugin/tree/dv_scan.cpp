#include "tree/dv_scan.h"

#include <dirent.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>

#include "tree/dv_level.h"

namespace {

// The entries of a folder in scandir's order.
class entries_t {
  public:
    explicit entries_t(const char* path) : count_(scandir(path, &list_, nullptr, dv_sort)) {}
    ~entries_t() {
        for (int i = 0; i < count_; i++) free(list_[i]);
        free(list_);
    }
    entries_t(const entries_t&) = delete;
    entries_t& operator=(const entries_t&) = delete;

    bool none() const { return count_ <= 0; }
    dirent** begin() const { return list_; }
    dirent** end() const { return list_ + count_; }

  private:
    dirent** list_ = nullptr;
    int count_;
};

void read_level(dv_level_t& level, const entries_t& entries) {
    for (const dirent* entry : entries) {
        dv_tree_t* elem = dv_elem_for_name(level, entry->d_name);
        if (!elem) continue;
        if (dv_classify_in_level(level, elem)) {
            dv_append_to_level(level, elem);
        } else {
            dv_free_elem(elem);
        }
    }
    dv_join_groups(level);
}

}  // namespace

dv_tree_t* dv_build_tree(const char* path, int32_t level, int32_t max_level, uint32_t flags,
                         uint32_t origin) {
    if (level >= max_level) return nullptr;
    std::string folder(path);
    if (!folder.ends_with('/')) folder += '/';

    dv_tree_t* root = dv_create_elem(dv_create_folder_dir(folder.c_str()), "", 0, origin);
    if (!root) return nullptr;
    root->kind = DV_KIND_FOLDER;

    const entries_t entries(folder.c_str());
    const int verdict = dv_process_finder_info(folder.c_str(), flags, root);
    if (entries.none()) {
        if (verdict == DV_ELEM_RESOLVED) return root;
        dv_free_elem(root);
        return nullptr;
    }
    std::string scratch(folder);
    scratch.resize(folder.size() + DV_LONGEST_NAME + 2);
    dv_level_t reading = {root, scratch.data(), level, max_level, flags, origin, {}, {}};
    read_level(reading, entries);
    return root;
}

void dv_read_children(dv_tree_t* elem, const char* path, int32_t level, int32_t max_level,
                      uint32_t flags, uint32_t origin) {
    dv_tree_t* root = dv_build_tree(path, level, max_level, flags, origin);
    if (!root) return;
    elem->children = root->children;
    for (dv_tree_t* child = elem->children; child; child = child->next) child->parent = elem;
    dv_free_elem(root);
}

dv_tree_t* dv_build_single_elem(const char* path, uint32_t flags, uint32_t origin) {
    dv_tree_t* elem = dv_create_elem(dv_create_single_dir(path), "", 0, origin);
    if (!elem) return nullptr;
    const int verdict = dv_process_finder_info(path, flags, elem);
    const bool wanted = verdict == DV_ELEM_RESOLVED || elem->kind == DV_KIND_FOLDER ||
                        !(flags & DV_SCAN_FOLDERS_ONLY);
    if (verdict != DV_ELEM_DROP && wanted) return elem;
    dv_free_elem(elem);
    return nullptr;
}
