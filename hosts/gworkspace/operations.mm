#include "gworkspace/operations.h"

#include <AppKit/AppKit.h>

#include <utility>

#include "finderkit/file_operations.h"
#include "gworkspace/changes.h"
#include "gworkspace/handover.h"
#include "offers/notice.h"
#include "operations/engine.h"
#include "operations_ui/operation_window.h"

using operations::Carrier;
using operations::Observer;
using operations::Request;

// A request at work. GWorkspace may show a panel for it and wait for a click; the program that
// asked does not wait.
@interface GWorkspaceOperation : NSObject {
  @private
    Request* _request;
    Carrier* _engine;  // not owned; it stays
}
- (instancetype)initWithRequest:(Request)request engine:(Carrier*)engine;
- (void)start;
@end

@implementation GWorkspaceOperation

- (instancetype)initWithRequest:(Request)request engine:(Carrier*)engine {
    if (!(self = [super init])) return nil;
    _request = new Request(std::move(request));
    _engine = engine;
    return self;
}

- (void)dealloc {
    delete _request;
    [super dealloc];
}

// GWorkspace shows its own windows; ours would cover its questions.
- (void)start {
    if (is_for_gworkspace(*_request) && [self handOver]) return;
    const auto ended = [request = *_request](const operations::Report& report) {
        tell_gworkspace(request, report);
        offer_undo(request, report);
    };
    const auto windows = operations::make_window_observer(*_request, ended, operations::Asks::Once);
    _engine->carry_out(*_request, windows);
}

- (bool)handOver {
    return hand_to_gworkspace(*_request, [request = *_request] {
        operations::note_done_elsewhere(request, "GWorkspace");
    });
}

@end

namespace {

class GWorkspaceCarrier : public Carrier {
  public:
    void carry_out(Request request, std::shared_ptr<Observer>) override {
        GWorkspaceOperation* operation =
            [[[GWorkspaceOperation alloc] initWithRequest:std::move(request)
                                                   engine:engine_.get()] autorelease];
        [operation performSelector:@selector(start) withObject:nil afterDelay:0];
    }

  private:
    const std::unique_ptr<Carrier> engine_ = operations::make_engine();
};

}  // namespace

void offer_gworkspace_operations() {
    FileOperationService service;
    service.carrier = std::make_shared<GWorkspaceCarrier>();
    // The observer depends on who carries the request out, which is decided when the request
    // starts.
    service.observer = [](const Request&) { return std::shared_ptr<Observer>(); };
    set_file_operation_service(service);
}
