// The settings window and an alert as a screen reader hears them: with real keys, over a real bus
// of assistive technology.
#include <unistd.h>

#include <algorithm>

#include "hosts/bus_service.h"
#include "hosts/menu_command.h"
#include "hosts/screen_reader.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace {

using test::output_of;
using test::run_delvio;
using test::RunningCommand;
using test::ScreenReader;
using test::wait_for;
using test::Words;

const test::Changes alone = {{"DELVIO_RESIDENT", "0"}};

// The bus is there before everything else and after it.
struct Bus {
    test::SessionBus bus{true};
};

struct HeardPanel : Bus, test::MenuCommand {
    HeardPanel() {
        run_delvio({"settings", "reset", "--all"});
        run_delvio({"install", "thunar"});  // so that the window begins with its first page
    }
    ~HeardPanel() override {
        run_delvio({"settings", "reset", "--all"});
        run_delvio({"uninstall", "thunar"});
    }
    static std::string picture() {
        return output_of("import -silent -window root rgba:- | md5sum");
    }
    // A key that comes before the window has the keyboard, or before it has drawn what it shows, is
    // lost.
    static bool has_keyboard(const std::string& title) {
        return wait_for([&] {
            if (output_of("xdotool getwindowfocus getwindowname") != title + "\n") return false;
            const std::string before = picture();
            usleep(300000);  // what is still being drawn would differ
            return picture() == before;
        });
    }
    void key(const std::string& name, const std::string& heard) {
        output_of("xdotool key " + name);
        ASSERT_TRUE(reader.hears(heard)) << name;
    }
    static bool has(const Words& lines, const std::string& beginning) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.starts_with(beginning); });
    }

    ScreenReader reader{ScreenReader::active};
    test::XInput input;
};

TEST_F(HeardPanel, EachControlOfTheSettingsWindowIsHeardWithItsRoleAndState) {
    RunningCommand command({"settings"}, alone);
    ASSERT_TRUE(reader.hears("opened Delvio Settings, dialog, 1 rows"));
    ASSERT_TRUE(reader.hears("opened , panel, "));
    ASSERT_TRUE(reader.hears("at Menu, list item, 1 of 10, enabled focusable focused selected"));
    ASSERT_TRUE(has_keyboard("Delvio Settings"));
    key("Tab",
        "at Show Delvio's items in menus, check box, -, checkable checked enabled focusable "
        "focused");
    key("space", "unchecked Show Delvio's items in menus");
    key("Tab", "at Selected items side by side: 10, entry, -, editable enabled focusable focused");
    const Words rows = reader.command("rows");
    EXPECT_TRUE(has(rows, "row Menu, label, -, enabled")) << testing::PrintToString(rows);
    EXPECT_TRUE(has(rows, "row Close, push button, -, enabled focusable"))
        << testing::PrintToString(rows);
    key("shift+Tab", "at Show Delvio's items in menus, check box, -, checkable enabled focusable");
    key("shift+Tab", "at Menu, list item, 1 of 10, ");
    key("Down", "at Folders shown, list item, 2 of 10, enabled focusable focused");
    key("Tab", "at ");
    key("Tab",
        "at Sort a folder's items: By kind, with lines between, combo box, -, enabled expandable "
        "focusable focused has popup");
    key("space", "opened Sort a folder's items: By kind, with lines between, menu, ");
    key("Escape", "closed Sort a folder's items: By kind, with lines between");
    reader.command("do click|Close");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(HeardPanel, AnAlertIsHeardWithItsTextAndItsDefaultButton) {
    const std::string file = folder.file("unknown.qqq", std::string("\0\1\2", 3));
    RunningCommand command({"menu", "--at", "200,150", file}, alone);
    ASSERT_TRUE(reader.hears("opened delvio, menu, "));
    ASSERT_TRUE(reader.hears("at delvio, menu, "));
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free() && !input.keyboard_is_free(); }));
    key("Down", "at unknown.qqq, menu item, 1 of ");
    output_of("xdotool key Return");
    ASSERT_TRUE(reader.hears("opened “unknown.qqq” cannot be opened., alert, 1 rows"));
    ASSERT_TRUE(reader.hears("opened , panel, "));
    const Words rows = reader.command("rows");
    EXPECT_TRUE(has(rows, "row “unknown.qqq” cannot be opened., label, -, enabled"))
        << testing::PrintToString(rows);
    EXPECT_TRUE(has(rows, "row OK, push button, -, enabled focusable is default"))
        << testing::PrintToString(rows);
    reader.command("do click|OK");
    EXPECT_EQ(command.finish().status, 1);
}

}  // namespace
