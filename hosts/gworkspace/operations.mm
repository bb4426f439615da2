#include "gworkspace/operations.h"

#include <AppKit/AppKit.h>

#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include <utility>

#include "finderkit/file_operations.h"
#include "gworkspace/gworkspace_classes.h"
#include "operations/engine.h"
#include "operations/work.h"
#include "operations_ui/operation_window.h"

using operations::Kind;
using operations::Observer;
using operations::Outcome;
using operations::Report;
using operations::Request;
using operations::State;

// A request on its way to GWorkspace, which may show a panel and wait for a click.
@interface GWorkspaceOperation : NSObject {
  @private
    Request* _request;
    std::shared_ptr<Observer>* _observer;
}
- (instancetype)initWithRequest:(Request)request observer:(std::shared_ptr<Observer>)observer;
- (void)start;
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

std::string folder_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

NSString* string_of(const std::string& path) {
    return [NSString stringWithUTF8String:path.c_str()];
}

// It takes paths apart at backslashes, too, and would mean another file.
bool is_understood(NSString* path) {
    NSString* folder = [path stringByDeletingLastPathComponent];
    NSString* again = [folder stringByAppendingPathComponent:[path lastPathComponent]];
    return [again isEqualToString:path] && [path rangeOfString:@"\\"].length == 0;
}

// Why GWorkspace cannot be given this one; empty if it can. It knows files by names that are text.
std::string why_not(const std::string& path) {
    struct stat status;
    const std::string name = operations::QuotedName(path);
    if (lstat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? name + " is no longer there" : name + ": " + strerror(errno);
    }
    NSString* text = string_of(path);
    if (!text) return "the name " + name + " is not UTF-8, as all names are for GWorkspace";
    return is_understood(text) ? "" : "GWorkspace does not understand the name " + name;
}

// One refusal refuses the request, before anything is touched.
bool refuse(const Request& request, Report* report) {
    bool is_refused = false;
    const bool has_destination = request.kind != Kind::Trash;
    const std::string about_destination = has_destination ? why_not(request.destination) : "";
    for (const std::string& source : request.sources) {
        std::string reason = why_not(source);
        if (reason.empty()) reason = about_destination;
        is_refused = is_refused || !reason.empty();
        report->outcomes.push_back({source, State::Failed, "", reason});
    }
    for (Outcome& outcome : report->outcomes) {
        if (outcome.reason.empty()) outcome.reason = "nothing was done, for another file's sake";
    }
    return is_refused;
}

// GWorkspace takes files of one folder at a time.
void hand_over(const Request& request) {
    id<GWWorkspace> workspace = SharedGWorkspace();
    size_t next = 0;
    while (next < request.sources.size()) {
        const std::string folder = folder_of(request.sources[next]);
        NSMutableArray* names = [NSMutableArray array];
        for (; next < request.sources.size() && folder_of(request.sources[next]) == folder;
             ++next) {
            [names addObject:[string_of(request.sources[next]) lastPathComponent]];
        }
        NSString* destination =
            request.kind == Kind::Trash ? [workspace trashPath] : string_of(request.destination);
        [workspace
            performFileOperation:[NSDictionary
                                     dictionaryWithObjectsAndKeys:operation_of(request.kind),
                                                                  @"operation", string_of(folder),
                                                                  @"source", destination,
                                                                  @"destination", names, @"files",
                                                                  nil]];
    }
}

class GWorkspaceCarrier : public operations::Carrier {
  public:
    void carry_out(Request request, std::shared_ptr<Observer> observer) override {
        // GWorkspace would ask a second time.
        if (request.replace) return engine_->carry_out(std::move(request), std::move(observer));
        GWorkspaceOperation* operation =
            [[[GWorkspaceOperation alloc] initWithRequest:std::move(request)
                                                 observer:std::move(observer)] autorelease];
        [operation performSelector:@selector(start) withObject:nil afterDelay:0];
    }

  private:
    const std::unique_ptr<operations::Carrier> engine_ = operations::MakeEngine();
};

}  // namespace

@implementation GWorkspaceOperation

- (instancetype)initWithRequest:(Request)request observer:(std::shared_ptr<Observer>)observer {
    if (!(self = [super init])) return nil;
    _request = new Request(std::move(request));
    _observer = new std::shared_ptr<Observer>(std::move(observer));
    return self;
}

- (void)dealloc {
    delete _request;
    delete _observer;
    [super dealloc];
}

// GWorkspace does not tell when it is done: what it has taken over counts as done.
- (void)start {
    Report report;
    if (!refuse(*_request, &report)) {
        hand_over(*_request);
        for (Outcome& outcome : report.outcomes) outcome = {outcome.source, State::Done, "", ""};
    }
    (*_observer)->ended(report);
}

@end

void OfferGWorkspaceOperations() {
    FileOperationService service;
    service.carrier = std::make_shared<GWorkspaceCarrier>();
    service.observer = [](const Request& request) {
        return operations::MakeWindowObserver(request, {});
    };
    SetFileOperationService(service);
}
