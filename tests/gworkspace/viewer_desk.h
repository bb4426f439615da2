// A user in front of GWorkspace: one viewer of the test's own folder, with mouse and keyboard. The
// program is started once for the tests of a suite, and again after a failed test.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "gworkspace/file_manager.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"
#include "support/x_input.h"

namespace test {

struct Row {
    Area area;
    bool enabled = false;
    bool has_submenu = false;
    std::string title;
};

class ViewerDesk : public testing::Test {
  protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    ViewerDesk();
    ~ViewerDesk() override;
    // Before and after each test GWorkspace is running and nothing waits for an answer.
    void SetUp() override;
    void TearDown() override;

    static FileManager& manager() { return *manager_; }
    static RecordingProgram& program() { return *program_; }
    // In the folder that the viewer shows.
    static std::string path(const std::string& name) { return folder_->path(name); }
    static const TempFolder& folder() { return *folder_; }
    static TempFolder& changing_folder() { return *folder_; }

    // The viewer's form: browser, icons or list.
    void show(const std::string& kind);

    // The hand.
    XInput& input() { return input_; }
    void move_to(const Area& area) { input_.move(area.x(), area.y()); }
    Area item(const std::string& kind, const std::string& path);
    Area ground(const std::string& kind);
    void left_click(const Area& area);
    // Selects with a click, and further items with clicks while Shift is held.
    void select(const std::string& kind, const Lines& paths);
    // A right-click that opens a menu.
    void right_click(const Area& area);
    void close_menu();

    // The open menus. Level 0 is GWorkspace's menu.
    bool is_open(size_t level) const;
    bool is_closed() const { return !is_open(0); }
    std::vector<Row> rows(size_t level) const;
    Lines titles(size_t level) const;
    Row row(size_t level, const std::string& title) const;
    // Hovers over these rows, each in the level that the previous row opens.
    void hover_along(const Lines& titles);
    void pick(const Lines& titles);
    // Picks a row that shows while a key is held.
    void pick_with_key(const Lines& way, const std::string& row, const std::string& key);
    void answer(const std::string& question);
    // The place that the probe gives for a question: "button 2", "part Cancel".
    void click_at(const std::string& question);

    Lines selection() const { return manager().ask_lines("selection"); }

  private:
    static void start_manager();
    static std::unique_ptr<TempFolder> folder_;
    static std::unique_ptr<RecordingProgram> program_;
    static std::unique_ptr<FileManager> manager_;
    XInput input_;
};

bool contains(const Lines& lines, const std::string& line);

// Presses Return as soon as GWorkspace asks with these words.
void Answer(const FileManager& manager, XInput& hand, const std::string& question);

}  // namespace test
