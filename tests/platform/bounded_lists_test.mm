// Hostile property lists that GNUstep reads by itself. Each case runs in its own process: without
// bounds the lists end it or hold it for ever.
#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "support/temp_folder.h"

namespace {

std::string deep(const char* opening) {
    std::string text;
    for (int i = 0; i < 120000; i++) text += opening;
    return text;
}

NSString* string(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

// The exit status of a process that runs `deed`: 0 when `deed` is true.
int status_of(const std::function<bool()>& deed) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        @autoreleasepool {
            _exit(deed() ? 0 : 1);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

class BoundedLists : public testing::Test {
  protected:
    void SetUp() override {
        folder.folder("A.app");
        folder.folder("A.app/Resources");
        folder.folder("A.app/Contents");
    }
    NSBundle* bundle() { return [NSBundle bundleWithPath:string(folder.path("A.app"))]; }
    bool tells_nothing() {
        NSBundle* asked = bundle();
        return asked && ![asked bundleIdentifier] && ![asked executablePath] &&
               ![[asked localizedInfoDictionary] objectForKey:@"CFBundleName"];
    }
    const std::string list = "A.app/Resources/Info-gnustep.plist";
    test::TempFolder folder;
};

}  // namespace

TEST_F(BoundedLists, ABundleOfDeepListsTellsNothingAndEndsNobody) {
    for (const char* name : {"A.app/Resources/Info-gnustep.plist", "A.app/Resources/Info.plist"}) {
        for (const char* opening : {"(", "{a=", "a=("}) {
            const std::string path = folder.file(name, deep(opening));
            EXPECT_EQ(status_of([this] { return tells_nothing(); }), 0) << name << opening;
            unlink(path.c_str());
        }
    }
    folder.file(list, "<?xml version=\"1.0\"?><plist version=\"1.0\">" + deep("<array>"));
    EXPECT_EQ(status_of([this] { return tells_nothing(); }), 0);
}

TEST_F(BoundedLists, ABundlesListThatIsNoPlainFileOrTooLargeIsNotRead) {
    const std::string path = folder.path(list);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(status_of([this] { return tells_nothing(); }), 0) << "a pipe";
    unlink(path.c_str());
    ASSERT_EQ(symlink("/dev/zero", path.c_str()), 0);
    EXPECT_EQ(status_of([this] { return tells_nothing(); }), 0) << "a device";
    unlink(path.c_str());
    folder.file(list, "{ CFBundleIdentifier = a; }");
    ASSERT_EQ(truncate(path.c_str(), off_t{200} << 30), 0);
    EXPECT_EQ(status_of([this] { return tells_nothing(); }), 0) << "200 gigabytes";
}

TEST_F(BoundedLists, AnOrdinaryBundleIsReadAsBefore) {
    folder.file(list,
                "{ CFBundleIdentifier = \"org.example.a\"; NSExecutable = A; Deep = ((1)); }");
    EXPECT_EQ(status_of([this] {
                  return [[bundle() bundleIdentifier] isEqualToString:@"org.example.a"] &&
                         [[[bundle() infoDictionary] objectForKey:@"Deep"] count] == 1;
              }),
              0);
}

TEST_F(BoundedLists, FilesOfDictionariesAndArraysAreBounded) {
    const std::string good = folder.file("good", "{ a = (b, c); }"),
                      bad = folder.file("bad", deep("("));
    const std::string row = folder.file("row", "(a, b)");
    EXPECT_EQ(status_of([&] {
                  return [[NSDictionary dictionaryWithContentsOfFile:string(good)] count] == 1 &&
                         [[NSMutableDictionary dictionaryWithContentsOfFile:string(good)] count] ==
                             1 &&
                         [[NSArray arrayWithContentsOfFile:string(row)] count] == 2;
              }),
              0);
    EXPECT_EQ(status_of([&] {
                  return ![NSDictionary dictionaryWithContentsOfFile:string(bad)] &&
                         ![NSArray arrayWithContentsOfFile:string(bad)] &&
                         ![NSDictionary dictionaryWithContentsOfFile:string(folder.path("none"))] &&
                         ![NSDictionary dictionaryWithContentsOfFile:@""];
              }),
              0);
}

TEST_F(BoundedLists, ADeepFileOfDefaultsIsAsGoodAsNone) {
    const std::string defaults = [GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation];
    ASSERT_EQ(system(("mkdir -p '" + defaults + "'").c_str()), 0);
    for (const char* opening : {"(", "{a="}) {
        const std::string path = defaults + "/org.example.deep.plist", text = deep(opening);
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ASSERT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(file);
        EXPECT_EQ(status_of([] {
                      NSUserDefaults* user = [NSUserDefaults standardUserDefaults];
                      return ![[user persistentDomainForName:@"org.example.deep"] count];
                  }),
                  0);
        unlink(path.c_str());
    }
}

TEST_F(BoundedLists, ADeepTextIsNoPropertyList) {
    EXPECT_EQ(status_of([] {
                  @try {
                      return [string(deep("(")) propertyList] == nil;
                  } @catch (NSException*) {
                      return true;
                  }
              }),
              0);
}
