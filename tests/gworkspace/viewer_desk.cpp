#include "gworkspace/viewer_desk.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace test {

std::unique_ptr<TempFolder> ViewerDesk::folder_;
std::unique_ptr<RecordingProgram> ViewerDesk::program_;
std::unique_ptr<FileManager> ViewerDesk::manager_;

namespace {

void fill(TempFolder& folder) {
    std::filesystem::create_directories(std::string(getenv("HOME")) + "/Desktop/pictures/one");
    for (const char* name : {"alpha/one/two/deep.txt", "alpha/one/note.txt", "alpha/readme.txt",
                             "beta/b.txt", "first.txt", "second.txt", "third.txt"}) {
        folder.file(name, name);
    }
}

}  // namespace

void ViewerDesk::SetUpTestSuite() {
    folder_ = std::make_unique<TempFolder>();
    fill(*folder_);
    program_ = std::make_unique<RecordingProgram>(
        std::vector<std::string>{"text/plain", "application/x-zerosize"});
    start_window_manager();
}

void ViewerDesk::start_manager() { manager_ = std::make_unique<FileManager>(folder_->path()); }

void ViewerDesk::TearDownTestSuite() {
    manager_.reset();
    program_.reset();
    folder_.reset();
}

ViewerDesk::ViewerDesk() { program_->forget(); }

void ViewerDesk::SetUp() {
    if (!manager_) start_manager();
    ASSERT_TRUE(manager_->is_running()) << manager_->account();
}

void ViewerDesk::TearDown() {
    input_.let_go();
    EXPECT_TRUE(manager_->is_running()) << manager_->account();
    EXPECT_TRUE(is_closed()) << "a menu is still open";
    EXPECT_EQ(manager_->ask("idle"), "yes") << manager_->ask("alert");
    if (HasFailure()) manager_.reset();
}

ViewerDesk::~ViewerDesk() { input_.let_go(); }

void ViewerDesk::show(const std::string& kind) {
    manager().ask("show " + kind);
    EXPECT_TRUE(wait_until([&] { return manager().ask_area("bounds " + kind).width > 0; })) << kind;
}

Area ViewerDesk::item(const std::string& kind, const std::string& path) {
    const Area area = manager().settled_area("item " + kind + " " + path);
    EXPECT_TRUE(static_cast<bool>(area)) << kind << " shows no " << path;
    return area;
}

Area ViewerDesk::ground(const std::string& kind) {
    const Area area = manager().settled_area("ground " + kind);
    EXPECT_TRUE(static_cast<bool>(area)) << kind << " has no ground";
    return area;
}

void ViewerDesk::left_click(const Area& area) {
    move_to(area);
    input_.click(1);
}

void ViewerDesk::select(const std::string& kind, const Lines& paths) {
    for (size_t i = 0; i < paths.size(); i++) {
        const Area area = item(kind, paths[i]);
        if (i == 1) input_.key_down("Shift_L");
        left_click(area);
        EXPECT_TRUE(wait_until([&] { return selection().size() == i + 1; }))
            << paths[i] << ": " << manager().ask("selection");
    }
    if (paths.size() > 1) input_.key_up("Shift_L");
    EXPECT_TRUE(contains(selection(), paths.front()));
}

void ViewerDesk::right_click(const Area& area) {
    move_to(area);
    input_.click(3);
    EXPECT_TRUE(wait_until([&] { return is_open(0); })) << "no menu\n" << manager().situation();
}

void ViewerDesk::close_menu() {
    input_.key("Escape");
    EXPECT_TRUE(wait_until([&] { return is_closed(); })) << "the menu stays";
}

bool ViewerDesk::is_open(size_t level) const {
    return atoi(manager().ask("menus").c_str()) > static_cast<int>(level);
}

std::vector<Row> ViewerDesk::rows(size_t level) const {
    std::vector<Row> rows;
    for (const std::string& line : manager().ask_lines("rows " + std::to_string(level))) {
        Row row;
        std::istringstream words(line);
        words >> row.area.left >> row.area.top >> row.area.width >> row.area.height >>
            row.enabled >> row.has_submenu >> std::ws;
        std::getline(words, row.title);
        rows.push_back(row);
    }
    return rows;
}

Lines ViewerDesk::titles(size_t level) const {
    Lines titles;
    for (const Row& row : rows(level)) titles.push_back(row.title);
    return titles;
}

Row ViewerDesk::row(size_t level, const std::string& title) const {
    for (const Row& row : rows(level)) {
        if (row.title == title) return row;
    }
    ADD_FAILURE() << "level " << level << " has no row " << title;
    return {};
}

void ViewerDesk::hover_along(const Lines& titles) {
    for (size_t level = 0; level < titles.size(); level++) {
        ASSERT_TRUE(wait_until([&] { return is_open(level); })) << titles[level];
        move_to(row(level, titles[level]).area);
    }
    EXPECT_TRUE(wait_until([&] { return is_open(titles.size()); })) << "nothing opens";
}

void ViewerDesk::pick(const Lines& titles) {
    if (titles.size() > 1) hover_along({titles.begin(), titles.end() - 1});
    const Area area = row(titles.size() - 1, titles.back()).area;
    ASSERT_TRUE(static_cast<bool>(area));
    move_to(area);
    input_.click(1);
    EXPECT_TRUE(wait_until([&] { return is_closed(); })) << "the menu stays";
}

void ViewerDesk::pick_with_key(const Lines& way, const std::string& row, const std::string& key) {
    hover_along(way);
    input_.key_down(key);
    EXPECT_TRUE(wait_until([&] { return contains(titles(way.size()), row); })) << row;
    left_click(this->row(way.size(), row).area);
    EXPECT_TRUE(wait_until([&] { return is_closed(); }));
    input_.key_up(key);
}

void ViewerDesk::click_at(const std::string& question) {
    std::string place;
    ASSERT_TRUE(wait_until([&] { return !(place = manager().ask(question)).empty(); })) << question;
    int x = 0, y = 0;
    std::istringstream(place) >> x >> y;
    input_.move(x, y);
    input_.click(1);
}

void ViewerDesk::answer(const std::string& question) { Answer(manager(), input_, question); }

void Answer(const FileManager& manager, XInput& hand, const std::string& question) {
    const auto asks = [&] { return manager.ask("question").find(question) != std::string::npos; };
    ASSERT_TRUE(wait_until(asks)) << question << " is not asked, but " << manager.ask("alert");
    hand.key("Return");
    EXPECT_TRUE(wait_until([&] { return !asks(); })) << question << " stays";
}

bool contains(const Lines& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

}  // namespace test
