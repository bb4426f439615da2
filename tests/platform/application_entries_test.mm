#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

#include "support/temp_folder.h"

namespace {

class ApplicationEntries : public testing::Test {
  protected:
    void SetUp() override { pool = [NSAutoreleasePool new]; }
    void TearDown() override { [pool release]; }

    static NSBundle* bundle(const std::string& path) {
        return [NSBundle bundleWithPath:[NSString stringWithUTF8String:path.c_str()]];
    }
    static std::string identifier(const std::string& path) {
        NSString* identifier = [bundle(path) bundleIdentifier];
        return identifier ? [identifier UTF8String] : "none";
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

}  // namespace

TEST_F(ApplicationEntries, AnApplicationsEntryIsABundleWithItsIdentifier) {
    const std::string path =
        folder.file("org.example.Paint.desktop",
                    "[Desktop Entry]\nType=Application\nName=Paint\nExec=/no/such/program\n");
    NSBundle* entry = bundle(path);
    ASSERT_NE(entry, nil);
    EXPECT_STREQ([[entry bundleIdentifier] UTF8String], "org.example.Paint");
    EXPECT_STREQ([[entry bundlePath] UTF8String], path.c_str());
    EXPECT_STREQ([[[entry bundleURL] path] UTF8String], path.c_str());
    EXPECT_STREQ([[entry objectForInfoDictionaryKey:@"CFBundleName"] UTF8String], "Paint");
}

TEST_F(ApplicationEntries, TheBundleHoldsNoCodeAndNoResources) {
    NSBundle* entry = bundle(folder.file("a.desktop", "[Desktop Entry]\nType=Application\n"));
    ASSERT_NE(entry, nil);
    EXPECT_FALSE([entry load]);
    EXPECT_FALSE([entry isLoaded]);
    EXPECT_EQ([entry executablePath], nil);
    EXPECT_EQ([entry principalClass], Nil);
    EXPECT_EQ([entry pathForResource:@"a" ofType:@"png"], nil);
    EXPECT_NE([entry description], nil);
}

TEST_F(ApplicationEntries, OtherFilesAreNoBundles) {
    EXPECT_EQ(bundle(folder.file("plain.txt", "x")), nil);
    EXPECT_EQ(bundle(folder.file("link.desktop", "[Desktop Entry]\nType=Link\nURL=file:///\n")),
              nil);
    EXPECT_EQ(bundle(folder.file("noise.desktop", std::string("\0\xff", 2))), nil);
    EXPECT_EQ(bundle(folder.path("missing.desktop")), nil);
    const std::string fifo = folder.path("fifo.desktop");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(bundle(fifo), nil);
    EXPECT_EQ([NSBundle bundleWithPath:nil], nil);
}

TEST_F(ApplicationEntries, BundlesKeepTheirOwnIdentifier) {
    folder.file("Mail.app/Resources/Info-gnustep.plist",
                "{ CFBundleIdentifier = \"org.example.mail\"; }\n");
    EXPECT_EQ(identifier(folder.path("Mail.app")), "org.example.mail");
}

TEST_F(ApplicationEntries, AFolderHasNoIdentifier) {
    EXPECT_EQ(identifier(folder.folder("plain")), "none");
    EXPECT_EQ(identifier(folder.folder("odd.desktop")), "none");
}
