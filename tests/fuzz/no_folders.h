// What targets with the plug-in's settings have in place of the tree's scan: no folder is read, and
// each root is a single element. Included once in a program.
#pragma once

#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

dv_tree_t* dv_build_tree(const char*, int32_t, int32_t, uint32_t, uint32_t) { return nullptr; }

dv_tree_t* dv_build_single_elem(const char* path, uint32_t, uint32_t origin) {
    return dv_create_elem(dv_create_single_dir(path), "", 0, origin);
}

extern "C" OSStatus UCCompareTextDefault(UCCollateOptions, const UniChar*, UniCharCount,
                                         const UniChar*, UniCharCount, Boolean*, SInt32*) {
    return paramErr;
}
