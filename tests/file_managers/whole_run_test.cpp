// The real file managers: right-click, pick Delvio's entry, browse its menu, pick a file.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "file_managers/screen.h"
#include "hosts/command_runner.h"
#include "support/managed_windows.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"
#include "support/x_input.h"

using namespace test;

namespace {

// A file manager, and where Delvio's entry is in its menus, counted from the last one.
struct Program {
    const char* name;
    const char* title_end;
    int entry_for_files;
    int entry_for_folder;
};

const Program programs[] = {{"thunar", " - Thunar", 2, 6}, {"pcmanfm", "", 2, 2}};

// A program in a session of its own, with all that it starts.
class RunningProgram {
  public:
    RunningProgram(const std::string& name, const std::string& folder) {
        process_ = fork();
        if (process_ != 0) return;
        setsid();
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execlp("dbus-run-session", "dbus-run-session", "--", name.c_str(), folder.c_str(),
               static_cast<char*>(nullptr));
        _exit(127);
    }
    ~RunningProgram() {
        kill(-process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

  private:
    pid_t process_;
};

class WholeRun : public testing::TestWithParam<Program> {
  protected:
    WholeRun() {
        view_ = folder_.folder("view");
        letter_ = folder_.file("view/Stuff/letter.txt", "Dear reader\n");
        EXPECT_EQ(run_delvio({"install", GetParam().name}).status, 0);
        // A preview is a window, too, and comes when it likes.
        EXPECT_EQ(run_delvio({"settings", "set", "hoverPreviews", "0"}).status, 0);
        running_.emplace(GetParam().name, view_);
        EXPECT_TRUE(becomes_true([&] {
            window_ = windows_.settled(std::string("view") + GetParam().title_end);
            return window_.has_value();
        }));
        screen_.settled();
    }
    ~WholeRun() override {
        running_.reset();
        run_delvio({"uninstall", GetParam().name});
    }

    // The part of the window that shows the folder's content.
    Rectangle content() const {
        const Rectangle window = screen_.place_of(window_->window);
        const int left = window.width * 2 / 5, top = window.height / 4;
        return {window.left + left, window.top + top, window.width - left - 20,
                window.height - top - window.height / 6};
    }
    ScreenPoint ground() const {
        const Rectangle area = content();
        return {area.left + area.width - 20, area.top + area.height - 20};
    }

    // Where the only item of the folder is: it changes its look when everything is selected.
    ScreenPoint item() {
        click(ground(), 1);
        const Pixels before = screen_.settled();
        Rectangle area = content();
        const Rectangle window = screen_.place_of(window_->window);
        area.left = window.left + window.width / 4;
        area.width = window.width * 3 / 4 - 20;
        area.height += area.top - window.top - window.height / 8;
        area.top = window.top + window.height / 8;
        input_.key_down("Control_L");
        input_.key("a");
        input_.key_up("Control_L");
        Rectangle changed;
        EXPECT_TRUE(becomes_true([&] {
            changed = difference(before, screen_.now(), area);
            return changed.width > 0;
        }));
        changed = difference(before, screen_.settled(), area);
        return {changed.left + changed.width / 2, changed.top + changed.height / 3};
    }

    void click(ScreenPoint at, int button) {
        input_.move(at.x, at.y);
        screen_.settled();
        input_.click(button);
    }

    void press(const std::string& key) {
        const Pixels before = screen_.settled();
        input_.key(key);
        EXPECT_TRUE(becomes_true([&] { return screen_.now() != before; })) << key;
        screen_.settled();
    }

    std::set<unsigned long> new_menus() const {
        std::set<unsigned long> menus = screen_.menus();
        for (const unsigned long window : known_) menus.erase(window);
        return menus;
    }

    // Opens the file manager's menu there and picks Delvio's entry, by mouse and keyboard.
    void open_delvio(ScreenPoint at, int entry) {
        known_ = screen_.menus();
        click(at, 3);
        ASSERT_TRUE(becomes_true([&] { return !new_menus().empty(); }));
        screen_.settled();
        for (int i = 0; i < entry; i++) press("Up");
        for (const unsigned long window : new_menus()) known_.insert(window);
        input_.key("Return");
        ASSERT_TRUE(becomes_true([&] { return !new_menus().empty(); }));
        screen_.settled();
    }

    void open_submenu() {
        const size_t count = new_menus().size();
        input_.key("Right");
        ASSERT_TRUE(becomes_true([&] { return new_menus().size() > count; }));
        screen_.settled();
    }

    void pick_and_see_the_letter_opened() {
        input_.key("Return");
        EXPECT_EQ(program_.wait(), std::vector<std::string>{letter_});
        EXPECT_TRUE(becomes_true([&] { return new_menus().empty(); }));
    }

    TempFolder folder_;
    RecordingProgram program_{{"text/plain"}};
    std::string view_, letter_;
    WindowManager manager_;
    ManagedWindows windows_;
    Screen screen_;
    XInput input_;
    std::optional<RunningProgram> running_;
    std::optional<ManagedWindow> window_;
    std::set<unsigned long> known_;  // menus that are not Delvio's
};

INSTANTIATE_TEST_SUITE_P(EachFileManager, WholeRun, testing::ValuesIn(programs),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

TEST_P(WholeRun, TheMenuOfASelectedFolderBrowsesItAndOpensAFile) {
    open_delvio(item(), GetParam().entry_for_files);
    press("Down");
    open_submenu();
    pick_and_see_the_letter_opened();
}

TEST_P(WholeRun, TheMenuOfTheFoldersBackgroundBrowsesThatFolder) {
    open_delvio(ground(), GetParam().entry_for_folder);
    press("Down");
    open_submenu();
    open_submenu();
    pick_and_see_the_letter_opened();
}
