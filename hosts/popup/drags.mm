#include "popup/drags.h"

#include <AppKit/AppKit.h>
#include <host/file_drags.h>
#include <GNUstepGUI/GSPasteboardServer.h>

#include <unistd.h>

#include "command/exit_signals.h"

namespace {

constexpr NSTimeInterval turn = 0.02;
constexpr NSTimeInterval longest_fetch = 10;
constexpr NSTimeInterval longest_start = 5;

NSDate* after(NSTimeInterval time) { return [NSDate dateWithTimeIntervalSinceNow:time]; }

bool pasteboards_are_served() {
    return [NSConnection rootProxyForConnectionWithRegisteredName:PBSNAME host:@""] != nil;
}

// Starts the pasteboard server. The toolkit would start it too, but then wait five seconds for a
// notification that this command never gets.
void serve_pasteboards() {
    NSString* server = [NSTask launchPathForTool:@"gpbs"];
    if (!server || pasteboards_are_served()) return;
    NSTask* task = [[NSTask new] autorelease];
    [task setLaunchPath:server];
    [task setArguments:[NSArray arrayWithObject:@"--auto"]];
    [task setStandardOutput:[NSFileHandle fileHandleWithNullDevice]];
    [task setStandardError:[NSFileHandle fileHandleWithNullDevice]];
    [task launch];
    NSDate* end = after(longest_start);
    while (!pasteboards_are_served() && [end timeIntervalSinceNow] > 0) usleep(10000);
}

}  // namespace

void finish_drags() {
    if (![NSEvent pressedMouseButtons]) return;
    serve_pasteboards();
    while ([NSEvent pressedMouseButtons] && !signal_caught()) {
        @autoreleasepool {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:after(turn)];
        }
    }
    finish_file_drops(longest_fetch);
}
