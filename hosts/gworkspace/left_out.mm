#include "gworkspace/left_out.h"

#include <host/text.h>

#include <sys/stat.h>

#include "file_steps/folder.h"
#include "file_steps/visible_text.h"
#include "gworkspace/last_look.h"
#include "operations_ui/operation_window.h"

using operations::Kind;
using operations::Outcome;
using operations::Report;
using operations::Request;
using operations::State;

// Waits for the end of one order, and lives until then.
@interface LeftOutWatch : NSObject {
  @private
    Request* _request;
    NSDictionary* _order;
    NSMutableSet* _done;  // names
}
- (instancetype)initWithRequest:(const Request&)request order:(NSDictionary*)order;
@end

namespace {

bool is_still_there(const std::string& path) {
    struct stat what;
    return lstat(path.c_str(), &what) == 0;
}

const char* text_for(Kind kind) {
    if (kind == Kind::Alias) {
        return to_translate("%s was not linked: %s has a file of that name now");
    }
    return kind == Kind::Move ? to_translate("%s was not moved: %s has a file of that name now")
                              : to_translate("%s was not copied: %s has a file of that name now");
}

Outcome outcome_of(const std::string& source, const Request& request) {
    return {source, State::Failed, "",
            translated(text_for(request.kind), {operations::quoted_name(source),
                                                operations::quoted_name(request.destination)})};
}

}  // namespace

@implementation LeftOutWatch

- (instancetype)initWithRequest:(const Request&)request order:(NSDictionary*)order {
    if (!(self = [super init])) return nil;
    _request = new Request(request);
    _order = [order copy];
    _done = [NSMutableSet new];
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:[self retain]
               selector:@selector(didChange:)
                   name:@"GWFileSystemDidChangeNotification"
                 object:nil];
    [center addObserver:self selector:@selector(hasEnded:) name:operation_has_ended object:nil];
    return self;
}

- (void)dealloc {
    delete _request;
    [_order release];
    [_done release];
    [super dealloc];
}

// The object describes the change in the words of the order. A paused operation sends several.
- (void)didChange:(NSNotification*)notification {
    NSDictionary* change = [notification object];
    for (NSString* key in @[ @"operation", @"source", @"destination" ]) {
        if (![[change objectForKey:key] isEqual:[_order objectForKey:key]]) return;
    }
    [_done addObjectsFromArray:[change objectForKey:@"files"]];
}

// GWorkspace's thread waits for the return of this method, so the alert comes later.
- (void)hasEnded:(NSNotification*)notification {
    const id<GWorkspaceOperation> operation = [notification object];
    if (![[operation type] isEqual:[_order objectForKey:@"operation"]] ||
        ![[operation source] isEqual:[_order objectForKey:@"source"]] ||
        ![[operation destination] isEqual:[_order objectForKey:@"destination"]]) {
        return;
    }
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [self performSelector:@selector(tell) withObject:nil afterDelay:0];
}

- (void)tell {
    Report report;
    for (const std::string& source : _request->sources) {
        const std::string name = operations::name_in_path(source);
        const bool is_done = [_done containsObject:[NSString stringWithUTF8String:name.c_str()]];
        if (is_done || !is_still_there(source) ||
            !is_still_there(_request->destination + "/" + name))
            continue;
        report.outcomes.push_back(outcome_of(source, *_request));
    }
    operations::show_failures(report);
    [self autorelease];
}

@end

void tell_what_is_left_out(const Request& request, NSDictionary* order) {
    if (request.kind == Kind::Trash) return;
    [[[LeftOutWatch alloc] initWithRequest:request order:order] release];
}
