// A bundle that tests put into GWorkspace beside Delvio's. It answers questions about the screen
// over a socket; tests act on the program with mouse and keyboard. It links only GNUstep, so that
// it also works in a GWorkspace without Delvio.
#include <AppKit/AppKit.h>

#include <dlfcn.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <sstream>

#include "gworkspace/probe_questions.h"

@interface GWorkspaceProbe : NSObject <RunLoopEvents> {
  @private
    int _listener;
}
@end

namespace {

int listen_at(const char* path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "%s", path);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto* bound = reinterpret_cast<sockaddr*>(&address);
    return bind(listener, bound, sizeof address) || listen(listener, 8) ? -1 : listener;
}

// The other answers are in a library that needs Delvio's libraries. It is loaded where those are.
std::string ask_about_menus(const std::string& question) {
    using Answer = void (*)(const char*, std::string*);
    if (!dlopen("libdelvio-platform.so", RTLD_NOW | RTLD_NOLOAD)) return "";
    static void* menus = dlopen(GWORKSPACE_MENU_PROBE, RTLD_NOW);
    const auto answer =
        reinterpret_cast<Answer>(menus ? dlsym(menus, "answer_about_menus") : nullptr);
    if (!answer) return std::string("error ") + dlerror();
    std::string text;
    answer(question.c_str(), &text);
    return text;
}

bool has_launched;

std::string answer_to(const std::string& line) {
    std::istringstream words(line);
    std::string question, rest;
    words >> question >> std::ws;
    if (question == "launched") return has_launched ? "yes" : "";
    std::getline(words, rest, '\0');  // a name may hold a newline
    std::string answer;
    @try {
        return answer_about_views(question, rest, &answer) ? answer : ask_about_menus(line);
    } @catch (NSException* exception) {
        return std::string("error ") + [[exception description] UTF8String];
    }
}

void serve(int client) {
    char buffer[4096];
    const ssize_t length = read(client, buffer, sizeof buffer);
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    const std::string answer = answer_to(std::string(buffer, length > 0 ? length : 0));
    [pool release];
    size_t sent = 0;
    while (sent < answer.size()) {
        const ssize_t step = send(client, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
        if (step <= 0) break;
        sent += static_cast<size_t>(step);
    }
    close(client);
}

}  // namespace

@implementation GWorkspaceProbe

- (instancetype)init {
    if (!(self = [super init])) return nil;
    const char* path = getenv("DELVIO_TEST_PROBE");
    _listener = path && objc_lookUpClass("GWorkspace") ? listen_at(path) : -1;
    if (_listener < 0) return self;
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(didFinishLaunching:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
    NSString* modes[] = {NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode};
    for (NSString* mode : modes) {
        [[NSRunLoop currentRunLoop]
            addEvent:reinterpret_cast<void*>(static_cast<intptr_t>(_listener))
                type:ET_RDESC
             watcher:self
             forMode:mode];
    }
    return self;
}

- (void)didFinishLaunching:(NSNotification*)notification {
    (void)notification;
    has_launched = true;
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    const int client = accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) serve(client);
}

- (NSDate*)timedOutEvent:(void*)data type:(RunLoopEventType)type forMode:(NSString*)mode {
    (void)data, (void)type, (void)mode;
    return nil;
}

@end
