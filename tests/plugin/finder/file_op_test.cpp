// Moving, copying and making aliases: the events that go to the Finder, and the alert before.
#include <gtest/gtest.h>

#include "plugin/finder/file_op_scene.h"

namespace {

using test::dont_replace;
using test::FileOp;
using test::Letter;
using test::output_of;
using test::Parameters;
using test::Paths;
using test::replace;

}  // namespace

TEST_F(FileOp, EachOperationIsAnEventOfItsOwn) {
    const std::string a = folder_.file("a"), b = folder_.file("b"), to = folder_.folder("to");
    const struct {
        long operation;
        FourCharCode event_id;
        Parameters parameters;
    } rows[] = {
        {0,
         0x6D6F7665,  // move
         {{0x696E7368, 0x616C6973}, {0x2D2D2D2D, 0x6C697374}, {0x616C7270, 0x626F6F6C}}},
        {1,
         0x636C6F6E,  // clon
         {{0x696E7368, 0x616C6973}, {0x2D2D2D2D, 0x6C697374}, {0x616C7270, 0x626F6F6C}}},
        {2,
         0x6372656C,  // crel: kocl, insh, "to  ", alrp
         {{0x6B6F636C, 0x74797065},
          {0x696E7368, 0x616C6973},
          {0x746F2020, 0x6C697374},
          {0x616C7270, 0x626F6F6C}}},
    };
    select(a);
    select(b);
    for (const auto& row : rows) {
        const Letter letter = send(target(to), row.operation).back();
        EXPECT_EQ(letter.event_class, 0x636F7265u);  // core
        EXPECT_EQ(letter.event_id, row.event_id);
        EXPECT_EQ(letter.address_type, 0x7369676Eu);  // sign
        EXPECT_EQ(letter.address, 0x4D414353u);       // MACS
        EXPECT_EQ(letter.parameters, row.parameters);
        EXPECT_EQ(letter.items, (Paths{a, b}));
        EXPECT_EQ(letter.item_types, (std::vector<DescType>{0x616C6973, 0x616C6973}));
        EXPECT_EQ(letter.destination, to);
        EXPECT_TRUE(letter.keeps());
        FourCharCode kind = 0;
        if (row.operation == 2) memcpy(&kind, letter.kind.data(), sizeof kind);
        EXPECT_EQ(kind, row.operation == 2 ? 0x616C6973u : 0u);  // alis
        EXPECT_EQ(letter.kind.size(), row.operation == 2 ? 4u : 0u);
    }
    EXPECT_EQ(post_.letters().size(), 3u);
}

TEST_F(FileOp, EventsAreSentWithoutAReplyAndMayInteract) {
    select(folder_.file("a"));
    const Letter letter = send_one(target(folder_.folder("to")), 0);
    EXPECT_FALSE(letter.sending.has_reply);
    EXPECT_FALSE(letter.sending.has_procedures);
    EXPECT_EQ(letter.sending.mode, 0x61);
    EXPECT_EQ(letter.sending.priority, 0);
    EXPECT_EQ(letter.sending.time_out, -1);
}

TEST_F(FileOp, AnotherOperationSendsNothing) {
    select(folder_.file("a"));
    dv_tree_t* to = target(folder_.folder("to"));
    EXPECT_EQ(output_of([&] { EXPECT_EQ(send(to, 3).size(), 0u); }), "");
    EXPECT_EQ(send(to, -1, 1).size(), 0u);
}

TEST_F(FileOp, NamesThatDifferInCaseAloneClash) {
    folder_.file("to/report.TXT");
    select(folder_.file("Report.txt"));
    answer_standard_alerts(replace);
    EXPECT_TRUE(send_one(target(folder_.path("to")), 0).replaces());
    EXPECT_EQ(test::shown_alert.count, 1);
}

TEST_F(FileOp, SeveralClashesRaiseOneAlert) {
    for (const char* name : {"a", "b", "c"}) {
        folder_.file(std::string("to/") + name);
        select(folder_.file(name));
    }
    send(target(folder_.path("to")), 0);
    EXPECT_EQ(test::shown_alert.count, 1);
}

TEST_F(FileOp, TheAlertSaysWhatIsAskedAndItsDefaultReplacesNothing) {
    dv_display_should_trash_files_alert();
    const test::ShownAlert& alert = test::shown_alert;
    EXPECT_EQ(alert.count, 1);
    EXPECT_EQ(alert.type, 2);
    EXPECT_EQ(alert.message, "Replace duplicate files?");
    EXPECT_EQ(alert.explanation,
              "Warning! The destination contains some files or folders with the same names as some "
              "of the ones you are trying to move/copy. Would you like to replace them with the "
              "files you are moving/copying?");
    EXPECT_EQ(alert.default_text, "Don't replace files");
    EXPECT_EQ(alert.cancel_text, "Replace files");
    EXPECT_FALSE(alert.has_other_text);
    EXPECT_FALSE(alert.has_filter);
    EXPECT_EQ(alert.parameters.version, 1u);
    EXPECT_TRUE(alert.parameters.movable);
    EXPECT_FALSE(alert.parameters.helpButton);
    EXPECT_EQ(alert.parameters.defaultButton, 1);
    EXPECT_EQ(alert.parameters.cancelButton, 0);
    EXPECT_EQ(alert.parameters.position, 0);
    EXPECT_EQ(alert.parameters.flags, 0u);
}

TEST_F(FileOp, TheTreesAreKeptWhileTheAlertIsShownAndNoLonger) {
    folder_.file("to/a");
    select(folder_.file("a"));
    int32_t meanwhile = 0;
    test::shown_alert.while_shown = [&] { meanwhile = state_.file_op_in_progress; };
    send(target(folder_.path("to")), 0);
    EXPECT_EQ(meanwhile, 1);
    EXPECT_EQ(state_.file_op_in_progress, 0);
}

TEST_F(FileOp, AnAlertThatCannotBeMadeReplacesNothing) {
    folder_.file("to/a");
    select(folder_.file("a"));
    answer_standard_alerts(replace);
    test::shown_alert.creation_error = -108;
    EXPECT_TRUE(send_one(target(folder_.path("to")), 0).keeps());
    EXPECT_EQ(test::shown_alert.count, 0);
    dvEnableDebugOutput = 1;
    EXPECT_EQ(
        output_of([] { EXPECT_NE(dv_display_should_trash_files_alert(), 0); }),
        "Delvio: Displaying trash-files alert dialog\nDelvio: User hit button Replace files\n");
}

TEST_F(FileOp, TheButtonThatReplacesNothingIsLogged) {
    dvEnableDebugOutput = 1;
    EXPECT_EQ(output_of([] { EXPECT_NE(dv_display_should_trash_files_alert(), 0); }),
              "Delvio: Displaying trash-files alert dialog\n"
              "Delvio: User hit button Don't replace files\n");
}

TEST_F(FileOp, TheAnswerGoesAlongAndNeverCancels) {
    folder_.file("to/a");
    const std::string a = select(folder_.file("a"))->dir->path;
    for (const DialogItemIndex answer : {DialogItemIndex{replace}, DialogItemIndex{dont_replace},
                                         DialogItemIndex{kAlertAnswerDefault}}) {
        answer_standard_alerts(answer);
        for (const long operation : {0, 1, 2}) {
            const Letter letter = send(target(folder_.path("to")), operation).back();
            EXPECT_EQ(letter.replaces(), answer == replace);
            EXPECT_EQ(letter.keeps(), answer != replace);
            EXPECT_EQ(letter.items, Paths{a});
        }
    }
    EXPECT_EQ(post_.letters().size(), 9u);
}

TEST_F(FileOp, NamesWithoutAClashRaiseNoAlert) {
    folder_.file("to/b");
    folder_.file("to/\u00c4");
    select(folder_.file("a"));
    // Only ASCII letters are compared without case here.
    select(folder_.file("\u00e4"));
    answer_standard_alerts(replace);
    EXPECT_TRUE(send_one(target(folder_.path("to")), 0).keeps());
    EXPECT_EQ(test::shown_alert.count, 0);
}

TEST_F(FileOp, FilesHiddenInTheDestinationAreNotCompared) {
    folder_.file("to/.hidden");
    folder_.file("to/shown");
    select(folder_.file(".hidden"));
    answer_standard_alerts(replace);
    EXPECT_TRUE(send_one(target(folder_.path("to")), 0).keeps());
}

TEST_F(FileOp, UserFoldersAloneMakeAnEmptyListAndNoAlert) {
    folder_.folder("to/user");
    select(folder_root(folder_.folder("user"), DV_ORIGIN_USER_FOLDER));
    select(folder_root(folder_.folder("other"), DV_ORIGIN_USER_FOLDER));
    answer_standard_alerts(replace);
    const Letter letter = send_one(target(folder_.path("to")), 0);
    EXPECT_EQ(letter.items, Paths{});
    EXPECT_EQ(letter.parameters[1], std::make_pair(FourCharCode{'----'}, FourCharCode{'list'}));
    EXPECT_TRUE(letter.keeps());
}

TEST_F(FileOp, UserFoldersAreLeftOutOfTheList) {
    select(folder_root(folder_.folder("user"), DV_ORIGIN_USER_FOLDER));
    const std::string a = folder_.file("a");
    select(a);
    EXPECT_EQ(send_one(target(folder_.folder("to")), 1).items, Paths{a});
}

TEST_F(FileOp, NothingSelectedIsSentAllTheSame) {
    EXPECT_EQ(send_one(target(folder_.folder("to")), 0).items, Paths{});
}

TEST_F(FileOp, AFolderIsNotMovedIntoItsOwnSubfolder) {
    folder_.folder("a/b/c");
    dv_tree_t* root = select(folder_root(folder_.path("a")));
    const std::string other = folder_.file("other");
    select(other);
    dv_tree_t* below = root->children;
    below->children = folder_root(folder_.path("a/b"))->children;
    below->children->parent = below;
    dv_tree_t* to = target_in(below->children);
    for (const long operation : {0, 1}) {
        const Letter letter = send(to, operation).back();
        EXPECT_EQ(letter.destination, folder_.path("a/b/c"));
        EXPECT_EQ(letter.items, Paths{other});
    }
}

TEST_F(FileOp, AnAliasOfTheTreesRootIsMade) {
    folder_.folder("a/b");
    dv_tree_t* root = select(folder_root(folder_.path("a")));
    const std::string other = folder_.file("other");
    select(other);
    dv_tree_t* to = target_in(root->children);
    EXPECT_EQ(send(to, 2).back().items, (Paths{folder_.path("a"), other}));
    EXPECT_EQ(send(to, 1).back().items, Paths{other});
    EXPECT_EQ(send(to, 0).back().items, Paths{other});
}

TEST_F(FileOp, WhatContainsTheTreesRootIsLeftOutCharacterForCharacter) {
    folder_.folder("a/bc/to");
    select(folder_.file("a/b"));
    select(folder_.file("a/d"));
    dv_tree_t* to = target(folder_.path("a/bc"));
    for (const long operation : {0, 1, 2}) {
        EXPECT_EQ(send(to, operation).back().items, Paths{folder_.path("a/d")});
    }
}

TEST_F(FileOp, PathsAreComparedAsCharacters) {
    const struct {
        const char *root, *item;
        bool can;
    } rows[] = {{"/a/b/", "/a/b/", false}, {"/a/b/", "/a/b", false},  {"/a/bc", "/a/b", false},
                {"/a/b/", "/", false},     {"/a/b", "/a/b/", true},   {"/a/b", "/a/bc", true},
                {"/a", "/b", true},        {"/a/b/", "/a/b/c", true}, {"/a", "", false}};
    for (const auto& row : rows) {
        EXPECT_EQ(dv_can_move_or_copy(row.root, row.item), row.can) << row.root << " " << row.item;
    }
}

TEST_F(FileOp, TheDestinationIsOpenedBeforeTheOperation) {
    select(folder_.file("a"));
    const std::string to = folder_.folder("to");
    for (const long operation : {0, 1, 2}) {
        const size_t before = post_.letters().size();
        const std::vector<Letter> letters = send(target(to), operation, 1);
        ASSERT_EQ(letters.size(), before + 2);
        EXPECT_EQ(letters[before].event_class, 'aevt');
        EXPECT_EQ(letters[before].event_id, 'odoc');
        EXPECT_EQ(letters[before].items, Paths{to});
        EXPECT_EQ(letters[before + 1].event_class, 'core');
    }
}

TEST_F(FileOp, TheDestinationIsOpenedAlsoWhenNothingIsLeftToDo) {
    dv_tree_t* root = select(folder_root(folder_.folder("a")));
    const std::vector<Letter> letters = send(target_in(root), 0, 1);
    ASSERT_EQ(letters.size(), 2u);
    EXPECT_EQ(letters[0].event_id, 'odoc');
    EXPECT_EQ(letters[1].items, Paths{});
}

TEST_F(FileOp, AnAliasFileIsMovedItself) {
    folder_.file("target");
    dv_tree_t* alias = select(folder_.link("alias", folder_.path("target")));
    alias->resolved_path = strdup(folder_.path("target").c_str());
    EXPECT_EQ(send_one(target(folder_.folder("to")), 0).items, Paths{folder_.path("alias")});
}

TEST_F(FileOp, OddNamesGoThrough) {
    const std::string odd[] = {"-rf", "line\nbreak", "not utf8 \xff\xfe", std::string(255, 'n')};
    Paths paths;
    for (const std::string& name : odd) paths.push_back(folder_.file(name));
    for (const std::string& path : paths) select(path);
    EXPECT_EQ(send_one(target(folder_.folder("to \xff")), 0).items, paths);
    EXPECT_EQ(post_.letters().back().destination, folder_.path("to \xff"));
}

TEST_F(FileOp, TheDestinationKeepsItsChildren) {
    folder_.file("to/b");
    folder_.file("to/a");
    folder_.file("to/.hidden");
    dv_tree_t* to = target(folder_.path("to"));
    send(to, 0);
    ASSERT_EQ(test::names_of(to->children), (test::Names{"a", "b"}));
    EXPECT_EQ(to->children->parent, to);
    EXPECT_EQ(to->children->origin, static_cast<uint32_t>(DV_ORIGIN_MOVE_COPY));
    EXPECT_EQ(state_.file_op_in_progress, 0);
}

TEST_F(FileOp, ManySelectedFilesAreAllSent) {
    Paths paths;
    for (int i = 0; i < 4500; i++) paths.push_back(folder_.file("from/" + std::to_string(i)));
    for (const std::string& path : paths) select(path);
    EXPECT_EQ(send_one(target(folder_.folder("to")), 0).items, paths);
}

TEST_F(FileOp, LeavesNothingBehind) {
    select(folder_.file("a"));
    folder_.file("to/a");
    dv_tree_t* to = target(folder_.path("to"));
    const auto round = [&] {
        dv_send_file_op_to_finder(&state_, selection_.get(), to, 2, 1);
        dv_send_file_op_to_finder(&state_, selection_.get(), to, 3, 0);
        dv_move_to_trash(selection_.get(), false);
        post_.clear();
    };
    // Repeats until the table of file references is full.
    for (int i = 0; i < 400; i++) test::in_one_turn(round);
    const size_t before = test::memory_in_use();
    for (int i = 0; i < 200; i++) test::in_one_turn(round);
    EXPECT_LT(test::memory_in_use(), before + 20000);
}

TEST_F(FileOp, LogsItsWay) {
    folder_.folder("a/b");
    dv_tree_t* root = select(folder_root(folder_.path("a")));
    select(folder_.file("other"));
    select(folder_root(folder_.folder("user"), DV_ORIGIN_USER_FOLDER));
    dv_tree_t* to = target_in(root->children);
    const unsigned parent = static_cast<unsigned>(reinterpret_cast<uintptr_t>(root->children));
    const unsigned top = static_cast<unsigned>(reinterpret_cast<uintptr_t>(root));
    char climbing[200];
    snprintf(climbing, sizeof climbing,
             "Delvio: First parent %x\n"
             "Delvio: Climbing tree, parent now %x\n"
             "Delvio: Climbing tree, parent now %x\n",
             parent, parent, top);
    dvEnableDebugOutput = 1;
    const std::string expected = std::string(climbing) + "Delvio: Parent is " + folder_.path("a/") +
                                 "\nDelvio: Process: " + folder_.path("a/") +
                                 "\n Skipping..\nDelvio: Process: " + folder_.path("other") +
                                 "\n Continuing..\nDelvio: Process: " + folder_.path("user/") +
                                 "\n Continuing..\nDelvio: Skip custom folder\n";
    const std::string output = output_of([&] { send(to, 0); });
    EXPECT_NE(("\n" + output).find("\n" + expected), std::string::npos) << output;
}

TEST_F(FileOp, TheRootIsLeftOutAlsoWhenItGetsAnotherPathWhileItsWindowOpens) {
    dv_tree_t* root = select(folder_root(folder_.folder("a")));
    const std::string other = folder_.file("other");
    select(other);
    dv_tree_t* to = target_in(root);
    char& letter = root->dir->path[root->dir->path_len - 2];
    test::carbon_trouble = [&](const std::string& function, FourCharCode about) -> OSErr {
        if (function == "AECreateAppleEvent" && about == kAEOpenDocuments) letter++;
        return noErr;
    };
    const struct {
        unsigned is_logged;
        const char* said;
    } rows[] = {{0, ""}, {1, "\n Continuing..\nDelvio: Skip cur==parent\n"}};
    for (const auto& row : rows) {
        ASSERT_EQ(letter, 'a');
        dvEnableDebugOutput = row.is_logged;
        const std::string output = output_of([&] { send(to, 0, 1); });
        EXPECT_NE(output.find(row.said), output.npos) << output;
        EXPECT_EQ(post_.letters().back().items, Paths{other});
        EXPECT_EQ(letter--, 'b');
    }
}

TEST_F(FileOp, LogsTheComparisonOfNames) {
    folder_.file("to/A");
    folder_.file("to/c");
    select(folder_.file("a"));
    select(folder_.file("b"));
    answer_standard_alerts(replace);
    dv_tree_t* to = target(folder_.path("to"));
    dvEnableDebugOutput = 1;
    Boolean answer = 0;
    EXPECT_EQ(output_of([&] { dv_check_for_filename_conflicts(to, selection_.get(), &answer); }),
              "Delvio: Destination contains:\nDelvio: Item 0: A\nDelvio: Item 1: c\n"
              "Delvio: Items to move are:\nDelvio: Item 0: a\nDelvio: Item 1: b\n"
              "Comparing names..\n"
              "Delvio: Comparing a with the following:\nA\n"
              "Delvio: File/folder a exists in both sets!\nc\n"
              "Delvio: Comparing b with the following:\nc\n"
              "Delvio: Displaying trash-files alert dialog\nDelvio: User hit button Replace files\n"
              "Delvio: Will replace target files\nDelvio: Releasing memory\n");
    EXPECT_EQ(answer, 1);
}

TEST_F(FileOp, TheAlertsAnswerIsZeroForReplacing) {
    answer_standard_alerts(replace);
    EXPECT_EQ(dv_display_should_trash_files_alert(), 0);
    answer_standard_alerts(dont_replace);
    EXPECT_NE(dv_display_should_trash_files_alert(), 0);
    answer_standard_alerts(kAlertAnswerDefault);
    EXPECT_NE(dv_display_should_trash_files_alert(), 0);
}

TEST_F(FileOp, AnAlertThatCannotBeShownReplacesNothing) {
    answer_standard_alerts(kAlertAnswerAsk);
    EXPECT_NE(dv_display_should_trash_files_alert(), 0) << "there is no application to show it";
}
