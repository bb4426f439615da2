// A session of its own for each test, with the real client and the real host in it.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"
#include "support/waiting.h"
#include "support/x_input.h"

struct _XDisplay;

namespace test {

using Words = std::vector<std::string>;

struct ShownArea {
    int x = 0, y = 0, width = 0, height = 0;
};

// What is on a screen.
class Screen {
  public:
    explicit Screen(const char* name = nullptr);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // The menu that has the pointer and the keyboard; its width is 0 for none.
    ShownArea open_menu() const;
    bool wait_until_open() const;
    bool wait_until_closed() const;
    void resize(int width, int height);

  private:
    bool is_grabbed() const;
    _XDisplay* display_;
};

// An X server that ends with this object, or earlier.
class OwnServer {
  public:
    OwnServer();
    ~OwnServer() { end(); }
    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;
    const std::string& name() const { return name_; }
    void end();

  private:
    pid_t process_ = 0;
    std::string name_;
};

struct ResidentScene : testing::Test {
    ResidentScene();
    ~ResidentScene() override;

    // The environment of a call of this session.
    Changes with(const Changes& more = {}) const;
    RunningCommand call(const Words& words, const Changes& more = {}) const;
    RunningCommand call_at(int x, int y, const Changes& more = {}) const;
    // Opens a menu, closes it with the Escape key and returns what the client left.
    Outcome show_and_close(const Changes& more = {});
    // The programs of this session that were started with this argument.
    std::vector<pid_t> programs(const std::string& argument) const;
    // The hosts of this session.
    std::vector<pid_t> hosts() const;
    pid_t host() const;
    // Waits until there is exactly one.
    bool wait_for_one_host() const;
    // The files in the folder where client and host meet whose names end so.
    Words meeting_files(const std::string& ending) const;
    std::string log() const;

    TempFolder folder;
    Screen screen;
    XInput input;
    const std::string session;
    const std::string top;  // a folder with files in it
};

}  // namespace test
