#include "support/x_clients.h"

#include <stdlib.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <functional>
#include <memory>

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

std::string name_of(xcb_connection_t* server, uint32_t atom) {
    const Owner<xcb_get_atom_name_reply_t> name(
        xcb_get_atom_name_reply(server, xcb_get_atom_name(server, atom), nullptr));
    if (!name) return {};
    const auto length = static_cast<size_t>(xcb_get_atom_name_name_length(name.get()));
    return {xcb_get_atom_name_name(name.get()), length};
}

// Calls `visit` with each connection of the process; false where the server cannot tell.
bool visit_connections(pid_t process,
                       const std::function<void(xcb_connection_t*, uint32_t)>& visit) {
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    const Owner<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(server, xcb_res_query_version(server, 1, 2), nullptr));
    const Owner<xcb_res_query_clients_reply_t> clients(
        xcb_res_query_clients_reply(server, xcb_res_query_clients(server), nullptr));
    const bool tells = version && clients;
    for (uint32_t i = 0; tells && i < clients->num_clients; i++) {
        const uint32_t resources = xcb_res_query_clients_clients(clients.get())[i].resource_base;
        if (is_of(server, resources, process)) visit(server, resources);
    }
    xcb_disconnect(server);
    return tells;
}

}  // namespace

int connections_of(pid_t process) {
    int count = 0;
    return visit_connections(process, [&](auto*, uint32_t) { count++; }) ? count : -1;
}

Resources resources_of(pid_t process) {
    Resources all;
    visit_connections(process, [&](xcb_connection_t* server, uint32_t client) {
        const Owner<xcb_res_query_client_resources_reply_t> reply(
            xcb_res_query_client_resources_reply(
                server, xcb_res_query_client_resources(server, client), nullptr));
        if (!reply) return;
        const xcb_res_type_t* types = xcb_res_query_client_resources_types(reply.get());
        for (uint32_t i = 0; i < reply->num_types; i++) {
            all[name_of(server, types[i].resource_type)] += static_cast<int>(types[i].count);
        }
    });
    return all;
}

}  // namespace test
