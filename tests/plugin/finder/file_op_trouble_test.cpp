// File operations for which something is missing or fails, and the trash.
#include <gtest/gtest.h>

#include "plugin/finder/file_op_scene.h"

namespace {

using test::FileOp;
using test::Letter;
using test::output_of;
using test::Parameters;
using test::Paths;

}  // namespace

TEST_F(FileOp, ItemsThatAreGoneAreLeftOutAndReported) {
    select(folder_.file("gone"));
    const std::string a = folder_.file("a");
    select(a);
    unlink(folder_.path("gone").c_str());
    dv_tree_t* to = target(folder_.folder("to"));
    EXPECT_EQ(output_of([&] { EXPECT_EQ(send_one(to, 0).items, Paths{a}); }),
              "Delvio: Failed to create FSRef for element\n");
}

TEST_F(FileOp, ADestinationThatIsGoneEndsIt) {
    select(folder_.file("a"));
    dv_tree_t* to = target(folder_.folder("to"));
    rmdir(folder_.path("to").c_str());
    EXPECT_EQ(output_of([&] { EXPECT_EQ(send(to, 0, 1).size(), 0u); }),
              "Failed to get fsref for destination\n");
}

TEST_F(FileOp, AnEventThatCannotBeSentIsReported) {
    select(folder_.file("a"));
    dv_tree_t* to = target(folder_.folder("to"));
    declare_process_signature(0);
    EXPECT_EQ(output_of([&] { EXPECT_EQ(send(to, 0).size(), 0u); }),
              "Delvio: Got error sending AppleEvent: -600\n");
}

TEST_F(FileOp, AnEventThatCannotBeMadeIsReportedAndEndsIt) {
    select(folder_.file("a"));
    dv_tree_t* to = target(folder_.folder("to"));
    const struct {
        const char* function;
        FourCharCode about;
        const char* line;
    } rows[] = {
        {"AECreateDesc", 'sign', "Delvio: Error creating address desc: -1\n"},
        {"AECreateAppleEvent", 'move', "Delvio: Error creating Apple Event: -1\n"},
        {"AEPutParamDesc", 'insh', "Delvio: Error putting dest FSRef: -1\n"},
        {"AEPutParamDesc", '----', "Delvio: Error putting list of FSRefs: -1\n"},
    };
    for (const auto& row : rows) {
        test::carbon_trouble = test::failing(row.function, -1, row.about);
        EXPECT_EQ(output_of([&] { EXPECT_EQ(send(to, 0).size(), 0u); }), row.line);
    }
    for (int i = 0; i < 2; i++) {
        test::carbon_trouble = test::failing(rows[i].function, -1);
        EXPECT_EQ(output_of([&] { dv_move_to_trash(selection_.get(), false); }), rows[i].line);
    }
    test::carbon_trouble = test::failing(rows[3].function, -1, rows[3].about);
    EXPECT_EQ(output_of([&] { dv_move_to_trash(selection_.get(), false); }), rows[3].line);
    EXPECT_EQ(post_.letters().size(), 0u);
}

TEST_F(FileOp, WithoutAnAliasOfItsDestinationItIsSentWithoutAPlace) {
    const std::string a = folder_.file("a");
    select(a);
    dv_tree_t* to = target(folder_.folder("to"));
    int aliases = 0;
    test::carbon_trouble = [&](const std::string& function, FourCharCode) -> OSErr {
        return function == "FSNewAliasMinimal" && ++aliases == 1 ? -2 : noErr;
    };
    const auto send_it = [&] {
        const Letter letter = send_one(to, 0);
        EXPECT_EQ(letter.destination, "");
        EXPECT_EQ(letter.parameters,
                  (Parameters{{0x2D2D2D2D, 0x6C697374}, {0x616C7270, 0x626F6F6C}}));
        EXPECT_EQ(letter.items, Paths{a});
    };
    EXPECT_EQ(output_of(send_it), "Error creating alias handle: -2\n");
}

TEST_F(FileOp, WithoutADescriptorOfItsDestinationItEnds) {
    select(folder_.file("a"));
    dv_tree_t* to = target(folder_.folder("to"));
    test::carbon_trouble = test::failing("AECreateDesc", -3, 'alis');
    EXPECT_EQ(output_of([&] { EXPECT_EQ(send(to, 0, 1).size(), 0u); }),
              "Error creating dest alias desc: -3\n");
}

TEST_F(FileOp, ItemsThatMakeTroubleAreLeftOutAndReported) {
    const std::string a = folder_.file("a"), b = folder_.file("b"), c = folder_.file("c");
    for (const std::string& path : {a, b, c}) select(path);
    dv_tree_t* to = target(folder_.folder("to"));
    const struct {
        const char* function;
        FourCharCode about;
        int destination;  // calls for the destination, which come before those for items
        const char* line;
    } rows[] = {
        {"FSNewAliasMinimal", 0, 1, "Delvio: Error creating alias handle: -4\n"},
        {"AECreateDesc", 'alis', 1, "Delvio: Error creating alias desc: -4\n"},
        {"AEPutDesc", 'alis', 0, "Delvio: Error putting param desc: -4\n"},
    };
    for (const auto& row : rows) {
        int calls = 0;
        test::carbon_trouble = [&](const std::string& function, FourCharCode about) -> OSErr {
            if (function != row.function || (row.about && row.about != about)) return noErr;
            return ++calls == row.destination + 2 ? -4 : noErr;
        };
        const auto send_it = [&] { EXPECT_EQ(send(to, 0).back().items, (Paths{a, c})); };
        EXPECT_EQ(output_of(send_it), row.line);
    }
}

TEST_F(FileOp, TrashingIsAnEventWithAListAlone) {
    const std::string a = folder_.file("a");
    select(a);
    select(folder_root(folder_.folder("user"), DV_ORIGIN_USER_FOLDER));
    EXPECT_EQ(output_of([&] { dv_move_to_trash(selection_.get(), false); }), "Not trashing: \n");
    dv_move_to_trash(selection_.get(), true);
    const std::vector<Letter>& letters = post_.letters();
    ASSERT_EQ(letters.size(), 2u);
    EXPECT_EQ(letters[0].event_class, 0x636F7265u);  // core
    EXPECT_EQ(letters[0].event_id, 0x64656C6Fu);     // delo
    EXPECT_EQ(letters[0].parameters,
              (Parameters{{0x2D2D2D2D, 0x6C697374}, {0x616C7270, 0x626F6F6C}}));
    EXPECT_TRUE(letters[0].keeps());
    EXPECT_EQ(letters[0].items, Paths{a});
    EXPECT_EQ(letters[0].item_types, std::vector<DescType>{'alis'});
    EXPECT_EQ(letters[0].sending.mode, 0x61);
    EXPECT_EQ(letters[1].items, (Paths{a, folder_.path("user")}));
}

TEST_F(FileOp, AUserFolderThatIsNotTrashedIsLogged) {
    select(folder_root(folder_.folder("user"), DV_ORIGIN_USER_FOLDER));
    dvEnableDebugOutput = 1;
    EXPECT_NE(output_of([&] {
                  dv_move_to_trash(selection_.get(), false);
              }).find("Delvio: Skip custom folder\n"),
              std::string::npos);
}

TEST_F(FileOp, TrashingReportsWhatFails) {
    select(folder_.file("gone"));
    unlink(folder_.path("gone").c_str());
    declare_process_signature(0);
    EXPECT_EQ(output_of([&] { dv_move_to_trash(selection_.get(), false); }),
              "Delvio: Failed to create FSRef for element\n"
              "Delvio: Got error sending AppleEvent: -600\n");
}
