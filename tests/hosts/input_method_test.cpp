// Type-ahead through an input method, as a user of Chinese has it: a real engine makes characters
// of several keys. What is highlighted is heard by a screen reader.
#include "hosts/bus_service.h"
#include "hosts/menu_command.h"
#include "hosts/screen_reader.h"
#include "support/waiting.h"
#include "support/x_input.h"

namespace {

using test::output_of;
using test::RunningCommand;
using test::ScreenReader;
using test::wait_for;

// The bus is there before everything else and after it.
struct Bus {
    test::SessionBus bus{true};
};

struct InputMethod : Bus, test::MenuCommand {
    InputMethod() {
        output_of("ibus-daemon --daemonize --xim --panel disable >/dev/null 2>&1");
        const auto serves = [] {
            return output_of("xprop -root XIM_SERVERS").find("@server=ibus") != std::string::npos;
        };
        EXPECT_TRUE(wait_for(serves)) << "the input method has come";
        const auto is_chosen = [] {
            output_of("ibus engine libpinyin 2>/dev/null");
            return output_of("ibus engine 2>/dev/null") == "libpinyin\n";
        };
        EXPECT_TRUE(wait_for(is_chosen));
    }
    ~InputMethod() override { output_of("ibus exit 2>/dev/null"); }
    void key(const std::string& name, const std::string& heard) {
        output_of("xdotool key " + name);
        ASSERT_TRUE(reader.hears(heard)) << name;
    }

    ScreenReader reader{ScreenReader::active};
    test::XInput input;
};

// Without the method, R would lead to rost.txt, and the rest to nothing.
TEST_F(InputMethod, ComposesTheCharactersThatFindAName) {
    folder.file("top/aaa.txt");
    folder.file("top/rost.txt");
    folder.file("top/日本.txt");
    RunningCommand command({"menu", "--at", "200,150", folder.path("top")},
                           {{"DELVIO_RESIDENT", "0"}, {"XMODIFIERS", "@im=ibus"}});
    ASSERT_TRUE(reader.hears("at Delvio, menu, "));
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free() && !input.keyboard_is_free(); }));
    key("Down", "at top, menu item, ");
    key("Right", "at aaa.txt, menu item, ");
    output_of("xdotool key --delay 100 r i");
    key("space", "at 日本.txt, menu item, ");
    for (const std::string& line : reader.heard()) {
        EXPECT_EQ(line.find("at rost.txt"), line.npos) << "the method has kept the letters";
    }
    output_of("xdotool key Escape");
    ASSERT_TRUE(reader.hears("closed Delvio"));
    EXPECT_EQ(command.finish().status, 0);
}

}  // namespace
