// Another program of the session, with one window. It ends with the object.
#pragma once

#include <sys/types.h>

#include <string>

#include "hosts/command_runner.h"

namespace test {

class NativeWindow {
  public:
    enum Protocol { wayland, x11 };
    // Writes into `record`, a new file. The program speaks this protocol only.
    NativeWindow(const std::string& record, const Changes& environment,
                 Protocol protocol = wayland);
    ~NativeWindow();
    NativeWindow(const NativeWindow&) = delete;
    NativeWindow& operator=(const NativeWindow&) = delete;

    // How often an event has happened: see native_window.py.
    int count(const std::string& line) const;
    bool has(const std::string& line) const { return count(line) > 0; }
    // Whether the window has the keyboard.
    bool has_focus() const { return count("focus") > count("blur"); }

  private:
    std::string record_;
    pid_t process_ = 0;
};

}  // namespace test
