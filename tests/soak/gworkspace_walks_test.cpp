// Random walks through the menus of GWorkspace, which afterwards holds what it held.
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "gworkspace/viewer_desk.h"
#include "soak/walker.h"

using namespace test;

namespace {

// What this machine has for all users, without its programs: a pick below "Open with..." may start
// one, and its window would lie over GWorkspace's, without a title bar, until the test ends.
void leave_out_programs(TempFolder& folder) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/share", error)) {
        const std::string name = entry.path().filename();
        if (name != "applications") folder.link(name, entry.path());
    }
    setenv("XDG_DATA_DIRS", folder.path().c_str(), 1);
}

class GWorkspaceWalks : public ViewerDesk {
  protected:
    static void SetUpTestSuite() {
        static TempFolder shared;
        leave_out_programs(shared);
        ViewerDesk::SetUpTestSuite();
    }

    const unsigned long seed_ = soak::seed();
    soak::Walker walker_{seed_, input()};
    std::string kind_ = "browser";

    void set_out_files() {
        for (const char* name : {"alpha/one/two/deep.txt", "alpha/one/note.txt", "alpha/readme.txt",
                                 "beta/b.txt", "first.txt"}) {
            if (!std::filesystem::exists(path(name))) changing_folder().file(name, name);
        }
    }

    size_t levels() const { return static_cast<size_t>(atoi(manager().ask("menus").c_str())); }

    // The deepest menu.
    soak::Spot spot() const {
        const size_t open = levels();
        const std::vector<Row> shown = open ? rows(open - 1) : std::vector<Row>();
        if (shown.empty()) return {};
        const Area &top = shown.front().area, &low = shown.back().area;
        return {top.left, top.top, top.width, low.top + low.height - top.top};
    }

    // A row of Delvio's that opens something: the host's own items would change the folder.
    void pick_something() {
        const size_t open = levels();
        if (open < 2) return input().key("Escape");
        const std::vector<Row> shown = rows(open - 1);
        if (shown.empty()) return input().key("Escape");
        const Row& row = shown[static_cast<size_t>(walker_.any(static_cast<int>(shown.size())))];
        if (row.title == "Recycler") return input().key("Escape");  // another program's
        walker_.tell("picks " + row.title);
        left_click(row.area);
    }

    void end() {
        const int choice = walker_.any(10);
        if (choice < 5) {
            walker_.tell("Escape");
            input().key("Escape");
        } else if (choice < 7) {
            walker_.tell("click beside");
            input().move(1275, 700);
            input().click(1);
        } else {
            pick_something();
        }
    }

    bool is_put_away() {
        if (levels() == 0 && manager().ask("idle") == "yes") return true;
        input().key("Escape");
        return false;
    }

    // What a pick has opened, by the button of the title bar.
    void close_windows() {
        for (const std::string& title : manager().ask_lines("windows")) {
            for (const char* name : {"alpha", "beta", "one", "two"}) {
                if (title == name) manager().ask("close " + title);
            }
        }
    }

    void walk() {
        walker_.begin();
        set_out_files();
        if (walker_.one_in(20)) show(kind_ = walker_.one_of({"browser", "icons", "list"}));
        const std::string name = walker_.one_of({"alpha", "beta", "first.txt"});
        walker_.tell("right click on " + name + " in " + kind_);
        move_to(item(kind_, path(name)));
        input().click(3);
        EXPECT_TRUE(wait_until([&] { return levels() > 0; })) << manager().situation();
        for (int steps = walker_.any(8); steps > 0 && levels() > 0; steps--) {
            walker_.step(spot());
            if (walker_.one_in(6)) walker_.change_files(changing_folder(), "alpha/one");
        }
        end();
        input().let_go();
        EXPECT_TRUE(wait_until([&] { return is_put_away(); })) << manager().situation();
        close_windows();
        EXPECT_TRUE(manager().is_running()) << manager().account();
    }

    long balance() const {
        long made = 0, freed = 0;
        std::istringstream(manager().ask("elements")) >> made >> freed;
        return made - freed;
    }

    long allocated() const { return atol(manager().ask("memory").c_str()); }
};

TEST_F(GWorkspaceWalks, LeaveGWorkspaceAsItWas) {
    const int all = soak::walks(150), first = std::max(10, all / 5);
    show(kind_);
    soak::Held held, now;
    for (int number = 1; number <= all + first; number++) {
        walk();
        ASSERT_FALSE(HasFailure()) << "walk " << number << ": " << walker_.story();
        if (number % first != 0 && number != all + first) continue;
        soak::tell_held(number, now = soak::settled(manager().process()));
        printf("  %ld KiB of them allocated\n", allocated() >> 10);
        if (number == first) held = now;
    }
    EXPECT_EQ(balance(), 0);
    soak::expect_no_more(now, held);
}

}  // namespace
