// Presses and releases of the pointer's buttons anywhere on the display, whichever program gets
// them: the X Input extension's raw events.
#pragma once

#include <memory>

struct xcb_connection_t;

struct RawButton {
    unsigned button;  // X's number
    bool down;
    int x, y;  // the pointer's place, asked for after the event
    int display_height;
};

class RawButtons {
  public:
    // Null without a display, and where the extension (version 2.2) is missing or refused.
    static std::unique_ptr<RawButtons> open();
    ~RawButtons();
    RawButtons(const RawButtons&) = delete;
    RawButtons& operator=(const RawButtons&) = delete;

    int descriptor() const;
    // Takes the next event that has come; false when there is none. Call it until it is false:
    // before that, the descriptor need not become readable again.
    bool next(RawButton* button);
    // Whether the display has gone.
    bool is_broken() const;

  private:
    explicit RawButtons(xcb_connection_t* server, unsigned root) : server_(server), root_(root) {}
    bool select();
    bool locate(RawButton* button);

    xcb_connection_t* server_;
    unsigned root_;
    unsigned char opcode_ = 0;
};
