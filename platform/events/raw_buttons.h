// Presses and releases of the pointer's buttons anywhere on the display, whichever program gets
// them: the X Input extension's raw events.
#pragma once

#include <memory>

struct xcb_connection_t;

struct raw_button_t {
    unsigned button;  // X's number
    bool down;
    int x, y;  // the pointer's place, asked for after the event
    int display_height;
};

class raw_buttons_t {
  public:
    // Null without a display, and where the extension (version 2.2) is missing or refused.
    static std::unique_ptr<raw_buttons_t> open();
    ~raw_buttons_t();
    raw_buttons_t(const raw_buttons_t&) = delete;
    raw_buttons_t& operator=(const raw_buttons_t&) = delete;

    int descriptor() const;
    // Takes the next event that has come; false when there is none. Call it until it is false:
    // before that, the descriptor need not become readable again.
    bool next(raw_button_t* button);
    // Whether the display has gone.
    bool is_broken() const;

  private:
    explicit raw_buttons_t(xcb_connection_t* server, unsigned root)
        : server_(server), root_(root) {}
    bool select();
    bool locate(raw_button_t* button);

    xcb_connection_t* server_;
    unsigned root_;
    unsigned char opcode_ = 0;
};
