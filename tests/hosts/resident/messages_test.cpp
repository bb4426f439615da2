#include <gtest/gtest.h>

#include <fcntl.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "resident/packets.h"
#include "resident/session.h"
#include "support/temp_folder.h"

namespace {

using namespace resident;

const Call call = {{"menu", "--at", "1,2", "name \xff with any byte"},
                   {"HOME=/home/me", "EMPTY=", "ODD=a=b\n"},
                   022};

struct Pair {
    Descriptor one, other;
    Pair() {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) abort();
        one = Descriptor(ends[0]);
        other = Descriptor(ends[1]);
    }
};

TEST(ResidentMessages, ACallArrivesAsItWasSent) {
    const auto read = call_of(bytes_of(call));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->arguments, call.arguments);
    EXPECT_EQ(read->environment, call.environment);
    EXPECT_EQ(read->file_mode_mask, call.file_mode_mask);
}

TEST(ResidentMessages, ACallThatIsCutAnywhereIsNone) {
    const std::string whole = bytes_of(call);
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(call_of(whole.substr(0, size))) << size;
    }
    EXPECT_FALSE(call_of(whole + '\0'));
}

TEST(ResidentMessages, CountsThatPromiseMoreThanThereIsAreRefused) {
    std::string bytes = bytes_of(call);
    const uint32_t huge = 0xffffffff;
    for (const size_t place : {0, 4, 8}) {
        std::string changed = bytes;
        memcpy(changed.data() + place, &huge, sizeof huge);
        EXPECT_FALSE(call_of(changed)) << place;
    }
}

TEST(ResidentMessages, VariablesWithoutANameAreRefused) {
    EXPECT_FALSE(call_of(bytes_of({{}, {"=value"}, 0})));
    EXPECT_FALSE(call_of(bytes_of({{}, {"no value"}, 0})));
}

TEST(ResidentMessages, ACallOfMoreThanEightMegabytesIsNotMade) {
    EXPECT_TRUE(bytes_of({{std::string(largest_call, 'a')}, {}, 0}).empty());
    EXPECT_FALSE(file_of({{std::string(largest_call, 'a')}, {}, 0}));
}

TEST(ResidentMessages, AnyBytesAreReadWithoutHarm) {
    std::mt19937 random(1);
    const std::string whole = bytes_of(call);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes = whole.substr(0, random() % (whole.size() + 1));
        for (int change = 0; change < 4 && !bytes.empty(); ++change) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        call_of(bytes);
        header_of(bytes);
        signal_of(bytes);
        answer_of(bytes);
    }
}

TEST(ResidentMessages, AnswersOutOfRangeAreRefused) {
    const auto read = [](Answer answer) {
        return answer_of({reinterpret_cast<const char*>(&answer), sizeof answer}).has_value();
    };
    EXPECT_TRUE(read({Verdict::taken, 0}));
    EXPECT_TRUE(read({Verdict::done, 143}));
    EXPECT_FALSE(read({static_cast<Verdict>(0), 0}));
    EXPECT_FALSE(read({static_cast<Verdict>(5), 0}));
    EXPECT_FALSE(read({Verdict::done, 256}));
}

TEST(ResidentMessages, SignalsThatDoNotExistAreRefused) {
    const auto read = [](Signal signal) {
        return signal_of({reinterpret_cast<const char*>(&signal), sizeof signal}).has_value();
    };
    EXPECT_TRUE(read({15}));
    EXPECT_FALSE(read({0}));
    EXPECT_FALSE(read({65}));
}

TEST(ResidentPackets, BringTheirDescriptors) {
    const Pair pair;
    const Descriptor file = file_of(call);
    ASSERT_TRUE(send_message(pair.one.get(), CallHeader(), {file.get()}));
    Packet packet;
    ASSERT_EQ(receive_packet(pair.other.get(), &packet), Received::packet);
    EXPECT_TRUE(header_of(packet.bytes));
    ASSERT_EQ(packet.descriptors.size(), 1u);
    EXPECT_TRUE(call_in(packet.descriptors[0].get()));
    EXPECT_EQ(fcntl(packet.descriptors[0].get(), F_GETFD), FD_CLOEXEC);
}

TEST(ResidentPackets, AreNeverWaitedFor) {
    const Pair pair;
    Packet packet;
    EXPECT_EQ(receive_packet(pair.other.get(), &packet), Received::nothing_yet);
}

TEST(ResidentPackets, EndWhenTheOtherSideIsGone) {
    Pair pair;
    pair.one.close();
    Packet packet;
    EXPECT_EQ(receive_packet(pair.other.get(), &packet), Received::end);
}

TEST(ResidentPackets, LongerThanAnyMessageAreAnEnd) {
    const Pair pair;
    ASSERT_TRUE(send_packet(pair.one.get(), std::string(5000, 'a')));
    Packet packet;
    EXPECT_EQ(receive_packet(pair.other.get(), &packet), Received::end);
}

TEST(ResidentPackets, DescriptorsOfARefusedPacketAreClosed) {
    const Pair pair;
    Pair watched;
    ASSERT_TRUE(send_packet(pair.one.get(), std::string(5000, 'a'), {watched.one.get()}));
    watched.one.close();
    {
        Packet packet;
        EXPECT_EQ(receive_packet(pair.other.get(), &packet), Received::end);
    }
    Packet packet;
    EXPECT_EQ(receive_packet(watched.other.get(), &packet), Received::end);
}

TEST(ResidentPackets, AFileThatCanStillChangeIsNoCall) {
    const std::string bytes = bytes_of(call);
    const Descriptor file(memfd_create("call", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    ASSERT_TRUE(operations::write_fully(file.get(), bytes.data(), bytes.size()));
    EXPECT_FALSE(call_in(file.get()));
    ASSERT_EQ(
        fcntl(file.get(), F_ADD_SEALS, F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE),
        0);
    EXPECT_TRUE(call_in(file.get()));
}

TEST(ResidentPackets, APipeOrAFolderIsNoCall) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const Descriptor in(ends[0]), out(ends[1]), folder(open("/", O_RDONLY | O_CLOEXEC));
    EXPECT_FALSE(call_in(in.get()));
    EXPECT_FALSE(call_in(folder.get()));
}

std::string name_with(const std::string& variable) {
    return host_name({"HOME=/home/me", variable}, "/usr/libexec/delvio/delvio-host");
}

TEST(ResidentSession, DisplaySessionAuthorityAndLocaleHaveHostsOfTheirOwn) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "XDG_SESSION_ID", "LANG",
                             "LC_COLLATE", "DBUS_SESSION_BUS_ADDRESS", "XDG_DATA_DIRS", "TZ"}) {
        EXPECT_NE(name_with(std::string(name) + "=1"), name_with(std::string(name) + "=2")) << name;
    }
}

TEST(ResidentSession, WhatChangesFromCallToCallSharesAHost) {
    for (const char* name : {"PWD", "OLDPWD", "SHLVL", "_", "DESKTOP_STARTUP_ID", "PATH",
                             "XDG_ACTIVATION_TOKEN", "GIO_LAUNCHED_DESKTOP_FILE_PID"}) {
        EXPECT_EQ(name_with(std::string(name) + "=1"), name_with(std::string(name) + "=2")) << name;
    }
}

TEST(ResidentSession, TheOrderOfVariablesDoesNotMatter) {
    EXPECT_EQ(host_name({"DISPLAY=:1", "LANG=C"}, "/p"), host_name({"LANG=C", "DISPLAY=:1"}, "/p"));
}

TEST(ResidentSession, AnotherProgramHasAnotherHost) {
    EXPECT_NE(host_name({"DISPLAY=:1"}, "/p"), host_name({"DISPLAY=:1"}, "/q"));
}

TEST(ResidentSession, CallersThatSeeOtherFilesHaveAHostOfTheirOwn) {
    EXPECT_NE(host_name({}, "/p", "mnt:[1] 1:2"), host_name({}, "/p", "mnt:[2] 1:2"));
    const std::string seen = seen_files();
    EXPECT_EQ(seen.rfind(std::filesystem::read_symlink("/proc/self/ns/mnt").string(), 0), 0u);
    EXPECT_EQ(host_name({}, "/p"), host_name({}, "/p", seen));
    struct stat root;
    ASSERT_EQ(stat("/", &root), 0);
    EXPECT_TRUE(
        seen.ends_with(" " + std::to_string(root.st_dev) + ":" + std::to_string(root.st_ino)));
}

TEST(ResidentSession, ACallerBehindChrootHasAHostOfItsOwn) {
    ASSERT_EQ(geteuid(), 0u) << "this test changes its root folder, which only root can";
    const test::TempFolder folder;
    const std::string name = host_name({}, "/p");
    const pid_t child = fork();
    if (child == 0) {
        if (chroot(folder.path().c_str()) != 0) _exit(2);
        _exit(host_name({}, "/p") == name);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
