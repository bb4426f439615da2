// The running applications that have windows. GNUstep's workspace does not know them.
#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>

#include "desktop/bundle_names.h"
#include "desktop/running_programs.h"
#include "objc/method_patch.h"
#include "x11/window_process.h"

@interface DesktopApplication : NSRunningApplication {
  @private
    pid_t _process;
    NSApplicationActivationPolicy _policy;
    NSString* _name;
    NSString* _identifier;
    NSURL* _bundle;
    NSURL* _executable;
}
- (instancetype)initWithProgram:(const RunningProgram&)program;
@end

namespace {

NSString* string_of(const std::string& text) {
    return text.empty() ? nil : [NSString stringWithUTF8String:text.c_str()];
}

NSURL* file_url(const std::string& path) {
    NSString* text = string_of(path);
    return text ? [NSURL fileURLWithPath:text] : nil;
}

bool is_bundle(const RunningProgram& program) { return program.application.ends_with(".app"); }

// Whether Launch Services take the program for an application, so that the user can pick it. A
// program that runs many others, such as a shell, has windows but cannot be given a file.
bool is_application(const RunningProgram& program) {
    const std::string& path =
        program.application.empty() ? program.executable : program.application;
    FSRef ref;
    LSItemInfoRecord info = {};
    if (FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr) != noErr) {
        return false;
    }
    LSCopyItemInfoForRef(&ref, kLSRequestAppTypeFlags, &info);
    return info.flags & kLSItemInfoIsApplication;
}

NSString* identifier_of(const RunningProgram& program) {
    NSString* path = string_of(program.application);
    if (!is_bundle(program) || !path) return string_of(program.identifier);
    return [[NSBundle bundleWithPath:path] bundleIdentifier];
}

NSString* name_of(const RunningProgram& program) {
    CFStringRef own = nullptr;
    if (is_bundle(program)) own = files::copy_bundle_name(program.application.c_str());
    NSString* name = own ? [(NSString*)own autorelease] : string_of(program.name);
    return name ? name : @"";
}

}  // namespace

@implementation DesktopApplication

- (instancetype)initWithProgram:(const RunningProgram&)program {
    if (!(self = [super init])) return nil;
    _process = program.process;
    _policy = program.is_regular && is_application(program)
                  ? NSApplicationActivationPolicyRegular
                  : NSApplicationActivationPolicyAccessory;
    _name = [name_of(program) copy];
    _identifier = [identifier_of(program) copy];
    _bundle = [file_url(program.application) retain];
    _executable = [file_url(program.executable) retain];
    return self;
}

- (void)dealloc {
    [_name release];
    [_identifier release];
    [_bundle release];
    [_executable release];
    [super dealloc];
}

- (pid_t)processIdentifier {
    return _process;
}

- (NSApplicationActivationPolicy)activationPolicy {
    return _policy;
}

- (NSString*)localizedName {
    return _name;
}

- (NSString*)bundleIdentifier {
    return _identifier;
}

- (NSURL*)bundleURL {
    return _bundle;
}

- (NSURL*)executableURL {
    return _executable;
}

- (BOOL)isActive {
    return active_process() == _process;
}

- (BOOL)isEqual:(id)other {
    return
        [other isKindOfClass:[DesktopApplication class]] && [other processIdentifier] == _process;
}

- (NSUInteger)hash {
    return (NSUInteger)_process;
}

@end

namespace {

NSArray* running_applications(NSWorkspace*, SEL) {
    NSMutableArray* applications = [NSMutableArray array];
    for (const RunningProgram& program : running_programs()) {
        DesktopApplication* application = [[DesktopApplication alloc] initWithProgram:program];
        [applications addObject:application];
        [application release];
    }
    return applications;
}

NSRunningApplication* frontmost_application(NSWorkspace*, SEL) {
    const pid_t active = active_process();
    if (active <= 0) return nil;
    for (const RunningProgram& program : running_programs()) {
        if (program.process != active) continue;
        return [[[DesktopApplication alloc] initWithProgram:program] autorelease];
    }
    return nil;
}

}  // namespace

@interface RunningApplicationsInstaller : NSObject
@end

@implementation RunningApplicationsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSWorkspace", "runningApplications", reinterpret_cast<IMP>(running_applications),
         nullptr},
        {"NSWorkspace", "frontmostApplication", reinterpret_cast<IMP>(frontmost_application),
         nullptr},
    };
    patch_methods(patches);
}

@end
