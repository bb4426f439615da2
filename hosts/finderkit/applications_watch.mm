#include "finderkit/applications_watch.h"

#include <Foundation/Foundation.h>

#include <errno.h>
#include <sys/inotify.h>
#include <unistd.h>

#include "finderkit/application_sources.h"
#include "finderkit/applications_folder.h"

@interface ApplicationsWatch : NSObject <RunLoopEvents> {
  @private
    int _changes;
}
- (instancetype)initWithDescriptor:(int)changes;
@end

namespace {

const NSTimeInterval settling = 0.3, hour = 60 * 60;
constexpr uint32_t watched =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB | IN_ONLYDIR;

bool is_watching;

// If the folder does not exist yet, watches its nearest existing parent, where it will appear.
void watch_folder(int changes, std::string folder) {
    uint32_t wanted = watched;
    while (inotify_add_watch(changes, folder.c_str(), wanted) < 0 && errno == ENOENT) {
        const size_t slash = folder.rfind('/');
        if (slash == std::string::npos || slash == 0) return;
        folder.resize(slash);
        wanted = IN_CREATE | IN_MOVED_TO | IN_ONLYDIR | IN_MASK_ADD;
    }
}

}  // namespace

@implementation ApplicationsWatch

- (instancetype)initWithDescriptor:(int)changes {
    if (!(self = [super init])) return nil;
    _changes = changes;
    // Only in the default mode, since no menu is open then.
    [[NSRunLoop currentRunLoop] addEvent:reinterpret_cast<void*>(static_cast<intptr_t>(_changes))
                                    type:ET_RDESC
                                 watcher:self
                                 forMode:NSDefaultRunLoopMode];
    [NSTimer scheduledTimerWithTimeInterval:hour
                                     target:self
                                   selector:@selector(update)
                                   userInfo:nil
                                    repeats:YES];
    [self watchFolders];
    return self;
}

- (void)watchFolders {
    for (const std::string& folder : find_application_sources().folders) {
        watch_folder(_changes, folder);
    }
}

// Waits a little: an installation changes many files, one after the other.
- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    char events[4096];
    while (read(_changes, events, sizeof events) > 0) {
    }
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(update) object:nil];
    [self performSelector:@selector(update) withObject:nil afterDelay:settling];
}

- (NSDate*)timedOutEvent:(void*)data type:(RunLoopEventType)type forMode:(NSString*)mode {
    (void)data, (void)type, (void)mode;
    return nil;
}

- (void)update {
    update_applications_folder();
    [self watchFolders];
}

@end

bool watch_applications() {
    if (is_watching) return true;
    const int changes = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (changes < 0) return false;
    [[ApplicationsWatch alloc] initWithDescriptor:changes];  // as long as the program lives
    return is_watching = true;
}

bool applications_are_watched() { return is_watching; }
