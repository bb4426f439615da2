#include "finderkit/pick_watch.h"

#include <errno.h>
#include <host/memory_reserve.h>
#include <host/opening_files.h>
#include <host/process.h>
#include <host/text.h>
#include <host/unreached_files.h>

#include <AppKit/AppKit.h>

#include "file_steps/path_text.h"
#include "file_steps/visible_text.h"
#include "finderkit/plug_in_items.h"

@interface PickWatch : NSObject {
  @private
    std::function<void(const OpenProblem&)>* _tell;
    BOOL _isNameless;
    NSString* _destination;  // of files that are to be moved or copied; nil for other picks
    unsigned long _openings;
}
- (instancetype)initWithListener:(std::function<void(const OpenProblem&)>)tell;
- (void)tellOfOperation:(BOOL)isUnderWay;
@end

namespace {

using operations::in_quotes;

std::string reason_for(int error) {
    return error == ENOENT ? translated("it is no longer there") : error_text(error);
}

// When no file is known to be the cause, something else has ended the operation.
OpenProblem problem_with(const std::string& folder, const std::vector<UnreachedFile>& unreached) {
    const int error = unreached.empty() ? ECANCELED : unreached.front().error;
    const std::string reason =
        error == ENOENT
            ? translated("the folder %s is no longer there", {in_quotes(folder)})
            : translated("cannot put anything into %s: %s", {in_quotes(folder), error_text(error)});
    return {folder, "", reason, Problem::folder};
}

}  // namespace

@implementation PickWatch

- (instancetype)initWithListener:(std::function<void(const OpenProblem&)>)tell {
    if (!(self = [super init])) return nil;
    _tell = new std::function<void(const OpenProblem&)>(std::move(tell));
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:self
               selector:@selector(willPick:)
                   name:NSMenuWillSendActionNotification
                 object:nil];
    [center addObserver:self
               selector:@selector(didPick:)
                   name:NSMenuDidSendActionNotification
                 object:nil];
    return self;
}

// It lives as long as the program.
- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [_destination release];
    delete _tell;
    [super dealloc];
}

- (void)willPick:(NSNotification*)notification {
    NSMenuItem* item = [[notification userInfo] objectForKey:@"MenuItem"];
    // The plug-in does nothing with a file whose path is no text.
    _isNameless = stands_for_file(item) && !path_of_item(item);
    _openings = count_of_openings();
    [_destination release];
    _destination = nil;
    if (!asks_for_operation(item)) return;
    _destination = [path_of_item(item) ?: [NSString stringWithUTF8String:name_of_item(item)] ?: @"" copy];
    take_unreached_files();  // before this pick
}

- (void)didPick:(NSNotification*)notification {
    (void)notification;
    // Opening with a program and file operations work with any name.
    const bool did_something = count_of_openings() != _openings || apple_events_are_waiting();
    if (memory_was_short()) {
        // The plug-in passes over what it has no memory for, and tells a terminal only.
        (*_tell)({"", "", error_text(ENOMEM), Problem::memory});
    } else if (_destination) {
        [self tellOfOperation:did_something];
    } else if (_isNameless && !did_something) {
        (*_tell)({"", "", translated("its name is not UTF-8")});
    }
    _isNameless = NO;
}

// The plug-in passes over a file that is gone, and gives up when the folder is, and tells a
// terminal only.
- (void)tellOfOperation:(BOOL)isUnderWay {
    const std::string folder = operations::without_slash([_destination UTF8String]);
    const std::vector<UnreachedFile> unreached = take_unreached_files();
    if (!isUnderWay) return (*_tell)(problem_with(folder, unreached));
    for (const UnreachedFile& file : unreached) {
        const bool is_folder = file.path == folder;
        (*_tell)(is_folder ? problem_with(folder, {file})
                           : OpenProblem{file.path, "", reason_for(file.error), Problem::item});
    }
}

@end

void watch_picks(std::function<void(const OpenProblem&)> tell) {
    static PickWatch* watch;
    if (!watch) watch = [[PickWatch alloc] initWithListener:std::move(tell)];
}
