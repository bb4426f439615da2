#include <gtest/gtest.h>

#include "settings/forced_settings.h"

namespace {

id value_of(NSString* key) {
    const void* value =
        CFPreferencesCopyAppValue(reinterpret_cast<CFStringRef>(key), CFSTR("org.delvio.Delvio"));
    return [static_cast<id>(const_cast<void*>(value)) autorelease];
}

TEST(ForcedSettings, HoldWithTheirTypes) {
    std::string problem;
    EXPECT_TRUE(force_settings({{"font_size", "14"}, {"open_with_path", "/opt"}}, &problem));
    EXPECT_TRUE([value_of(@"font_size") isEqual:@14]);
    EXPECT_TRUE([value_of(@"open_with_path") isEqual:@"/opt"]);
}

TEST(ForcedSettings, AddToAListAndReplaceAValue) {
    std::string problem;
    EXPECT_TRUE(force_settings(
        {{"folders", "/a"}, {"font_size", "1"}, {"folders", "-"}, {"font_size", "2"}}, &problem));
    EXPECT_TRUE([value_of(@"folders") isEqual:(@[ @"/a", @"-" ])]);
    EXPECT_TRUE([value_of(@"font_size") isEqual:@2]);
}

TEST(ForcedSettings, AreRefusedAsASettingWouldBe) {
    std::string problem;
    EXPECT_FALSE(force_settings({{"folders", "/a"}, {"folders", "b"}}, &problem));
    EXPECT_NE(problem.find("folders takes"), std::string::npos);
    EXPECT_FALSE(force_settings({{"sort_ordre", "1"}}, &problem));
    EXPECT_NE(problem.find("sort_order?"), std::string::npos);
}

}  // namespace
