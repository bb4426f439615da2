// The bundle's principal class. GNUstep makes one in every program of a user who has the bundle in
// GSAppKitUserBundles: outside GWorkspace it must cost nothing and bring nothing in.
#include <Foundation/Foundation.h>

#include <dlfcn.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

@interface DelvioGWorkspace : NSObject
@end

namespace {

bool is_gworkspace() {
    return objc_lookUpClass("GWorkspace") && objc_lookUpClass("GWViewersManager");
}

// It stands beside the bundle.
void* load_adapter() {
    Dl_info own;
    char path[PATH_MAX];
    if (!dladdr(reinterpret_cast<void*>(&load_adapter), &own)) return nullptr;
    const char* name = strrchr(own.dli_fname, '/');
    const int folder = name ? static_cast<int>(name - own.dli_fname) : 0;
    snprintf(path, sizeof path, "%.*s/../libdelvio-gworkspace.so", folder, own.dli_fname);
    return dlopen(path, RTLD_NOW);
}

void start_adapter() {
    void* adapter = load_adapter();
    void* start = adapter ? dlsym(adapter, "DelvioStartInGWorkspace") : nullptr;
    if (start) {
        reinterpret_cast<void (*)()>(start)();
    } else {
        fprintf(stderr, "delvio: no contextual menus in GWorkspace: %s\n", dlerror());
    }
}

}  // namespace

@implementation DelvioGWorkspace

- (instancetype)init {
    if ((self = [super init]) && is_gworkspace()) start_adapter();
    return self;
}

@end
