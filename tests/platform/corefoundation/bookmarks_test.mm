#include <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <string>

#include "support/temp_folder.h"

namespace {

class Bookmarks : public testing::Test {
  protected:
    void SetUp() override { pool = [NSAutoreleasePool new]; }
    void TearDown() override { [pool release]; }

    static NSURL* resolve(const std::string& bytes) {
        const NSUInteger options =
            NSURLBookmarkResolutionWithoutUI | NSURLBookmarkResolutionWithoutMounting;
        EXPECT_EQ(options, 768u);
        NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        return [NSURL URLByResolvingBookmarkData:data
                                         options:options
                                   relativeToURL:nil
                             bookmarkDataIsStale:NULL
                                           error:NULL];
    }
    static std::string path(const std::string& bytes) {
        NSString* path = [resolve(bytes) path];
        return path ? [path UTF8String] : "none";
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

}  // namespace

TEST_F(Bookmarks, AnAddressLeadsToItsFile) {
    const std::string file = folder.file("a b\xc3\xa9.txt");
    EXPECT_EQ(path("file://" + folder.path() + "/a%20b%C3%A9.txt"), file);
    EXPECT_EQ(path("file://localhost" + folder.path() + "/a%20b%c3%a9.txt"), file);
    EXPECT_EQ(path("file:" + folder.path() + "/a b%C3%A9.txt"), file);
    EXPECT_EQ(path("file://" + folder.path()), folder.path());
}

TEST_F(Bookmarks, AMissingFileDoesNotResolveAndSaysWhy) {
    BOOL stale = YES;
    NSError* error = nil;
    const std::string address = "file://" + folder.path("gone");
    NSData* data = [NSData dataWithBytes:address.data() length:address.size()];
    EXPECT_EQ([NSURL URLByResolvingBookmarkData:data
                                        options:0
                                  relativeToURL:nil
                            bookmarkDataIsStale:&stale
                                          error:&error],
              nil);
    EXPECT_FALSE(stale);
    EXPECT_NE(error, nil);
    EXPECT_EQ(path("file://" + folder.link("dangling", "nowhere")), "none");
}

TEST_F(Bookmarks, WhatNamesNoFileOfThisMachineDoesNotResolve) {
    folder.file("a");
    const std::string file = folder.path("a");
    for (const std::string& data :
         {std::string(), std::string("\0\1\2", 3), file, "http://localhost" + file,
          "file://elsewhere" + file, "sftp://localhost" + file, "file://" + file + "%00",
          "file://" + file + "%", "file://" + file + "%4", "file://" + file + "%zz",
          std::string("file:///\0", 9)}) {
        EXPECT_EQ(resolve(data), nil) << data;
    }
    EXPECT_EQ([NSURL URLByResolvingBookmarkData:nil
                                        options:0
                                  relativeToURL:nil
                            bookmarkDataIsStale:NULL
                                          error:NULL],
              nil);
}

TEST_F(Bookmarks, AnEscapedSlashIsInNoName) {
    const std::string file = folder.file("a");
    ASSERT_EQ(path("file://" + file), file);
    EXPECT_EQ(path("file://" + folder.path() + "/%2Fa"), "none");
    EXPECT_EQ(path("file://" + folder.path() + "%2fa"), "none");
    EXPECT_EQ(path("file:/%2f"), "none");
}

TEST_F(Bookmarks, ANameThatIsNoTextKeepsItsEscapes) {
    folder.file("caf\xe9");
    const std::string address = "file://" + folder.path() + "/caf%E9";
    EXPECT_STREQ([[resolve(address) absoluteString] UTF8String], address.c_str());
}

TEST_F(Bookmarks, SignsOfANameThatIsNoTextAreNoPartsOfAnAddress) {
    folder.file("a");
    folder.file("a?b#c%\xe9");
    const std::string start = "file://" + folder.path();
    NSURL* url = resolve(start + "/a?b#c%25%E9");
    EXPECT_EQ([url absoluteString].UTF8String, start + "/a%3Fb%23c%25%E9");
    EXPECT_EQ([url query], nil);
    EXPECT_EQ([url fragment], nil);
}
