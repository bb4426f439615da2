#include "finder/dv_conflicts.h"

#include <libgen.h>
#include <stdlib.h>
#include <strings.h>

#include <string>
#include <vector>

#include "support/dv_log.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

struct name_t {
    const dv_tree_t* elem;
    uint32_t matched;
    std::string name;
};
using names_t = std::vector<name_t>;

// The name from the element's own path.
name_t name_of(const dv_tree_t* elem) {
    char* path = dv_path_for_elem(elem, 0, 1);
    name_t name = {elem, 0, path ? basename(path) : ""};
    free(path);
    return name;
}

void read_level(dv_tree_t* elem) {
    if (elem->children) return;
    char* path = dv_path_for_elem(elem, 1, 0);
    if (!path) return;
    dv_tree_t* root = dv_build_tree(path, 0, 1, 0, elem->origin);
    free(path);
    if (!root) return;
    elem->children = root->children;
    for (dv_tree_t* child = elem->children; child; child = child->next) child->parent = elem;
    dv_free_elem(root);
}

// The names of a chain; elements with any of these origins are left out.
names_t names_of(const dv_tree_t* chain, uint32_t without) {
    names_t names;
    for (const dv_tree_t* elem = chain; elem; elem = elem->next) {
        if (!(elem->origin & without)) names.push_back(name_of(elem));
    }
    return names;
}

void log_names(const char* heading, const names_t& names) {
    if (!dvEnableDebugOutput) return;
    dvdprintf("%s\n", heading);
    for (size_t i = 0; i < names.size(); i++) {
        dvdprintf("Delvio: Item %d: %s\n", static_cast<int>(i), names[i].name.c_str());
    }
}

bool match(const name_t& selected, names_t& present) {
    bool found = false;
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Comparing %s with the following:\n", selected.name.c_str());
    }
    for (name_t& other : present) {
        if (other.matched) continue;
        if (dvEnableDebugOutput) dvdprintf("%s\n", other.name.c_str());
        if (strcasecmp(selected.name.c_str(), other.name.c_str()) != 0) continue;
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: File/folder %s exists in both sets!\n", selected.name.c_str());
        }
        other.matched = 1;
        found = true;
    }
    return found;
}

}  // namespace

void dv_check_for_filename_conflicts(dv_tree_t* destination, const dv_tree_t* selection,
                                     Boolean* replace) {
    read_level(destination);
    if (!destination->children) return;
    names_t present = names_of(destination->children, 0);
    const names_t selected = names_of(selection, DV_ORIGIN_USER_FOLDER);
    log_names("Delvio: Destination contains:", present);
    log_names("Delvio: Items to move are:", selected);

    bool clash = false;
    if (dvEnableDebugOutput) dvdprintf("Comparing names..\n");
    for (const name_t& name : selected) {
        if (match(name, present)) clash = true;
    }
    if (clash && dv_display_should_trash_files_alert() == 0) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Will replace target files\n");
        *replace = 1;
    }
    if (dvEnableDebugOutput) dvdprintf("Delvio: Releasing memory\n");
}

int dv_display_should_trash_files_alert() {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Displaying trash-files alert dialog\n");
    AlertStdCFStringAlertParamRec parameters = {};
    parameters.version = kStdCFStringAlertVersionOne;
    parameters.movable = true;
    parameters.helpButton = false;
    parameters.defaultText = CFSTR("Don't replace files");
    parameters.cancelText = CFSTR("Replace files");
    parameters.otherText = nullptr;
    parameters.defaultButton = kAlertStdAlertOKButton;
    parameters.cancelButton = 0;
    parameters.position = kWindowDefaultPosition;
    parameters.flags = 0;

    DialogRef alert = nullptr;
    OSStatus error = CreateStandardAlert(
        kAlertCautionAlert, CFSTR("Replace duplicate files?"),
        CFSTR("Warning! The destination contains some files or folders with the same names as "
              "some of the ones you are trying to move/copy. Would you like to replace them with "
              "the files you are moving/copying?"),
        &parameters, &alert);
    DialogItemIndex hit = 0;
    if (error == noErr) error = RunStandardAlert(alert, nullptr, &hit);
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: User hit button %s\n",
                  hit == kAlertStdAlertOKButton ? "Don't replace files" : "Replace files");
    }
    return error != noErr || hit != kAlertStdAlertCancelButton;
}
