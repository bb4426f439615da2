// The question about a taken name, in the language of LANGUAGE: German if none is set.
#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <host/process.h>
#include <host/text.h>

#include "operations_ui/conflict_panel.h"
#include "panels/widget_panel.h"
#include "support/app.h"
#include "support/temp_folder.h"

// Looks at the question as soon as it is shown, and ends it.
@interface PanelLook : NSObject {
  @public
    std::vector<Widget> _widgets;
    Extent _size;
    NSTimer* _timer;
}
- (void)wait;
@end

@implementation PanelLook

- (void)wait {
    _timer = [NSTimer timerWithTimeInterval:0.02
                                     target:self
                                   selector:@selector(look:)
                                   userInfo:nil
                                    repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:_timer forMode:NSModalPanelRunLoopMode];
}

- (void)look:(NSTimer*)timer {
    NSWindow* const panel = [NSApp modalWindow];
    if (![panel isKindOfClass:[WidgetPanel class]] || ![panel isVisible]) return;
    _widgets = [(WidgetPanel*)panel content].widgets;
    _size = [(WidgetPanel*)panel content].size;
    [timer invalidate];
    end_modal_session();
}

@end

namespace {

const bool has_language = setenv("LANGUAGE", "de", 0) == 0;
// A scale at which the question would be larger than the screen of the test.
const bool has_scale = setenv("GDK_SCALE", "3", 1) == 0;

bool overlap(const Area& one, const Area& other) {
    return one.left < other.right() && other.left < one.right() && one.top < other.bottom() &&
           other.top < one.bottom();
}

class QuestionPanel : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(has_language && has_scale);
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        folder_.file("from/a.txt", "new");
        folder_.file("to/a.txt", "old");
        operations::Conflict conflict = {};
        conflict.kind = operations::Kind::Move;
        conflict.source = folder_.path("from/a.txt");
        conflict.target = folder_.path("to/a.txt");
        conflict.sources_left = 1;
        look_ = [PanelLook new];
        [look_ wait];
        operations::ask_about(conflict, false);
    }
    void TearDown() override {
        [look_ release];
        [pool_ release];
    }

    test::TempFolder folder_;
    NSAutoreleasePool* pool_;
    PanelLook* look_ = nil;
};

TEST_F(QuestionPanel, HasNoWidgetOverAnotherAndAllInsideTheWindow) {
    const std::vector<Widget>& widgets = look_->_widgets;
    ASSERT_GT(widgets.size(), 8u);
    for (size_t i = 0; i < widgets.size(); i++) {
        EXPECT_GE(widgets[i].area.left, 0) << widgets[i].text;
        EXPECT_LE(widgets[i].area.right(), look_->_size.width) << widgets[i].text;
        for (size_t j = 0; j < i; j++) {
            EXPECT_FALSE(overlap(widgets[i].area, widgets[j].area))
                << widgets[i].text << ", " << widgets[j].text;
        }
    }
}

TEST_F(QuestionPanel, HasRoomOnTheScreen) {
    const NSSize screen = [[NSScreen mainScreen] frame].size;
    EXPECT_LT(look_->_size.width, screen.width);
    EXPECT_LT(look_->_size.height, screen.height);
    EXPECT_GT(look_->_size.width, screen.width * 0.9) << "and is as large as there is room";
}

TEST_F(QuestionPanel, HasTranslatedTitlesWithKeysOfTheirOwn) {
    std::u16string keys;
    for (const Widget& widget : look_->_widgets) {
        EXPECT_EQ(widget.text.find('_'), std::string::npos) << widget.text;
        if (!widget.key) continue;
        EXPECT_EQ(keys.find(widget.key), keys.npos) << widget.text;
        keys += widget.key;
    }
    EXPECT_EQ(keys.size(), 4u);
    EXPECT_STRNE(translated("Stop"), "Stop");
}

TEST_F(QuestionPanel, HasItsIconsWhereLinesBegin) {
    EXPECT_EQ(text_is_mirrored(), std::string(getenv("LANGUAGE")) == "ar");
    for (const Widget& widget : look_->_widgets) {
        if (widget.kind != WidgetKind::icon) continue;
        const bool at_right = widget.area.left > look_->_size.width / 2;
        EXPECT_EQ(at_right, text_is_mirrored());
    }
}

}  // namespace
