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

}  // namespace
