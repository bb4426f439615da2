// The bundle's principal class. GNUstep makes one in every program of a user who lists the bundle
// in GSAppKitUserBundles: outside GWorkspace it must cost nothing and load nothing.
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

// Loads the adapter, which is beside the bundle.
void* load_adapter() {
    Dl_info own;
    char path[PATH_MAX];
    if (!dladdr(reinterpret_cast<void*>(&load_adapter), &own)) return nullptr;
    const char* name = strrchr(own.dli_fname, '/');
    const int folder = name ? static_cast<int>(name - own.dli_fname) : 0;
    snprintf(path, sizeof path, "%.*s/../libdelvio-gworkspace.so", folder, own.dli_fname);
    return dlopen(path, RTLD_NOW);
}

// Writes the reason. It names a path, which may hold any bytes; a control character, also of C1,
// becomes "?".
void complain(const char* reason) {
    fputs("delvio: no contextual menus in GWorkspace: ", stderr);
    for (const char* byte = reason; *byte; byte++) {
        const auto value = static_cast<unsigned char>(*byte);
        const bool is_c1 = value == 0xc2 && static_cast<unsigned char>(byte[1]) < 0xa0;
        fputc(value < ' ' || value == 0x7f || is_c1 ? '?' : value, stderr);
        if (is_c1 && byte[1]) byte++;
    }
    fputc('\n', stderr);
}

void start_adapter() {
    void* adapter = load_adapter();
    void* start = adapter ? dlsym(adapter, "DelvioStartInGWorkspace") : nullptr;
    if (start) {
        reinterpret_cast<void (*)()>(start)();
    } else {
        complain(dlerror());
    }
}

}  // namespace

@implementation DelvioGWorkspace

- (instancetype)init {
    if ((self = [super init]) && is_gworkspace()) start_adapter();
    return self;
}

@end
