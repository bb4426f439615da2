// The contextual menu in every kind of view that GWorkspace has.
#include "gworkspace/viewer_desk.h"

using namespace test;

namespace {

class Viewers : public ViewerDesk {};

const char* const forms[] = {"browser", "icons", "list"};

}  // namespace

TEST_F(Viewers, AnUnselectedItemIsSelectedAndThreeLevelsOfItCanBeBrowsed) {
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        show(form);
        right_click(item(form, path("alpha")));
        EXPECT_EQ(selection(), lines_t({path("alpha")}));
        ASSERT_TRUE(contains(titles(0), "alpha"));
        hover_along({"alpha", "one", "two"});
        EXPECT_EQ(titles(1), lines_t({"one", "-", "readme.text"}));
        EXPECT_EQ(titles(2), lines_t({"two", "-", "note.text"}));
        EXPECT_EQ(titles(3), lines_t({"deep.text"}));
        close_menu();
    }
}
