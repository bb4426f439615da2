#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/moment.h"
#include "support/temp_folder.h"

namespace {

using Names = std::vector<std::string>;

// One application's use of one document, as a list stores it.
struct Use {
    std::string address, name, command, day;
};

class RecentDocuments : public testing::Test {
  protected:
    void SetUp() override {
        pool = [NSAutoreleasePool new];
        unlink(list_path().c_str());
        mkdir((data() + "/applications").c_str(), 0755);
    }
    void TearDown() override { [pool release]; }

    static std::string data() { return getenv("XDG_DATA_HOME"); }
    static std::string list_path() { return data() + "/recently-used.xbel"; }
    static void write(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    static void install(const std::string& id, const std::string& name, const std::string& exec) {
        write(data() + "/applications/" + id + ".desktop",
              "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec + "\n");
        test::let_a_moment_pass();
    }
    static std::string item(const Use& use) {
        return "<bookmark href='" + use.address + "' added='" + use.day + "' modified='" + use.day +
               "' visited='" + use.day +
               "'><info><metadata owner='http://freedesktop.org'>"
               "<mime:mime-type type='text/plain'/><bookmark:applications>"
               "<bookmark:application name='" +
               use.name + "' exec='" + use.command + "' modified='" + use.day +
               "' count='1'/></bookmark:applications>"
               "</metadata></info></bookmark>\n";
    }
    static std::string list(const std::string& items) {
        return "<?xml version='1.0' encoding='UTF-8'?>\n<xbel version='1.0' "
               "xmlns:bookmark='http://www.freedesktop.org/standards/desktop-bookmarks' "
               "xmlns:mime='http://www.freedesktop.org/standards/shared-mime-info'>\n" +
               items + "</xbel>\n";
    }
    static std::string day(int number) {
        char text[40];
        snprintf(text, sizeof text, "2024-%02d-%02dT10:00:00Z", 1 + number / 28, 1 + number % 28);
        return text;
    }
    // The value that an application reads; released by the test's pool.
    static id value(const char* identifier) {
        NSString* domain = [NSString stringWithFormat:@"%s.LSSharedFileList", identifier];
        CFPropertyListRef value =
            CFPreferencesCopyAppValue((CFStringRef) @"RecentDocuments", (CFStringRef)domain);
        return [(id)value autorelease];
    }
    static Names addresses(const char* identifier) {
        Names result;
        for (NSDictionary* item in [value(identifier) objectForKey:@"CustomListItems"]) {
            NSData* bookmark = [item objectForKey:@"Bookmark"];
            result.emplace_back((const char*)[bookmark bytes], [bookmark length]);
        }
        return result;
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

}  // namespace

TEST_F(RecentDocuments, WhatGTKHasWrittenIsListedNewestFirst) {
    install("org.example.Writer", "Example Writer", "example-writer %U");
    install("other", "Other", "other-program %f");
    const std::string one = "file://" + folder.file("one.txt");
    const std::string two = "file://" + folder.path() + "/caf%C3%A9%20b.txt";
    folder.file("caf\xc3\xa9 b.txt");
    const std::string command =
        std::string(WRITE_RECENTS) + " '" + one + "' 'Example Writer' 'example-writer %u' '" + one +
        "' Other 'other-program %u' '" + two + "' 'Example Writer' 'example-writer %u'";
    ASSERT_EQ(system(command.c_str()), 0);
    const Names found = addresses("org.example.Writer");
    ASSERT_EQ(found.size(), 2u);
    EXPECT_NE(std::find(found.begin(), found.end(), one), found.end());
    EXPECT_NE(std::find(found.begin(), found.end(), two), found.end());
    EXPECT_EQ(addresses("other"), Names{one});
}

TEST_F(RecentDocuments, TheLastUseByThisApplicationCounts) {
    write(list_path(), list(item({"file:///old", "app", "app %u", day(1)}) +
                            item({"file:///new", "app", "app %u", day(3)}) +
                            item({"file:///middle", "app", "app %u", day(2)}) +
                            item({"file:///foreign", "another", "another %u", day(4)})));
    EXPECT_EQ(addresses("app"), (Names{"file:///new", "file:///middle", "file:///old"}));
}

TEST_F(RecentDocuments, AnApplicationIsKnownByNameCommandAndIdentifier) {
    install("net.example.Paint", "Paint Box", "/opt/paint/bin/paintbox --new %F");
    const auto found_as = [](const char* name, const char* command) {
        write(list_path(), list(item({"file:///a", name, command, day(1)})));
        return addresses("net.example.Paint").size() == 1;
    };
    EXPECT_TRUE(found_as("Paint Box", "x %u"));
    EXPECT_TRUE(found_as("paint box", "x %u"));
    EXPECT_TRUE(found_as("x", "paintbox %u"));
    EXPECT_TRUE(found_as("x", "&apos;/usr/bin/paintbox&apos; %u"));
    EXPECT_TRUE(found_as("x", "env A=1 paintbox %u"));
    EXPECT_TRUE(found_as("net.example.Paint", "x %u"));
    EXPECT_TRUE(found_as("paint", "x %u"));
    EXPECT_FALSE(found_as("Pain", ""));
    EXPECT_FALSE(found_as("Painter", "paintbox2 %u"));
}

TEST_F(RecentDocuments, AnInterpreterSaysNothingAboutTheApplication) {
    install("script", "Script", "python3 /opt/script.py %F");
    write(list_path(), list(item({"file:///a", "Foreign", "python3 %u", day(1)})));
    EXPECT_EQ(value("script"), nil);
}

TEST_F(RecentDocuments, TenAreListed) {
    std::string items;
    for (int i = 0; i < 40; i++) {
        items += item({"file:///" + std::to_string(i), "app", "app %u", day(i)});
    }
    write(list_path(), list(items));
    const Names found = addresses("app");
    ASSERT_EQ(found.size(), 10u);
    EXPECT_EQ(found[0], "file:///39");
    EXPECT_EQ(found[9], "file:///30");
}

TEST_F(RecentDocuments, WhatIsNoFileIsLeftOut) {
    write(list_path(), list(item({"sftp://host/a", "app", "app %u", day(2)}) +
                            item({"file:///b", "app", "app %u", day(1)})));
    EXPECT_EQ(addresses("app"), Names{"file:///b"});
}

TEST_F(RecentDocuments, AChangedListIsReadAgain) {
    write(list_path(), list(item({"file:///a", "app", "app %u", day(1)})));
    EXPECT_EQ(addresses("app"), Names{"file:///a"});
    write(list_path(), list(item({"file:///longer", "app", "app %u", day(1)})));
    EXPECT_EQ(addresses("app"), Names{"file:///longer"});
    unlink(list_path().c_str());
    EXPECT_EQ(value("app"), nil);
}

TEST_F(RecentDocuments, WithoutAListOrDocumentsThereIsNoValue) {
    EXPECT_EQ(value("app"), nil);
    write(list_path(), list(item({"file:///a", "another", "another %u", day(1)})));
    EXPECT_EQ(value("app"), nil);
    EXPECT_EQ(value(""), nil);
    EXPECT_EQ(value("(null)"), nil);
    CFPropertyListRef other = CFPreferencesCopyAppValue((CFStringRef) @"OtherKey",
                                                        (CFStringRef) @"another.LSSharedFileList");
    EXPECT_EQ(other, nullptr);
}

TEST_F(RecentDocuments, ADamagedListHasNoDocuments) {
    const std::string whole = list(item({"file:///a", "app", "app %u", day(1)}));
    for (const std::string& content :
         {std::string(), whole.substr(0, whole.size() / 2), std::string("\0\1\xff<", 4),
          std::string("<xbel version='9'></xbel>"), std::string("<xbel version='1.0'>"),
          list("<bookmark href='file:///a'><info><metadata owner='http://freedesktop.org'>"
               "<bookmark:applications><bookmark:application/></bookmark:applications>"
               "</metadata></info></bookmark>"),
          list("<bookmark/>")}) {
        write(list_path(), content);
        EXPECT_EQ(value("app"), nil) << content;
    }
    write(list_path(), whole);
    EXPECT_EQ(addresses("app").size(), 1u);
}

TEST_F(RecentDocuments, AHugeListIsNotRead) {
    std::string items = item({"file:///a", "app", "app %u", day(1)});
    items += "<!--" + std::string(50 << 20, 'x') + "-->";
    write(list_path(), list(items));
    EXPECT_EQ(value("app"), nil);
}

TEST_F(RecentDocuments, AFifoInPlaceOfTheListIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(list_path().c_str(), 0600), 0);
    EXPECT_EQ(value("app"), nil);
}

TEST_F(RecentDocuments, WhatTheUsersDefaultsHoldComesFirst) {
    write(list_path(), list(item({"file:///a", "own", "own %u", day(1)})));
    CFPreferencesSetAppValue((CFStringRef) @"RecentDocuments", @"mine",
                             (CFStringRef) @"own.LSSharedFileList");
    EXPECT_TRUE([value("own") isEqual:@"mine"]);
}
