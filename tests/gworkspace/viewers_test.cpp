// The contextual menu in every kind of view that GWorkspace has.
#include <stdlib.h>

#include <algorithm>
#include <filesystem>

#include "gworkspace/viewer_desk.h"

using namespace test;

namespace {

class Viewers : public ViewerDesk {
  protected:
    static std::string folder_name() { return std::filesystem::path(folder().path()).filename(); }
    static std::string home(const std::string& name) { return getenv("HOME") + ("/" + name); }

    // The first rows of the menu, the same number as the titles.
    Lines first_titles(size_t count) const {
        Lines all = titles(0);
        all.resize(std::min(count, all.size()));
        return all;
    }
};

const char* const forms[] = {"browser", "icons", "list"};

}  // namespace

TEST_F(Viewers, AnUnselectedItemIsSelectedAndThreeLevelsOfItCanBeBrowsed) {
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        show(form);
        right_click(item(form, path("alpha")));
        EXPECT_EQ(selection(), Lines({path("alpha")}));
        ASSERT_TRUE(contains(titles(0), "alpha"));
        hover_along({"alpha", "one", "two"});
        EXPECT_EQ(titles(1), Lines({"one", "-", "readme.txt"}));
        EXPECT_EQ(titles(2), Lines({"two", "-", "note.txt"}));
        EXPECT_EQ(titles(3), Lines({"deep.txt"}));
        close_menu();
    }
}

TEST_F(Viewers, ASelectedItemKeepsTheWholeSelectionInGWorkspacesOrder) {
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        show(form);
        select(form, {path("third.txt"), path("second.txt")});
        const Lines selected = manager().ask_lines("selected " + form);
        right_click(item(form, path("second.txt")));
        EXPECT_EQ(selection(), selected);
        Lines names;
        for (const std::string& each : selected) {
            names.push_back(std::filesystem::path(each).filename());
        }
        EXPECT_EQ(first_titles(2), names);
        close_menu();
    }
}

TEST_F(Viewers, AnotherItemThanTheSelectedOnesIsSelectedAlone) {
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        show(form);
        left_click(item(form, path("first.txt")));
        ASSERT_TRUE(wait_until([&] { return selection() == Lines({path("first.txt")}); }))
            << manager().ask("selection");
        right_click(item(form, path("second.txt")));
        EXPECT_EQ(selection(), Lines({path("second.txt")}));
        EXPECT_EQ(first_titles(1), Lines({"second.txt"}));
        close_menu();
    }
}

TEST_F(Viewers, TheGroundOfAViewIsTheFolderThatItShows) {
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        show(form);
        left_click(item(form, path("first.txt")));
        ASSERT_TRUE(wait_until([&] { return selection() == Lines({path("first.txt")}); }))
            << manager().ask("selection");
        show(form);
        right_click(ground(form));
        EXPECT_EQ(selection(), Lines({folder().path()}));
        EXPECT_EQ(first_titles(1), Lines({folder_name()}));
        EXPECT_TRUE(contains(titles(0), "New Folder"));
        EXPECT_FALSE(contains(titles(0), "Move to Recycler"));
        close_menu();
    }
}

TEST_F(Viewers, AnEarlierColumnsGroundIsThatColumnsFolder) {
    show("browser");
    left_click(item("browser", path("alpha")));
    left_click(item("browser", path("alpha/one")));
    ASSERT_TRUE(wait_until([&] { return selection() == Lines({path("alpha/one")}); }));
    const Area cell = item("browser", path("alpha/one"));
    const Area view = manager().ask_area("bounds browser");
    right_click({cell.left, view.top + view.height - 20, cell.width, 4});
    EXPECT_EQ(selection(), Lines({path("alpha")}));
    EXPECT_EQ(first_titles(1), Lines({"alpha"}));
    close_menu();
}

TEST_F(Viewers, AnIconOfThePathHasItsFoldersMenuAndLeavesTheSelection) {
    show("icons");
    left_click(item("icons", path("first.txt")));
    ASSERT_TRUE(wait_until([&] { return selection() == Lines({path("first.txt")}); }))
        << manager().ask("selection");
    right_click(item("path", folder().path()));
    EXPECT_EQ(first_titles(1), Lines({folder_name()}));
    hover_along({folder_name(), "alpha", "one"});
    close_menu();
    EXPECT_EQ(selection(), Lines({path("first.txt")}));
    right_click(item("path", path("first.txt")));
    EXPECT_EQ(first_titles(1), Lines({"first.txt"}));
    close_menu();
}

TEST_F(Viewers, AnIconOfTheShelfHasItsMenuAndLeavesTheSelection) {
    show("browser");
    left_click(item("browser", path("first.txt")));
    ASSERT_TRUE(wait_until([&] { return selection() == Lines({path("first.txt")}); }))
        << manager().ask("selection");
    EXPECT_EQ(manager().ask("shelve x " + path("alpha")), "");
    right_click(item("shelf", path("alpha")));
    hover_along({"alpha", "one", "two"});
    EXPECT_EQ(titles(3), Lines({"deep.txt"}));
    close_menu();
    EXPECT_EQ(selection(), Lines({path("first.txt")}));
}

TEST_F(Viewers, TheDesktopHasMenusOnItsIconsAndItsGround) {
    right_click(item("desktop", home("Desktop/pictures")));
    EXPECT_EQ(selection(), Lines({home("Desktop/pictures")}));
    hover_along({"pictures"});
    EXPECT_EQ(titles(1), Lines({"one"}));
    close_menu();
    right_click(ground("desktop"));
    EXPECT_EQ(selection(), Lines({home("Desktop")}));
    EXPECT_EQ(first_titles(1), Lines({"Desktop"}));
    EXPECT_TRUE(contains(titles(0), "New Folder"));
    close_menu();
}

TEST_F(Viewers, TheDocksRecyclerIsAFolder) {
    right_click(item("dock", home(".Trash")));
    EXPECT_EQ(first_titles(1), Lines({".Trash"}));
    EXPECT_TRUE(contains(titles(0), "Empty Recycler"));
    close_menu();
}
