// A user at a desk: a file manager's window with the plug-in inside, a real X server, real files,
// a mouse and a keyboard. The script of each test runs beside the open menu. Main thread.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "desktop/file_window.h"
#include "support/recording_program.h"
#include "support/steps.h"
#include "support/temp_folder.h"
#include "support/x_input.h"

namespace test {

class Desk : public testing::Test {
  protected:
    using Titles = std::vector<std::string>;

    static void SetUpTestSuite();
    Desk();
    ~Desk() override;

    // The selection of the next right-click.
    void select(const std::vector<std::string>& files) { [window_ setFiles:files]; }

    // The script. Each popup begins with a right-click.
    Steps& steps() { return *steps_; }
    // The popup's script from the right-click to its end; `within` adds the steps in between.
    void pop_up(const std::function<void(Steps&)>& within);
    void right_click();
    // Adds steps that hover over these rows, each in the level that the previous row opens.
    void hover_along(Steps& steps, const Titles& path);
    // Runs a whole popup and returns the rows of the level that the last row of `path` opens. An
    // empty path gives the host's menu.
    Titles walk(const Titles& path);
    // Runs a whole popup that clicks on the last row of `path`.
    void pick(const Titles& path);

    // The open menus. Level 0 is the host's menu.
    bool is_open(size_t level) const;
    // The rows shown; "-" for a separator.
    Titles titles(size_t level) const;
    // The title of the highlighted row, "" for none.
    std::string highlighted(size_t level) const;
    NSMenuItem* item(const std::string& title) const;
    // Whether the row with this title is inside the screen.
    bool is_on_screen(const std::string& title) const;

    // Moves the pointer to the row with this title, in the deepest level that shows it.
    void hover(const std::string& title);
    void click(const std::string& title);
    void escape() { input_.key("Escape"); }
    XInput& input() { return input_; }

    FileWindow* window() const { return window_; }
    const std::vector<std::string>& messages() const { return [window_ messages]; }
    int count_messages(const std::string& message) const;
    // The files and folders that the user's default programs were asked to open.
    static RecordingProgram& program() { return *program_; }

    // Sets a preference with another program, as a user would.
    static void set_preference(const std::string& key, const std::string& value);
    // The lines of the debug log with this beginning.
    static Titles log_lines(const std::string& beginning);

    TempFolder folder_;

  private:
    static std::unique_ptr<RecordingProgram> program_;
    NSAutoreleasePool* pool_;
    FileWindow* window_;
    XInput input_;
    std::unique_ptr<Steps> steps_;
};

}  // namespace test
