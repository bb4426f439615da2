#include "finderkit/plug_in.h"

#include <host/text.h>
#include <host/menu_tracking.h>
#include <host/process.h>
#include <Foundation/Foundation.h>

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "finderkit/applications_folder.h"
#include "finderkit/asked_settings.h"
#include "finderkit/plug_in_items.h"
#include "finderkit/preview_placement.h"

namespace {

using EntryFunction = int (*)(void);

// Loads through the bundle, so that the classes know where they come from. The run time prints a
// message on failure, which is hidden here: the caller gets the reason from the dynamic linker.
void load_quietly(NSBundle* bundle) {
    FILE* const own = stderr;
    FILE* const nowhere = fopen("/dev/null", "we");
    if (nowhere) stderr = nowhere;
    [bundle load];
    stderr = own;
    if (nowhere) fclose(nowhere);
}

// Loads the bundle's code; null with *problem on failure.
void* code_handle(NSBundle* bundle, std::string* problem) {
    NSString* code = [bundle executablePath];
    if (!code) {
        *problem = translated("it holds no code");
        return nullptr;
    }
    load_quietly(bundle);
    void* handle = dlopen([code fileSystemRepresentation], RTLD_NOW | RTLD_GLOBAL);
    if (!handle) *problem = dlerror();
    return handle;
}

// Items such as "3 selected items" and "Running apps" stand for the first item below them, and
// would open it. Every other item is named like the file it stands for; a name that is not UTF-8
// cannot be compared.
BOOL only_heads_submenu(NSMenuItem* item) {
    const char* name = name_of_item(item);
    return name && [NSString stringWithUTF8String:name] &&
           strcmp(name, [[item title] UTF8String] ?: "") != 0;
}

bool load_and_enter(const std::string& path, std::string* problem) {
    NSString* name = [NSString stringWithUTF8String:path.c_str()];
    NSBundle* bundle = name ? [NSBundle bundleWithPath:name] : nil;
    if (!bundle) {
        *problem = translated("it is not a bundle");
        return false;
    }
    void* handle = code_handle(bundle, problem);
    if (!handle) return false;
    const auto enter = reinterpret_cast<EntryFunction>(dlsym(handle, "dv_load_delvio"));
    if (!enter) {
        *problem = translated("it has no entry function %s", {"dv_load_delvio"});
        return false;
    }
    [NSMenu setHeadingQuestion:only_heads_submenu];
    offer_applications_folder(reinterpret_cast<CFStringRef>([bundle bundleIdentifier]));
    enter();
    return true;
}

}  // namespace

bool load_plug_in(const std::string& path, std::string* problem) {
    declare_process_signature('MACS');
    place_previews_as_set();
    answer_settings();
    std::string reason;
    if (load_and_enter(path, &reason)) return true;
    *problem = translated("cannot load the plug-in %s: %s", {path, reason});
    return false;
}
