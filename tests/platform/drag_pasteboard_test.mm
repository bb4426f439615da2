// The pasteboard of drags, with GNUstep's own server.
#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDragView.h>
#include <GNUstepGUI/GSPasteboardServer.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <optional>

#include "support/pasteboard_server.h"

@interface LazyOwner : NSObject
@end

@implementation LazyOwner
- (void)pasteboard:(NSPasteboard*)pasteboard provideDataForType:(NSString*)type {
    [pasteboard setString:@"late" forType:type];
}
@end

// The toolkit's: a drag of another program enters a window.
@interface GSDragView (OtherPrograms)
- (void)setupDragInfoFromXEvent:(void*)event;
@end

namespace {

NSPasteboard* board() { return [NSPasteboard pasteboardWithName:NSDragPboard]; }

NSArray* files(NSString* name) { return [NSArray arrayWithObject:name]; }

void drag(NSString* file) {
    [board() declareTypes:[NSArray arrayWithObject:NSFilenamesPboardType] owner:nil];
    [board() setPropertyList:files(file) forType:NSFilenamesPboardType];
}

NSArray* dragged() { return [board() propertyListForType:NSFilenamesPboardType]; }

// The server's pasteboard, as another program of GNUstep's has it.
id<GSPasteboardObj> others_board() {
    id server = [NSConnection rootProxyForConnectionWithRegisteredName:PBSNAME host:@""];
    id others = [server pasteboardWithName:NSDragPboard];
    [others setProtocolForProxy:objc_getProtocol("GSPasteboardObj")];
    return others;
}

NSArray* seen_by_others() {
    int count = 0;
    [others_board() typesAndChangeCount:&count];
    NSData* data = [others_board() dataForType:NSFilenamesPboardType
                                      oldCount:count
                                 mustBeCurrent:YES];
    return data ? [NSDeserializer deserializePropertyListFromData:data mutableContainers:NO] : nil;
}

// The server may need more than its two seconds for an answer while the machine is busy. A step
// that an answer failed is done again.
template <typename Step>
bool succeeds(Step step) {
    for (int turn = 0; turn < 20; turn++) {
        @try {
            if (step()) return true;
        } @catch (NSException*) {
        }
    }
    return false;
}

// Whether another program sees a file that is dragged here.
bool is_seen(NSString* file) {
    return succeeds([&] {
        drag(file);
        return [seen_by_others() isEqual:files(file)];
    });
}

bool drag_from_elsewhere(NSString* file) {
    return succeeds([&] {
        id<GSPasteboardObj> others = others_board();
        const int count = [others declareTypes:[NSArray arrayWithObject:NSFilenamesPboardType]
                                         owner:nil
                                    pasteboard:board()];
        return [others setData:[NSSerializer serializePropertyList:files(file)]
                       forType:NSFilenamesPboardType
                        isFile:NO
                      oldCount:count];
    });
}

bool has(NSString* file) {
    [board() types];
    return [dragged() isEqual:files(file)];
}

// The toolkit's: a drag of another program enters a window.
void enter_window() {
    GSDragView* view = [NSClassFromString(@"XGDragView") sharedDragView];
    [view setupDragInfoFromXEvent:nullptr];
}

class DragPasteboard : public testing::Test {
  protected:
    void SetUp() override {
        [[NSApplication sharedApplication] finishLaunching];
        server_.emplace();
        ASSERT_NE(server_->process(), 0);
    }
    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    std::optional<test::PasteboardServer> server_;
};

}  // namespace

TEST_F(DragPasteboard, OtherProgramsReadWhatThisOneDrags) {
    EXPECT_TRUE(is_seen(@"/first"));
    EXPECT_TRUE(is_seen(@"/second"));
}

TEST_F(DragPasteboard, HasTheFilesThoughTheServerStandsStill) {
    server_->stand_still();
    drag(@"/files");
    EXPECT_TRUE([[board() types] isEqual:[NSArray arrayWithObject:NSFilenamesPboardType]]);
    EXPECT_TRUE([dragged() isEqual:files(@"/files")]);
}

TEST_F(DragPasteboard, ReachesOtherProgramsAgainWithTheNextDrag) {
    server_->stand_still();
    drag(@"/during");
    server_.emplace();  // another one
    EXPECT_TRUE(is_seen(@"/after"));
    ASSERT_TRUE(drag_from_elsewhere(@"/theirs"));
    EXPECT_TRUE(succeeds([] {
        enter_window();
        return has(@"/theirs");
    }));
}

TEST_F(DragPasteboard, EachDragForgetsTheOneBeforeIt) {
    drag(@"/before");
    [board() declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
    EXPECT_EQ(dragged(), nil);
    EXPECT_FALSE([board() setPropertyList:files(@"/x") forType:NSFilenamesPboardType])
        << "a type that is not declared";
}

TEST_F(DragPasteboard, AnOwnerIsAskedForWhatItHasOnlyPromised) {
    LazyOwner* owner = [[LazyOwner new] autorelease];
    const NSInteger before = [board() changeCount];
    [board() declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:owner];
    EXPECT_GT([board() changeCount], before);
    EXPECT_TRUE([[board() stringForType:NSStringPboardType] isEqual:@"late"]);
    EXPECT_EQ([board() dataForType:NSRTFPboardType], nil);
}

TEST_F(DragPasteboard, HasWhatAnotherProgramDragsOnceThatDragEntersAWindow) {
    drag(@"/own");
    ASSERT_TRUE(drag_from_elsewhere(@"/theirs"));
    EXPECT_TRUE([dragged() isEqual:files(@"/own")]);
    EXPECT_TRUE(succeeds([] {
        enter_window();
        return has(@"/theirs");
    }));
    ASSERT_TRUE(drag_from_elsewhere(@"/theirs again"));
    EXPECT_TRUE(succeeds([] { return has(@"/theirs again"); }));
    drag(@"/own again");
    EXPECT_TRUE([dragged() isEqual:files(@"/own again")]);
}

TEST_F(DragPasteboard, AServerThatStandsStillHasNoFilesOfOthers) {
    drag(@"/own");
    enter_window();
    server_->stand_still();
    EXPECT_EQ([board() types], nil);
    EXPECT_EQ(dragged(), nil);
}
