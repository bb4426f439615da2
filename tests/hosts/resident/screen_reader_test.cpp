// Menus as a screen reader hears them: with real keys, over a real bus of assistive technology.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "hosts/bus_service.h"
#include "hosts/resident/scene.h"
#include "hosts/screen_reader.h"
#include "support/recording_program.h"

namespace {

using test::RunningCommand;
using test::ScreenReader;
using test::Words;

const test::Changes alone = {{"DELVIO_RESIDENT", "0"}};
// With a theme that is named, the desktop's portal is not asked about looks.
const test::Changes quiet = {{"DELVIO_RESIDENT", "0"}, {"GTK_THEME", "Adwaita"}};

// Takes connections, and answers none.
class SilentSocket {
  public:
    explicit SilentSocket(const std::string& path)
        : descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const auto* const general = reinterpret_cast<const sockaddr*>(&address);
        EXPECT_EQ(bind(descriptor_, general, sizeof address), 0);
        EXPECT_EQ(listen(descriptor_, 100), 0);
    }
    ~SilentSocket() { close(descriptor_); }
    SilentSocket(const SilentSocket&) = delete;
    SilentSocket& operator=(const SilentSocket&) = delete;

    // Whether a connection waits.
    bool is_called() const {
        pollfd waiting = {descriptor_, POLLIN, 0};
        return poll(&waiting, 1, 0) == 1;
    }

  private:
    const int descriptor_;
};

// The bus is there before the scene and after it.
struct BusScene {
    test::SessionBus bus{true};
};

struct HeardMenu : BusScene, test::ResidentScene {
    HeardMenu() {
        folder.folder("heard/empty");
        folder.file("heard/note.txt", "text");
    }
    RunningCommand show(const test::Changes& more = alone) const {
        return call({"menu", "--at", "100,100", folder.path("heard")}, more);
    }
    void key(ScreenReader& reader, const std::string& name, const Words& heard) {
        input.key(name);
        for (const std::string& line : heard) ASSERT_TRUE(reader.hears(line));
    }
    static bool has(const Words& lines, const std::string& line) {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    static bool has_bridge(pid_t process) {
        const std::string maps = test::read_file("/proc/" + std::to_string(process) + "/maps");
        EXPECT_NE(maps.find("libdelvio-platform"), std::string::npos);
        return maps.find("libdelvio-accessibility") != std::string::npos;
    }
    static std::string connections(ScreenReader& reader, pid_t process) {
        for (const std::string& line : reader.command("connections " + std::to_string(process))) {
            if (line.starts_with("connections ")) return line;
        }
        return "";
    }
    static bool none(const Words& lines, const std::string& beginning) {
        return std::none_of(lines.begin(), lines.end(),
                            [&](const std::string& line) { return line.starts_with(beginning); });
    }
};

TEST_F(HeardMenu, EachLevelAndEachHighlightedRowIsHeardWithItsRoleStatesAndPlace) {
    ScreenReader reader(ScreenReader::active);
    RunningCommand command = show();
    ASSERT_TRUE(screen.wait_until_open());
    ASSERT_TRUE(reader.hears("opened Delvio, menu, "));
    ASSERT_TRUE(reader.hears("at Delvio, menu, -, enabled focusable focused vertical"));
    // The one to the bus of assistive technology stays.
    ASSERT_TRUE(
        test::wait_for([&] { return connections(reader, command.process()) == "connections 1"; }));
    key(reader, "Down", {"at heard, menu item, 1 of "});
    key(reader, "Right",
        {"opened heard, menu, 3 rows",
         "at empty, menu item, 1 of 2, enabled expandable focusable focused has popup selected"});
    key(reader, "Down", {"at note.txt, menu item, 2 of 2, enabled focusable focused selected"});
    key(reader, "Up", {"at empty, menu item, 1 of 2, "});
    key(reader, "Right", {"opened empty, menu, 1 rows"});
    // A disabled row is read, and is not enabled. A slow disk's level has another row at first.
    ASSERT_TRUE(test::wait_for(
        [&] { return has(reader.command("rows"), "row Folder is empty, menu item, 1 of 1, "); }));
    key(reader, "Left", {"closed empty"});
    key(reader, "Left", {"closed heard", "at heard, menu item, 1 of "});
    const Words rows = reader.command("rows");
    EXPECT_TRUE(has(rows, "row , separator, -, ")) << testing::PrintToString(rows);
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(HeardMenu, TheResidentHostsMenusAreHeardOneAfterTheOther) {
    ScreenReader reader(ScreenReader::active);
    for (int i = 0; i < 2; i++) {
        RunningCommand command = show({});
        ASSERT_TRUE(screen.wait_until_open());
        ASSERT_TRUE(reader.hears("opened Delvio, menu, "));
        key(reader, "Down", {"at heard, menu item, 1 of "});
        key(reader, "Escape", {"closed Delvio"});
        EXPECT_EQ(command.finish().status, 0);
        ASSERT_TRUE(screen.wait_until_closed());
    }
    EXPECT_TRUE(has_bridge(host()));
}

TEST_F(HeardMenu, AReaderOpensSubmenusFindsRowsAndPicksThem) {
    const test::RecordingProgram program({"text/plain"});
    ScreenReader reader(ScreenReader::active);
    RunningCommand command = show();
    ASSERT_TRUE(screen.wait_until_open());
    ASSERT_TRUE(reader.hears("opened Delvio, menu, "));
    reader.command("do expand or contract|heard");
    ASSERT_TRUE(reader.hears("opened heard, menu, 3 rows"));
    ASSERT_TRUE(reader.hears("at heard, menu item, "));
    const Words place = reader.command("where note.txt");
    int x = 0, y = 0, width = 0, height = 0;
    ASSERT_EQ(sscanf(place.at(0).c_str(), "where %d %d %d %d", &x, &y, &width, &height), 4);
    input.move(x + width / 2, y + height / 2);
    ASSERT_TRUE(reader.hears("at note.txt, menu item, 2 of 2, "));
    reader.command("do click|note.txt");
    EXPECT_EQ(program.wait(), Words{folder.path("heard/note.txt")});
    EXPECT_EQ(command.finish().status, 0);
}

TEST_F(HeardMenu, WithoutAReaderNothingIsLoadedAndNothingStaysConnected) {
    ScreenReader reader(ScreenReader::idle);
    RunningCommand command = show(quiet);
    ASSERT_TRUE(screen.wait_until_open());
    // The menu has asked whether anybody reads. Nobody else leaves the bus.
    ASSERT_TRUE(reader.hears("left "));
    EXPECT_EQ(connections(reader, command.process()), "connections 0");
    EXPECT_FALSE(has_bridge(command.process()));
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
    reader.command("end");
    EXPECT_TRUE(none(reader.heard(), "opened "));
}

TEST_F(HeardMenu, WithoutABusOfAssistiveTechnologyNothingIsAsked) {
    test::output_of("xprop -root -remove AT_SPI_BUS");
    std::filesystem::remove_all(std::string(getenv("XDG_RUNTIME_DIR")) + "/at-spi");
    ScreenReader watcher(ScreenReader::watch);
    RunningCommand command = show(quiet);
    ASSERT_TRUE(screen.wait_until_open());
    EXPECT_FALSE(has_bridge(command.process()));
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
    watcher.command("end");
    EXPECT_TRUE(none(watcher.heard(), "came ")) << testing::PrintToString(watcher.heard());
}

// A bus that takes connections and never answers.
TEST_F(HeardMenu, ASilentSessionBusHoldsUpNoMenu) {
    const std::string place = folder.path("silent");
    const SilentSocket silent(place);
    test::output_of("xprop -root -f AT_SPI_BUS 8s -set AT_SPI_BUS unix:path=" + place);
    const test::Changes environment = {{"DELVIO_RESIDENT", "0"},
                                       {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + place}};
    RunningCommand command = show(environment);
    ASSERT_TRUE(screen.wait_until_open());
    ASSERT_TRUE(test::wait_for([&] { return silent.is_called(); })) << "nobody asked";
    EXPECT_FALSE(has_bridge(command.process()));
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
}

}  // namespace
