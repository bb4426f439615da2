#include "gworkspace/handover.h"

#include <AppKit/AppKit.h>

#include <dirent.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>

#include "gworkspace/gworkspace_classes.h"
#include "gworkspace/last_look.h"
#include "gworkspace/left_out.h"
#include "gworkspace/question_keyboard.h"

using operations::Kind;
using operations::Request;

// Notices when GWorkspace begins with the order that it was given last.
@interface GWorkspaceBeginning : NSObject {
  @private
    NSDictionary* _order;
    std::function<void()>* _begins;
}
- (void)expect:(NSDictionary*)order begins:(const std::function<void()>&)begins;
@end

@implementation GWorkspaceBeginning

- (void)expect:(NSDictionary*)order begins:(const std::function<void()>&)begins {
    [_order autorelease];
    _order = [order copy];
    delete _begins;
    _begins = new std::function<void()>(begins);
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center removeObserver:self];
    [center addObserver:self
               selector:@selector(willChange:)
                   name:@"GWFileSystemWillChangeNotification"
                 object:nil];
}

// The notification's object describes the change, in the words of the order.
- (void)willChange:(NSNotification*)notification {
    if (![[notification object] isEqual:_order]) return;
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    (*_begins)();
}

@end

namespace {

NSString* operation_of(Kind kind) {
    switch (kind) {
        case Kind::Move:
            return NSWorkspaceMoveOperation;
        case Kind::Copy:
            return NSWorkspaceCopyOperation;
        case Kind::Alias:
            return NSWorkspaceLinkOperation;
        case Kind::Trash:
            break;
    }
    return NSWorkspaceRecycleOperation;
}

NSString* text_of(const std::string& path) { return [NSString stringWithUTF8String:path.c_str()]; }

std::string folder_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

std::string name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// GWorkspace only knows names that are text, and splits paths at backslashes, too.
bool is_understood(const std::string& path) {
    NSString* text = text_of(path);
    NSString* folder = [text stringByDeletingLastPathComponent];
    NSString* again = [folder stringByAppendingPathComponent:[text lastPathComponent]];
    return text && [again isEqualToString:text] && path.find('\\') == std::string::npos;
}

bool is_there(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

// The path with all links resolved; the path itself if that fails.
std::string real_path(const std::string& path) {
    char* found = realpath(path.c_str(), nullptr);
    const std::string real = found ? found : path;
    free(found);
    return real;
}

bool holds(const std::string& folder, const std::string& path) {
    const std::string outer = real_path(folder) + "/", inner = real_path(path) + "/";
    return inner.compare(0, outer.size(), outer) == 0;
}

// Compares as the plug-in does, so that a name about which the plug-in has asked never reaches
// GWorkspace.
struct ignoring_case {
    bool operator()(const std::string& one, const std::string& other) const {
        return strcasecmp(one.c_str(), other.c_str()) < 0;
    }
};

// Whether all the names are free; false if the folder cannot be read.
bool are_free(const std::vector<std::string>& sources, const std::string& destination) {
    std::set<std::string, ignoring_case> names;
    for (const std::string& source : sources) {
        if (!names.insert(name_of(source)).second) return false;
    }
    DIR* folder = opendir(destination.c_str());
    if (!folder) return false;
    bool free = true;
    while (const dirent* entry = free ? readdir(folder) : nullptr) {
        free = names.count(entry->d_name) == 0;
    }
    closedir(folder);
    return free;
}

bool suits_destination(const Request& request) {
    const std::string& destination = request.destination;
    const auto is_above = [&](const auto& source) { return holds(source, destination); };
    return is_understood(destination) && are_free(request.sources, destination) &&
           std::none_of(request.sources.begin(), request.sources.end(), is_above);
}

}  // namespace

bool is_for_gworkspace(const Request& request) {
    if (request.replace || request.sources.empty()) return false;
    const std::string folder = folder_of(request.sources.front());
    for (const std::string& source : request.sources) {
        if (folder_of(source) != folder || !is_understood(source) || !is_there(source)) {
            return false;
        }
    }
    return request.kind == Kind::Trash || suits_destination(request);
}

bool hand_to_gworkspace(const Request& request, const std::function<void()>& begins) {
    id<GWWorkspace> workspace = shared_gworkspace();
    NSMutableArray* names = [NSMutableArray array];
    for (const std::string& source : request.sources) {
        [names addObject:text_of(name_of(source))];
    }
    const bool is_trash = request.kind == Kind::Trash;
    NSString* destination = is_trash ? [workspace trashPath] : text_of(request.destination);
    NSString* source = text_of(folder_of(request.sources.front()));
    NSDictionary* order = [NSDictionary
        dictionaryWithObjectsAndKeys:operation_of(request.kind), @"operation", source, @"source",
                                     destination, @"destination", names, @"files", nil];
    static GWorkspaceBeginning* beginning = [GWorkspaceBeginning new];
    [beginning expect:order
               begins:[=] {
                   tell_what_is_left_out(request, order);
                   begins();
               }];
    give_questions_the_keyboard();
    return begins_after_look(
        order, [&] { return is_for_gworkspace(request); },
        [&] { [workspace performFileOperation:order]; });
}
