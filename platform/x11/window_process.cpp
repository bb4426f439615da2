#include "x11/window_process.h"

#include <unistd.h>

#include <string>

#include "x11/window_manager.h"

namespace {

std::string host_name() {
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

// The name may have a domain or not. A window that names no machine counts as a window of this
// machine.
bool is_this_machine(const std::string& machine) {
    static const std::string own = host_name();
    const std::string short_own = own.substr(0, own.find('.'));
    return machine.empty() || machine == "localhost" ||
           machine.substr(0, machine.find('.')) == short_own;
}

bool is_running(pid_t process) {
    return access(("/proc/" + std::to_string(process)).c_str(), F_OK) == 0;
}

pid_t process_in(const xcb_res_query_client_ids_reply_t* reply) {
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply); ids.rem;
         xcb_res_client_id_value_next(&ids)) {
        if (!(ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID)) continue;
        if (xcb_res_client_id_value_value_length(ids.data) < 1) continue;
        return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
    }
    return 0;
}

}  // namespace

ProcessQuestion::ProcessQuestion(const WindowConnection& to, xcb_window_t window)
    : to_(to),
      machine_(to.server, window, to.client_machine),
      named_(to.server, window, to.pid, 1) {
    const xcb_res_client_id_spec_t spec = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    if (to.tells_processes) seen_ = xcb_res_query_client_ids(to.server, 1, &spec);
}

ProcessQuestion::~ProcessQuestion() {
    if (seen_.sequence) xcb_discard_reply(to_.server, seen_.sequence);
}

pid_t ProcessQuestion::seen_by_server() const {
    if (!seen_.sequence) return 0;
    xcb_generic_error_t* error = nullptr;
    const Reply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(to_.server, seen_, &error));
    seen_.sequence = 0;
    free(error);
    return reply ? process_in(reply.get()) : 0;
}

pid_t ProcessQuestion::answer() const {
    const std::string machine = machine_.bytes();
    if (!is_this_machine(machine.substr(0, machine.find('\0')))) return 0;
    const pid_t seen = seen_by_server();
    if (seen > 0 && is_running(seen)) return seen;
    const auto named = named_.numbers();
    return named.empty() ? 0 : static_cast<pid_t>(named[0]);
}

pid_t active_process() {
    const WindowConnection* to = window_connection();
    const xcb_window_t window = to ? active_window(*to) : XCB_WINDOW_NONE;
    if (window == XCB_WINDOW_NONE || window == to->root) return 0;
    // The window with the keyboard may be a part of an application's window. The server knows whose
    // it is.
    return ProcessQuestion(*to, window).answer();
}
