// A Wayland compositor whose screens are windows of the test's X server, with Xwayland. Compositors
// refuse to run as root, so root's tests run them as the user nobody; a user's tests, as the user.
#pragma once

#include <sys/types.h>

#include <string>

#include "hosts/command_runner.h"

namespace test {

class Compositor {
  public:
    // Runs a program with the arguments and variables, in a folder of its own that is its
    // XDG_RUNTIME_DIR. `make_configuration` writes into that folder first.
    Compositor() = default;
    ~Compositor();
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    // sway with outputs of 800 x 800 pixels, the second one right of the first one.
    bool start_sway(int outputs);
    // Mutter with one screen of 1280 x 800 pixels.
    bool start_mutter();

    // For programs of the session.
    const Changes& environment() const { return environment_; }
    // Has swaymsg say this to sway; false when sway refuses.
    bool tell_sway(const std::string& words) const;
    // What the compositor has written, for messages about failures.
    std::string log() const;

  private:
    bool prepare();
    void run(const std::vector<std::string>& words, const Changes& variables);
    bool wait_for_socket();

    std::string folder_;
    pid_t process_ = 0;
    Changes environment_;
};

}  // namespace test
