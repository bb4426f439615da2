#include "gworkspace/opening.h"

#include <AppKit/AppKit.h>
#include <objc/runtime.h>

#include "gworkspace/gworkspace_classes.h"

namespace {

enum class opener_t { viewer, launcher, gnustep_program, desktop };

opener_t opener_of(NSWorkspace* workspace, NSString* path) {
    NSString* program = nil;
    NSString* type = nil;
    if (![workspace getInfoForFile:path application:&program type:&type]) return opener_t::desktop;
    if (type == NSDirectoryFileType || type == NSFilesystemFileType) return opener_t::viewer;
    if (type == NSApplicationFileType) return opener_t::launcher;
    return program && [workspace fullPathForApplication:program] ? opener_t::gnustep_program
                                                                 : opener_t::desktop;
}

}  // namespace

@interface NSWorkspace (DelvioGWorkspace)
- (BOOL)delvioOpenFile:(NSString*)path;
@end

@implementation NSWorkspace (DelvioGWorkspace)

- (BOOL)delvioOpenFile:(NSString*)path {
    switch (opener_of(self, path)) {
        case opener_t::viewer:
            [SharedGWorkspace() newViewerAtPath:path];
            return YES;
        case opener_t::launcher:
            return [self launchApplication:path];
        case opener_t::gnustep_program:
            return [SharedGWorkspace() openFile:path];
        case opener_t::desktop:
            break;
    }
    return [self delvioOpenFile:path];
}

@end

void OpenFilesWithGWorkspace() {
    Class workspace = [NSWorkspace class];
    method_exchangeImplementations(class_getInstanceMethod(workspace, @selector(openFile:)),
                                   class_getInstanceMethod(workspace, @selector(delvioOpenFile:)));
}
