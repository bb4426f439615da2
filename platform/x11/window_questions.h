// Questions to the X server about windows. A question is sent when it is made, and its reply is
// read later, so that many questions share a trip. An error, for example when the window has gone,
// is an empty answer.
#pragma once

#include <string>
#include <vector>

#include "x11/server_connection.h"

struct PropertyQuestion {
    PropertyQuestion(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                     uint32_t most_words = 64);
    ~PropertyQuestion();
    PropertyQuestion(const PropertyQuestion&) = delete;
    PropertyQuestion& operator=(const PropertyQuestion&) = delete;

    // The value's bytes; empty when the window has no such property.
    std::string bytes() const;
    std::vector<uint32_t> numbers() const;
    bool exists() const;

  private:
    using Answer = Reply<xcb_get_property_reply_t>;
    const Answer& answer() const;

    xcb_connection_t* connection_;
    xcb_get_property_cookie_t cookie_;
    mutable Answer answer_;
    mutable bool is_read_ = false;
};

class ChildrenQuestion {
  public:
    ChildrenQuestion(xcb_connection_t* connection, xcb_window_t window);
    ~ChildrenQuestion();
    ChildrenQuestion(const ChildrenQuestion&) = delete;
    ChildrenQuestion& operator=(const ChildrenQuestion&) = delete;

    // The window's children, bottom first. Asked once.
    std::vector<xcb_window_t> windows();

  private:
    xcb_connection_t* connection_;
    xcb_query_tree_cookie_t cookie_;
    bool is_read_ = false;
};
