// The settings window and an alert as a screen reader hears them: with real keys, over a real bus
// of assistive technology.
#include <signal.h>

#include <algorithm>

#include "hosts/bus_service.h"
#include "hosts/menu_command.h"
#include "hosts/screen_reader.h"
#include "support/settled.h"
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
        const auto has_focus = [&] {
            return output_of("xdotool getwindowfocus getwindowname") == title + "\n";
        };
        if (!wait_for(has_focus)) return false;
        test::settled(picture, 5);
        return has_focus();
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
    ASSERT_TRUE(reader.hears("at Menu, list item, 1 of 9, enabled focusable focused selected"));
    ASSERT_TRUE(has_keyboard("Delvio Settings"));
    key("Tab",
        "at Show Delvio's items in menus, check box, -, checkable checked enabled focusable "
        "focused");
    key("space", "unchecked Show Delvio's items in menus");
    key("Tab",
        "at Selected items side by side, entry, -, editable enabled focusable focused single line, "
        "“10” with the caret at 2");
    key("7", "insert “7” at 2 in Selected items side by side");
    key("BackSpace", "delete “7” at 2 in Selected items side by side");
    const Words rows = reader.command("rows");
    EXPECT_TRUE(has(rows, "row Menu, label, -, enabled")) << testing::PrintToString(rows);
    EXPECT_TRUE(has(rows, "row Close, push button, -, enabled focusable"))
        << testing::PrintToString(rows);
    EXPECT_TRUE(has(rows, "row Messages, list item, 8 of 9, ")) << testing::PrintToString(rows);
    key("shift+Tab", "at Show Delvio's items in menus, check box, -, checkable enabled focusable");
    key("shift+Tab", "at Menu, list item, 1 of 9, ");
    key("Down", "at Folders shown, list item, 2 of 9, enabled focusable focused");
    key("Tab", "at ");
    key("Tab",
        "at Sort a folder's items: By kind, with lines between, combo box, -, enabled expandable "
        "focusable focused has popup");
    key("space", "opened Sort a folder's items: By kind, with lines between, menu, ");
    key("Escape", "closed Sort a folder's items: By kind, with lines between");
    reader.command("do click|Close");
    EXPECT_EQ(command.finish().status, 0);
}

// With a German keyboard, on which Y and Z have changed places and Shift-7 is the slash.
struct GermanPointer : HeardPanel {
    GermanPointer() { output_of("setxkbmap de"); }
    ~GermanPointer() override { output_of("setxkbmap us"); }
    struct Place {
        int x = 0, y = 0, width = 0, height = 0;
    };
    // Of the control of this name, which stands still by then.
    Place place_of(const std::string& name) {
        test::settled(picture, 5);
        const Words answer = reader.command("where " + name);
        Place at;
        const char* const line = answer.empty() ? "" : answer.back().c_str();
        EXPECT_EQ(sscanf(line, "where %d %d %d %d", &at.x, &at.y, &at.width, &at.height), 4)
            << name << ": " << testing::PrintToString(answer);
        return at;
    }
    void click(const std::string& name) {
        const Place at = place_of(name);
        input.move(at.x + at.width / 2, at.y + at.height / 2);
        input.click(1);
    }
    static bool becomes(const std::string& key, const std::string& value) {
        return wait_for([&] { return run_delvio({"settings", "get", key}).out == value + "\n"; });
    }
    const test::Changes german = {{"DELVIO_RESIDENT", "0"}, {"LANGUAGE", "de"}};
};

TEST_F(GermanPointer, SetsWhatItClicksAndTakesAPathOfUmlautsFromTheKeys) {
    const std::string over = folder.folder("Übzäy");
    RunningCommand command({"settings"}, german);
    ASSERT_TRUE(reader.hears("opened Delvio-Einstellungen, dialog, 1 rows"));
    ASSERT_TRUE(has_keyboard("Delvio-Einstellungen"));
    click("Einträge von Delvio in Menüs zeigen");
    EXPECT_TRUE(becomes("delvio_is_on", "0"));
    click("Ihre Ordner");
    ASSERT_TRUE(reader.hears("at Ihre Ordner, list item, 3 of 9"));
    click("Der Pfad eines weiteren Ordners");
    ASSERT_TRUE(reader.hears("at Der Pfad eines weiteren Ordners, entry, "));
    output_of("xdotool type --delay 40 -- '" + over + "'");
    ASSERT_TRUE(reader.hears("insert “y” at "));
    click("Hinzufügen");
    EXPECT_TRUE(becomes("folders", over));
    click("Schließen");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(GermanPointer, SelectsATextByADoubleClickAndAReaderCutsAndPastesIt) {
    const std::string over = folder.folder("Über");
    RunningCommand command({"settings"}, german);
    const std::string path = "Der Pfad eines weiteren Ordners";
    ASSERT_TRUE(reader.hears("opened Delvio-Einstellungen, dialog, 1 rows"));
    ASSERT_TRUE(has_keyboard("Delvio-Einstellungen"));
    click("Ihre Ordner");
    ASSERT_TRUE(reader.hears("at Ihre Ordner, list item, "));
    click(path);
    ASSERT_TRUE(reader.hears("at " + path + ", entry, "));
    output_of("xdotool type --delay 40 -- 'ab'");
    ASSERT_TRUE(reader.hears("insert “b” at 1 in " + path));
    input.click(1);
    input.click(1);
    ASSERT_TRUE(reader.hears("selected “ab” in " + path));
    output_of("xdotool type --delay 40 -- '" + over + "'");
    ASSERT_TRUE(reader.hears("delete “ab” at 0 in " + path)) << "what is selected is replaced";
    ASSERT_TRUE(reader.hears("insert “r” at "));
    const std::string name =
        std::to_string(over.size() - 5) + "|" + std::to_string(over.size() - 1);
    EXPECT_TRUE(has(reader.command("edit cutText|" + path + "|" + name), "did True"));
    ASSERT_TRUE(reader.hears("delete “Über” at "));
    const std::string end = std::to_string(over.size() - 5);
    EXPECT_TRUE(has(reader.command("edit pasteText|" + path + "|" + end), "did True"));
    click("Hinzufügen");
    EXPECT_TRUE(becomes("folders", over));
    click("Schließen");
    EXPECT_EQ(command.finish().status, 0);
}

// In a window that runs from right to left, too.
TEST_F(GermanPointer, AMenuOfChoicesStandsBelowItsChoice) {
    RunningCommand command({"settings"}, {{"DELVIO_RESIDENT", "0"}, {"LANGUAGE", "ar"}});
    ASSERT_TRUE(reader.hears("opened إعدادات Delvio, dialog, 1 rows"));
    ASSERT_TRUE(has_keyboard("إعدادات Delvio"));
    click("عرض المجلدات");
    ASSERT_TRUE(reader.hears("at عرض المجلدات, list item, "));
    const std::string choice = "فرز عناصر المجلد: حسب النوع مع خطوط";
    const Place above = place_of(choice);
    click(choice);
    ASSERT_TRUE(reader.hears("opened عرض المجلدات, menu, "));
    const Place row = place_of("قائمة أبجدية واحدة");
    EXPECT_GE(row.y, above.y + above.height);
    EXPECT_LE(row.x + row.width, above.x + above.width);
    EXPECT_GE(row.x, above.x);
    output_of("xdotool key Escape");
    ASSERT_TRUE(reader.hears("closed عرض المجلدات"));
    command.send_signal(SIGTERM);
    command.finish();
}

TEST_F(GermanPointer, PicksAnItemOfTheMenu) {
    const std::string file = folder.file("Straße.txt");
    RunningCommand command({"menu", "--at", "200,150", file}, german);
    ASSERT_TRUE(reader.hears("at Delvio, menu, "));
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free() && !input.keyboard_is_free(); }));
    click("Pfad kopieren");
    EXPECT_EQ(command.finish().status, 0);
    EXPECT_TRUE(
        wait_for([&] { return output_of("timeout 10 xclip -o -selection clipboard") == file; }));
}

TEST_F(HeardPanel, AnAlertIsHeardWithItsTextAndItsDefaultButton) {
    const std::string file = folder.file("unknown.qqq", std::string("\0\1\2", 3));
    RunningCommand command({"menu", "--at", "200,150", file}, alone);
    ASSERT_TRUE(reader.hears("opened Delvio, menu, "));
    ASSERT_TRUE(reader.hears("at Delvio, menu, "));
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
