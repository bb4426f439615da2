// Lists that must not reach the parsers of property lists.
#include "corefoundation/list_limits.h"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <string>

namespace {

const std::string xml_head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//A//B\" \"http://c\">"
    "<plist version=\"1.0\">";

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; i++) result += text;
    return result;
}

std::string xml(const std::string& content) { return xml_head + content + "</plist>"; }

// Offsets and references take one byte each.
std::string binary(const std::vector<std::string>& objects, char root = 0) {
    std::string bytes = "bplist00", table;
    for (const std::string& object : objects) {
        table += static_cast<char>(bytes.size());
        bytes += object;
    }
    const auto start = static_cast<char>(bytes.size());
    const auto number = [](char value) { return std::string(7, '\0') + value; };
    return bytes + table + std::string(6, '\0') + "\1\1" +
           number(static_cast<char>(objects.size())) + number(root) + number(start);
}

std::string serialized(id list, NSPropertyListFormat format) {
    NSData* data = [NSPropertyListSerialization dataWithPropertyList:list
                                                              format:format
                                                             options:0
                                                               error:nullptr];
    return std::string(static_cast<const char*>([data bytes]), [data length]);
}

}  // namespace

TEST(ListLimits, ListsOfEveryFormatPass) {
    @autoreleasepool {
        NSDictionary* list = @{
            @"name" : @"G\u00e4rtner \"a\" <b> ( { /* // */",
            @"count" : @42,
            @"share" : @0.5,
            @"yes" : [NSNumber numberWithBool:YES],
            @"data" : [NSData dataWithBytes:"\0\1\xff" length:3],
            @"many" : @[ @"a", @[ @"b", @{@"c" : @"d"} ], @"", @"e f" ],
            @"none" : @{}
        };
        for (const NSPropertyListFormat format :
             {NSPropertyListOpenStepFormat, NSPropertyListGNUstepFormat,
              NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
            const std::string bytes = serialized(list, format);
            ASSERT_FALSE(bytes.empty()) << format;
            EXPECT_TRUE(is_bounded_list(bytes)) << bytes;
        }
    }
}

TEST(ListLimits, NestingIsBoundedInTextInsideAndOutsideOfWhatLooksLikeItsEnd) {
    for (const char* opening :
         {"(", "{", "{a=", "{\"}}}}}}\"=", "(\"))))\",", "(/*)))*/", "(//)))\n", "(a'", "(<00>,",
          "(<*I4>,", "(<[AAAA]>,", "(\"\\\")))\","}) {
        const bool is_read = std::string(opening) != "(a'";
        EXPECT_EQ(is_bounded_list(repeated(opening, 120000)), !is_read) << opening;
    }
    EXPECT_TRUE(is_bounded_list(repeated("(", 90) + repeated(")", 90)));
    EXPECT_TRUE(is_bounded_list("(" + repeated("(a),", 5000) + ")"));
    EXPECT_TRUE(is_bounded_list("{a = \"" + repeated("(", 5000) + "\"; }"));
    EXPECT_TRUE(is_bounded_list("{a = b; /* " + repeated("{", 5000) + " */ }"));
}

TEST(ListLimits, ANumberThatWouldNotFitTheParsersStackIsRefused) {
    EXPECT_TRUE(is_bounded_list("(<*I12345>)"));
    EXPECT_FALSE(is_bounded_list("(<*I" + std::string(9000000, '1') + ">)"));
    EXPECT_FALSE(is_bounded_list("(<*I" + std::string(9000000, '1')));
}

TEST(ListLimits, NestingIsBoundedInXml) {
    EXPECT_FALSE(is_bounded_list(xml_head + repeated("<array>", 120000)));
    EXPECT_FALSE(is_bounded_list(xml(repeated("<array>", 101) + repeated("</array>", 101))));
    EXPECT_TRUE(is_bounded_list(xml(repeated("<array>", 90) + repeated("</array>", 90))));
    EXPECT_TRUE(is_bounded_list(xml("<array>" + repeated("<array/>", 5000) + "</array>")));
    EXPECT_TRUE(is_bounded_list(xml("<!-- " + repeated("<array>", 5000) + " --><string/>")));
    EXPECT_TRUE(is_bounded_list(xml("<string><![CDATA[" + repeated("<a>", 5000) + "]]></string>")));
}

TEST(ListLimits, XmlThatParsersReadInDifferentWaysIsRefused) {
    EXPECT_FALSE(is_bounded_list(xml("<array a=\"></array>\"></array>")));
    EXPECT_FALSE(is_bounded_list(xml("<array></dict></array>")));
    EXPECT_FALSE(is_bounded_list(xml("<array <array></array>")));
    EXPECT_FALSE(is_bounded_list("<?xml version=\"1.0?>\"?><plist/>"));
    EXPECT_FALSE(is_bounded_list("<?xml a=\"'\" b='\"'?><plist/>"));
    EXPECT_FALSE(
        is_bounded_list("<?xml version='1.0'?><!DOCTYPE plist [<!ENTITY a \"b\">]><plist/>"));
}

TEST(ListLimits, ABinaryListIsBoundedHoweverItPointsIntoItself) {
    EXPECT_TRUE(is_bounded_list(binary({"\xa1\1", "\x51"
                                                  "a"})));
    EXPECT_FALSE(is_bounded_list(binary({std::string("\xa1\0", 2)}))) << "a list within itself";
    EXPECT_FALSE(is_bounded_list(binary({"\xa1\1", "\x5e"
                                                   "a"})))
        << "a text beyond the end";
    EXPECT_FALSE(is_bounded_list(binary({"\xa1\7"}))) << "an object that is none";
    EXPECT_FALSE(is_bounded_list(binary({"\xaf\x12\x7f\xff\xff\xff"}))) << "a count beyond the end";
    std::vector<std::string> doubling;
    for (char i = 1; i <= 30; i++) doubling.push_back(std::string("\xa2") + i + i);
    doubling.push_back("\x08");
    EXPECT_FALSE(is_bounded_list(binary(doubling))) << "a thousand million objects";
    EXPECT_FALSE(is_bounded_list("bplist00"));
}

TEST(ListLimits, ManyItemsAndManyBytesAreRefused) {
    EXPECT_FALSE(is_bounded_list("(" + repeated("a,", 200001) + ")"));
    EXPECT_FALSE(is_bounded_list(xml("<array>" + repeated("<true/>", 200001) + "</array>")));
    EXPECT_FALSE(is_bounded_list("\"" + std::string(largest_list, 'a') + "\""));
    EXPECT_FALSE(is_bounded_list(std::string("\0\0\0\1", 4))) << "GNUstep's own archives";
    EXPECT_TRUE(is_bounded_list(""));
    EXPECT_TRUE(is_bounded_list("no list"));
}
