#include "items/DVDelvio+Labels.h"

#include "items/DVMenuItem.h"
#include "plugin/menu_fixture.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

class LabelledItem : public test::MenuTest {
  protected:
    LabelledItem() : elem_(dv_build_single_elem(folder_.file("labelled").c_str(), 0, 0)) {}
    ~LabelledItem() override { dv_free_tree(elem_); }

    DVMenuItem* item(uint8_t label) {
        elem_->label = label;
        return [[[DVMenuItem alloc] initWithTree:elem_ target:controller_] autorelease];
    }
    // Reads the settings given so far.
    void apply() {
        take_over();
        release();
    }

  private:
    dv_tree_t* elem_;
};

}  // namespace

TEST_F(LabelledItem, LabelNoneKeepsAPlainTitle) {
    apply();
    EXPECT_EQ([[item(0) attributedTitle] length], 0u);
}

TEST_F(LabelledItem, LabelsColourTheTitle) {
    apply();
    for (uint8_t label = 1; label <= 7; label++) {
        NSAttributedString* text = [item(label) attributedTitle];
        ASSERT_STREQ([[text string] UTF8String], "labelled");
        NSDictionary* attributes = [text attributesAtIndex:0 effectiveRange:nullptr];
        EXPECT_EQ([attributes objectForKey:NSForegroundColorAttributeName],
                  [DVDelvio colorForLabel:label]);
        EXPECT_EQ([attributes objectForKey:NSFontAttributeName],
                  [NSFont fontWithName:@"Lucida Grande" size:14]);
    }
}

TEST_F(LabelledItem, LabelledTitlesHaveThePreferredFontSize) {
    set("font_size", 21);
    apply();
    NSAttributedString* text = [item(6) attributedTitle];
    NSFont* font = [text attribute:NSFontAttributeName atIndex:0 effectiveRange:nullptr];
    EXPECT_EQ([font pointSize], 21);
}

TEST_F(LabelledItem, LabelsShowOnlyWhenAskedFor) {
    set("showLabels", 0);
    apply();
    EXPECT_EQ([controller_ showLabels], 0);
    EXPECT_EQ([[item(6) attributedTitle] length], 0u);
}

TEST(Labels, OnlyTheLowByteCounts) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSColor* none = [NSColor clearColor];
    EXPECT_TRUE([[DVDelvio colorForLabel:8] isEqual:none]);
    EXPECT_TRUE([[DVDelvio colorForLabel:255] isEqual:none]);
    EXPECT_TRUE([[DVDelvio colorForLabel:264] isEqual:none]);
    EXPECT_TRUE([[DVDelvio colorForLabel:256] isEqual:none]);
    EXPECT_TRUE([[DVDelvio colorForLabel:263] isEqual:[NSColor orangeColor]]);
    [pool release];
}

TEST(Labels, EachHasItsColour) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    NSArray* expected = @[
        [NSColor clearColor], [NSColor grayColor], [NSColor greenColor], [NSColor purpleColor],
        [NSColor blueColor], [NSColor yellowColor], [NSColor redColor], [NSColor orangeColor]
    ];
    for (NSInteger label = 0; label < 8; label++) {
        EXPECT_TRUE([[DVDelvio colorForLabel:label] isEqual:[expected objectAtIndex:label]]);
    }
    [pool release];
}
