#include "support/x_clients.h"

#include <stdlib.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

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

}  // namespace

int connections_of(pid_t process) {
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    const Owner<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(server, xcb_res_query_version(server, 1, 2), nullptr));
    const Owner<xcb_res_query_clients_reply_t> clients(
        xcb_res_query_clients_reply(server, xcb_res_query_clients(server), nullptr));
    int count = version && clients ? 0 : -1;
    if (count == 0) {
        const xcb_res_client_t* all = xcb_res_query_clients_clients(clients.get());
        for (uint32_t i = 0; i < clients->num_clients; i++) {
            count += is_of(server, all[i].resource_base, process);
        }
    }
    xcb_disconnect(server);
    return count;
}

}  // namespace test
