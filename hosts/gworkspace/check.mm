// The bundle's principal class. GNUstep makes one in every program of a user who has the bundle in
// GSAppKitUserBundles: outside GWorkspace it must cost nothing and bring nothing in.
#include <Foundation/Foundation.h>

#include <dlfcn.h>
#include <stdio.h>

@interface DelvioGWorkspace : NSObject
@end

namespace {

bool is_gworkspace() {
    return objc_lookUpClass("GWorkspace") && objc_lookUpClass("GWViewersManager");
}

void start_adapter() {
    void* adapter = dlopen("libdelvio-gworkspace.so", RTLD_NOW);
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
