// GWorkspace's own behaviour with Delvio inside, compared with its behaviour without.
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "gworkspace/viewer_desk.h"

using namespace test;

namespace fs = std::filesystem;

namespace {

class Behaviour : public testing::Test {
  protected:
    static void SetUpTestSuite() { start_window_manager(); }

    Behaviour() {
        folder_.file("target/inside.txt", "inside");
        folder_.file("dragged.txt", "dragged");
        folder_.file("other.txt", "other");
    }
    void TearDown() override { hand_.let_go(); }

    void click_on_nothing(FileManager& manager) {
        const Area shelf = manager.settled_area("bounds shelf");
        hand_.move(shelf.left + shelf.width - 20, shelf.top + 20);
        hand_.click(1);
    }

    Area item(FileManager& manager, const std::string& name) {
        const Area area = manager.settled_area("item icons " + folder_.path(name));
        EXPECT_TRUE(static_cast<bool>(area)) << name;
        return area;
    }

    // Moves on once GWorkspace has answered, and lets go once it takes the drag.
    void drag(const FileManager& manager, const Area& from, const Area& to,
              const std::string& target) {
        constexpr int steps = 20;
        hand_.move(from.x(), from.y());
        hand_.press(1);
        int turn = 0;
        const auto is_taken = [&] {
            const int step = std::min(++turn, steps);
            hand_.move(from.x() + (to.x() - from.x()) * step / steps + turn % 2,
                       from.y() + (to.y() - from.y()) * step / steps);
            return manager.ask("target icons " + target) == "yes" && step == steps;
        };
        wait_until(is_taken, 20);
        hand_.release(1);
    }

    // On a busy machine GNUstep may lose a drag. Or the window may move between looking and
    // pressing, and the press then selects. So the hand tries again from the current positions
    // until GWorkspace asks.
    void drag_until_asked(FileManager& manager, const std::string& from, const std::string& to,
                          const std::string& question) {
        for (int attempt = 0; attempt < 5; attempt++) {
            if (attempt > 0) click_on_nothing(manager);
            const Area source = item(manager, from), target = item(manager, to);
            drag(manager, source, target, folder_.path(to));
            if (wait_until([&] { return !manager.ask("alert").empty(); }, 10)) break;
        }
        hand_.let_go();
        Answer(manager, hand_, question);
    }

    // Does the same work in GWorkspace and returns its messages on standard error.
    Lines messages_of_a_session(bool with_delvio) {
        FileManager manager(folder_.path(), with_delvio);
        if (!with_delvio) manager.ask("set_mouse_up");
        for (const char* form : {"browser", "list", "icons"})
            manager.ask(std::string("show ") + form);
        const Area area = item(manager, "other.txt");
        hand_.move(area.x(), area.y());
        hand_.click(1);
        EXPECT_TRUE(wait_until(
            [&] { return manager.ask_lines("selection") == Lines({folder_.path("other.txt")}); }));
        if (with_delvio) {
            hand_.click(3);
            EXPECT_TRUE(wait_until([&] { return manager.ask("menus") == "1"; }));
            hand_.key("Escape");
            EXPECT_TRUE(wait_until([&] { return manager.ask("menus") == "0"; }));
        }
        manager.ask("quit");
        EXPECT_TRUE(wait_until([&] { return !manager.is_running(); }));
        return manager.messages();
    }

    TempFolder folder_;
    XInput hand_;
};

// GWorkspace's database of annotations is a program of its own. When its last client goes, it may
// say so before the messages are read, or after.
bool is_of_the_database(const std::string& message) { return message.find("ddbd") == 0; }

// Each message of GWorkspace's once, without numbers, because these differ from run to run.
std::set<std::string> kinds_of(const Lines& messages) {
    std::set<std::string> kinds;
    for (std::string line : messages) {
        if (is_of_the_database(line)) continue;
        line.erase(std::remove_if(line.begin(), line.end(), isdigit), line.end());
        kinds.insert(line);
    }
    return kinds;
}

}  // namespace

TEST_F(Behaviour, AFileDraggedOntoAFolderMoves) {
    FileManager manager(folder_.path());
    manager.ask("show icons");
    drag_until_asked(manager, "dragged.txt", "target", "Move one item from");
    EXPECT_TRUE(wait_until([&] { return fs::exists(folder_.path("target/dragged.txt")); }));
    EXPECT_TRUE(wait_until([&] { return !fs::exists(folder_.path("dragged.txt")); }));
}

TEST_F(Behaviour, AFileDraggedWithControlMakesALink) {
    FileManager manager(folder_.path());
    manager.ask("show icons");
    hand_.key_down("Control_L");
    drag_until_asked(manager, "dragged.txt", "target", "Link one item from");
    EXPECT_TRUE(wait_until([&] { return fs::is_symlink(folder_.path("target/dragged.txt")); }));
    EXPECT_TRUE(fs::exists(folder_.path("dragged.txt")));
}

TEST_F(Behaviour, TheFirstClickOfAllIsAWholeClick) {
    FileManager manager(folder_.path());
    manager.ask("show icons");
    const Area area = item(manager, "other.txt");
    hand_.move(area.x(), area.y());
    hand_.click(1);
    hand_.click(3);  // the menu waits for the release of the first click
    EXPECT_TRUE(wait_until([&] { return manager.ask("menus") == "1"; })) << manager.situation();
    hand_.key("Escape");
    EXPECT_TRUE(wait_until([&] { return manager.ask("menus") == "0"; }));
}

TEST_F(Behaviour, QuitFromTheMenuEndsIt) {
    FileManager manager(folder_.path());
    manager.ask("show icons");
    hand_.move(30, 252);  // the main menu is in the corner of the screen
    hand_.click(1);
    EXPECT_TRUE(wait_until([&] { return !manager.is_running(); }));
    EXPECT_NE(manager.account().find("status 0"), std::string::npos) << manager.account();
}

TEST_F(Behaviour, NothingMoreIsWrittenToStandardError) {
    const auto without = kinds_of(messages_of_a_session(false));
    const auto with = kinds_of(messages_of_a_session(true));
    for (const std::string& line : with) EXPECT_TRUE(without.count(line)) << line;
}

TEST_F(Behaviour, AComplaintAtTheStartHoldsNoControlCharacter) {
    setenv("DELVIO_BUNDLE", "/odd\x1b[31m\xc2\x9b", 1);
    Lines messages;
    {
        FileManager manager(folder_.path());
        messages = manager.messages();
    }
    unsetenv("DELVIO_BUNDLE");
    std::string all;
    for (const std::string& line : messages) all += line + "\n";
    EXPECT_NE(all.find("DELVIO_BUNDLE names no bundle: /odd\\x1b[31m"), std::string::npos) << all;
    EXPECT_EQ(all.find('\x1b'), std::string::npos) << all;
    EXPECT_EQ(all.find("\xc2\x9b"), std::string::npos) << all;
}
