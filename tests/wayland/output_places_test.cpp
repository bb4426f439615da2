#include "wayland/layer/output_places.h"

#include <gtest/gtest.h>

namespace {

using Places = std::vector<ScreenArea>;

TEST(OutputPlaces, OneOutputIsTheOneMonitorWhateverItsUnits) {
    EXPECT_EQ(places_of_outputs({{"DP-1", {0, 0, 960, 540}}}, {{"XWAYLAND0", {0, 0, 1920, 1080}}}),
              Places({{0, 0, 1920, 1080}}));
}

TEST(OutputPlaces, OutputsAreFoundByName) {
    EXPECT_EQ(places_of_outputs({{"HDMI-A-1", {0, 0, 800, 600}}, {"DP-1", {800, 0, 800, 600}}},
                                {{"DP-1", {0, 0, 1600, 1200}}, {"HDMI-A-1", {1600, 0, 800, 600}}}),
              Places({{1600, 0, 800, 600}, {0, 0, 1600, 1200}}));
}

TEST(OutputPlaces, NumberedMonitorsAreTakenFromLeftToRight) {
    EXPECT_EQ(
        places_of_outputs({{"DP-2", {960, 0, 800, 600}}, {"DP-1", {0, 0, 960, 540}}},
                          {{"XWAYLAND0", {0, 0, 1920, 1080}}, {"XWAYLAND1", {1920, 0, 800, 600}}}),
        Places({{1920, 0, 800, 600}, {0, 0, 1920, 1080}}));
}

TEST(OutputPlaces, MonitorsAboveOneAnotherAreTakenFromTheTop) {
    EXPECT_EQ(places_of_outputs({{"b", {0, 500, 800, 600}}, {"a", {0, 0, 800, 500}}},
                                {{"1", {0, 0, 1600, 1000}}, {"2", {0, 1000, 1600, 1200}}}),
              Places({{0, 1000, 1600, 1200}, {0, 0, 1600, 1000}}));
}

TEST(OutputPlaces, WithoutACounterpartAnOutputKeepsTheCompositorsPlace) {
    EXPECT_EQ(places_of_outputs({{"DP-1", {0, 0, 800, 600}}, {"DP-2", {800, 0, 640, 480}}},
                                {{"XWAYLAND0", {0, 0, 1440, 600}}}),
              Places({{0, 0, 800, 600}, {800, 0, 640, 480}}));
}

TEST(OutputPlaces, APlaceInAnAreaIsAlwaysOneOfItsPixels) {
    const auto at = [](const ScreenArea& area, double across, double down) {
        const StagePlace place = place_in(area, across, down);
        return std::pair(place.x, place.y);
    };
    EXPECT_EQ(at({100, 200, 50, 40}, 0.5, 0.25), std::pair(125, 210));
    EXPECT_EQ(at({100, 200, 50, 40}, 1, 1), std::pair(149, 239));
    EXPECT_EQ(at({100, 200, 50, 40}, -0.1, 3), std::pair(100, 239));
    EXPECT_EQ(at({100, 200, 0, 0}, 0.5, 0.5), std::pair(100, 200)) << "not yet placed";
}

}  // namespace
