#include "support/x_clients.h"

#include <stdlib.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <memory>
#include <string_view>

namespace test {

namespace {

struct Free {
    void operator()(void* reply) const { free(reply); }
};
template <typename Reply>
using Owner = std::unique_ptr<Reply, Free>;

// The client whose resource numbers start here.
bool is_of(xcb_connection_t* server, uint32_t resources, pid_t process) {
    const xcb_res_client_id_spec_t spec = {resources, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const Owner<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
        server, xcb_res_query_client_ids(server, 1, &spec), nullptr));
    if (!reply) return false;
    const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    return ids.rem > 0 && xcb_res_client_id_value_value_length(ids.data) > 0 &&
           static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data)) == process;
}

bool is_counter(xcb_connection_t* server, uint32_t type) {
    const Owner<xcb_get_atom_name_reply_t> name(
        xcb_get_atom_name_reply(server, xcb_get_atom_name(server, type), nullptr));
    if (!name) return false;
    const auto length = static_cast<size_t>(xcb_get_atom_name_name_length(name.get()));
    return std::string_view(xcb_get_atom_name_name(name.get()), length) == "SyncCounter";
}

template <bool with_counters>
int resources_at(xcb_connection_t* server, uint32_t client) {
    const Owner<xcb_res_query_client_resources_reply_t> reply(xcb_res_query_client_resources_reply(
        server, xcb_res_query_client_resources(server, client), nullptr));
    int count = 0;
    if (!reply) return count;
    const xcb_res_type_t* types = xcb_res_query_client_resources_types(reply.get());
    for (uint32_t i = 0; i < reply->num_types; i++) {
        if (!with_counters && is_counter(server, types[i].resource_type)) continue;
        count += static_cast<int>(types[i].count);
    }
    return count;
}

int connection(xcb_connection_t*, uint32_t) { return 1; }

// The sum of what `measure` says of each connection of the process.
int sum_of(pid_t process, int (*measure)(xcb_connection_t*, uint32_t)) {
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    const Owner<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(server, xcb_res_query_version(server, 1, 2), nullptr));
    const Owner<xcb_res_query_clients_reply_t> clients(
        xcb_res_query_clients_reply(server, xcb_res_query_clients(server), nullptr));
    int count = version && clients ? 0 : -1;
    if (count == 0) {
        const xcb_res_client_t* all = xcb_res_query_clients_clients(clients.get());
        for (uint32_t i = 0; i < clients->num_clients; i++) {
            if (!is_of(server, all[i].resource_base, process)) continue;
            count += measure(server, all[i].resource_base);
        }
    }
    xcb_disconnect(server);
    return count;
}

}  // namespace

int connections_of(pid_t process) { return sum_of(process, connection); }

int resources_of(pid_t process) { return sum_of(process, resources_at<true>); }

int resources_but_counters_of(pid_t process) { return sum_of(process, resources_at<false>); }

}  // namespace test
