// Bundles of applications that are installed by a desktop entry: the entry stands in for the
// bundle.
#include <AppKit/AppKit.h>

#include "appkit/workspace_paths.h"
#include "desktop/installed_applications.h"
#include "objc/method_patch.h"

// A bundle without code and resources.
@interface ApplicationEntryBundle : NSBundle {
  @private
    NSString* _entry;
    NSDictionary* _information;
}
- (instancetype)initWithApplication:(const files::InstalledApplication&)application;
@end

@implementation ApplicationEntryBundle

// NSBundle's own initializer would look for a folder.
- (instancetype)initWithApplication:(const files::InstalledApplication&)application {
    NSString* identifier = [NSString stringWithUTF8String:application.id.c_str()];
    NSString* name = [NSString stringWithUTF8String:application.name.c_str()];
    // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.SelfInit): see above.
    _entry = [[NSString alloc] initWithUTF8String:application.path.c_str()];
    _information = [[NSDictionary alloc] initWithObjectsAndKeys:identifier, @"CFBundleIdentifier",
                                                                name ? name : identifier,
                                                                @"CFBundleName", nil];
    return self;
}

- (void)dealloc {
    [_entry release];
    [_information release];
    [super dealloc];
}

- (NSString*)bundlePath {
    return _entry;
}

- (NSURL*)bundleURL {
    return [NSURL fileURLWithPath:_entry];
}

- (NSDictionary*)infoDictionary {
    return _information;
}

- (NSDictionary*)localizedInfoDictionary {
    return _information;
}

- (NSString*)resourcePath {
    return nil;
}

- (NSString*)executablePath {
    return nil;
}

- (BOOL)load {
    return NO;
}

- (Class)principalClass {
    return Nil;
}

- (Class)classNamed:(NSString*)name {
    (void)name;
    return Nil;
}

@end

namespace {

IMP stock_bundle;

id bundle_with_path(Class self, SEL selector, NSString* path) {
    if (![path hasSuffix:@".desktop"]) {
        return reinterpret_cast<id (*)(Class, SEL, NSString*)>(stock_bundle)(self, selector, path);
    }
    files::InstalledApplication application;
    if (files::read_application(path_bytes(path), &application)) {
        return [[[ApplicationEntryBundle alloc] initWithApplication:application] autorelease];
    }
    return reinterpret_cast<id (*)(Class, SEL, NSString*)>(stock_bundle)(self, selector, path);
}

}  // namespace

@interface ApplicationEntriesInstaller : NSObject
@end

@implementation ApplicationEntriesInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSBundle", "bundleWithPath:", reinterpret_cast<IMP>(bundle_with_path), &stock_bundle,
         true},
    };
    patch_methods(patches);
}

@end
