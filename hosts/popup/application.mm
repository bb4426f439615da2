#include "popup/application.h"

#include <AppKit/AppKit.h>

#include <glib.h>
#include <host/light_start.h>
#include <host/memory_reserve.h>

#include <vector>

#include "command/command_line.h"

// Replaces a method of Foundation: the command shares no notifications with other programs, and the
// first use of the workspace would otherwise wait for the notification daemon to start.
@interface NSDistributedNotificationCenter (Alone)
- (void)_connect;
@end

@implementation NSDistributedNotificationCenter (Alone)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"
- (void)_connect {
}
#pragma clang diagnostic pop
@end

// The command shows its menu at once; only a panel needs the rest of the launch.
@interface LateLauncher : NSObject
+ (void)panelBecameKey:(NSNotification*)notification;
@end

@implementation LateLauncher
// Ends the launch: from then on the toolkit keeps track of the window that has the keyboard,
// beginning with this panel.
+ (void)panelBecameKey:(NSNotification*)notification {
    if (![[notification object] isKindOfClass:[NSPanel class]]) return;
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [NSApp finishLaunching];
}
@end

namespace {

void drop_log(NSString*) {}

GLogWriterOutput drop_glib_log(GLogLevelFlags, const GLogField*, gsize, gpointer) {
    return G_LOG_WRITER_HANDLED;
}

void silence() {
    const char* wanted = getenv("DELVIO_TOOLKIT_LOG");
    if (wanted && *wanted) return;
    _NSLog_printf_handler = drop_log;
    g_log_set_writer_func(drop_glib_log, nullptr, nullptr);
}

// These hold whatever the user's defaults say, because this is no ordinary application.
NSDictionary* forced_defaults() {
    return [NSDictionary dictionaryWithObjectsAndKeys:@"YES", @"GSSuppressAppIcon", [NSArray array],
                                                      @"GSAppKitUserBundles", nil];
}

// Option is Alt, Command is Super, unless the user has chosen otherwise.
NSDictionary* fallback_defaults() {
    return [NSDictionary dictionaryWithObjectsAndKeys:@"Alt_L", @"GSFirstAlternateKey", @"Alt_R",
                                                      @"GSSecondAlternateKey", @"Super_L",
                                                      @"GSFirstCommandKey", @"Super_R",
                                                      @"GSSecondCommandKey", nil];
}

// Foundation gives up on a variable that is not UTF-8.
std::vector<char*> readable_environment() {
    std::vector<char*> variables;
    for (char** variable = environ; *variable; ++variable) {
        if (g_utf8_validate(*variable, -1, nullptr)) variables.push_back(*variable);
    }
    variables.push_back(nullptr);
    return variables;
}

// Without this, the toolkit shows a panel and waits for a click.
void end_with_exception(NSException* exception) {
    NSString* text =
        [NSString stringWithFormat:@"internal error: %@: %@", [exception name], [exception reason]];
    complain_about_usage([text UTF8String] ?: "internal error");
    exit(exit_failed);
}

}  // namespace

void prepare_toolkit(char* program) {
    silence();
    char* arguments[] = {program, nullptr};
    std::vector<char*> environment = readable_environment();
    GSInitializeProcess(1, arguments, environment.data());
    keep_memory_reserve();
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    NSMutableDictionary* forced =
        [[[defaults volatileDomainForName:NSArgumentDomain] mutableCopy] autorelease]
            ?: [NSMutableDictionary dictionary];
    [forced addEntriesFromDictionary:forced_defaults()];
    [defaults removeVolatileDomainForName:NSArgumentDomain];
    [defaults setVolatileDomain:forced forName:NSArgumentDomain];
    [defaults registerDefaults:fallback_defaults()];
    NSSetUncaughtExceptionHandler(end_with_exception);
}

void start_application() {
    start_lightly();
    @try {
        [NSApplication sharedApplication];
    } @catch (NSException* exception) {
        end_with_exception(exception);  // the toolkit has set its own handler meanwhile
    }
    [[NSNotificationCenter defaultCenter] addObserver:[LateLauncher class]
                                             selector:@selector(panelBecameKey:)
                                                 name:NSWindowDidBecomeKeyNotification
                                               object:nil];
    NSSetUncaughtExceptionHandler(end_with_exception);
}
