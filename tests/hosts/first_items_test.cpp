// The host's items above its own actions: the user's folders, and undo. Picked by their titles, and
// with real keys in a menu that is shown.
#include <signal.h>

#include "hosts/bus_service.h"
#include "hosts/menu_command.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace {

using test::json;
using test::MenuCommand;
using test::Outcome;
using test::output_of;
using test::run_delvio;
using test::RunningCommand;
using test::wait_for;
using test::Words;

struct FirstItems : MenuCommand {
    FirstItems() { run_delvio({"settings", "reset", "--all"}); }
    ~FirstItems() override { run_delvio({"settings", "reset", "--all"}); }

    static std::string folders() { return run_delvio({"settings", "get", "folders"}).out; }
    static bool has(const json& items, const std::string& title) {
        const Words all = titles(items);
        return std::find(all.begin(), all.end(), title) != all.end();
    }
    // The first of the host's items.
    static std::string first_title(const json& items) {
        for (const json& item : items) {
            if (!item["plugin"]) return item["title"];
        }
        return "";
    }
    void move_by_menu() {
        folder.file("a.txt", "text");
        const std::string to = folder.folder("to");
        EXPECT_EQ(menu({"--pick", "to", "--pick", "Move selection here", to, folder.path("a.txt")})
                      .status,
                  0);
        EXPECT_EQ(test::read_file(folder.path("to/a.txt")), "text");
    }
};

TEST_F(FirstItems, AddAFolderToTheUsersFoldersAndTakeItOut) {
    const std::string one = folder.folder("one"), two = folder.folder("two");
    EXPECT_EQ(menu({"--pick", "Add to my folders", one}).status, 0);
    EXPECT_EQ(menu({"--pick", "Add to my folders", one, two}).status, 0);
    EXPECT_EQ(folders(), one + "\n" + two + "\n");
    const json items = menu_json({one});
    EXPECT_FALSE(has(items, "Add to my folders"));
    EXPECT_EQ(titles(items)[0], "one");
    EXPECT_EQ(menu({"--pick", "Remove from my folders", one}).status, 0);
    EXPECT_EQ(folders(), two + "\n");
}

TEST_F(FirstItems, OfferNothingForFilesAndForNamesThatSettingsCannotKeep) {
    const std::string file = folder.file("note.txt"), top = folder.folder("top");
    for (const Words& files : {Words{file}, Words{top, file}}) {
        EXPECT_FALSE(has(menu_json(files), "Add to my folders"));
    }
    const Outcome other = menu({"--print", folder.folder("no text \xff")});
    EXPECT_EQ(other.out.find("Add to my folders"), std::string::npos) << other.out;
}

TEST_F(FirstItems, UndoTheLastOperationAndTellWhatWasDone) {
    move_by_menu();
    const json items = menu_json({folder.path("to")});
    EXPECT_TRUE(has(items, "Undo Move of \"a.txt\"")) << items;
    const Outcome undone = menu({"--pick", "Undo Move of \"a.txt\"", folder.path("to")});
    EXPECT_EQ(undone.status, 0) << undone.err;
    EXPECT_EQ(undone.out, "\"a.txt\" is back in \"" + folder.path() + "\"\n");
    EXPECT_EQ(test::read_file(folder.path("a.txt")), "text");
    EXPECT_FALSE(has(menu_json({folder.path("to")}), "Undo Move of \"a.txt\""));
}

TEST_F(FirstItems, OfferTheSettingsForEveryFileAndWithEveryKeyHeld) {
    const std::string file = folder.file("note.txt");
    for (const char* keys : {"shift", "option", "command", "control", ""}) {
        EXPECT_TRUE(has(menu_json({"--modifiers", keys, file}), "Settings...")) << keys;
    }
    expect_one_line(menu({"--pick", "Settings...", file}, {{"DISPLAY", ""}}), 1,
                    "there is no display for the settings window");
}

TEST_F(FirstItems, SayWhyAnUndoIsNotPossible) {
    move_by_menu();
    folder.file("a.txt", "another");
    const Outcome refused = menu({"--pick", "Undo Move of \"a.txt\"", folder.path("to")});
    expect_one_line(refused, 1, "cannot undo: there is another \"a.txt\" now where it was");
    EXPECT_EQ(test::read_file(folder.path("to/a.txt")), "text");
}

TEST_F(FirstItems, NameTheTrashAndSeveralFiles) {
    const std::string one = folder.file("one"), two = folder.file("two");
    EXPECT_EQ(menu({"--pick", "Move to Trash", one}).status, 0);
    EXPECT_EQ(first_title(menu_json({two})), "Undo Move to Trash of \"one\"");
    folder.file("one");
    EXPECT_EQ(menu({"--pick", "Move to Trash", one, two}).status, 0);
    EXPECT_EQ(first_title(menu_json({folder.file("three")})), "Undo Move to Trash of 2 items");
}

TEST_F(FirstItems, ShortenALongNameInItsMiddle) {
    const std::string name = "begin" + std::string(100, 'o') + "end.txt";
    EXPECT_EQ(menu({"--pick", "Move to Trash", folder.file(name)}).status, 0);
    const std::string title = first_title(menu_json({folder.file("other")}));
    EXPECT_EQ(title.find("Undo Move to Trash of \"begin"), 0u) << title;
    EXPECT_NE(title.find("…"), std::string::npos) << title;
    EXPECT_NE(title.find("end.txt\""), std::string::npos) << title;
    EXPECT_LT(title.size(), 80u);
}

struct ShownFirstItems : FirstItems {
    test::XInput input;

    bool menu_is_open() { return !input.pointer_is_free() && !input.keyboard_is_free(); }
    // Leaves the menu with its second row picked, which is the host's first.
    bool pick_second_row() {
        if (!wait_for([&] { return menu_is_open(); })) return false;
        output_of("xdotool key --delay 60 Down Down Return");
        return wait_for([&] { return !menu_is_open(); });
    }
};

TEST_F(ShownFirstItems, AddAFolderWithTheKeys) {
    const std::string top = folder.folder("top");
    RunningCommand command({"menu", "--at", "200,150", top});
    ASSERT_TRUE(pick_second_row());
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(folders(), top + "\n");
}

constexpr const char* notifications =
    "<node><interface name='org.freedesktop.Notifications'>"
    "<method name='GetCapabilities'><arg type='as' direction='out'/></method>"
    "<method name='Notify'><arg type='s' direction='in'/><arg type='u' direction='in'/>"
    "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='as' direction='in'/><arg type='a{sv}' direction='in'/><arg type='i' "
    "direction='in'/><arg type='u' direction='out'/></method></interface></node>";

TEST_F(ShownFirstItems, UndoWithTheKeysAndTellByTheDesktop) {
    move_by_menu();
    const test::SessionBus bus;
    test::BusService desktop(bus, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                             notifications);
    desktop.set_answer("GetCapabilities", "(['body', 'body-markup'],)");
    desktop.set_answer("Notify", "(uint32 7,)");
    RunningCommand command({"menu", "--at", "200,150", folder.file("other & <more>")});
    ASSERT_TRUE(pick_second_row());
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(test::read_file(folder.path("a.txt")), "text");
    ASSERT_EQ(desktop.calls().size(), 2u);
    EXPECT_NE(desktop.calls()[1].find("'Undone', '&quot;a.txt&quot; is back in"), std::string::npos)
        << desktop.calls()[1];
}

TEST_F(ShownFirstItems, TellInAPanelWhereTheDesktopShowsNoNotifications) {
    move_by_menu();
    RunningCommand command({"menu", "--at", "200,150", folder.file("other")});
    ASSERT_TRUE(pick_second_row());
    const auto panel = [] {
        return output_of("xdotool search --onlyvisible --name '^Undone[.]$'");
    };
    ASSERT_TRUE(wait_for([&] { return !panel().empty(); }));
    EXPECT_EQ(test::read_file(folder.path("a.txt")), "text");
    ASSERT_TRUE(wait_for([&] { return panel() == output_of("xdotool getwindowfocus"); }));
    // A panel may be sent keys before it takes them.
    ASSERT_TRUE(wait_for([&] {
        output_of("xdotool key Return");
        return panel().empty();
    }));
    EXPECT_EQ(command.finish().status, 0);
}

}  // namespace
