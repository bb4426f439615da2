#include "accessibility/reader_bus.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <string>

#include "x11/window_connection.h"
#include "x11/window_questions.h"

namespace {

const char property_name[] = "AT_SPI_BUS";

bool is_told_by_server() {
    const WindowConnection* const to = window_connection();
    if (!to) return false;
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        to->server, xcb_intern_atom(to->server, 1, sizeof property_name - 1, property_name),
        nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE) return false;
    return PropertyQuestion(to->server, to->root, atom->atom).exists();
}

// In a Wayland session the X server may have started after the bus.
bool has_folder() {
    const char* const folder = getenv("XDG_RUNTIME_DIR");
    struct stat status;
    return folder && stat((std::string(folder) + "/at-spi").c_str(), &status) == 0;
}

}  // namespace

bool reader_bus_is_there() { return is_told_by_server() || has_folder(); }
