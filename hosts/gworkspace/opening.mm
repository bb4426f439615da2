#include "gworkspace/opening.h"

#include <host/text.h>

#include <AppKit/AppKit.h>
#include <host/opening_files.h>
#include <objc/runtime.h>
#include <sys/stat.h>

#include <utility>
#include <vector>

#include "finderkit/open_problems.h"
#include "gworkspace/gworkspace_classes.h"

namespace {

enum class Opener { viewer, launcher, gnustep_program, desktop };

// Opening a pipe would wait forever, and its name looks like the name of a file.
bool is_file_or_folder(NSString* path) {
    struct stat status;
    return stat([path fileSystemRepresentation], &status) == 0 &&
           (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

Opener opener_of(NSWorkspace* workspace, NSString* path) {
    if (!is_file_or_folder(path)) return Opener::desktop;
    NSString* program = nil;
    NSString* type = nil;
    if (![workspace getInfoForFile:path application:&program type:&type]) return Opener::desktop;
    if (type == NSDirectoryFileType || type == NSFilesystemFileType) return Opener::viewer;
    if (type == NSApplicationFileType) return Opener::launcher;
    return program && [workspace fullPathForApplication:program] ? Opener::gnustep_program
                                                                 : Opener::desktop;
}

BOOL opened(BOOL done, NSString* path) {
    if (!done) report_open_failure([path UTF8String], "", translated("its program does not start"));
    return done;
}

// As GNUstep asks a program that runs to open a file.
void open_in_this_process(const char* document) {
    NSString* path = [NSString stringWithUTF8String:document];
    id delegate = [NSApp delegate];
    const bool asks = path && [delegate respondsToSelector:@selector(application:openFile:)];
    if (asks && [delegate application:NSApp openFile:path]) return;
    report_open_failure(document, "", translated("its program does not start"));
}

}  // namespace

// Shows the files that could not be opened, after the menu has closed and its actions are done.
@interface DelvioOpenProblems : NSObject {
  @private
    std::vector<OpenProblem>* _problems;
}
- (void)add:(const OpenProblem&)problem;
@end

@implementation DelvioOpenProblems

- (instancetype)init {
    if ((self = [super init])) _problems = new std::vector<OpenProblem>;
    return self;
}

- (void)dealloc {
    delete _problems;
    [super dealloc];
}

- (void)add:(const OpenProblem&)problem {
    _problems->push_back(problem);
    if (_problems->size() > 1) return;
    [self performSelector:@selector(show) withObject:nil afterDelay:0];
}

- (void)show {
    const std::vector<OpenProblem> problems = std::exchange(*_problems, {});
    show_open_problems(problems);
}

@end

@interface NSWorkspace (DelvioGWorkspace)
- (BOOL)delvioOpenFile:(NSString*)path;
@end

@implementation NSWorkspace (DelvioGWorkspace)

- (BOOL)delvioOpenFile:(NSString*)path {
    switch (opener_of(self, path)) {
        case Opener::viewer:
            [shared_gworkspace() newViewerAtPath:path];
            return YES;
        case Opener::launcher:
            return opened([self launchApplication:path], path);
        case Opener::gnustep_program:
            return opened([shared_gworkspace() openFile:path], path);
        case Opener::desktop:
            break;
    }
    return [self delvioOpenFile:path];
}

@end

void open_files_with_gworkspace() {
    DelvioOpenProblems* problems = [DelvioOpenProblems new];  // for as long as the program runs
    listen_for_open_problems([problems](const OpenProblem& problem) { [problems add:problem]; });
    set_own_document_opener(open_in_this_process);
    Class workspace = [NSWorkspace class];
    method_exchangeImplementations(class_getInstanceMethod(workspace, @selector(openFile:)),
                                   class_getInstanceMethod(workspace, @selector(delvioOpenFile:)));
}
