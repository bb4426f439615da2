#include "popup/menu_command.h"

#include <errno.h>
#include <host/text.h>
#include <host/memory_reserve.h>
#include <host/menu_tracking.h>
#include <host/modifier_keys.h>

#include <memory>
#include <optional>
#include <utility>

#include "command/exit_signals.h"
#include "command/file_arguments.h"
#include "command/private_display.h"
#include "command/standard_streams.h"
#include "file_steps/visible_text.h"
#include "finderkit/finder_events.h"
#include "finderkit/open_problems.h"
#include "finderkit/plug_in.h"
#include "popup/application.h"
#include "popup/asked_operations.h"
#include "popup/drags.h"
#include "popup/file_actions.h"
#include "popup/host_menu.h"
#include "popup/menu_photographer.h"
#include "popup/menu_walker.h"
#include "popup/shown_menu.h"
#include "settings/forced_settings.h"

using operations::in_quotes;

namespace {

int failed(const std::string& problem) {
    complain_about_usage(problem);
    return exit_failed;
}

// A visible menu needs the user's display; the other forms can use a private one.
bool have_display(MenuForm form, std::string* problem) {
    if (display_answers(problem)) return true;
    if (!problem->empty()) return false;
    if (form != MenuForm::shown) return start_private_display(problem);
    const char* compositor = getenv("WAYLAND_DISPLAY");
    if (compositor && *compositor) {
        *problem = translated(
            "this Wayland session has no X server (Xwayland) to show the menu on; switch "
            "Xwayland on in the compositor, and set DISPLAY");
        return false;
    }
    *problem =
        translated("there is no display to show the menu on; set DISPLAY, or use --print, --json, "
                   "--png or --pick, which need none");
    return false;
}

// The plug-in gets the selection as text, so it misses names that are not UTF-8.
void warn_of_other_encodings(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        if ([NSString stringWithUTF8String:file.c_str()]) continue;
        complain_about_usage(translated(
            "the name %s is not UTF-8: its menu has the host's own items and none of Delvio's",
            {in_quotes(file)}));
    }
}

// Scripts pick items by their titles, so those stay English.
bool is_for_people(MenuForm form) { return form == MenuForm::shown || form == MenuForm::picture; }

bool is_written(MenuForm form) { return form == MenuForm::text || form == MenuForm::json; }

using Stage = std::optional<PreparedMenuStage>;

// With `stage`, the compositor is asked for a place for the menu while the toolkit starts.
bool prepare_program(MenuForm form, Stage* stage, std::string* problem) {
    static bool is_prepared;
    const std::string bundle = is_prepared ? std::string() : find_plug_in(problem);
    if (!is_prepared && (bundle.empty() || !have_display(form, problem))) return false;
    if (stage) stage->emplace();
    if (is_prepared) return true;
    start_application();
    return is_prepared = answer_finder_events(problem) && load_plug_in(bundle, problem);
}

bool prepare(MenuRequest& request, Stage* stage, std::string* problem) {
    if (is_written(request.form)) keep_output_pure();
    if (!resolve_files(&request.files, problem)) return false;
    const bool is_shown = request.form == MenuForm::shown;
    if (!prepare_program(request.form, is_shown ? stage : nullptr, problem)) return false;
    warn_of_other_encodings(request.files);
    set_held_modifier_flags(request.modifiers);
    offer_file_operations(request);
    return true;
}

// Uses the toolkit's public call, like any program that pops up a menu.
void pop_up(HostMenu* host, id<MenuTracker> tracker, NSPoint point) {
    NSEvent* event = right_click_event(point, current_modifier_flags());
    [NSMenu setContextMenuTracker:tracker];
    [NSMenu popUpContextMenu:[host menu] withEvent:event forView:nil];
    [NSMenu setContextMenuTracker:nil];
}

std::unique_ptr<MenuWriter> new_writer(MenuForm form, MenuWriter::Taker take) {
    if (form == MenuForm::json) return std::make_unique<MenuJson>(std::move(take));
    return std::make_unique<MenuText>(std::move(take));
}

int write_menu(HostMenu* host, const MenuRequest& request) {
    FILE* const output = output_stream();
    bool is_written = true;
    const auto writer = new_writer(request.form, [&](const std::string& part) {
        is_written = is_written && fwrite(part.data(), 1, part.size(), output) == part.size();
    });
    MenuReader* reader =
        [[[MenuReader alloc] initWithDepth:request.depth
                                    writer:writer.get()
                                   details:request.form == MenuForm::json] autorelease];
    pop_up(host, reader, NSZeroPoint);
    if (![reader problem].empty()) complain_about_usage([reader problem]);
    writer->finish();
    if (is_written && fflush(output) == 0) return exit_done;
    return failed(translated("cannot write the menu to standard output"));
}

int pick(HostMenu* host, const MenuRequest& request) {
    MenuPicker* picker = [[[MenuPicker alloc] initWithTitles:request.pick_titles] autorelease];
    pop_up(host, picker, NSZeroPoint);
    return [picker problem].empty() ? exit_done : failed([picker problem]);
}

int take_picture(HostMenu* host, const MenuRequest& request) {
    MenuPhotographer* photographer =
        [[[MenuPhotographer alloc] initWithFile:request.picture
                                     openTitles:request.open_titles] autorelease];
    [photographer waitForMenu];
    pop_up(host, nil, popup_point(request, nullptr));
    [photographer stop];
    return [photographer problem].empty() ? exit_done : failed([photographer problem]);
}

int show(HostMenu* host, const MenuRequest& request, Stage* stage) {
    MenuEnder* ender = [[MenuEnder new] autorelease];
    [ender watchForSignals];
    pop_up(host, nil, popup_point(request, &**stage));
    stage->reset();
    finish_drags();
    [ender stop];
    if (signal_caught()) return 128 + signal_caught();
    if ([host problem].empty()) return exit_done;
    complain_about_usage([host problem]);
    show_problem(translated("This could not be done."), [host problem]);
    return exit_failed;
}

std::vector<OpenProblem>& open_problems() {
    static auto& problems = *new std::vector<OpenProblem>;
    return problems;
}

// Nobody reads the standard error of a command that a keyboard shortcut started, so a panel
// appears, too.
void tell_open_problems(MenuForm form) {
    for (const OpenProblem& problem : open_problems()) complain_about_usage(problem_line(problem));
    if (form == MenuForm::shown && !signal_caught()) show_open_problems(open_problems());
}

int run_form(HostMenu* host, const MenuRequest& request, Stage* stage) {
    switch (request.form) {
        case MenuForm::text:
        case MenuForm::json:
            return write_menu(host, request);
        case MenuForm::picture:
            return take_picture(host, request);
        case MenuForm::pick:
            return pick(host, request);
        case MenuForm::shown:
            return show(host, request, stage);
    }
    return exit_failed;
}

int run_prepared(const MenuRequest& request, Stage* stage) {
    open_problems().clear();
    listen_for_open_problems(
        [](const OpenProblem& problem) { open_problems().push_back(problem); });
    HostMenu* host = [[[HostMenu alloc] initWithFiles:request.files
                                            forPeople:is_for_people(request.form)] autorelease];
    const int status = run_form(host, request, stage);
    finish_finder_events();
    const int operations_status = finish_file_operations();
    flush_bus();
    if (signal_caught()) return 128 + signal_caught();
    // A menu that nothing was picked from may lack files, or not have come at all.
    if (memory_was_short())
        open_problems().push_back({"", "", error_text(ENOMEM), Problem::memory});
    tell_open_problems(request.form);
    if (status != exit_done) return status;
    if (![host problem].empty()) return failed([host problem]);
    return open_problems().empty() ? operations_status : exit_failed;
}

}  // namespace

bool prepare_menus(std::string* problem) {
    return prepare_program(MenuForm::shown, nullptr, problem);
}

int run_menu_command(MenuRequest request) {
    std::string problem;
    int status = exit_misused;
    if (!force_settings(request.settings, &problem)) {
        complain_about_usage(problem);
    } else {
        Stage stage;
        status =
            prepare(request, &stage, &problem) ? run_prepared(request, &stage) : failed(problem);
    }
    free_settings(request.settings);
    return status;
}
