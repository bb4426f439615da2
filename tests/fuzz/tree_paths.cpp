// Elements of the tree, with names and folders of any bytes.
#include <Carbon/Carbon.h>
#include <stdlib.h>

#include <string>

#include "input.h"
#include "require.h"
#include "tree/dv_tree.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const uint32_t made = alloc_count - free_count;
    const bool single = input.byte() & 1;
    std::string folder = "/" + input.word();
    const std::string name = input.word().substr(0, 256);
    if (!single && folder.back() != '/') folder += '/';
    dv_dir_t* dir =
        single ? dv_create_single_dir(folder.c_str()) : dv_create_folder_dir(folder.c_str());
    dv_tree_t* elem =
        dv_create_elem(dir, name.c_str(), single ? 0 : static_cast<int32_t>(name.size()), 0);
    dv_tree_t* copy = dv_copy_elem(elem);
    dv_tree_t *head = nullptr, *last = nullptr;
    dv_update_ptrs(elem, &last, &head);
    dv_update_ptrs(copy, &last, &head);
    for (const dv_tree_t* one : {elem, copy}) {
        for (const int slash : {0, 1}) {
            char* path = dv_path_for_elem(one, slash, 0);
            require(path && path[0] == '/', "a whole path");
            require(!single == std::string(path).starts_with(folder + name) || single,
                    "its own path");
            free(path);
        }
        FSRef ref;
        FSSpec spec;
        dv_fsref_for_elem(one, &ref);
        dv_elem_to_fsspec(one, &spec);
    }
    dv_free_tree(head);
    require(alloc_count - free_count == made, "every element is freed");
    return 0;
}
