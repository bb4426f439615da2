// What the settings window shows, without the window.
#include <gtest/gtest.h>

#include <AppKit/AppKit.h>

#include <map>
#include <set>

#include "look/menu_text.h"
#include "panels/text_edit.h"
#include "settings_ui/settings_content.h"
#include "support/app.h"

namespace {

class SettingsPages : public testing::Test {
  protected:
    static void SetUpTestSuite() { test::start_application(); }

    SettingsView view_of(size_t page) const {
        SettingsView view;
        view.pages = setting_pages(page_height());
        view.page = page;
        for (const Setting* setting : view.pages[page].settings) {
            view.states.push_back({setting, {setting->standard, {}}, false});
        }
        return view;
    }
    SettingsView view_with_list(const std::vector<std::string>& list) const {
        for (size_t page = 0;; page++) {
            SettingsView view = view_of(page);
            for (SettingState& state : view.states) {
                if (state.setting->type != SettingType::paths) continue;
                state.value.strings = list;
                return view;
            }
        }
    }
};

bool overlap(const Area& one, const Area& other) {
    return one.left < other.right() && other.left < one.right() && one.top < other.bottom() &&
           other.top < one.bottom();
}

TEST_F(SettingsPages, HaveEverySettingThatHasAnEffectOnce) {
    std::multiset<const Setting*> shown;
    for (const SettingPage& page : setting_pages(page_height())) {
        shown.insert(page.settings.begin(), page.settings.end());
    }
    EXPECT_GT(shown.size(), 20u);
    for (const Setting& setting : settings_table()) {
        const bool has_effect = setting.shown.group != SettingGroup::without_effect;
        EXPECT_EQ(shown.count(&setting), has_effect ? 1u : 0u) << setting.key;
    }
}

TEST_F(SettingsPages, HaveRoomOnTheScreenAtEveryScale) {
    const int plain = settings_content(view_of(0)).size.width;
    for (const char* scale : {"1", "2", "3"}) {
        setenv("GDK_SCALE", scale, 1);
        const PanelContent content = settings_content(view_of(0));
        EXPECT_LT(content.size.width, [[NSScreen mainScreen] frame].size.width) << scale;
        EXPECT_LT(content.size.height, [[NSScreen mainScreen] frame].size.height) << scale;
        EXPECT_GE(content.size.width, plain) << scale;
        for (const Widget& widget : content.widgets) {
            EXPECT_LE(widget.area.right(), content.size.width) << scale << " " << widget.text;
        }
    }
    unsetenv("GDK_SCALE");
}

TEST_F(SettingsPages, GoOnInAnotherPageWhereTheyDoNotFit) {
    const auto pages = setting_pages(120);
    EXPECT_GT(pages.size(), setting_pages(page_height()).size());
    EXPECT_EQ(pages[1].title, pages[0].title + ", more");
}

TEST_F(SettingsPages, ShowEachSettingWithALabelAReasonAndAWidgetInsideTheWindow) {
    const auto pages = setting_pages(page_height());
    for (size_t page = 0; page < pages.size(); page++) {
        const PanelContent content = settings_content(view_of(page));
        std::set<std::string> texts;
        for (const Widget& widget : content.widgets) texts.insert(widget.text);
        for (size_t i = 0; i < pages[page].settings.size(); i++) {
            const Setting& setting = *pages[page].settings[i];
            EXPECT_TRUE(texts.contains(reason_of(setting))) << setting.key;
            if (setting.type == SettingType::paths) continue;
            EXPECT_TRUE(texts.contains(label_of(setting))) << setting.key;
            const Widget* widget = content.widget(settings_item + static_cast<int>(i));
            ASSERT_TRUE(widget) << setting.key;
            EXPECT_TRUE(widget->can_be_hit()) << setting.key;
        }
    }
}

TEST_F(SettingsPages, HaveNoWidgetsOverOneAnother) {
    const auto pages = setting_pages(page_height());
    for (size_t page = 0; page < pages.size(); page++) {
        const PanelContent content = settings_content(view_of(page));
        for (const Widget& one : content.widgets) {
            if (!one.can_be_hit()) continue;
            EXPECT_LE(one.area.right(), content.size.width);
            EXPECT_LE(one.area.bottom(), content.size.height);
            for (const Widget& other : content.widgets) {
                if (&one == &other || !other.can_be_hit()) continue;
                EXPECT_FALSE(overlap(one.area, other.area)) << one.text << " and " << other.text;
            }
        }
    }
}

TEST_F(SettingsPages, ScrollALongListSoThatTheSelectedFolderShows) {
    std::vector<std::string> list;
    for (int i = 0; i < 20; i++) list.push_back("/usr/" + std::to_string(i));
    for (const size_t selected : {size_t{0}, size_t{6}, size_t{7}, size_t{19}}) {
        SettingsView view = view_with_list(list);
        view.folder = selected;
        const PanelContent content = settings_content(view);
        const Widget* row = content.widget(folders_item + static_cast<int>(selected));
        ASSERT_TRUE(row) << selected;
        EXPECT_TRUE(row->on);
    }
}

TEST_F(SettingsPages, ShowTheExamplesSubmenuWhereMenusOfTheLanguageOpenTheirs) {
    MenuLook look = PanelContent().look;
    const Extent root = {200, 300}, level = {150, 100}, most = {400, 400};
    look.mirrored = false;
    const ExamplePlaces plain = example_places(look, root, 40, level, most);
    EXPECT_EQ(plain.level.left, plain.root.right() - look.inset);
    look.mirrored = true;
    const ExamplePlaces mirrored = example_places(look, root, 40, level, most);
    EXPECT_EQ(mirrored.level.right(), mirrored.root.left + look.inset);
    EXPECT_EQ(mirrored.root.right(), mirrored.whole.width - look.shadow_extent);
    EXPECT_EQ(mirrored.level.left, look.shadow_extent);
    EXPECT_EQ(mirrored.level.top, plain.level.top);
}

TEST_F(SettingsPages, SayWhichFolderIsMissing) {
    const PanelContent content = settings_content(view_with_list({"/usr", "/no where", "-"}));
    EXPECT_EQ(content.widget(folders_item)->text, "/usr");
    EXPECT_EQ(content.widget(folders_item + 1)->text, "/no where  (missing)");
    EXPECT_NE(content.widget(folders_item + 2)->text.find("line"), std::string::npos);
}

// The place of a character on its line, in Pango's units.
int place_of(const TextLayout& text, char character) {
    const char* const words = pango_layout_get_text(text.get());
    PangoRectangle place;
    pango_layout_index_to_pos(text.get(), static_cast<int>(strchr(words, character) - words),
                              &place);
    return place.x;
}

TEST_F(SettingsPages, KeepAPathInASentenceFromRightToLeftInItsOwnDirection) {
    MenuLook look = PanelContent().look;
    look.mirrored = true;
    for (const char* words : {"~Gox  (مفقود)", "لا يوجد مجلد \"~Gox\""}) {
        const TextLayout text = paragraph(look, words, 12, false, 0);
        EXPECT_LT(place_of(text, '~'), place_of(text, 'G')) << words;
        EXPECT_LT(place_of(text, 'G'), place_of(text, 'x')) << words;
    }
}

TEST_F(SettingsPages, KeepEveryByteOfATypedTextAtItsPlace) {
    MenuLook look = PanelContent().look;
    look.mirrored = true;
    const char* const typed = "~/مجلد";
    EXPECT_STREQ(pango_layout_get_text(typed_text(look, typed, 12).get()), typed);
}

TEST_F(SettingsPages, OfferOnlyTheButtonsThatDoSomething) {
    const PanelContent empty = settings_content(view_with_list({}));
    for (const int item : {separator_item, remove_item, up_item, down_item}) {
        EXPECT_FALSE(empty.widget(item)->can_be_hit()) << item;
    }
    SettingsView view = view_with_list({"/usr", "/etc"});
    EXPECT_FALSE(settings_content(view).widget(up_item)->can_be_hit());
    EXPECT_TRUE(settings_content(view).widget(down_item)->can_be_hit());
    view.folder = 1;
    EXPECT_TRUE(settings_content(view).widget(up_item)->can_be_hit());
    EXPECT_FALSE(settings_content(view).widget(down_item)->can_be_hit());
}

TEST_F(SettingsPages, AreWalkedByTabAndTheirRowsByTheArrowKeys) {
    const PanelContent content = settings_content(view_of(1));
    EXPECT_EQ(content.item_beside(0, 1), pages_item + 1) << "the page that is shown";
    EXPECT_EQ(content.item_beside(pages_item + 1, 1), settings_item);
    EXPECT_EQ(content.item_beside(settings_item, -1), pages_item + 1);
    EXPECT_EQ(content.row_beside(pages_item + 1, 1), pages_item + 2);
    EXPECT_EQ(content.row_beside(pages_item, -1), pages_item) << "the first stays the first";
    EXPECT_EQ(content.row_beside(settings_item, 1), settings_item) << "no row";
}

TEST(TextEdit, WritesAndRemovesWholeCharacters) {
    TextEdit edit;
    edit.insert("aü日\n");
    EXPECT_EQ(edit.text, "aü日");
    EXPECT_EQ(edit.caret, edit.text.size());
    edit.go_back();
    edit.remove_before();
    EXPECT_EQ(edit.text, "a日");
    edit.remove_after();
    EXPECT_EQ(edit.text, "a");
    edit.remove_after();
    edit.go_to(0);
    edit.remove_before();
    EXPECT_EQ(edit.text, "a");
    edit.insert("é");
    edit.go_on();
    edit.go_on();
    EXPECT_EQ(edit.caret, edit.text.size());
}

TEST(TextEdit, ReplacesWhatIsSelected) {
    TextEdit edit;
    edit.insert("aü日b");
    edit.go_back();
    edit.go_back(true);
    edit.go_back(true);
    EXPECT_EQ(edit.selected(), "ü日");
    edit.insert("x");
    EXPECT_EQ(edit.text, "axb");
    EXPECT_EQ(edit.selected(), "");
    edit.go_to(0, true);
    EXPECT_EQ(edit.selected(), "ax");
    edit.go_on();
    EXPECT_EQ(edit.caret, 2u) << "the end of what was selected";
    edit.go_back(true);
    edit.go_back();
    EXPECT_EQ(edit.caret, 1u) << "its beginning";
    EXPECT_EQ(edit.selected(), "");
    edit.go_on(true);
    edit.remove_before();
    EXPECT_EQ(edit.text, "ab");
    edit.select_all();
    EXPECT_EQ(edit.selected(), "ab");
    edit.remove_after();
    EXPECT_EQ(edit.text, "");
}

}  // namespace
