#include "x11/desktop_windows.h"

#include <string.h>
#include <unistd.h>
#include <xcb/res.h>

#include <algorithm>
#include <deque>

#include "x11/window_connection.h"
#include "x11/window_questions.h"

namespace {

using Windows = std::vector<xcb_window_t>;

const size_t most_windows = 512;
const uint32_t most_atoms = 32;

// A manager that has gone leaves its properties on the root window; its own window is not there.
bool has_window_manager(const WindowConnection& to) {
    const auto on_root = PropertyQuestion(to.server, to.root, to.supporting_wm_check, 1).numbers();
    if (on_root.empty()) return false;
    return PropertyQuestion(to.server, on_root[0], to.supporting_wm_check, 1).numbers() == on_root;
}

struct WindowLook {
    WindowLook(const WindowConnection& to, xcb_window_t w)
        : window(w),
          state(to.server, w, to.wm_state, 2),
          class_names(to.server, w, XCB_ATOM_WM_CLASS),
          attributes(xcb_get_window_attributes(to.server, w)) {}

    bool is_client(const WindowConnection& to) const {
        xcb_generic_error_t* error = nullptr;
        const reply_t<xcb_get_window_attributes_reply_t> reply(
            xcb_get_window_attributes_reply(to.server, attributes, &error));
        free(error);
        const bool named = state.exists() || class_names.exists();
        return reply && named && !reply->override_redirect &&
               (state.exists() || reply->map_state == XCB_MAP_STATE_VIEWABLE);
    }
    xcb_window_t window;
    PropertyQuestion state, class_names;
    xcb_get_window_attributes_cookie_t attributes;
};

Windows limited(Windows windows) {
    if (windows.size() > most_windows) windows.resize(most_windows);
    return windows;
}

// The clients among these windows, and among the children of those that are none: window managers
// that list nothing put clients into frames.
Windows clients_among(const WindowConnection& to, const Windows& windows, int depth) {
    std::deque<WindowLook> looks;
    for (const xcb_window_t window : windows) looks.emplace_back(to, window);
    Windows clients;
    for (const WindowLook& look : looks) {
        if (look.is_client(to)) {
            clients.push_back(look.window);
        } else if (depth > 0) {
            const Windows inner =
                clients_among(to, limited(children_of(to.server, look.window)), depth - 1);
            clients.insert(clients.end(), inner.begin(), inner.end());
        }
    }
    return limited(std::move(clients));
}

Windows client_windows(const WindowConnection& to) {
    if (has_window_manager(to)) {
        return PropertyQuestion(to.server, to.root, to.client_list, most_windows).numbers();
    }
    return clients_among(to, limited(children_of(to.server, to.root)), 1);
}

std::string host_name() {
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

// With or without a domain.
bool is_this_machine(const std::string& machine) {
    static const std::string own = host_name();
    const std::string short_own = own.substr(0, own.find('.'));
    return machine.empty() || machine == "localhost" ||
           machine.substr(0, machine.find('.')) == short_own;
}

bool is_running(pid_t process) {
    return access(("/proc/" + std::to_string(process)).c_str(), F_OK) == 0;
}

// Which process the server sees at the other end of a window's connection.
class ProcessQuestion {
  public:
    ProcessQuestion(const WindowConnection& to, xcb_window_t window) : to_(to) {
        const xcb_res_client_id_spec_t spec = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        if (to.tells_processes) cookie_ = xcb_res_query_client_ids(to.server, 1, &spec);
    }
    ~ProcessQuestion() {
        if (cookie_.sequence) xcb_discard_reply(to_.server, cookie_.sequence);
    }
    ProcessQuestion(const ProcessQuestion&) = delete;
    ProcessQuestion& operator=(const ProcessQuestion&) = delete;

    pid_t answer() const {
        if (!cookie_.sequence) return 0;
        xcb_generic_error_t* error = nullptr;
        const reply_t<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(to_.server, cookie_, &error));
        cookie_.sequence = 0;
        free(error);
        return reply ? process_in(reply.get()) : 0;
    }

  private:
    static pid_t process_in(const xcb_res_query_client_ids_reply_t* reply) {
        for (auto ids = xcb_res_query_client_ids_ids_iterator(reply); ids.rem;
             xcb_res_client_id_value_next(&ids)) {
            if (!(ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID)) continue;
            if (xcb_res_client_id_value_value_length(ids.data) < 1) continue;
            return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
        }
        return 0;
    }
    const WindowConnection& to_;
    mutable xcb_res_query_client_ids_cookie_t cookie_ = {};
};

struct ClientQuestions {
    ClientQuestions(const WindowConnection& to, xcb_window_t w)
        : window(w),
          class_names(to.server, w, XCB_ATOM_WM_CLASS, 128),
          machine(to.server, w, to.client_machine),
          told_process(to.server, w, to.pid, 1),
          type(to.server, w, to.window_type, most_atoms),
          transient_for(to.server, w, XCB_ATOM_WM_TRANSIENT_FOR, 1),
          state(to.server, w, to.state, most_atoms),
          seen_process(to, w) {}

    // A window without a type is a dialog when it belongs to another one.
    bool is_normal(const WindowConnection& to) const {
        const auto states = state.numbers();
        if (std::find(states.begin(), states.end(), to.skip_taskbar) != states.end()) return false;
        const auto types = type.numbers();
        if (!types.empty()) {
            return std::find(types.begin(), types.end(), to.type_normal) != types.end();
        }
        const auto owner = transient_for.numbers();
        return owner.empty() || owner[0] == XCB_WINDOW_NONE || owner[0] == to.root;
    }
    pid_t process_id() const {
        std::string name = machine.bytes();
        if (!is_this_machine(name.substr(0, name.find('\0')))) return 0;
        // What a program in a container tells is the number that it has in there.
        const pid_t seen = seen_process.answer();
        if (seen > 0 && is_running(seen)) return seen;
        const auto told = told_process.numbers();
        return told.empty() ? 0 : static_cast<pid_t>(told[0]);
    }
    DesktopWindow answer(const WindowConnection& to) const {
        const std::string names = class_names.bytes();
        const size_t first_end = std::min(names.find('\0'), names.size());
        const char* second = first_end < names.size() ? names.c_str() + first_end + 1 : "";
        return {window, process_id(), names.substr(0, first_end), second, is_normal(to)};
    }
    xcb_window_t window;
    PropertyQuestion class_names, machine, told_process, type, transient_for, state;
    ProcessQuestion seen_process;
};

xcb_window_t focused_window(const WindowConnection& to) {
    const reply_t<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(to.server, xcb_get_input_focus(to.server), nullptr));
    // None and "whatever is under the pointer" are no windows.
    return focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT ? focus->focus : 0;
}

xcb_window_t active_window(const WindowConnection& to) {
    if (!has_window_manager(to)) return focused_window(to);
    const auto active = PropertyQuestion(to.server, to.root, to.active_window, 1).numbers();
    return active.empty() ? XCB_WINDOW_NONE : active[0];
}

}  // namespace

std::vector<DesktopWindow> desktop_windows() {
    const WindowConnection* to = window_connection();
    if (!to) return {};
    std::deque<ClientQuestions> questions;
    for (const xcb_window_t window : client_windows(*to)) questions.emplace_back(*to, window);
    std::vector<DesktopWindow> windows;
    for (const ClientQuestions& question : questions) windows.push_back(question.answer(*to));
    return windows;
}

pid_t active_process() {
    const WindowConnection* to = window_connection();
    const xcb_window_t window = to ? active_window(*to) : XCB_WINDOW_NONE;
    if (window == XCB_WINDOW_NONE || window == to->root) return 0;
    // The window with the keyboard may be a part of the application's; the server knows its owner.
    return ClientQuestions(*to, window).process_id();
}
