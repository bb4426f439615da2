// The resident host mixes no users, displays, sessions or locales, and survives any message.
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "hosts/resident/scene.h"
#include "resident/packets.h"
#include "resident/session.h"

namespace fs = std::filesystem;

namespace {

using operations::Descriptor;
using resident::Answer;
using resident::Call;
using resident::CallHeader;
using resident::Packet;
using resident::Received;
using resident::Verdict;
using test::Outcome;
using test::RunningCommand;
using test::Screen;

Descriptor connect_to(const std::string& path, int flags = 0) {
    Descriptor client(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const auto* const where = reinterpret_cast<const sockaddr*>(&address);
    return connect(client.get(), where, sizeof address) == 0 ? std::move(client) : Descriptor();
}

// Waits for what the host sends next.
Received wait_for_packet(int socket, Packet* packet) {
    Received received = Received::nothing_yet;
    test::wait_for([&] {
        received = resident::receive_packet(socket, packet);
        return received != Received::nothing_yet;
    });
    return received;
}

struct ResidentStrangers : test::ResidentScene {
    // The socket of this session's host, which is running.
    std::string socket_path() const {
        const test::Words logs = meeting_files(".log");
        EXPECT_EQ(logs.size(), 1u);
        return logs.empty() ? "" : logs[0].substr(0, logs[0].size() - strlen(".log"));
    }

    // What the host, which is running, answers to such a call for the folder.
    Verdict answer_to(const Call& call, int folder_file) const {
        const Descriptor host = connect_to(socket_path());
        const Descriptor file = resident::file_of(call);
        const Descriptor output(open("/dev/null", O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        EXPECT_TRUE(resident::send_message(host.get(), CallHeader(),
                                           {file.get(), folder_file, output.get(), output.get()}));
        Packet packet;
        EXPECT_EQ(wait_for_packet(host.get(), &packet), Received::packet);
        const auto answer = resident::answer_of(packet.bytes);
        return answer ? answer->verdict : Verdict::done;
    }

    // The environment that the host has started with.
    std::vector<std::string> environment_of_host() const {
        std::istringstream all(test::read_file("/proc/" + std::to_string(host()) + "/environ"));
        std::vector<std::string> variables;
        for (std::string each; std::getline(all, each, '\0');) variables.push_back(each);
        return variables;
    }

    // Two calls that differ in one variable, and nothing else.
    void expect_two_hosts(const std::string& name, const std::string& value) {
        show_and_close();
        const pid_t first = host();
        show_and_close({{name, value}});
        const auto both = hosts();
        EXPECT_EQ(both.size(), 2u) << name;
        show_and_close();
        EXPECT_EQ(hosts().size(), 2u);
        EXPECT_EQ(kill(first, 0), 0);
    }
};

TEST_F(ResidentStrangers, AnotherAuthorityFileHasAHostOfItsOwn) {
    expect_two_hosts("XAUTHORITY", folder.file("authority"));
}

TEST_F(ResidentStrangers, AnotherLocaleHasAHostOfItsOwn) { expect_two_hosts("LC_ALL", "C"); }
TEST_F(ResidentStrangers, AnotherLanguageHasAHostOfItsOwn) { expect_two_hosts("LANGUAGE", "ar"); }

TEST_F(ResidentStrangers, AnotherHomeFolderHasAHostOfItsOwn) {
    expect_two_hosts("HOME", folder.folder("home"));
}

TEST_F(ResidentStrangers, AnotherSessionHasAHostOfItsOwn) {
    expect_two_hosts("XDG_SESSION_CLASS", "another");
}

TEST_F(ResidentStrangers, AnotherDisplayShowsItsMenuThere) {
    test::OwnServer server;
    show_and_close();
    const Screen own(server.name().c_str());
    RunningCommand command = call_at(100, 100, {{"DISPLAY", server.name()}});
    ASSERT_TRUE(own.wait_until_open());
    EXPECT_EQ(screen.open_menu().width, 0);
    command.send_signal(SIGTERM);
    EXPECT_EQ(command.finish().status, 143);
    EXPECT_EQ(hosts().size(), 2u);
}

TEST_F(ResidentStrangers, ACallWithAnotherEnvironmentAtTheSameSocketIsSentElsewhere) {
    show_and_close();
    const Descriptor here(open(".", O_PATH | O_CLOEXEC));
    EXPECT_EQ(answer_to({{"menu", top}, {"DISPLAY=:0", "HOME=/"}, 022}, here.get()),
              Verdict::elsewhere);
}

TEST_F(ResidentStrangers, ACallFromAFolderThatTheHostCannotEnterIsSentElsewhere) {
    show_and_close();
    const Descriptor file(open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(answer_to({{"menu", "name"}, environment_of_host(), 022}, file.get()),
              Verdict::elsewhere);
    EXPECT_NE(log().find("folder cannot be entered"), std::string::npos);
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(hosts().size(), 1u);
}

TEST_F(ResidentStrangers, ACallWhoseOutputCouldHoldUpTheHostIsRefused) {
    show_and_close();
    const Descriptor host = connect_to(socket_path()), here(open(".", O_PATH | O_CLOEXEC));
    const Descriptor file = resident::file_of({{"menu", top}, environment_of_host(), 022});
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const Descriptor reader(ends[0]), writer(ends[1]);
    ASSERT_TRUE(resident::send_message(host.get(), CallHeader(),
                                       {file.get(), here.get(), writer.get(), writer.get()}));
    Packet packet;
    EXPECT_EQ(wait_for_packet(host.get(), &packet), Received::end);
}

TEST_F(ResidentStrangers, AMessageThatIsNoCallEndsOnlyItsConnection) {
    show_and_close();
    const pid_t process = host();
    const Descriptor file = resident::file_of({{"menu", top}, {"DISPLAY=:0"}, 022});
    const std::vector<std::pair<std::string, std::vector<int>>> messages = {
        {"", {}},
        {"nonsense", {}},
        {std::string(100000, 'a'), {}},
        {std::string("1LVD", 4), {}},
        {std::string("1LVD", 4), {0, 1, 2}},
        {std::string("1LVD", 4), {0, 1, 2, 1}},
        {std::string("1LVD", 4), {file.get(), 1, 2, 1, 1}},
    };
    const Descriptor silent = connect_to(socket_path());
    for (const auto& [bytes, descriptors] : messages) {
        const Descriptor stranger = connect_to(socket_path());
        ASSERT_TRUE(stranger);
        resident::send_packet(stranger.get(), bytes, descriptors);
        Packet packet;
        EXPECT_EQ(wait_for_packet(stranger.get(), &packet), Received::end) << bytes.substr(0, 9);
    }
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
}

TEST_F(ResidentStrangers, ManySilentConnectionsLeaveTheHostUsable) {
    show_and_close();
    std::vector<Descriptor> silent;
    for (int i = 0; i < 200; ++i) silent.push_back(connect_to(socket_path()));
    EXPECT_EQ(show_and_close().status, 0);
}

TEST_F(ResidentStrangers, AHostThatHangsWithAFullQueueHoldsNoCallUp) {
    show_and_close();
    const pid_t process = host();
    const std::string path = socket_path();
    kill(process, SIGSTOP);
    std::vector<Descriptor> waiting;
    do {
        waiting.push_back(connect_to(path, SOCK_NONBLOCK));
    } while (waiting.back() && waiting.size() < 1000);
    EXPECT_FALSE(waiting.back());
    EXPECT_EQ(show_and_close().status, 0);
    EXPECT_EQ(host(), process);
    kill(process, SIGCONT);
}

TEST_F(ResidentStrangers, AnotherUserIsTurnedAway) {
    ASSERT_EQ(geteuid(), 0u) << "this test becomes another user, which only root can";
    show_and_close();
    const std::string path = socket_path();
    // Opens every door but the host's own check.
    for (fs::path up = path; up != "/tmp" && up.has_relative_path(); up = up.parent_path()) {
        fs::permissions(up, fs::perms::all, fs::perm_options::add);
    }
    const pid_t child = fork();
    if (child == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0) _exit(2);
        const Descriptor host = connect_to(path);
        if (!host) _exit(3);
        Packet packet;
        _exit(wait_for_packet(host.get(), &packet) == Received::end ? 0 : 4);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_NE(log().find("another user"), std::string::npos);
}

TEST_F(ResidentStrangers, AFolderThatOthersMayEnterIsNotUsed) {
    const std::string place = std::string(getenv("XDG_RUNTIME_DIR")) + "/delvio";
    fs::create_directory(place);
    fs::permissions(place, fs::perms::all);
    const Outcome outcome = show_and_close();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(hosts().empty());
    fs::remove_all(place);
}

TEST_F(ResidentStrangers, AnotherUsersRunTimeFolderIsNotUsed) {
    ASSERT_EQ(geteuid(), 0u) << "this test gives a folder away, which only root can";
    const std::string others = folder.folder("others");
    ASSERT_EQ(chown(others.c_str(), 65534, 65534), 0);
    EXPECT_EQ(show_and_close({{"XDG_RUNTIME_DIR", others}}).status, 0);
    EXPECT_TRUE(hosts().empty());
    EXPECT_FALSE(fs::exists(others + "/delvio"));
}

TEST_F(ResidentStrangers, AConnectionOfOneProcessAndADisplayOfAnotherMachineHaveNoHost) {
    EXPECT_EQ(show_and_close({{"WAYLAND_SOCKET", "99"}}).status, 0);
    EXPECT_TRUE(hosts().empty());
    call_at(100, 100, {{"DISPLAY", "localhost:9999"}}).finish();
    EXPECT_TRUE(meeting_files(".log").empty());
}

TEST_F(ResidentStrangers, WithoutARunTimeFolderTheMenuIsShownWithoutAHost) {
    EXPECT_EQ(show_and_close({{"XDG_RUNTIME_DIR", ""}}).status, 0);
    EXPECT_TRUE(hosts().empty());
}

TEST_F(ResidentStrangers, TheSocketAndItsFolderAreTheUsersAlone) {
    show_and_close();
    struct stat status;
    ASSERT_EQ(stat((std::string(getenv("XDG_RUNTIME_DIR")) + "/delvio").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
}

}  // namespace
