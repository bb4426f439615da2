#include "x11/question_connection.h"

#include <X11/Xlib.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/socket.h>

#include <string>
#include <vector>

// After the others, as it defines words such as `max`.
#include <X11/Xlibint.h>

namespace {

// Xlib would end the process on finding the far end closed, even with the handler below.
bool has_gone(Display* display) {
    char byte;
    const ssize_t count = recv(ConnectionNumber(display), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
}

// With this mark Xlib sends nothing more, so it cannot find the far end closed and end the process.
void close_broken(Display* display) {
    display->flags = display->flags | XlibDisplayIOError;
    XCloseDisplay(display);
}

struct Connection {
    Display* display = nullptr;
    bool broken = false;
    std::vector<Display*> lost;  // open until the end: a caller may be between two questions
    std::string refused;         // the display that could not be opened, or has gone

    ~Connection() {
        if (display && !broken && !has_gone(display)) {
            XCloseDisplay(display);
        } else if (display) {
            close_broken(display);
        }
        for (Display* const one : lost) close_broken(one);
    }
};

// Notes the loss instead of ending the process: the toolkit's own connection decides about that.
void note_loss(Display*, void* connection) { static_cast<Connection*>(connection)->broken = true; }

Display* open_connection(Connection* connection) {
    Display* display = XOpenDisplay(nullptr);
    if (!display) return nullptr;
    fcntl(ConnectionNumber(display), F_SETFD, FD_CLOEXEC);
    XSetIOErrorExitHandler(display, note_loss, connection);
    return display;
}

// A keyboard layout may change while we run.
void follow_keyboard(Display* display) {
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == MappingNotify) XRefreshKeyboardMapping(&event.xmapping);
    }
}

}  // namespace

Display* question_connection() {
    static thread_local Connection connection;
    const char* name = getenv("DISPLAY");
    if (connection.display && !connection.broken) connection.broken = has_gone(connection.display);
    if (connection.broken && connection.display) {
        connection.lost.push_back(connection.display);
        connection.display = nullptr;
        connection.refused = name ? name : "";
    }
    if (!connection.display) {
        if (!name || !*name || connection.refused == name) return nullptr;
        connection.broken = false;
        connection.display = open_connection(&connection);
        if (!connection.display) connection.refused = name;
    }
    if (connection.display) follow_keyboard(connection.display);
    return connection.broken ? nullptr : connection.display;
}
