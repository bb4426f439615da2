// The real GWorkspace with its default settings, with Delvio inside or without, in the isolated
// run's home folder.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace test {

using Lines = std::vector<std::string>;

struct Area {
    int left = 0, top = 0, width = 0, height = 0;
    int x() const { return left + width / 2; }
    int y() const { return top + height / 2; }
    explicit operator bool() const { return width > 0; }
    bool operator==(const Area&) const = default;
};

class FileManager {
  public:
    // Starts GWorkspace with one viewer, of this folder, and waits until the viewer is there.
    // `words` are additional arguments.
    explicit FileManager(const std::string& folder, bool with_delvio = true,
                         const Lines& words = {});
    // Ends GWorkspace and all programs that it started.
    ~FileManager();
    FileManager(const FileManager&) = delete;
    FileManager& operator=(const FileManager&) = delete;

    // Asks a question of gworkspace/probe_questions.h or gworkspace/probe_menus.mm.
    std::string ask(const std::string& question) const;
    Lines ask_lines(const std::string& question) const;
    Area ask_area(const std::string& question) const;
    // Waits until it is there and stays where it is.
    Area settled_area(const std::string& question) const;

    bool is_running();
    pid_t process() const { return process_; }
    // How GWorkspace ended, and its messages, once it has ended.
    std::string account();
    // What it shows, does and has said, for the message of a test that fails.
    std::string situation() const;
    // What GWorkspace and the programs that it starts have written to standard error, without
    // times, process numbers and GNUstep's own lines about bundles.
    Lines messages() const;

  private:
    std::string socket_, errors_, end_;
    pid_t process_ = 0;
};

// Waits until the condition is true, for at most this long; false when it never was.
bool wait_until(const std::function<bool()>& condition, int seconds = 60);

// Starts openbox if DELVIO_TEST_WINDOW_MANAGER asks for a window manager, and waits for it.
void start_window_manager();

}  // namespace test
