// What the plug-in does without memory, and without a thread: it leaves something out, and nobody
// is harmed. Each call for memory fails in turn.
#include "finder/dv_file_ops.h"

#include <gtest/gtest.h>

#include "finder/dv_record.h"
#include "input/DVControlFreePopup.h"
#include "items/DVMenu.h"
#include "menus/DVDelvio+Population.h"
#include "plugin/failing_memory.h"
#include "plugin/finder/file_op_scene.h"
#include "plugin/menu_fixture.h"
#include "plugin/replaced_method.h"
#include "plugin/tree_support.h"
#include "preview/dv_data_provider.h"
#include "preview/dv_preview.h"
#include "support/dv_log.h"
#include "support/ht.h"

namespace {

using test::FailingMemory;

dv_tree_t* recent;
dv_tree_t* give_recent(id, SEL, dv_tree_t*) { return recent; }

// Calls the action with the first call failing, then with the second, until no call is left.
template <typename Action>
int fail_each(Action action) {
    int call = 1;
    for (bool has_failed = true; has_failed; call++) {
        const FailingMemory failing(call);
        action();
        has_failed = FailingMemory::has_failed();
    }
    return call - 2;
}

struct MenusWithoutMemory : test::MenuTest {};
struct FileOpWithoutMemory : test::FileOp {};

}  // namespace

TEST_F(MenusWithoutMemory, ThereIsNoControllerWithoutAnyPartOfItsState) {
    // The state, the buffer for paths, the table and its buckets.
    for (int call = 1; call <= 4; call++) {
        const FailingMemory failing(call);
        EXPECT_EQ([[DVDelvio alloc] init], nil) << call;
        EXPECT_TRUE(FailingMemory::has_failed());
    }
}

TEST_F(MenusWithoutMemory, AnEntryThatGetsNoneIsNotInTheTable) {
    ht_table_t* table = ht_create_hash_table(3, 0);
    int data = 0;
    {
        const FailingMemory failing(1);
        ht_insert(table, 7, &data);
    }
    EXPECT_FALSE(ht_exists(table, 7));
    EXPECT_EQ(ht_num_elems(table), 0u);
    ht_dispose_hash_table(table, 0);
}

TEST_F(MenusWithoutMemory, AnElementThatGetsNoneTakesItsFolderAlong) {
    dv_dir_t* dir = dv_create_single_dir("/a/b");
    const FailingMemory failing(1);
    EXPECT_EQ(dv_create_elem(dir, "", 0, 0), nullptr);
}

TEST_F(MenusWithoutMemory, ARecordThatGetsNoneIsNone) {
    const FailingMemory failing(1);
    EXPECT_EQ(dv_make_AE_record(1, "name"), nullptr);
}

TEST_F(MenusWithoutMemory, APictureThatGetsNoneIsNone) {
    for (const uint32_t frees : {0, 1}) {
        char kept[4] = {};
        void* const data = frees ? malloc(4) : kept;
        const FailingMemory failing(1);
        EXPECT_EQ(create_data_provider(data, 4, frees, 0), nullptr);
    }
    const std::string path = folder_.file("a.txt", "text");
    delvio_t state = {};
    state.preview_size = 32;
    dv_create_preview_context(&state);
    {
        const FailingMemory failing(1);
        EXPECT_EQ(dv_create_text_preview_from_path(&state, path.c_str()), nullptr);
    }
    dv_dispose_preview_context(&state);
}

TEST_F(MenusWithoutMemory, AMenuLacksWhatItHasNoMemoryFor) {
    const std::string network = folder_.folder("Network"), file = folder_.file("file", "text");
    folder_.file("Network/inner");
    int whole = 0;
    const int calls = fail_each([&] {
        NSMenu* menu = select({network, file});
        ASSERT_NE(menu, nil);
        if (NSMenuItem* item = test::item_titled(menu, "Network")) open(item);
        whole += test::item_titled(menu, "Network") && test::item_titled(menu, "file");
        release();
    });
    EXPECT_GT(calls, 5);
    EXPECT_GT(whole, 0);
}

TEST_F(MenusWithoutMemory, RecentDocumentsThatGetNoneAreFreedAndHaveNoSubmenu) {
    const test::ReplacedMethod recents([DVDelvio class], @selector(getRecentItemsForElem:),
                                       give_recent);
    test::Tree application(dv_create_elem(dv_create_single_dir("/a.app"), "", 0, 0));
    recent = dv_create_elem(dv_create_single_dir("/a.txt"), "", 0, 0);
    const uint32_t freed = free_count;
    NSMenuItem* item = [[NSMenuItem new] autorelease];
    const FailingMemory failing(1);
    EXPECT_EQ([controller_ createRecentSubmenuForTree:application.get() andItem:item atLevel:1],
              nil);
    EXPECT_EQ(free_count, freed + 1);
}

TEST_F(MenusWithoutMemory, APreviewThatGetsNoneIsToldOf) {
    const std::string path = folder_.file("file", test::plain_bytes);
    int pictures = 0, calls = 0;
    for (bool has_failed = true; has_failed; calls++) {
        NSMenuItem* alternate = test::alternate_of(select({path}), "file");
        DVMenu* menu = static_cast<DVMenu*>([alternate submenu]);
        const FailingMemory failing(calls + 1);
        [controller_ menuWillOpen:menu];
        NSMenuItem* item = [menu itemAtIndex:0];
        const auto is_empty = [&] { return [[item title] length] == 0 && ![item image]; };
        while (is_empty()) {
            [[NSRunLoop currentRunLoop] runMode:NSEventTrackingRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
            item = [menu itemAtIndex:0];
        }
        has_failed = FailingMemory::has_failed();
        pictures += [item image] != nil;
        if (![item image]) EXPECT_STREQ([[item title] UTF8String], "No preview available");
        release();
    }
    EXPECT_GT(calls, 2);
    EXPECT_GT(pictures, 0);
    EXPECT_GT(calls, pictures);
}

TEST_F(MenusWithoutMemory, PressAndHoldThatGetsNoThreadSaysSo) {
    dvEnableDebugOutput = 1;
    const std::string log = test::output_of([] {
        const test::NoThreads none;
        [[[DVControlFreePopup alloc] init] release];
    });
    dvEnableDebugOutput = 0;
    EXPECT_NE(log.find("Delvio: Error creating thread: "), log.npos) << log;
}

TEST_F(FileOpWithoutMemory, AnOperationIsWholeOrReported) {
    const std::string a = folder_.file("a"), b = folder_.file("b");
    folder_.file("to/c");
    select(a);
    select(b);
    int whole = 0, calls = 0;
    for (bool has_failed = true; has_failed; calls++) {
        // The menu has made this before.
        roots_.emplace_back(folder_root(folder_.path("to")));
        dv_tree_t* const to = target_in(roots_.back().get());
        post_.clear();
        const std::string said = test::output_of([&] {
            const FailingMemory failing(calls + 1);
            send(to, DV_FILE_OP_COPY);
            has_failed = FailingMemory::has_failed();
        });
        const auto& letters = post_.letters();
        const bool is_whole = letters.size() == 1 && letters[0].items == test::Paths{a, b};
        EXPECT_TRUE(is_whole || !said.empty()) << calls;
        whole += is_whole;
    }
    EXPECT_GT(calls, 8);
    EXPECT_GT(whole, 1);  // without names to compare, the files are sent, too
}
