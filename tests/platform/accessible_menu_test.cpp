// What assistive technology is told about menus, without a bus.
#include <gtest/gtest.h>

#include <atspi/atspi-constants.h>
#include <host/glib_owners.h>

#include <algorithm>

#include "accessibility/bridge/announcer.h"
#include "accessibility/bridge/answers.h"
#include "accessibility/bridge/interfaces.h"

namespace {

using Lines = std::vector<std::string>;

OpenRow item(const std::string& name) {
    OpenRow row;
    row.name = name;
    row.is_enabled = row.can_be_picked = row.is_in_sight = true;
    return row;
}

OpenRow folder(const std::string& name) {
    OpenRow row = item(name);
    row.has_submenu = true;
    return row;
}

OpenRow separator() {
    OpenRow row;
    row.kind = OpenRow::separator;
    return row;
}

OpenRow field(const std::string& name, const std::string& written) {
    OpenRow row = item(name);
    row.kind = OpenRow::field;
    row.written = written;
    return row;
}

OpenRow bar(const std::string& name, double value) {
    OpenRow row = item(name);
    row.kind = OpenRow::bar;
    row.value = value;
    return row;
}

// An argument of a method.
GVariant* some_value(const std::string& type) {
    if (type == "s") return g_variant_new_string("");
    if (type == "b") return g_variant_new_boolean(FALSE);
    return type == "i" ? g_variant_new_int32(0) : g_variant_new_uint32(0);
}

struct Menus : OpenMenus {
    std::vector<OpenLevel> open;
    std::vector<std::vector<OpenRow>> rows;
    mutable int rows_asked = 0;
    Lines done;

    void push(const std::vector<OpenRow>& shown, int parent_row = -1) {
        static unsigned last_number;
        OpenLevel level;
        level.number = ++last_number;
        level.rows = static_cast<int>(shown.size());
        level.parent_row = parent_row;
        level.name = "menu";
        open.push_back(level);
        rows.push_back(shown);
    }
    void pop() {
        open.pop_back();
        rows.pop_back();
    }
    // The rows of a level are others from now on.
    void change(size_t level, const std::vector<OpenRow>& shown) {
        rows[level] = shown;
        open[level].rows = static_cast<int>(shown.size());
        open[level].revision++;
    }

    std::string application() const override { return "program"; }
    size_t levels() const override { return open.size(); }
    OpenLevel level(size_t level) const override { return open[level]; }
    Area level_area(size_t level) const override {
        return {100 * int(level), 10, 90, 20 * open[level].rows};
    }
    OpenRow row(size_t level, int row) const override {
        rows_asked++;
        return rows[level][row];
    }
    Area row_area(size_t level, int row) const override {
        return {100 * int(level), 10 + 20 * row, 90, 20};
    }
    RowPlace row_place(size_t level, int row) const override { return {row + 1, open[level].rows}; }
    int row_at(size_t, MenuPoint point) const override { return (point.y - 10) / 20; }
    bool highlight(size_t level, int row) override {
        open[level].highlighted = row;
        return true;
    }
    bool do_it(const std::string& what, size_t level, int row) {
        done.push_back(what + " " + rows[level][row].name);
        return true;
    }
    Area text_area(size_t level, int row, size_t begin, size_t end) const override {
        const Area field = row_area(level, row);
        return {field.left + int(begin), field.top, int(end - begin), field.height};
    }
    size_t text_at(size_t level, int row, MenuPoint point) const override {
        return static_cast<size_t>(point.x - row_area(level, row).left);
    }
    bool write(size_t level, int row, const std::string& text, size_t caret,
               size_t anchor) override {
        rows[level][row].written = text;
        rows[level][row].caret = static_cast<int>(caret);
        rows[level][row].anchor = static_cast<int>(anchor);
        open[level].revision++;
        return true;
    }
    void write(const std::string& text, size_t caret) { write(0, 0, text, caret, caret); }
    void copy(const std::string& text) override { pasteboard = text; }
    std::string copied() override { return pasteboard; }
    std::string pasteboard;
    bool pick(size_t level, int row) override { return do_it("pick", level, row); }
    bool open_submenu(size_t level, int row) override { return do_it("open", level, row); }
    bool close_submenu(size_t level, int row) override {
        const bool is_open = level + 1 < open.size() && open[level + 1].parent_row == row;
        return is_open && do_it("close", level, row);
    }
};

struct AccessibleMenu : testing::Test {
    Menus menus;
    NodeTree tree{menus};
    Surroundings surroundings{":1.7", ":1.0", "/desktop", 3};
    Answers answers{tree, surroundings};
    Lines heard;
    Announcer announcer{tree,
                        [this](const Node& node, const Event& event) {
                            const files::VariantOwner value(g_variant_ref_sink(event.value));
                            hear(node, event);
                        },
                        [this](const Node& node) { return reference(surroundings, node); }};

    void hear(const Node& node, const Event& event) {
        const std::string kind = event.name, detail = event.detail;
        if (kind == "SelectionChanged") return;
        const std::string name = tree.exists(node) ? tree.text(node) : "closed";
        std::string line = name + " " + (detail.empty() ? kind : detail);
        if (kind == "StateChanged" && !event.first) line += " no more";
        if (kind.starts_with("Text")) line += " " + std::to_string(event.first);
        const bool has_value = kind == "TextChanged" || detail == "accessible-value";
        if (has_value) line += " " + files::taken_text(g_variant_print(event.value, FALSE));
        heard.push_back(line);
    }
    // What is heard from now on, once.
    Lines news() {
        heard.clear();
        announcer.follow();
        return heard;
    }

    Node menu(size_t level) const { return {Node::menu, menus.open[level].number}; }
    Node row(size_t level, int index) const { return {Node::row, menus.open[level].number, index}; }
    bool has_state(const Node& node, unsigned state) const {
        const std::vector<unsigned> all = tree.states(node);
        return std::find(all.begin(), all.end(), state) != all.end();
    }
    std::string ask(const Node& node, const char* interface, const char* method,
                    GVariant* arguments = g_variant_new_tuple(nullptr, 0)) const {
        const files::VariantOwner given(g_variant_ref_sink(arguments));
        GVariant* const answer = answers.call(node, interface, method, given.get());
        if (!answer) return "no answer";
        const files::VariantOwner owner(g_variant_ref_sink(answer));
        return files::taken_text(g_variant_print(owner.get(), FALSE));
    }
};

TEST_F(AccessibleMenu, EachNodeIsFoundByItsName) {
    menus.push({item("a"), item("b")});
    for (const Node& node : {Node{}, Node{Node::window, 12}, Node{Node::menu, 4}, row(0, 1)}) {
        EXPECT_EQ(node_named(name_of(node)), node);
    }
    for (const char* name : {"", "menu_", "menu_x", "menu_1_row_", "menu_1_row_-1", "menu_1_row_1x",
                             "window_1_row_1", "roots", "menu_99999999999999999999"}) {
        EXPECT_FALSE(node_named(name)) << name;
    }
}

TEST_F(AccessibleMenu, ASubmenuIsTheChildOfItsRow) {
    menus.push({item("a"), folder("b")});
    menus.push({item("c")}, 1);
    EXPECT_EQ(tree.child(Node{}, 0)->kind, Node::window);
    EXPECT_EQ(tree.parent(menu(0))->kind, Node::window);
    EXPECT_EQ(tree.children(row(0, 0)), 0);
    EXPECT_EQ(tree.child(row(0, 1), 0), menu(1));
    EXPECT_EQ(tree.parent(menu(1)), row(0, 1));
    EXPECT_EQ(tree.parent(row(1, 0)), menu(1));
    EXPECT_EQ(tree.text(menu(1)), "b") << "a submenu is called what its row is called";
    EXPECT_FALSE(tree.exists(Node{Node::window, menus.open[1].number}));
    EXPECT_FALSE(tree.exists(row(1, 1)));
}

TEST_F(AccessibleMenu, RolesAndStatesSayWhatARowIs) {
    OpenRow checked = item("checked"), disabled = item("disabled"), away = item("away");
    checked.kind = OpenRow::check_item;
    checked.is_checked = true;
    disabled.is_enabled = false;
    away.is_in_sight = false;
    menus.push({folder("folder"), separator(), checked, disabled, away});
    menus.open[0].highlighted = 0;
    EXPECT_EQ(tree.role(row(0, 0)), unsigned{ATSPI_ROLE_MENU_ITEM});
    EXPECT_EQ(tree.role(row(0, 1)), unsigned{ATSPI_ROLE_SEPARATOR});
    EXPECT_EQ(tree.role(row(0, 2)), unsigned{ATSPI_ROLE_CHECK_MENU_ITEM});
    EXPECT_TRUE(has_state(row(0, 0), ATSPI_STATE_EXPANDABLE));
    EXPECT_TRUE(has_state(row(0, 0), ATSPI_STATE_FOCUSED));
    EXPECT_TRUE(has_state(row(0, 0), ATSPI_STATE_SELECTED));
    EXPECT_TRUE(has_state(row(0, 2), ATSPI_STATE_CHECKED));
    EXPECT_FALSE(has_state(row(0, 2), ATSPI_STATE_EXPANDABLE));
    EXPECT_FALSE(has_state(row(0, 3), ATSPI_STATE_ENABLED));
    EXPECT_FALSE(has_state(row(0, 3), ATSPI_STATE_FOCUSABLE));
    EXPECT_TRUE(has_state(row(0, 3), ATSPI_STATE_SHOWING));
    EXPECT_FALSE(has_state(row(0, 4), ATSPI_STATE_SHOWING));
    menus.push({item("inner")}, 0);
    EXPECT_TRUE(has_state(row(0, 0), ATSPI_STATE_EXPANDED));
    EXPECT_TRUE(has_state(row(0, 0), ATSPI_STATE_FOCUSED)) << "nothing is highlighted below it";
    menus.open[1].highlighted = 0;
    EXPECT_FALSE(has_state(row(0, 0), ATSPI_STATE_FOCUSED));
    EXPECT_TRUE(has_state(row(0, 0), ATSPI_STATE_SELECTED));
}

TEST_F(AccessibleMenu, APanelIsAWindowOfWidgets) {
    OpenRow label = item("Sort"), check = item("Hidden"), choice = folder("Order: by name"),
            button = item("OK");
    label.kind = OpenRow::text;
    check.kind = OpenRow::check_box;
    check.is_checked = true;
    choice.kind = OpenRow::choice;
    button.kind = OpenRow::button;
    button.is_default = true;
    menus.push({label, check, choice, button});
    menus.open[0].kind = OpenLevel::dialog;
    menus.open[0].name = "Settings";
    menus.open[0].highlighted = 2;
    EXPECT_EQ(tree.role(*tree.child(Node{}, 0)), unsigned{ATSPI_ROLE_DIALOG});
    EXPECT_EQ(tree.text(*tree.child(Node{}, 0)), "Settings");
    EXPECT_EQ(tree.role(menu(0)), unsigned{ATSPI_ROLE_PANEL});
    const Lines roles = {"label", "check box", "combo box", "push button"};
    for (int i = 0; i < 4; i++) EXPECT_EQ(tree.role_name(row(0, i)), roles[static_cast<size_t>(i)]);
    EXPECT_FALSE(has_state(row(0, 0), ATSPI_STATE_FOCUSABLE));
    EXPECT_TRUE(has_state(row(0, 1), ATSPI_STATE_CHECKED));
    EXPECT_TRUE(has_state(row(0, 2), ATSPI_STATE_FOCUSED));
    EXPECT_FALSE(has_state(row(0, 2), ATSPI_STATE_SELECTED)) << "no row of a list";
    EXPECT_TRUE(has_state(row(0, 3), ATSPI_STATE_IS_DEFAULT));
    EXPECT_EQ(news(),
              (Lines{"program add", "Settings showing", "Settings active", "Settings Activate",
                     " visible", " showing", "Order: by name focused"}));
    menus.open[0].highlighted = 3;
    EXPECT_EQ(news(), (Lines{"Order: by name focused no more", "OK focused"}));
    announcer.note_asked(row(0, 1));
    OpenRow other = item("Other page");
    other.kind = OpenRow::button;
    menus.change(0, {label, other, choice, button});
    EXPECT_EQ(news(), (Lines{"Other page accessible-name", "Other page accessible-role",
                             "Other page checkable no more", "Other page checked no more"}));
    menus.open[0].highlighted = 2;
    menus.push({item("by name")}, 2);
    EXPECT_EQ(tree.parent(menu(1)), row(0, 2)) << "the menu of a choice";
    EXPECT_TRUE(has_state(row(0, 2), ATSPI_STATE_EXPANDED));
}

TEST_F(AccessibleMenu, OneRowOfAHundredThousandCostsWhatOneRowOfThreeCosts) {
    menus.push(std::vector<OpenRow>(100000, item("row")));
    announcer.follow();
    menus.open[0].highlighted = 99999;
    announcer.follow();
    const Node last = *tree.child(menu(0), 99999);
    announcer.note_asked(last);
    EXPECT_EQ(ask(menu(0), accessible_interface, "GetRole"), "(33,)");
    EXPECT_EQ(ask(last, accessible_interface, "GetIndexInParent"), "(99999,)");
    EXPECT_NE(ask(last, accessible_interface, "GetAttributes").find("'setsize': '100000'"),
              std::string::npos);
    EXPECT_EQ(tree.text(last), "row");
    EXPECT_LT(menus.rows_asked, 10);
}

TEST_F(AccessibleMenu, OpeningHighlightingAndClosingAreHeard) {
    menus.push({item("a"), folder("b")});
    EXPECT_EQ(news(), (Lines{"program add", "menu showing", "menu visible", "menu showing",
                             "menu focused"}));
    EXPECT_EQ(news(), Lines{}) << "nothing is told twice";
    menus.open[0].highlighted = 1;
    EXPECT_EQ(news(), (Lines{"b selected", "menu focused no more", "b focused"}));
    menus.push({item("c")}, 1);
    menus.open[1].highlighted = 0;
    EXPECT_EQ(news(), (Lines{"b add", "b expanded", "b visible", "b showing", "c selected",
                             "b focused no more", "c focused"}));
    menus.pop();
    EXPECT_EQ(news(), (Lines{"b remove", "b expanded no more", "closed visible no more",
                             "closed showing no more", "closed defunct", "b focused"}));
    menus.pop();
    EXPECT_EQ(news(), (Lines{"program remove", "closed showing no more", "closed visible no more",
                             "closed showing no more", "closed defunct"}));
}

TEST_F(AccessibleMenu, ALevelInThePlaceOfAnotherIsHeardAsANewOne) {
    menus.push({folder("a"), folder("b")});
    menus.push({item("in a")}, 0);
    announcer.follow();
    menus.pop();
    menus.push({item("in b")}, 1);
    EXPECT_EQ(news(), (Lines{"a remove", "a expanded no more", "closed visible no more",
                             "closed showing no more", "closed defunct", "b add", "b expanded",
                             "b visible", "b showing"}));
}

TEST_F(AccessibleMenu, ChangesOfRowsThatAReaderKnowsAreHeard) {
    menus.push({item("a"), item("b"), item("c")});
    announcer.follow();
    announcer.note_asked(row(0, 0));
    announcer.note_asked(row(0, 2));
    OpenRow changed = item("other");
    changed.is_enabled = false;
    menus.change(0, {changed, item("never asked for")});
    EXPECT_EQ(news(), (Lines{"other accessible-name", "other enabled no more",
                             "other sensitive no more", "other focusable no more",
                             "other selectable no more", "closed defunct", "menu remove"}));
    EXPECT_EQ(news(), Lines{});
}

TEST_F(AccessibleMenu, ScrollingTellsWhichKnownRowsShow) {
    menus.push({item("a"), item("b")});
    announcer.follow();
    announcer.note_asked(row(0, 0));
    menus.rows[0][0].is_in_sight = false;
    menus.open[0].scroll = 20;
    EXPECT_EQ(news(), Lines{"a showing no more"});
}

TEST_F(AccessibleMenu, ActionsPickAndOpen) {
    OpenRow disabled = item("disabled");
    disabled.is_enabled = false;
    menus.push({item("file"), folder("folder"), disabled});
    const auto act = [this](int index, int action) {
        return ask(row(0, index), action_interface, "DoAction", g_variant_new("(i)", action));
    };
    EXPECT_EQ(ask(row(0, 0), action_interface, "GetActions"), "([('click', '', '')],)");
    EXPECT_EQ(ask(row(0, 1), action_interface, "GetName", g_variant_new("(i)", 1)),
              "('expand or contract',)");
    EXPECT_EQ(act(0, 0), "(true,)");
    EXPECT_EQ(act(1, 1), "(true,)");
    EXPECT_EQ(act(0, 1), "(false,)");
    EXPECT_EQ(act(1, -1), "(false,)");
    EXPECT_EQ(act(2, 0), "(false,)");
    menus.push({item("inner")}, 1);
    EXPECT_EQ(act(1, 1), "(true,)");
    EXPECT_EQ(menus.done, (Lines{"pick file", "open folder", "close folder"}));
}

TEST_F(AccessibleMenu, PlacesAreThoseOfTheScreenTheWindowOrTheParent) {
    menus.push({folder("a"), folder("b")});
    menus.push({item("c"), item("d")}, 1);
    const auto extents = [this](unsigned coordinates) {
        return ask(row(1, 1), component_interface, "GetExtents", g_variant_new("(u)", coordinates));
    };
    EXPECT_EQ(extents(ATSPI_COORD_TYPE_SCREEN), "((100, 30, 90, 20),)");
    EXPECT_EQ(extents(ATSPI_COORD_TYPE_WINDOW), "((0, 20, 90, 20),)");
    EXPECT_EQ(extents(ATSPI_COORD_TYPE_PARENT), "((0, 20, 90, 20),)");
    EXPECT_EQ(ask(menu(1), component_interface, "GetAccessibleAtPoint",
                  g_variant_new("(iiu)", 110, 35, ATSPI_COORD_TYPE_SCREEN)),
              "((':1.7', '" + path_of(row(1, 1)) + "'),)");
    EXPECT_EQ(ask(menu(1), component_interface, "GetAccessibleAtPoint",
                  g_variant_new("(iiu)", 300, 35, ATSPI_COORD_TYPE_SCREEN)),
              "((':1.7', '/org/a11y/atspi/null'),)");
}

TEST_F(AccessibleMenu, TheTextOfAFieldIsReadInCharacters) {
    menus.push({field("Name", "über die  Brücke"), item("b")});
    const Node name = row(0, 0);
    const auto text = [&](const char* method, const char* types, int first, int second) {
        return ask(name, text_interface, method, g_variant_new(types, first, second));
    };
    const auto words = [](const Node& node, const NodeTree& tree) {
        const std::vector<const char*> all = interfaces_of(tree, node);
        return std::ranges::count(all, std::string(text_interface));
    };
    EXPECT_EQ(words(name, tree), 1);
    EXPECT_EQ(words(row(0, 1), tree), 0) << "only a field has a text";
    const files::VariantOwner count(
        g_variant_ref_sink(answers.property(name, text_interface, "CharacterCount")));
    EXPECT_EQ(g_variant_get_int32(count.get()), 16);
    EXPECT_EQ(text("GetText", "(ii)", 0, -1), "('über die  Brücke',)");
    EXPECT_EQ(text("GetText", "(ii)", 11, 13), "('rü',)");
    EXPECT_EQ(text("GetText", "(ii)", 5, 3), "('',)");
    EXPECT_EQ(text("GetStringAtOffset", "(iu)", 0, ATSPI_TEXT_GRANULARITY_CHAR), "('ü', 0, 1)");
    EXPECT_EQ(text("GetStringAtOffset", "(iu)", 6, ATSPI_TEXT_GRANULARITY_WORD),
              "('die  ', 5, 10)");
    EXPECT_EQ(text("GetTextBeforeOffset", "(iu)", 6, ATSPI_TEXT_BOUNDARY_WORD_START),
              "('über ', 0, 5)");
    EXPECT_EQ(text("GetTextAfterOffset", "(iu)", 6, ATSPI_TEXT_BOUNDARY_WORD_START),
              "('Brücke', 10, 16)");
    EXPECT_EQ(text("GetTextAtOffset", "(iu)", 16, ATSPI_TEXT_BOUNDARY_CHAR), "('', 16, 16)");
    EXPECT_EQ(text("GetStringAtOffset", "(iu)", 3, ATSPI_TEXT_GRANULARITY_LINE),
              "('über die  Brücke', 0, 16)");
    EXPECT_EQ(ask(name, text_interface, "GetCharacterAtOffset", g_variant_new("(i)", 0)), "(252,)");
    EXPECT_EQ(text("GetCharacterExtents", "(iu)", 1, ATSPI_COORD_TYPE_SCREEN), "(2, 10, 1, 20)");
    EXPECT_EQ(ask(name, text_interface, "GetOffsetAtPoint",
                  g_variant_new("(iiu)", 2, 12, ATSPI_COORD_TYPE_SCREEN)),
              "(1,)");
}

TEST_F(AccessibleMenu, WritingInAFieldIsHeardCharacterByCharacter) {
    menus.push({field("Name", "Tür")});
    menus.open[0].kind = OpenLevel::dialog;
    menus.open[0].highlighted = 0;
    announcer.follow();
    announcer.note_asked(row(0, 0));
    menus.write("Türe", 5);
    EXPECT_EQ(news(), (Lines{"Name insert 3 'e'", "Name TextCaretMoved 4"}));
    menus.write("Tre", 1);
    EXPECT_EQ(news(), (Lines{"Name delete 1 'ü'", "Name TextCaretMoved 1"}));
    menus.write("Tore", 2);
    EXPECT_EQ(news(), (Lines{"Name insert 1 'o'", "Name TextCaretMoved 2"}));
    menus.write("Haus", 4);
    EXPECT_EQ(news(),
              (Lines{"Name delete 0 'Tore'", "Name insert 0 'Haus'", "Name TextCaretMoved 4"}));
    menus.write("Haus", 0);
    EXPECT_EQ(news(), Lines{"Name TextCaretMoved 0"});
}

TEST_F(AccessibleMenu, AReaderWritesInAField) {
    menus.push({field("Name", "Tür")});
    const OpenRow& shown = menus.rows[0][0];
    const auto edit = [this](const char* method, GVariant* arguments) {
        return ask(row(0, 0), editable_text_interface, method, arguments);
    };
    EXPECT_EQ(edit("InsertText", g_variant_new("(isi)", 3, "öff", 2)), "(true,)");
    EXPECT_EQ(shown.written, "Türöf");
    EXPECT_EQ(shown.caret, 7);
    EXPECT_EQ(edit("DeleteText", g_variant_new("(ii)", 1, 2)), "(true,)");
    EXPECT_EQ(shown.written, "Tröf");
    EXPECT_EQ(edit("DeleteText", g_variant_new("(ii)", 2, 2)), "(false,)");
    EXPECT_EQ(edit("SetTextContents", g_variant_new("(s)", "Dach")), "(true,)");
    EXPECT_EQ(shown.written, "Dach");
    EXPECT_EQ(ask(row(0, 0), text_interface, "SetCaretOffset", g_variant_new("(i)", 2)), "(true,)");
    EXPECT_EQ(shown.caret, 2);
}

TEST_F(AccessibleMenu, AReaderSelectsInAField) {
    menus.push({field("Name", "eine Tür")});
    menus.open[0].kind = OpenLevel::dialog;
    menus.open[0].highlighted = 0;
    announcer.follow();
    announcer.note_asked(row(0, 0));
    const auto text = [this](const char* method, GVariant* arguments) {
        return ask(row(0, 0), text_interface, method, arguments);
    };
    const auto selections = [this] { return ask(row(0, 0), text_interface, "GetNSelections"); };
    EXPECT_EQ(selections(), "(0,)");
    EXPECT_EQ(text("GetSelection", g_variant_new("(i)", 0)), "(-1, -1)");
    EXPECT_EQ(text("AddSelection", g_variant_new("(ii)", 5, 7)), "(true,)");
    EXPECT_EQ(news(), (Lines{"Name TextCaretMoved 7", "Name TextSelectionChanged 0"}));
    EXPECT_EQ(selections(), "(1,)");
    EXPECT_EQ(text("GetSelection", g_variant_new("(i)", 0)), "(5, 7)");
    EXPECT_EQ(text("GetSelection", g_variant_new("(i)", 1)), "(-1, -1)");
    EXPECT_EQ(text("AddSelection", g_variant_new("(ii)", 0, 1)), "(false,)") << "one is the most";
    EXPECT_EQ(text("SetSelection", g_variant_new("(iii)", 0, 6, 8)), "(true,)");
    EXPECT_EQ(text("GetSelection", g_variant_new("(i)", 0)), "(6, 8)");
    EXPECT_EQ(text("RemoveSelection", g_variant_new("(i)", 1)), "(false,)");
    EXPECT_EQ(text("RemoveSelection", g_variant_new("(i)", 0)), "(true,)");
    EXPECT_EQ(selections(), "(0,)");
    EXPECT_EQ(menus.rows[0][0].written, "eine Tür");
}

TEST_F(AccessibleMenu, AReaderCutsCopiesAndPastesInAField) {
    menus.push({field("Name", "eine Tür")});
    const OpenRow& shown = menus.rows[0][0];
    const auto edit = [this](const char* method, GVariant* arguments) {
        return ask(row(0, 0), editable_text_interface, method, arguments);
    };
    EXPECT_EQ(edit("PasteText", g_variant_new("(i)", 0)), "(false,)") << "nothing is copied";
    EXPECT_EQ(edit("CopyText", g_variant_new("(ii)", 5, 7)), "()");
    EXPECT_EQ(menus.pasteboard, "Tü");
    EXPECT_EQ(shown.written, "eine Tür");
    EXPECT_EQ(edit("CutText", g_variant_new("(ii)", 4, 8)), "(true,)");
    EXPECT_EQ(menus.pasteboard, " Tür");
    EXPECT_EQ(shown.written, "eine");
    EXPECT_EQ(edit("CutText", g_variant_new("(ii)", 2, 2)), "(false,)");
    EXPECT_EQ(menus.pasteboard, " Tür") << "nothing was cut";
    EXPECT_EQ(edit("PasteText", g_variant_new("(i)", 2)), "(true,)");
    EXPECT_EQ(shown.written, "ei Türne");
    EXPECT_EQ(shown.caret, 7);
}

TEST_F(AccessibleMenu, AWindowThatShowsProgressIsToldWithoutTakingTheFocus) {
    menus.push({bar("Copying", 0.25)});
    menus.open[0].kind = OpenLevel::progress;
    menus.open[0].name = "Copying";
    EXPECT_EQ(news(), (Lines{"program add", "Copying showing", "Copying Announcement", " visible",
                             " showing"}));
    EXPECT_FALSE(has_state(*tree.child(Node{}, 0), ATSPI_STATE_ACTIVE));
    EXPECT_FALSE(has_state(*tree.child(Node{}, 0), ATSPI_STATE_MODAL));
    EXPECT_FALSE(has_state(menu(0), ATSPI_STATE_FOCUSED));
    const auto value = [this](const char* name) {
        const files::VariantOwner answer(
            g_variant_ref_sink(answers.property(row(0, 0), value_interface, name)));
        return g_variant_get_double(answer.get());
    };
    EXPECT_EQ(value("CurrentValue"), 0.25);
    EXPECT_EQ(value("MaximumValue"), 1);
    announcer.note_asked(row(0, 0));
    menus.change(0, {bar("Copying", 0.5)});
    EXPECT_EQ(news(), Lines{"Copying accessible-value 0.5"});
    EXPECT_EQ(value("CurrentValue"), 0.5);
}

TEST_F(AccessibleMenu, EveryDescribedMethodIsAnswered) {
    menus.push({folder("a"), field("b", "text"), bar("c", 0.5)});
    for (const Node& node : {Node{}, Node{Node::window, menus.open[0].number}, menu(0), row(0, 0),
                             row(0, 1), row(0, 2)}) {
        for (const char* name : interfaces_of(tree, node)) {
            const GDBusInterfaceInfo* const interface = interface_named(name);
            ASSERT_NE(interface, nullptr) << name;
            for (GDBusPropertyInfo** each = interface->properties; each && *each; each++) {
                GVariant* const value = answers.property(node, name, (*each)->name);
                ASSERT_NE(value, nullptr) << name << "." << (*each)->name;
                const files::VariantOwner owner(g_variant_ref_sink(value));
                EXPECT_STREQ(g_variant_get_type_string(value), (*each)->signature)
                    << name << "." << (*each)->name;
            }
            for (GDBusMethodInfo** each = interface->methods; each && *each; each++) {
                GVariantBuilder arguments;
                g_variant_builder_init(&arguments, G_VARIANT_TYPE_TUPLE);
                for (GDBusArgInfo** in = (*each)->in_args; in && *in; in++) {
                    g_variant_builder_add_value(&arguments, some_value((*in)->signature));
                }
                std::string type = "(";
                for (GDBusArgInfo** out = (*each)->out_args; out && *out; out++) {
                    type += (*out)->signature;
                }
                const files::VariantOwner given(
                    g_variant_ref_sink(g_variant_builder_end(&arguments)));
                GVariant* const answer = answers.call(node, name, (*each)->name, given.get());
                ASSERT_NE(answer, nullptr) << name << "." << (*each)->name;
                const files::VariantOwner owner(g_variant_ref_sink(answer));
                EXPECT_EQ(g_variant_get_type_string(answer), type + ")")
                    << name << "." << (*each)->name;
            }
        }
    }
}

}  // namespace
