#include <host/text.h>

#include <AppKit/AppKit.h>

#include <dlfcn.h>
#include <stdio.h>

#include "finderkit/applications_watch.h"
#include "finderkit/finder_events.h"
#include "finderkit/plug_in.h"
#include "finderkit/settings_file.h"
#include "gworkspace/desktop_level.h"
#include "gworkspace/icons.h"
#include "gworkspace/opening.h"
#include "gworkspace/operations.h"
#include "gworkspace/presses.h"
#include "gworkspace/type_selection.h"
#include "file_steps/visible_text.h"
#include "offers/detached_program.h"
#include "x11/input_grab.h"

// When GNUstep loads bundles, the display server is not connected yet; the rest of the setup waits
// for the end of the launch.
@interface DelvioGWorkspaceLaunch : NSObject
@end

namespace {

void complain(const std::string& problem) {
    fprintf(stderr, "delvio: %s\n", operations::visible_text(problem).c_str());
}

// The folder of this library, where the bundles are.
std::string own_folder() {
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&complain), &info)) return ".";
    const std::string path = info.dli_fname;
    return path.substr(0, path.rfind('/'));
}

}  // namespace

@implementation DelvioGWorkspaceLaunch

- (void)didFinishLaunching:(NSNotification*)notification {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    std::string problem;
    const std::string bundle = find_plug_in(&problem, own_folder());
    if (bundle.empty()) return complain(problem);
    const std::string corrupt = settings_problem();
    if (!corrupt.empty()) complain(translated("%s; the default settings are used", {corrupt}));
    if (!answer_finder_events(&problem)) complain(problem);
    if (!load_plug_in(bundle, &problem)) return complain(problem);
    watch_applications();
    open_files_with_gworkspace();
    offer_gworkspace_operations();
    const std::string command = find_command(&problem);
    if (!command.empty()) set_own_program(command);
    set_mouse_up();
    take_menu_presses();
    end_type_selections();
    (void)notification;
}

@end

extern "C" __attribute__((visibility("default"))) void DelvioStartInGWorkspace() {
    keep_gworkspace_icons();
    keep_desktop_below();
    static DelvioGWorkspaceLaunch* launch = [DelvioGWorkspaceLaunch new];
    [[NSNotificationCenter defaultCenter] addObserver:launch
                                             selector:@selector(didFinishLaunching:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
}
