#include "x11/desktop_windows.h"

#include <algorithm>
#include <deque>

#include "x11/window_connection.h"
#include "x11/window_manager.h"
#include "x11/window_process.h"
#include "x11/window_questions.h"

namespace {

using Windows = std::vector<xcb_window_t>;

const size_t most_windows = 512;
const uint32_t most_atoms = 32;

struct WindowLook {
    WindowLook(const WindowConnection& to, xcb_window_t w)
        : window(w),
          state(to.server, w, to.wm_state, 2),
          class_names(to.server, w, XCB_ATOM_WM_CLASS),
          attributes(xcb_get_window_attributes(to.server, w)) {}

    bool is_client(const WindowConnection& to) const {
        xcb_generic_error_t* error = nullptr;
        const Reply<xcb_get_window_attributes_reply_t> reply(
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

// The clients among these windows, and among the children of windows that are no clients: a window
// manager that keeps no list puts its clients into frames.
Windows clients_among(const WindowConnection& to, const Windows& windows, int depth) {
    std::deque<WindowLook> looks;
    std::deque<ChildrenQuestion> children;
    for (const xcb_window_t window : windows) {
        looks.emplace_back(to, window);
        if (depth > 0) children.emplace_back(to.server, window);
    }
    Windows clients;
    for (size_t i = 0; i < looks.size(); i++) {
        if (looks[i].is_client(to)) {
            clients.push_back(looks[i].window);
        } else if (depth > 0) {
            const Windows inner = clients_among(to, limited(children[i].windows()), depth - 1);
            clients.insert(clients.end(), inner.begin(), inner.end());
        }
    }
    return limited(std::move(clients));
}

Windows client_windows(const WindowConnection& to) {
    if (has_window_manager(to)) {
        return PropertyQuestion(to.server, to.root, to.client_list, most_windows).numbers();
    }
    return clients_among(to, limited(ChildrenQuestion(to.server, to.root).windows()), 1);
}

struct ClientQuestions {
    ClientQuestions(const WindowConnection& to, xcb_window_t w)
        : window(w),
          class_names(to.server, w, XCB_ATOM_WM_CLASS, 128),
          type(to.server, w, to.window_type, most_atoms),
          transient_for(to.server, w, XCB_ATOM_WM_TRANSIENT_FOR, 1),
          state(to.server, w, to.state, most_atoms),
          process(to, w) {}

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
    DesktopWindow answer(const WindowConnection& to) const {
        const std::string names = class_names.bytes();
        const size_t first_end = std::min(names.find('\0'), names.size());
        const char* second = first_end < names.size() ? names.c_str() + first_end + 1 : "";
        return {window, process.answer(), names.substr(0, first_end), second, is_normal(to)};
    }
    xcb_window_t window;
    PropertyQuestion class_names, type, transient_for, state;
    ProcessQuestion process;
};

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
