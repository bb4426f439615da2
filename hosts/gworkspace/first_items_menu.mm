#include "gworkspace/first_items_menu.h"

#include <host/text.h>

#include "finderkit/open_problems.h"
#include "offers/detached_program.h"
#include "offers/first_items.h"
#include "offers/shown_undo.h"

// Does what its item is for. The item retains it.
@interface GWorkspaceFirstItem : NSObject {
  @private
    HostAction* _action;
    std::vector<std::string>* _files;
}
- (instancetype)initWithAction:(const HostAction&)action
                         files:(const std::vector<std::string>&)files;
- (void)perform:(id)sender;
@end

@implementation GWorkspaceFirstItem

- (instancetype)initWithAction:(const HostAction&)action
                         files:(const std::vector<std::string>&)files {
    if (!(self = [super init])) return nil;
    _action = new HostAction(action);
    _files = new std::vector<std::string>(files);
    return self;
}

- (void)dealloc {
    delete _action;
    delete _files;
    [super dealloc];
}

- (void)perform:(id)sender {
    (void)sender;
    const std::string problem = (*_action)(*_files);
    if (!problem.empty()) show_problem(translated("This could not be done."), problem);
}

@end

namespace {

std::string undo() {
    undo_with_windows({});
    return {};
}

std::string open_settings() {
    if (start_own_program({"settings"})) return {};
    return translated("cannot start the settings window");
}

}  // namespace

void add_first_items(NSMenu* menu, const std::vector<std::string>& files) {
    if (files.empty()) return;
    for (const HostItem& each : first_items(files, true, {undo, open_settings})) {
        NSString* title = [NSString stringWithUTF8String:each.title.c_str()];
        NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:title ?: @""
                                                      action:@selector(perform:)
                                               keyEquivalent:@""];
        GWorkspaceFirstItem* target = [[GWorkspaceFirstItem alloc] initWithAction:each.action
                                                                            files:files];
        [item setTarget:target];
        [item setRepresentedObject:target];  // the target is not retained
        [menu addItem:item];
        [target release];
        [item release];
    }
}
