// Opens files without GNUstep's workspace program, which GNUstep may start first while the caller
// waits.
#include <host/glib_owners.h>
#include <AppKit/AppKit.h>

#include <glib.h>

#include "appkit/workspace_paths.h"
#include "desktop/open_failures.h"
#include "desktop/open_file.h"
#include "desktop/program_launch.h"
#include "objc/method_patch.h"

@interface NSWorkspace (StockPrograms)
- (BOOL)_extension:(NSString*)extension role:(NSString*)role app:(NSString**)name;
@end

std::string path_bytes(NSString* path) {
    if ([path length] == 0) return "";
    const char* text = [path UTF8String];
    if (!text) return "";
    if (!g_str_has_prefix(text, "file:")) return text;
    return files::taken_text(g_filename_from_uri(text, nullptr, nullptr));
}

namespace {

// The executable of the GNUstep program that the user's lists name for the file, or of the file
// itself if it is one. Only lists on disk are asked.
NSString* gnustep_program(NSWorkspace* workspace, NSString* path, bool* is_itself) {
    NSString* extension = [[path pathExtension] lowercaseString];
    BOOL is_folder = NO;
    [[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&is_folder];
    *is_itself = is_folder && [extension isEqualToString:@"app"];
    if (*is_itself) return [workspace locateApplicationBinary:path];
    if (is_folder || [extension length] == 0) return nil;
    NSString* name = nil;
    if (![workspace _extension:extension role:nil app:&name]) return nil;
    return [workspace locateApplicationBinary:name];
}

// Returns why the file cannot be opened; empty when it is opened.
std::string open_path(NSWorkspace* self, NSString* path, const std::string& bytes) {
    std::string reason = files::why_not_openable(bytes);
    if (!reason.empty()) return reason;
    bool is_itself = false;
    NSString* program = gnustep_program(self, path, &is_itself);
    if (program) {
        std::vector<std::string> arguments;
        if (!is_itself) arguments = {"-GSFilePath", bytes};
        if (start_program(path_bytes(program), arguments, &reason) == Start::done) return "";
    }
    return open_with_default_program(bytes, &reason) ? "" : reason;
}

BOOL open_file(NSWorkspace* self, SEL, NSString* path) {
    const std::string bytes = path_bytes(path);
    if (bytes.empty()) return NO;
    files::count_opening();
    const std::string reason = open_path(self, path, bytes);
    if (!reason.empty()) files::tell_open_failure(bytes, "", reason);
    return reason.empty();
}

}  // namespace

@interface WorkspaceMethodsInstaller : NSObject
@end

@implementation WorkspaceMethodsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSWorkspace", "openFile:", reinterpret_cast<IMP>(open_file), nullptr},
    };
    patch_methods(patches);
}

@end
