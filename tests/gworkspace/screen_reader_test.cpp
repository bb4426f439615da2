// GWorkspace's contextual menu as a screen reader hears it.
#include "gworkspace/viewer_desk.h"
#include "hosts/bus_service.h"
#include "hosts/screen_reader.h"

using namespace test;

namespace {

class HeardInGWorkspace : public ViewerDesk {
  protected:
    static void SetUpTestSuite() {
        bus_ = std::make_unique<SessionBus>(true);
        ViewerDesk::SetUpTestSuite();
    }
    static void TearDownTestSuite() {
        ViewerDesk::TearDownTestSuite();
        bus_.reset();
    }
    void SetUp() override {
        ViewerDesk::SetUp();
        if (!HasFatalFailure()) show("icons");
    }

  private:
    static std::unique_ptr<SessionBus> bus_;
};

std::unique_ptr<SessionBus> HeardInGWorkspace::bus_;

}  // namespace

TEST_F(HeardInGWorkspace, EachMenuIsHeardFromItsOpeningToItsEnd) {
    ScreenReader reader(ScreenReader::active);
    for (int i = 0; i < 2; i++) {
        right_click(item("icons", path("alpha")));
        ASSERT_TRUE(reader.hears("opened GWorkspace, menu, "));
        hover_along({"alpha"});
        ASSERT_TRUE(reader.hears("at alpha, menu item, "));
        ASSERT_TRUE(reader.hears("opened alpha, menu, "));
        close_menu();
        ASSERT_TRUE(reader.hears("closed alpha"));
        ASSERT_TRUE(reader.hears("closed GWorkspace"));
    }
}
