#include "gworkspace/changes.h"

#include <AppKit/AppKit.h>

using operations::Kind;
using operations::Outcome;
using operations::Report;
using operations::Request;
using operations::State;

namespace {

NSString* string_of(const std::string& path) {
    return [NSString stringWithUTF8String:path.c_str()];
}

// Reports a change in the form of GWorkspace's own operations.
void tell(NSString* operation, NSString* folder, NSString* destination, NSString* name) {
    NSArray* names = [NSArray arrayWithObject:name];
    NSDictionary* change = [NSDictionary
        dictionaryWithObjectsAndKeys:operation, @"operation", folder, @"source", destination,
                                     @"destination", names, @"files", names, @"origfiles", nil];
    [[NSNotificationCenter defaultCenter] postNotificationName:@"GWFileSystemDidChangeNotification"
                                                        object:change];
}

// Reports a move as two changes, since the file may have a new name.
void tell_of(const Outcome& outcome, Kind kind) {
    NSString *source = string_of(outcome.source), *target = string_of(outcome.target);
    NSString* folder = [source stringByDeletingLastPathComponent];
    if (kind == Kind::Move && source) {
        tell(NSWorkspaceDestroyOperation, folder, folder, [source lastPathComponent]);
    }
    NSString* destination = [target stringByDeletingLastPathComponent];
    if (source && target && kind != Kind::Trash) {
        tell(NSWorkspaceCopyOperation, folder, destination, [target lastPathComponent]);
    }
}

}  // namespace

void tell_gworkspace(const Request& request, const Report& report) {
    for (const Outcome& outcome : report.outcomes) {
        if (outcome.state == State::Done) tell_of(outcome, request.kind);
    }
}
