#include "x11/window_questions.h"

#include <string.h>

PropertyQuestion::PropertyQuestion(xcb_connection_t* connection, xcb_window_t window,
                                   xcb_atom_t property, uint32_t most_words)
    : connection_(connection),
      cookie_(xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                               most_words)) {}

// An unread reply has to be discarded, as nobody else takes it.
PropertyQuestion::~PropertyQuestion() {
    if (!is_read_) xcb_discard_reply(connection_, cookie_.sequence);
}

const PropertyQuestion::Answer& PropertyQuestion::answer() const {
    if (is_read_) return answer_;
    is_read_ = true;
    xcb_generic_error_t* error = nullptr;
    answer_.reset(xcb_get_property_reply(connection_, cookie_, &error));
    free(error);
    return answer_;
}

std::string PropertyQuestion::bytes() const {
    const Answer& reply = answer();
    if (!reply || reply->format != 8) return {};
    const auto length = static_cast<size_t>(xcb_get_property_value_length(reply.get()));
    return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
}

std::vector<uint32_t> PropertyQuestion::numbers() const {
    const Answer& reply = answer();
    if (!reply || reply->format != 32) return {};
    const auto length = static_cast<size_t>(xcb_get_property_value_length(reply.get()));
    std::vector<uint32_t> numbers(length / sizeof(uint32_t));
    if (!numbers.empty()) {
        memcpy(numbers.data(), xcb_get_property_value(reply.get()),
               numbers.size() * sizeof(uint32_t));
    }
    return numbers;
}

bool PropertyQuestion::exists() const { return answer() && answer()->type != XCB_ATOM_NONE; }

ChildrenQuestion::ChildrenQuestion(xcb_connection_t* connection, xcb_window_t window)
    : connection_(connection), cookie_(xcb_query_tree(connection, window)) {}

ChildrenQuestion::~ChildrenQuestion() {
    if (!is_read_) xcb_discard_reply(connection_, cookie_.sequence);
}

std::vector<xcb_window_t> ChildrenQuestion::windows() {
    is_read_ = true;
    xcb_generic_error_t* error = nullptr;
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection_, cookie_, &error));
    free(error);
    if (!tree) return {};
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}
