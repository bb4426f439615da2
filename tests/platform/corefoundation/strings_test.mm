#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <string.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "corefoundation/name_string.h"

namespace {

// Released at the end of its scope.
class String {
  public:
    explicit String(CFStringRef string) : string_(string) {}
    ~String() { CFRelease(string_); }
    String(const String&) = delete;
    String& operator=(const String&) = delete;
    operator CFStringRef() const { return string_; }
    NSString* object() const { return (NSString*)string_; }

  private:
    CFStringRef string_;
};

CFStringRef name(const std::string& bytes) {
    return create_name_string(bytes.data(), bytes.size());
}

CFStringRef utf8(const char* text) {
    return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
}

// The bytes of a string in an encoding, or "-" when they do not fit `size`.
std::string bytes(CFStringRef string, CFIndex size, CFStringEncoding encoding) {
    std::string buffer(static_cast<size_t>(size) + 1, '#');
    if (!CFStringGetCString(string, buffer.data(), size, encoding)) return "-";
    EXPECT_EQ(buffer[static_cast<size_t>(size)], '#');
    return buffer.c_str();
}

}  // namespace

TEST(Strings, AConstantStringIsOneObjectForEachText) {
    EXPECT_EQ(CFSTR("logLevel"), CFSTR("logLevel"));
    EXPECT_NE(CFSTR("logLevel"), CFSTR("loglevel"));
    EXPECT_TRUE([(NSString*)CFSTR("sort_order") isEqual:@"sort_order"]);
    EXPECT_TRUE([@"sort_order" isEqual:(NSString*)CFSTR("sort_order")]);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) threads.emplace_back([] { CFSTR("from many threads"); });
    for (std::thread& thread : threads) thread.join();
}

TEST(Strings, LengthCountsUtf16Units) {
    EXPECT_EQ(CFStringGetLength(String(utf8("caf\xC3\xA9"))), 4);
    EXPECT_EQ(CFStringGetLength(String(utf8("\xF0\x9F\x93\x81"))), 2);
    EXPECT_EQ(CFStringGetLength(String(utf8(""))), 0);
}

TEST(Strings, InvalidBytesMakeNoString) {
    EXPECT_EQ(utf8("\xFF"), nullptr);
    EXPECT_EQ(utf8("a\xC3"), nullptr);
    EXPECT_EQ(utf8("\xC0\xAF"), nullptr);
    EXPECT_EQ(utf8("\xED\xA0\x80"), nullptr);
    EXPECT_EQ(utf8("\xF5\x80\x80\x80"), nullptr);
    EXPECT_EQ(utf8(nullptr), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(kCFAllocatorDefault, "\xE9", kCFStringEncodingASCII),
              nullptr);
    EXPECT_EQ(CFStringCreateWithCString(kCFAllocatorDefault, "a", 0x7777), nullptr);
}

TEST(Strings, TheBufferMustHoldTheTerminatingNul) {
    for (const CFStringRef made : {utf8("abc"), name("abc")}) {
        const String string(made);
        EXPECT_EQ(bytes(string, 4, kCFStringEncodingUTF8), "abc");
        EXPECT_EQ(bytes(string, 3, kCFStringEncodingUTF8), "-");
        EXPECT_EQ(bytes(string, 0, kCFStringEncodingUTF8), "-");
    }
    for (const CFStringRef made : {utf8("\xC3\xA9\xE6\x97\xA5"), name("\xC3\xA9\xE6\x97\xA5")}) {
        const String string(made);
        EXPECT_EQ(bytes(string, 6, kCFStringEncodingUTF8), "\xC3\xA9\xE6\x97\xA5");
        EXPECT_EQ(bytes(string, 5, kCFStringEncodingUTF8), "-");
    }
}

TEST(Strings, WhatAnEncodingLacksIsRefused) {
    const String accented(utf8("\xC3\xA9")), chinese(utf8("\xE6\x97\xA5"));
    EXPECT_EQ(bytes(accented, 10, kCFStringEncodingMacRoman), "\x8E");
    EXPECT_EQ(bytes(accented, 10, kCFStringEncodingASCII), "-");
    EXPECT_EQ(bytes(chinese, 10, kCFStringEncodingMacRoman), "-");
    EXPECT_EQ(bytes(chinese, 10, 0x7777), "-");
    const unichar lone = 0xD800;
    NSString* broken = [NSString stringWithCharacters:&lone length:1];
    EXPECT_EQ(bytes((CFStringRef)broken, 10, kCFStringEncodingUTF8), "-");
    char buffer[4];
    EXPECT_FALSE(CFStringGetCString(nullptr, buffer, 4, kCFStringEncodingUTF8));
}

TEST(Strings, UnicodeIsGivenAsUnits) {
    const String string(utf8("a\xE6\x97\xA5"));
    UniChar units[3] = {1, 1, 1};
    EXPECT_TRUE(CFStringGetCString(string, (char*)units, sizeof units, kCFStringEncodingUnicode));
    EXPECT_EQ(units[0], 'a');
    EXPECT_EQ(units[1], 0x65E5);
    EXPECT_EQ(units[2], 0);
    EXPECT_FALSE(CFStringGetCString(string, (char*)units, 5, kCFStringEncodingUnicode));
}

TEST(Strings, CharactersAreCopiedFromARange) {
    for (const CFStringRef made : {utf8("abcdef"), name("abcdef")}) {
        const String string(made);
        UniChar units[3];
        CFStringGetCharacters(string, {2, 3}, units);
        EXPECT_EQ(units[0], 'c');
        EXPECT_EQ(units[2], 'e');
    }
}

TEST(Strings, TheMaximumSizeHoldsEveryStringOfTheLength) {
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF8), 30);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingMacRoman), 10);
    EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUnicode), 20);
}

TEST(NameStrings, BehaveAsFoundationsStrings) {
    for (const char* text : {"", "a", "plain.txt", "with \x01\x7F\n", "caf\xC3\xA9",
                             "\xE6\x97\xA5\xE6\x9C\xAC", "\xF0\x9F\x93\x81 folder"}) {
        const String string(name(text));
        NSString* same = [NSString stringWithUTF8String:text];
        EXPECT_TRUE([string.object() isEqual:same]);
        EXPECT_TRUE([same isEqual:string.object()]);
        EXPECT_EQ([string.object() hash], [same hash]);
        EXPECT_EQ([string.object() length], [same length]);
        EXPECT_STREQ([string.object() UTF8String], text);
        EXPECT_EQ(CFGetTypeID(string), CFStringGetTypeID());
        EXPECT_TRUE([[string.object() mutableCopy] autorelease] != nil);
        EXPECT_TRUE([[string.object() stringByAppendingString:@"!"] hasPrefix:same] ||
                    [same length] == 0);
    }
}

TEST(NameStrings, OutlastTheirCopies) {
    CFStringRef string = name("kept");
    NSString* copy = [(NSString*)string copy];
    CFRelease(string);
    EXPECT_TRUE([copy isEqual:@"kept"]);
    [copy release];
}

TEST(NameStrings, RefuseRangesOutsideTheString) {
    const String string(name("abc"));
    unichar unit;
    EXPECT_EQ([string.object() characterAtIndex:2], 'c');
    @try {
        [string.object() getCharacters:&unit range:NSMakeRange(2, 2)];
        ADD_FAILURE() << "no exception";
    } @catch (NSException* exception) {
        EXPECT_TRUE([[exception name] isEqual:NSRangeException]);
    }
}

TEST(NameStrings, KeepOtherCharactersAndRefuseWhatIsNotUtf8) {
    const String string(name("caf\xC3\xA9"));
    EXPECT_TRUE([string.object() isEqual:[NSString stringWithUTF8String:"caf\xC3\xA9"]]);
    const String long_string(name(std::string(5000, 'x') + "\xC3\xA9"));
    EXPECT_EQ(CFStringGetLength(long_string), 5001);
    EXPECT_EQ(bytes(string, 9, kCFStringEncodingMacRoman), "caf\x8E");
    for (const char* bad : {"\xFF", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF5\x80\x80\x80"}) {
        EXPECT_EQ(name(bad), nullptr);
    }
}

TEST(PassingNames, AreEachTheirOwnTextAlsoInMemoryUsedAgain) {
    for (const std::string text :
         {"a long name that was there before.txt", "b", "d\u00E9j\u00E0 vu"}) {
        CFStringRef passing = create_passing_name_string(text.data(), text.size());
        EXPECT_STREQ([(NSString*)passing UTF8String], text.c_str());
        CFRelease(passing);
    }
}

TEST(PassingNames, OneThatIsKeptStaysWhatItIs) {
    NSString* kept = (NSString*)create_passing_name_string("kept", 4);
    [kept retain];
    [kept release];
    CFStringRef next = create_passing_name_string("next", 4);
    EXPECT_STREQ([kept UTF8String], "kept");
    CFRelease(next);
    [kept release];
}

TEST(PassingNames, MayBeLongerThanANameOfAFile) {
    const std::string text(3000, 'x');
    CFStringRef passing = create_passing_name_string(text.data(), text.size());
    EXPECT_EQ(CFStringGetLength(passing), 3000);
    CFRelease(passing);
}

TEST(PassingNames, AreMadeAndReleasedByManyThreads) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([i, &wrong] {
            const std::string text(static_cast<size_t>(20 + i), static_cast<char>('a' + i));
            for (int round = 0; round < 5000; round++) {
                CFStringRef passing = create_passing_name_string(text.data(), text.size());
                char bytes[64] = "";
                CFStringGetCString(passing, bytes, sizeof bytes, kCFStringEncodingUTF8);
                if (text != bytes) wrong++;
                CFRelease(passing);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}
