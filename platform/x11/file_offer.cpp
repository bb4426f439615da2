#include "x11/file_offer.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>

#include "x11/server_connection.h"

namespace {

constexpr unsigned own_version = 5;

enum AtomName { aware, selection, entered, position, left, dropped, uri_list, targets, clock_word };
constexpr const char* atom_names[] = {"XdndAware",     "XdndSelection", "XdndEnter",
                                      "XdndPosition",  "XdndLeave",     "XdndDrop",
                                      "text/uri-list", "TARGETS",       "_SERVER_TIME"};
constexpr const char* action_names[] = {"XdndActionCopy", "XdndActionMove", "XdndActionLink"};

unsigned intern(xcb_connection_t* server, const char* name) {
    const auto length = static_cast<uint16_t>(strlen(name));
    const Reply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(server, xcb_intern_atom(server, 0, length, name), nullptr));
    return reply ? reply->atom : static_cast<unsigned>(XCB_ATOM_NONE);
}

}  // namespace

FileOffer* FileOffer::shared() {
    static FileOffer* offer;
    if (!offer) {
        offer = new FileOffer;
        if (!offer->connect()) {
            delete offer;
            offer = nullptr;
        }
    }
    if (offer) offer->answer();  // this also notices that the display has gone
    return offer && !offer->is_broken() ? offer : nullptr;
}

bool FileOffer::connect() {
    server_ = connect_to_server(&root_);
    if (!server_) return false;
    for (size_t i = 0; i < std::size(atom_names); i++) atoms_[i] = intern(server_, atom_names[i]);
    for (size_t i = 0; i < std::size(action_names); i++) {
        actions_[i] = intern(server_, action_names[i]);
    }
    window_ = xcb_generate_id(server_);
    // The window is to hold the pointer: it is mapped, but off the screen and not managed by a
    // window manager.
    const uint32_t values[] = {1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(server_, XCB_COPY_FROM_PARENT, window_, root_, -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(server_, window_);
    xcb_flush(server_);
    return true;
}

int FileOffer::descriptor() const { return xcb_get_file_descriptor(server_); }

bool FileOffer::is_broken() const { return xcb_connection_has_error(server_) != 0; }

void FileOffer::begin(const std::string& uri_list, unsigned source) {
    source_ = source;
    take_selection();
    uri_list_ = uri_list;
    awaited_ = false;
    dragging_ = true;
}

void FileOffer::take_selection() {
    owned_since_ = server_time();
    xcb_set_selection_owner(server_, source_, atoms_[selection], owned_since_);
    flush();
}

// The pasteboard's daemon takes the selection before each drag, and later than that when it is
// busy. Nobody else takes it during a drag, or before the drop has been fetched, unless the pressed
// button shows that another drag has begun.
void FileOffer::lose_selection(unsigned time) {
    if (time <= owned_since_) return;
    if (dragging_ || (awaited_ && !button_is_down())) {
        take_selection();
    } else {
        uri_list_.clear();
    }
}

// Changes a property, as the event of the change brings the server's time.
unsigned FileOffer::server_time() {
    xcb_change_property(server_, XCB_PROP_MODE_APPEND, window_, atoms_[clock_word],
                        XCB_ATOM_INTEGER, 8, 0, nullptr);
    // The event has arrived when the answer to a later question arrives.
    const Reply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(server_, xcb_get_input_focus(server_), nullptr));
    answer();
    return time_;
}

// The protocol version that both sides speak; 0 for a window that takes no drops.
unsigned FileOffer::target_version(unsigned target) {
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        server_,
        xcb_get_property(server_, 0, target, atoms_[aware], XCB_GET_PROPERTY_TYPE_ANY, 0, 1),
        nullptr));
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) return 0;
    const auto* version = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return std::min(*version, own_version);
}

void FileOffer::send(unsigned target, unsigned type, const unsigned (&data)[5]) {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = target;
    event.type = type;
    memcpy(event.data.data32, data, sizeof data);
    xcb_send_event(server_, 0, target, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
    flush();
}

void FileOffer::enter(unsigned target, unsigned source) {
    version_ = target_version(target);
    if (!version_) return;
    entered_ = target;
    send(target, atoms_[entered], {source, version_ << 24, atoms_[uri_list], 0, 0});
}

void FileOffer::move(unsigned target, unsigned source, int x, int y, unsigned action) {
    if (!version_) return;
    const unsigned at = static_cast<unsigned>(x) << 16 | (static_cast<unsigned>(y) & 0xFFFF);
    send(target, atoms_[position], {source, 0, at, server_time(), action});
}

void FileOffer::leave(unsigned target, unsigned source) {
    if (!version_) return;
    entered_ = 0;
    send(target, atoms_[left], {source, 0, 0, 0, 0});
}

void FileOffer::drop(unsigned target, unsigned source) {
    if (!version_) return;
    entered_ = 0;
    awaited_ = true;
    send(target, atoms_[dropped], {source, 0, server_time(), 0, 0});
}

void FileOffer::end(unsigned source) {
    if (entered_) leave(entered_, source);
    dragging_ = false;
}

bool FileOffer::grab_pointer() {
    const Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(
        server_,
        xcb_grab_pointer(server_, 0, window_, XCB_EVENT_MASK_BUTTON_RELEASE, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    answer();
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

// Tries for a tenth of a second, as another client, such as a window manager, can hold the pointer
// for a moment. It waits no longer because the process does nothing else while it waits: when a
// drag begins in a window of the toolkit, its own press holds the pointer as long as the drag
// lasts.
bool FileOffer::hold_pointer() {
    released_ = false;
    for (int turn = 0; turn < 20; turn++) {
        if (grab_pointer()) return true;
        usleep(5000);
    }
    return false;
}

void FileOffer::let_pointer_go() {
    xcb_ungrab_pointer(server_, XCB_CURRENT_TIME);
    flush();
}

// The key code of Escape; 0 on a keyboard without that key.
unsigned char FileOffer::escape_key() {
    constexpr xcb_keysym_t escape = 0xFF1B;
    const xcb_setup_t* setup = xcb_get_setup(server_);
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
        server_, xcb_get_keyboard_mapping(server_, setup->min_keycode, count), nullptr));
    if (!reply) return 0;
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    const int length = xcb_get_keyboard_mapping_keysyms_length(reply.get());
    const xcb_keysym_t* found = std::find(symbols, symbols + length, escape);
    if (found == symbols + length || !reply->keysyms_per_keycode) return 0;
    return static_cast<uint8_t>(setup->min_keycode +
                                (found - symbols) / reply->keysyms_per_keycode);
}

// Grabs this one key only, so that the toolkit still sees the modifiers that choose what a drop
// does. Each set of modifiers is a grab of its own: a grab of all at once is refused where another
// program has one of them, and window managers have Alt+Escape.
void FileOffer::watch_for_escape() {
    constexpr uint16_t all_modifiers = 0xFF;
    cancelled_ = false;
    escape_ = escape_key();
    if (!escape_) return;
    for (uint16_t modifiers = 0; modifiers <= all_modifiers; modifiers++) {
        xcb_grab_key(server_, 0, root_, modifiers, escape_, XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_ASYNC);
    }
    flush();
}

void FileOffer::leave_escape_alone() {
    if (!escape_) return;
    xcb_ungrab_key(server_, escape_, root_, XCB_MOD_MASK_ANY);
    flush();
    escape_ = 0;
}

bool FileOffer::button_is_down() {
    const Reply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(server_, xcb_query_pointer(server_, root_), nullptr));
    answer();
    return reply && reply->mask & XCB_BUTTON_MASK_1;
}

// Sending and waiting also take in what has arrived. Such an event no longer wakes the run loop, so
// it is answered here: a target may ask for the files at the very moment when the pointer is let
// go.
void FileOffer::flush() {
    xcb_flush(server_);
    answer();
}

void FileOffer::answer() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(server_)) {
        const Reply<xcb_generic_event_t> owner(event);
        switch (event->response_type & 0x7F) {
            case XCB_SELECTION_REQUEST:
                answer_request(event);
                break;
            case XCB_SELECTION_CLEAR:
                lose_selection(reinterpret_cast<xcb_selection_clear_event_t*>(event)->time);
                break;
            case XCB_PROPERTY_NOTIFY:
                time_ = reinterpret_cast<xcb_property_notify_event_t*>(event)->time;
                break;
            case XCB_KEY_PRESS:
                if (reinterpret_cast<xcb_key_press_event_t*>(event)->detail == escape_) {
                    cancelled_ = true;
                }
                break;
            case XCB_BUTTON_RELEASE:
                if (reinterpret_cast<xcb_button_release_event_t*>(event)->detail == 1) {
                    released_ = true;
                }
                break;
            default:
                break;
        }
    }
}

// Refuses requests for anything that is not offered, so that nobody waits for it.
void FileOffer::answer_request(const void* event) {
    const auto* request = static_cast<const xcb_selection_request_event_t*>(event);
    const unsigned property = request->property ? request->property : request->target;
    xcb_selection_notify_event_t notice = {};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request->time;
    notice.requestor = request->requestor;
    notice.selection = request->selection;
    notice.target = request->target;
    if (request->selection == atoms_[selection] && request->target == atoms_[targets]) {
        const uint32_t offered[] = {atoms_[targets], atoms_[uri_list]};
        xcb_change_property(server_, XCB_PROP_MODE_REPLACE, request->requestor, property,
                            XCB_ATOM_ATOM, 32, 2, offered);
        notice.property = property;
    } else if (request->selection == atoms_[selection] && request->target == atoms_[uri_list] &&
               !uri_list_.empty()) {
        xcb_change_property(server_, XCB_PROP_MODE_REPLACE, request->requestor, property,
                            atoms_[uri_list], 8, static_cast<uint32_t>(uri_list_.size()),
                            uri_list_.data());
        notice.property = property;
        awaited_ = false;
    }
    xcb_send_event(server_, 0, request->requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notice));
    xcb_flush(server_);
}
