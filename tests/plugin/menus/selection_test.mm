#include "menus/DVDelvio+Selection.h"

#include <AppKit/ModifierKeys.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "menus/DVDelvio+Population.h"
#include "menus/DVMenuItem.h"
#include "plugin/menu_fixture.h"
#include "tree/dv_tree.h"

namespace {

using test::item_titled;
using test::titles_of;
using test::titles_t;
using test::urls_of;

class Selection : public test::MenuTest {
  protected:
    ~Selection() override { SetHeldModifierFlags(0); }

    titles_t root_names() {
        titles_t names;
        for (dv_tree_t* elem = dv_->root; elem; elem = elem->next) {
            names.push_back([DVMenuItem nameForTree:elem]);
        }
        return names;
    }

    // Makes a program of the test's own the user's program for plain text. It adds its argument to
    // the file `opened_`, a line each.
    void install_opener() {
        opened_ = folder_.path("opened");
        const std::string program =
            folder_.file("opener", "#!/bin/sh\nprintf '%s\\n' \"$1\" >>'" + opened_ + "'\n");
        chmod(program.c_str(), 0755);
        write_config(getenv("XDG_DATA_HOME") + std::string("/applications/opener.desktop"),
                     "[Desktop Entry]\nType=Application\nName=Opener\nExec=" + program +
                         " %f\nMimeType=text/plain;\n");
        write_config(getenv("XDG_CONFIG_HOME") + std::string("/mimeapps.list"),
                     "[Default Applications]\ntext/plain=opener.desktop\n");
    }
    // All that the opener was given; waits for the first.
    std::string opened() {
        for (int i = 0; i < 2000 && test::read_file(opened_).empty(); i++) usleep(10000);
        return test::read_file(opened_);
    }

  private:
    void write_config(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path) << text;
    }
    std::string opened_;
};

}  // namespace

TEST_F(Selection, FoldersStandBeforeFilesEachInTheHostsOrder) {
    select({folder_.file("3"), folder_.folder("b"), folder_.file("1"), folder_.folder("a"),
            folder_.file("2")});
    EXPECT_EQ(root_names(), titles_t({"b", "a", "3", "1", "2"}));
    EXPECT_EQ(titles_of(host_menu_), titles_t({"b", "a", "-", "3", "1", "2", "-"}));
}

TEST_F(Selection, ASecondListChangesNothing) {
    select({folder_.folder("first")});
    [controller_ setSelectedFiles:urls_of({folder_.folder("second")})];
    EXPECT_EQ(root_names(), titles_t({"first"}));
    EXPECT_EQ(titles_of(host_menu_), titles_t({"first", "-"}));
}

TEST_F(Selection, TheNextMenuTakesItsOwn) {
    select({folder_.folder("first")});
    release();
    EXPECT_EQ(dvDidGetURLs, 0);
    select({folder_.folder("second")});
    EXPECT_EQ(root_names(), titles_t({"second"}));
}

TEST_F(Selection, WithoutATakenMenuItIsIgnored) {
    [controller_ setSelectedFiles:urls_of({folder_.folder("a")})];
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(dvDidGetURLs, 0);
}

TEST_F(Selection, OtherObjectsAreIgnoredAndLeaveTheMenuOpenForAList) {
    take_over();
    [controller_ setSelectedFiles:@[ @"text", @1 ]];
    EXPECT_EQ(dvDidGetURLs, 0);
    NSMutableArray* mixed = [NSMutableArray arrayWithObject:@"text"];
    [mixed addObjectsFromArray:urls_of({folder_.folder("a")})];
    [controller_ setSelectedFiles:mixed];
    EXPECT_EQ(root_names(), titles_t({"a"}));
}

TEST_F(Selection, AFileThatIsGoneStillCountsAsTheList) {
    take_over();
    [controller_ setSelectedFiles:urls_of({folder_.path("missing")})];
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(dvDidGetURLs, 1);
    EXPECT_EQ(titles_of(host_menu_), titles_t({"-"}));
}

TEST_F(Selection, MoreThanOneItemIsAMultipleSelection) {
    select({folder_.folder("a")});
    EXPECT_EQ(dv_->multiple_selection, 0);
    release();
    select({folder_.folder("a"), folder_.file("b")});
    EXPECT_EQ(dv_->multiple_selection, 1);
    release();
    take_over();
    EXPECT_EQ(dv_->multiple_selection, 0);
}

TEST_F(Selection, FilesOfTheSelectionAreMarked) {
    select({folder_.file("a"), folder_.folder("b")});
    EXPECT_EQ(dv_->root->origin, 0u);
    EXPECT_EQ(dv_->root->next->origin, static_cast<uint32_t>(DV_ORIGIN_SELECTED_FILE));
}

TEST_F(Selection, PickingAFileOpensIt) {
    install_opener();
    const std::string path = folder_.file("note with blank.txt", "text\n");
    NSMenu* menu = select({path});
    [controller_ dvItemSelected:[menu itemAtIndex:0]];
    EXPECT_EQ(opened(), path + "\n");
}

TEST_F(Selection, PickingAnAliasOpensItsTarget) {
    install_opener();
    const std::string target = folder_.file("target.txt", "text\n");
    NSMenu* menu = select({folder_.link("alias", target)});
    [controller_ dvItemSelected:[menu itemAtIndex:0]];
    EXPECT_EQ(opened(), target + "\n");
}

TEST_F(Selection, ACommandClickOpensNothing) {
    install_opener();
    const std::string first = folder_.file("first.txt", "text\n");
    const std::string second = folder_.file("second.txt", "text\n");
    NSMenu* menu = select({first, second});
    SetHeldModifierFlags(NSCommandKeyMask);
    [controller_ dvItemSelected:item_titled(menu, "first.txt")];
    SetHeldModifierFlags(0);
    // Opened after it, so that the other would have been seen before.
    [controller_ dvItemSelected:item_titled(menu, "second.txt")];
    EXPECT_EQ(opened(), second + "\n");
}

TEST_F(Selection, ItemsOfOthersDoNothingWhenPicked) {
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"" action:nullptr
                                            keyEquivalent:@""] autorelease];
    [controller_ dvItemSelected:item];
    [controller_ dvItemSelected:nil];
    DVMenuItem* ours = static_cast<DVMenuItem*>([select({folder_.folder("a")}) itemAtIndex:0]);
    [ours setTree:nullptr];
    [controller_ dvItemSelected:ours];
    EXPECT_EQ([ours tree], nullptr);
}
