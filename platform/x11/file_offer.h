// Offers files to other programs during a drag: sends the messages of the XDND protocol (version 5)
// and answers requests for the data, on a connection of its own. Main thread.
#pragma once

#include <string>

struct xcb_connection_t;

class FileOffer {
  public:
    // The offer, after it has answered all requests that have come. Null without a display, and
    // once the display has gone. Lives as long as the process, as a program that got a drop may ask
    // late.
    static FileOffer* shared();

    // Begins a drag of the files in `uri_list` (lines that end in CR LF). The window `source` owns
    // the drag's selection: compositors that carry X drags to Wayland programs know a drag by it.
    void begin(const std::string& uri_list, unsigned source);

    // These send messages to the window of another program; `source` is that of the drag, and the
    // answers go there.
    void enter(unsigned target, unsigned source);
    void move(unsigned target, unsigned source, int x, int y, unsigned action);
    void leave(unsigned target, unsigned source);
    void drop(unsigned target, unsigned source);
    // Ends the drag, and leaves a target that got no drop.
    void end(unsigned source);

    enum Action { copy, move_files, link };
    unsigned action_named(Action action) const { return actions_[action]; }

    // Whether there was a drop whose data nobody has asked for yet.
    bool is_awaited() const { return awaited_; }

    // Holds the pointer, so that released() knows of a release over any window. False when the
    // pointer was held for this or another program for a tenth of a second.
    bool hold_pointer();
    void let_pointer_go();
    // Whether button 1 has been let go since hold_pointer().
    bool released() const { return released_; }

    // Watches for Escape, whichever program has the keyboard. cancelled() is true after the key.
    void watch_for_escape();
    void leave_escape_alone();
    bool cancelled() const { return cancelled_; }
    bool button_is_down();

    // Answers all requests that have come.
    void answer();
    int descriptor() const;
    bool is_broken() const;

  private:
    FileOffer() = default;
    bool connect();
    bool grab_pointer();
    void send(unsigned target, unsigned type, const unsigned (&data)[5]);
    unsigned target_version(unsigned target);
    unsigned server_time();
    void answer_request(const void* request);
    unsigned char escape_key();
    void take_selection();
    void flush();
    void lose_selection(unsigned time);

    xcb_connection_t* server_ = nullptr;
    unsigned root_ = 0, window_ = 0, source_ = 0, time_ = 0, owned_since_ = 0;
    unsigned atoms_[9] = {}, actions_[3] = {};
    unsigned version_ = 0;  // agreed with the present target
    unsigned entered_ = 0;  // the target that has been neither left nor dropped on
    std::string uri_list_;
    bool dragging_ = false, released_ = false, awaited_ = false, cancelled_ = false;
    unsigned char escape_ = 0;  // its key code while it is watched for
};
