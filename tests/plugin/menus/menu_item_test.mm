#include "items/DVMenuItem.h"

#include <string.h>

#include <string>

#include "items/DVMenu.h"
#include "plugin/menu_fixture.h"
#include "plugin/replaced_method.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::string_of;

class MenuItem : public test::MenuTest {
  protected:
    ~MenuItem() override { dv_free_tree(elems_); }

    // An element for a whole path, freed after the test.
    dv_tree_t* single(const std::string& path) {
        return keep(dv_build_single_elem(path.c_str(), 0, 0));
    }
    dv_tree_t* child(const char* folder, const char* name) {
        return keep(dv_create_elem(dv_create_folder_dir(folder), name, strlen(name), 0));
    }
    DVMenuItem* item(dv_tree_t* elem) {
        return [[[DVMenuItem alloc] initWithTree:elem target:controller_] autorelease];
    }
    // Reads the settings given so far.
    void apply() {
        take_over();
        release();
    }

  private:
    dv_tree_t* keep(dv_tree_t* elem) {
        elem->next = elems_;
        elems_ = elem;
        return elem;
    }
    dv_tree_t* elems_ = nullptr;
};

std::string title(NSMenuItem* item) { return [[item title] UTF8String]; }

}  // namespace

TEST_F(MenuItem, ARootIsNamedByTheLastComponentOfItsPath) {
    const std::string path = folder_.folder("Documents");
    dv_tree_t* root = dv_build_tree(path.c_str(), 0, 1, 0, 0);
    EXPECT_STREQ([DVMenuItem nameForTree:root], "Documents");
    dv_free_tree(root);
    dv_tree_t* single = dv_create_elem(dv_create_single_dir("/Users/x/Documents"), "", 0, 0);
    EXPECT_STREQ([DVMenuItem nameForTree:single], "Documents");
    dv_free_elem(single);
}

TEST_F(MenuItem, AChildIsNamedByItsOwnName) {
    EXPECT_STREQ([DVMenuItem nameForTree:child("/Users/x/", "letter")], "letter");
}

TEST_F(MenuItem, ADisplayNameOfItsOwnNamesAnElement) {
    dv_tree_t* elem = child("/Users/x/", "letter");
    elem->display_name = strdup("Brief");
    elem->owns_display_name = 1;
    EXPECT_STREQ([DVMenuItem nameForTree:elem], "Brief");
    EXPECT_EQ(title(item(elem)), "Brief");
}

TEST_F(MenuItem, AnElementWhoseOwnDisplayNameIsMissingIsNamedByItsPath) {
    dv_tree_t* elem = child("/Users/x/", "");
    elem->display_name = nullptr;
    elem->owns_display_name = 1;
    EXPECT_STREQ([DVMenuItem nameForTree:elem], "x/");
    elem->owns_display_name = 0;
}

TEST_F(MenuItem, NoElementIsNamedByAFixedText) {
    EXPECT_STREQ([DVMenuItem nameForTree:nullptr], "Delvio: No tree specified; should not happen.");
}

TEST_F(MenuItem, ANullTreeAborts) {
    EXPECT_DEATH([[DVMenuItem alloc] initWithTree:nullptr
                                           target:controller_
                                            title:@"x"
                                         useImage:NO],
                 "DVMenuItem.*theTree != 0");
}

TEST_F(MenuItem, CarriesItsElementTargetAndAction) {
    dv_tree_t* elem = single(folder_.file("a"));
    DVMenuItem* made = item(elem);
    EXPECT_EQ([made tree], elem);
    EXPECT_EQ([made target], controller_);
    EXPECT_TRUE(sel_isEqual([made action], @selector(dvItemSelected:)));
    EXPECT_STREQ([[made keyEquivalent] UTF8String], "");
    EXPECT_TRUE([made isEnabled]);
    EXPECT_FALSE([made isAlternate]);
}

TEST_F(MenuItem, AnInvalidNameIsTitledByItsElement) {
    dv_tree_t* elem = child("/tmp/", "bad\xff");
    char expected[64];
    snprintf(expected, sizeof expected, "Delvio: No name found? %p", elem);
    DVMenuItem* made = item(elem);
    EXPECT_EQ(title(made), expected);
    EXPECT_NE([made image], nil);
}

TEST_F(MenuItem, AGivenTitleReplacesTheName) {
    DVMenuItem* made = [[[DVMenuItem alloc] initWithTree:single(folder_.file("a"))
                                                  target:controller_
                                                   title:@"3 selected items"] autorelease];
    EXPECT_EQ(title(made), "3 selected items");
}

TEST_F(MenuItem, IconsFollowTheFontSize) {
    dv_tree_t* elem = single(folder_.file("a"));
    apply();
    EXPECT_TRUE(NSEqualSizes([[item(elem) image] size], NSMakeSize(16, 16)));
    set("font_size", 12);
    apply();
    EXPECT_TRUE(NSEqualSizes([[item(elem) image] size], NSMakeSize(15, 15)));
}

namespace {

std::string icon_path;
NSImage* icon_for_file(id, SEL, NSString* path) {
    icon_path = [path UTF8String];
    return [[[NSImage alloc] initWithSize:NSMakeSize(48, 32)] autorelease];
}

}  // namespace

TEST_F(MenuItem, TheIconIsThatOfTheFileAndOfAnAliasThatOfItsTarget) {
    const test::ReplacedMethod icons([NSWorkspace class], @selector(iconForFile:), icon_for_file);
    const std::string file = folder_.file("a"), alias = folder_.link("alias", "a");
    NSImage* icon = [item(single(file)) image];
    EXPECT_EQ(icon_path, file);
    EXPECT_TRUE(NSEqualSizes([icon size], NSMakeSize(16, 16))) << "a square";
    item(child("/some/where/", "else"));
    EXPECT_EQ(icon_path, "/some/where/else");
    item(single(alias));
    EXPECT_EQ(icon_path, file);
}

TEST_F(MenuItem, WithoutImageNoneIsSet) {
    DVMenuItem* made = [DVMenuItem createAutoreleasedItemForTree:single(folder_.file("a"))
                                                          target:controller_
                                                       withTitle:nil
                                                    andModifiers:0
                                                        useImage:NO];
    EXPECT_EQ([made image], nil);
    EXPECT_EQ(title(made), "a");
}

TEST_F(MenuItem, ModifiersMakeAnAlternate) {
    dv_tree_t* elem = single(folder_.file("a"));
    DVMenuItem* plain = [DVMenuItem createAutoreleasedItemForTree:elem
                                                           target:controller_
                                                        withTitle:nil
                                                     andModifiers:0];
    EXPECT_FALSE([plain isAlternate]);
    const NSUInteger masks[] = {NSShiftKeyMask, NSAlternateKeyMask};
    for (NSUInteger mask : masks) {
        DVMenuItem* other = [DVMenuItem createAutoreleasedItemForTree:elem
                                                               target:controller_
                                                            withTitle:nil
                                                         andModifiers:mask];
        EXPECT_TRUE([other isAlternate]);
        EXPECT_EQ([other keyEquivalentModifierMask], mask);
        EXPECT_NE([other image], nil);
    }
}

TEST_F(MenuItem, AMenuStartsUnfilled) {
    dv_tree_t* elem = single(folder_.file("a"));
    DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"t" tree:elem andLevel:3] autorelease];
    EXPECT_STREQ([[menu title] UTF8String], "t");
    EXPECT_EQ([menu tree], elem);
    EXPECT_EQ([menu dvFolderLevel], 3);
    EXPECT_FALSE([menu autoenablesItems]);
    EXPECT_FALSE([menu dvDidPopulate]);
    EXPECT_FALSE([menu dvBeganAsyncPopulate]);
    EXPECT_FALSE([menu dvIsPreviewMenu]);
    EXPECT_EQ([menu dvOpenWithIsAttachedToRoot], 0);
    EXPECT_EQ([[[[DVMenu alloc] initWithTitle:@"" andTree:elem] autorelease] dvFolderLevel], 0);
}
