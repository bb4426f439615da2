#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include "support/app.h"

namespace {

class FontMethods : public testing::Test {
  protected:
    void SetUp() override {
        test::start_application();
        pool = [NSAutoreleasePool new];
    }
    void TearDown() override { [pool release]; }
    NSAutoreleasePool* pool;
};

}  // namespace

TEST_F(FontMethods, TheMacsNamesAlwaysGiveAFontOfTheSize) {
    for (NSString *name in [NSArray arrayWithObjects:@"Lucida Grande", @"Monaco", nil]) {
        for (const CGFloat size : {9.0, 14.0, 72.0}) {
            NSFont* font = [NSFont fontWithName:name size:size];
            ASSERT_NE(font, nil) << [name UTF8String];
            EXPECT_EQ([font pointSize], size);
        }
    }
}

TEST_F(FontMethods, SizeZeroIsTheDefaultSize) {
    EXPECT_GT([[NSFont fontWithName:@"Lucida Grande" size:0] pointSize], 0);
    EXPECT_GT([[NSFont fontWithName:@"Monaco" size:0] pointSize], 0);
}

TEST_F(FontMethods, MonacoIsMonospaced) {
    NSFont* font = [NSFont fontWithName:@"Monaco" size:40];
    EXPECT_NEAR([font widthOfString:@"iiii"], [font widthOfString:@"MMMM"], 4);
}

TEST_F(FontMethods, AnUnknownNameGivesNone) {
    EXPECT_EQ([NSFont fontWithName:@"No Such Font At All" size:12], nil);
}

TEST_F(FontMethods, AnInstalledFontKeepsItsName) {
    NSString* name = [[NSFont systemFontOfSize:12] fontName];
    EXPECT_TRUE([[[NSFont fontWithName:name size:12] fontName] isEqualToString:name]);
}
