// Files offered to other programs while they are dragged: the messages of the XDND protocol
// (version 5), and the answers to who asks for the data. On a connection of its own. Main thread.
#pragma once

#include <string>

struct xcb_connection_t;

class file_offer_t {
  public:
    // After answering all that has come. Null without a display, and from when it has gone. Lives
    // as long as the process: who got a drop may ask late.
    static file_offer_t* shared();

    // From now on `uri_list` (lines that end in CR LF) is what is dragged.
    void begin(const std::string& uri_list);

    // To the window of another program; `source` is the window that its answers go to.
    void enter(unsigned target, unsigned source);
    void move(unsigned target, unsigned source, int x, int y, unsigned action);
    void leave(unsigned target, unsigned source);
    void drop(unsigned target, unsigned source);
    // The drag is over: a target without a drop is left.
    void end(unsigned source);

    enum action_t { copy, move_files, link };
    unsigned action_named(action_t action) const { return actions_[action]; }

    // Whether there was a drop whose data nobody has asked for yet.
    bool is_awaited() const { return awaited_; }

    // Holds the pointer, so that a release over any window comes to released(). False when a button
    // holds it for this or another program, and has done so for a tenth of a second.
    bool hold_pointer();
    void let_pointer_go();
    // Whether button 1 has been let go since hold_pointer().
    bool released() const { return released_; }

    // Has Escape come here, whoever has the keyboard, and cancelled() say so.
    void watch_for_escape();
    void leave_escape_alone();
    bool cancelled() const { return cancelled_; }
    bool button_is_down();

    // Answers all that has come.
    void answer();
    int descriptor() const;
    bool is_broken() const;

  private:
    file_offer_t() = default;
    bool connect();
    bool grab_pointer();
    void send(unsigned target, unsigned type, const unsigned (&data)[5]);
    unsigned target_version(unsigned target);
    unsigned server_time();
    void answer_request(const void* request);
    unsigned char escape_key();

    xcb_connection_t* server_ = nullptr;
    unsigned root_ = 0, window_ = 0, time_ = 0, owned_since_ = 0;
    unsigned atoms_[9] = {}, actions_[3] = {};
    unsigned version_ = 0;  // agreed with the present target
    unsigned entered_ = 0;  // the target that has been neither left nor dropped on
    std::string uri_list_;
    bool released_ = false, awaited_ = false, cancelled_ = false;
    unsigned char escape_ = 0;  // its key code while it is watched for
};
