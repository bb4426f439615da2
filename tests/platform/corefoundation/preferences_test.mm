#include <host/forced_preferences.h>
#import <Foundation/Foundation.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "corefoundation/preferences_sources.h"
#include "support/gnustep_program.h"
#include "support/temp_folder.h"

extern char** environ;

namespace {

std::string defaults_folder() {
    return [GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation];
}

// A separate domain for each test, so that no test sees another's values.
class Preferences : public testing::Test {
  protected:
    void SetUp() override {
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        name = std::string("org.example.") + test->name();
        domain = (CFStringRef)[[NSString alloc] initWithUTF8String:name.c_str()];
        file = defaults_folder() + "/" + name + ".plist";
        // run_isolated names a separate folder; the test must never touch the user's.
        ASSERT_NE(getenv("GNUSTEP_CONFIG_FILE"), nullptr);
    }
    void TearDown() override {
        CFRelease(domain);
        unlink(file.c_str());
    }

    // Runs a command as a user types it: defaults ARGUMENT...
    void run_defaults(const char* verb, const char* key, const char* value) {
        const char* const arguments[] = {"defaults", verb, name.c_str(), key, value, nullptr};
        pid_t child;
        ASSERT_EQ(posix_spawnp(&child, "defaults", nullptr, nullptr, const_cast<char**>(arguments),
                               environ),
                  0);
        int status = -1;
        waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
    }

    void write_file(const std::string& content) {
        mkdir(defaults_folder().c_str(), 0755);
        FILE* stream = fopen(file.c_str(), "w");
        ASSERT_NE(stream, nullptr);
        fwrite(content.data(), 1, content.size(), stream);
        fclose(stream);
    }

    void set(CFStringRef key, SInt32 value) {
        CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
        CFPreferencesSetAppValue(key, number, domain);
        CFRelease(number);
    }

    // The integer of a key, or -999 when it is not valid.
    CFIndex integer(CFStringRef key) {
        Boolean valid = 9;
        const CFIndex value = CFPreferencesGetAppIntegerValue(key, domain, &valid);
        EXPECT_LE(valid, 1);
        if (!valid) EXPECT_EQ(value, 0);
        return valid ? value : -999;
    }

    bool synchronize() { return CFPreferencesAppSynchronize(domain); }

    std::string name, file;
    CFStringRef domain = nullptr;
};

const CFIndex invalid = -999;

// The time of a domain's last write, and the file that was written.
std::string stamp(const std::string& file) {
    struct stat status = {};
    stat(file.c_str(), &status);
    return std::to_string(status.st_ino) + " " + std::to_string(status.st_mtim.tv_sec) + " " +
           std::to_string(status.st_mtim.tv_nsec);
}

}  // namespace

TEST_F(Preferences, WithoutAFileNothingIsValid) {
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("missing")), invalid);
    EXPECT_EQ(CFPreferencesCopyAppValue(CFSTR("missing"), domain), nullptr);
    EXPECT_NE(access(file.c_str(), F_OK), 0);
}

TEST_F(Preferences, TheUsersDefaultsCommandIsSeenAtTheNextSynchronize) {
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("sort_order")), invalid);
    for (const char* value : {"1", "0", "25"}) {
        run_defaults("write", "sort_order", value);
        EXPECT_TRUE(synchronize());
        EXPECT_EQ(integer(CFSTR("sort_order")), atoi(value));
    }
    run_defaults("delete", "sort_order", nullptr);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("sort_order")), invalid);
}

TEST_F(Preferences, TheDefaultsCommandSeesWhatIsWrittenHere) {
    set(CFSTR("font_size"), 14);
    EXPECT_TRUE(synchronize());
    run_defaults("read", "font_size", nullptr);  // status 0: the key is there
    run_defaults("write", "placement", "3");
    set(CFSTR("font_size"), 15);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("placement")), 3);
    EXPECT_EQ(integer(CFSTR("font_size")), 15);
}

TEST_F(Preferences, OnlyNumbersAreValidIntegers) {
    write_file(
        "{ number = <*I7>; negative = <*I-7>; digits = \"12\"; signed = \"-3\"; text = \"loud\";"
        "  mixed = \"2x\"; blank = \" 2\"; empty = \"\"; list = (1); real = <*R2.0>; half = "
        "<*R2.5>;"
        "  huge = \"99999999999999999999\"; yes = <*BY>; hex = \"0x10\"; }");
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("number")), 7);
    EXPECT_EQ(integer(CFSTR("negative")), -7);
    EXPECT_EQ(integer(CFSTR("digits")), 12);
    EXPECT_EQ(integer(CFSTR("signed")), -3);
    EXPECT_EQ(integer(CFSTR("real")), 2);
    EXPECT_EQ(integer(CFSTR("yes")), 1);
    for (const char* key : {"text", "mixed", "blank", "empty", "list", "half", "huge", "hex"}) {
        EXPECT_EQ(integer((CFStringRef)[NSString stringWithUTF8String:key]), invalid) << key;
    }
}

TEST_F(Preferences, ANullValidFlagIsAllowed) {
    EXPECT_EQ(CFPreferencesGetAppIntegerValue(CFSTR("x"), domain, nullptr), 0);
}

TEST_F(Preferences, ValuesOfEveryKindAreCopied) {
    write_file("{ folders = (\"/a\", \"-\"); path = \"/Applications\"; }");
    EXPECT_TRUE(synchronize());
    CFPropertyListRef folders = CFPreferencesCopyAppValue(CFSTR("folders"), domain);
    ASSERT_NE(folders, nullptr);
    EXPECT_EQ(CFGetTypeID(folders), CFArrayGetTypeID());
    EXPECT_EQ(CFArrayGetCount((CFArrayRef)folders), 2);
    write_file("{}");
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(CFArrayGetCount((CFArrayRef)folders), 2);  // a copy outlives its domain
    CFRelease(folders);
    EXPECT_EQ(CFPreferencesCopyAppValue(CFSTR("path"), domain), nullptr);
}

TEST_F(Preferences, AChangeIsReadBackBeforeItIsWritten) {
    set(CFSTR("font_size"), 3);
    EXPECT_EQ(integer(CFSTR("font_size")), 3);
    EXPECT_NE(access(file.c_str(), F_OK), 0);
    CFPreferencesSetAppValue(CFSTR("font_size"), nullptr, domain);
    EXPECT_EQ(integer(CFSTR("font_size")), invalid);
}

TEST_F(Preferences, UnchangedValuesDoNotTouchTheFile) {
    run_defaults("write", "sort_order", "1");
    set(CFSTR("font_size"), 12);
    EXPECT_TRUE(synchronize());
    const std::string before = stamp(file);
    set(CFSTR("font_size"), 12);
    set(CFSTR("sort_order"), 1);
    CFPreferencesSetAppValue(CFSTR("never there"), nullptr, domain);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(stamp(file), before);
    set(CFSTR("font_size"), 13);
    EXPECT_TRUE(synchronize());
    EXPECT_NE(stamp(file), before);
}

TEST_F(Preferences, AChangeKeepsWhatOthersWroteMeanwhile) {
    set(CFSTR("mine"), 1);
    run_defaults("write", "theirs", "2");
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("mine")), 1);
    EXPECT_EQ(integer(CFSTR("theirs")), 2);
    CFPreferencesSetAppValue(CFSTR("theirs"), nullptr, domain);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("theirs")), invalid);
    EXPECT_EQ(integer(CFSTR("mine")), 1);
}

TEST_F(Preferences, TheFileIsTheUsersOwnAndNothingIsLeftBesideIt) {
    set(CFSTR("key"), 1);
    EXPECT_TRUE(synchronize());
    struct stat status;
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    NSArray* names = [[NSFileManager defaultManager]
        contentsOfDirectoryAtPath:[NSString stringWithUTF8String:defaults_folder().c_str()]
                            error:nullptr];
    for (NSString* entry in names) {
        EXPECT_TRUE([entry isEqual:@".lck"] || [entry hasSuffix:@".plist"]) << [entry UTF8String];
    }
    EXPECT_NE(access((defaults_folder() + "/.lck/.GNUstepDefaults.lck").c_str(), F_OK), 0);
}

TEST_F(Preferences, AFileThatCannotBeReadIsNeitherUsedNorReplaced) {
    set(CFSTR("key"), 1);
    EXPECT_TRUE(synchronize());
    write_file("{ key = 2; broken");
    EXPECT_FALSE(synchronize());
    EXPECT_EQ(integer(CFSTR("key")), 1);
    set(CFSTR("key"), 3);
    EXPECT_FALSE(synchronize());
    EXPECT_EQ(test::read_file(file), "{ key = 2; broken");
    write_file("{ key = <*I2>; }");
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("key")), 3);
}

TEST_F(Preferences, OnlyAPlainFileIsRead) {
    mkdir(defaults_folder().c_str(), 0755);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_FALSE(synchronize());  // would wait for ever
    EXPECT_EQ(integer(CFSTR("key")), invalid);
}

TEST_F(Preferences, AnEmptyFileHoldsNothingAndCanBeWritten) {
    write_file("");
    EXPECT_TRUE(synchronize());
    set(CFSTR("key"), 4);
    EXPECT_TRUE(synchronize());
    EXPECT_NE(test::read_file(file).find("<integer>4</integer>"), std::string::npos);
}

// A lock as a program takes it, made so many seconds from now.
struct Lock {
    explicit Lock(long seconds) {
        mkdir(parent.c_str(), 0755);
        mkdir(path.c_str(), 0755);
        const timespec when = {time(nullptr) + seconds, 0}, both[2] = {when, when};
        utimensat(AT_FDCWD, path.c_str(), both, 0);
    }
    ~Lock() { rmdir(path.c_str()); }
    bool stands() const { return access(path.c_str(), F_OK) == 0; }

    const std::string parent = defaults_folder() + "/.lck";
    const std::string path = parent + "/.GNUstepDefaults.lck";
};

// Another home than that of the toolkit's daemons.
struct Home {
    Home() : before(getenv("HOME")) { setenv("HOME", folder.path().c_str(), 1); }
    ~Home() { setenv("HOME", before.c_str(), 1); }
    test::TempFolder folder;
    const std::string before;
};

TEST_F(Preferences, ALockIsBrokenAtOnceWhenNoProgramLivesThatCouldHoldIt) {
    const Home home;
    const Lock lock(1000);
    set(CFSTR("key"), 5);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
    EXPECT_FALSE(lock.stands());
}

TEST_F(Preferences, AnOldLockIsBrokenWhoeverLives) {
    const Home home;
    const test::GnustepProgram other;
    ASSERT_TRUE(other.wait_until_it_runs());
    const Lock lock(-1000);
    set(CFSTR("key"), 5);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
}

TEST_F(Preferences, WhileAnotherProgramHoldsTheLockNothingIsWritten) {
    const Home home;
    {
        const test::GnustepProgram other;
        ASSERT_TRUE(other.wait_until_it_runs());
        const Lock lock(1000);
        set(CFSTR("key"), 6);
        EXPECT_FALSE(synchronize());
        EXPECT_TRUE(lock.stands());
    }
    EXPECT_EQ(access(file.c_str(), F_OK), -1);
    EXPECT_EQ(integer(CFSTR("key")), 6);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(access(file.c_str(), F_OK), 0);
}

TEST_F(Preferences, WhileAnotherProgramOfDelviosHasTheTurnItsLockStays) {
    const Home home;
    const Lock lock(1000);
    const int turn = open(lock.parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(turn, LOCK_EX), 0);
    set(CFSTR("key"), 7);
    EXPECT_FALSE(synchronize());
    EXPECT_TRUE(lock.stands());
    close(turn);
    EXPECT_TRUE(synchronize());
    EXPECT_FALSE(lock.stands());
}

TEST_F(Preferences, AForcedValueHoldsForThisProcessAlone) {
    run_defaults("write", "sort_order", "1");
    EXPECT_TRUE(synchronize());
    EXPECT_FALSE(CFPreferencesAppValueIsForced(CFSTR("sort_order"), domain));
    force_preference(CFSTR("sort_order"), @5, domain);
    EXPECT_TRUE(CFPreferencesAppValueIsForced(CFSTR("sort_order"), domain));
    EXPECT_EQ(integer(CFSTR("sort_order")), 5);
    const std::string before = stamp(file);
    set(CFSTR("sort_order"), 6);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("sort_order")), 5);
    EXPECT_EQ(stamp(file), before);
    force_preference(CFSTR("sort_order"), nullptr, domain);
    EXPECT_EQ(integer(CFSTR("sort_order")), 1);
}

TEST_F(Preferences, AFallbackHoldsWhereTheDomainHasNoValueAndIsNeverWritten) {
    set_fallback_preference(CFSTR("sort_order"), @5, domain);
    EXPECT_EQ(integer(CFSTR("sort_order")), 5);
    set(CFSTR("sort_order"), 2);
    EXPECT_EQ(integer(CFSTR("sort_order")), 2);
    CFPreferencesSetAppValue(CFSTR("sort_order"), nullptr, domain);
    EXPECT_EQ(integer(CFSTR("sort_order")), 5);
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(test::read_file(file).find("sort_order"), std::string::npos);
    run_defaults("write", "sort_order", "1");
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(integer(CFSTR("sort_order")), 1);
    set_fallback_preference(CFSTR("sort_order"), nullptr, domain);
    run_defaults("write", "other", "1");
    EXPECT_EQ(integer(CFSTR("sort_order")), 1);
}

namespace {

CFPropertyListRef copy_domain_and_key(CFStringRef key, CFStringRef domain) {
    if ([(NSString*)key isEqualToString:@"nothing"]) return nullptr;
    return [[NSString alloc] initWithFormat:@"%@ of %@", (id)key, (id)domain];
}

}  // namespace

TEST_F(Preferences, ASourceAnswersForDomainsOfItsSuffixWithoutAValueOfTheirOwn) {
    add_preferences_source(".WithoutAValueOfTheirOwn", copy_domain_and_key);
    const auto text = [](CFStringRef key, CFStringRef of) {
        NSString* value = [(id)CFPreferencesCopyAppValue(key, of) autorelease];
        return std::string([value UTF8String] ?: "none");
    };
    const CFStringRef sourced = CFSTR("org.example.WithoutAValueOfTheirOwn");
    EXPECT_EQ(text(CFSTR("key"), sourced), "key of org.example.WithoutAValueOfTheirOwn");
    EXPECT_EQ(text(CFSTR("nothing"), sourced), "none");
    EXPECT_EQ(text(CFSTR("key"), domain), "none");
    CFPreferencesSetAppValue(CFSTR("key"), @"own", sourced);
    EXPECT_EQ(text(CFSTR("key"), sourced), "own");
}

TEST_F(Preferences, DomainsAreApart) {
    set(CFSTR("key"), 1);
    Boolean valid = 9;
    CFPreferencesGetAppIntegerValue(CFSTR("key"), CFSTR("org.example.other"), &valid);
    EXPECT_FALSE(valid);
}

TEST_F(Preferences, AnIdentifierThatNamesNoFileHasNoDomain) {
    for (const CFStringRef unusable : {CFSTR(""), CFSTR("../escape"), CFSTR("a/b")}) {
        CFPreferencesSetAppValue(CFSTR("key"), @1, unusable);
        EXPECT_FALSE(CFPreferencesAppSynchronize(unusable));
        EXPECT_EQ(CFPreferencesCopyAppValue(CFSTR("key"), unusable), nullptr);
    }
    EXPECT_FALSE(CFPreferencesAppSynchronize(nullptr));
}
