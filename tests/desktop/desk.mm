#include "desktop/desk.h"

#include <host/menu_tracking.h>

#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "finderkit/finder_events.h"
#include "finderkit/plug_in.h"
#include "menus/menu_run.h"
#include "support/app.h"

namespace test {

namespace {

const std::string domain = "org.delvio.Delvio";

std::string log_path() { return std::string(getenv("HOME")) + "/Library/Logs/Delvio.log"; }

const MenuLevel* shown_level(size_t level) {
    MenuRun* run = MenuRun::current();
    if (!run || level >= run->levels().size()) return nullptr;
    const MenuLevel* shown = run->levels()[level].get();
    return shown->is_shown() ? shown : nullptr;
}

std::string title_of(NSMenuItem* item) {
    return [item isSeparatorItem] ? "-" : std::string([[item title] UTF8String] ?: "");
}

const std::vector<MenuRow>& rows_of(const MenuLevel* level) { return level->layout().rows(); }

}  // namespace

std::unique_ptr<RecordingProgram> Desk::program_;

void Desk::SetUpTestSuite() {
    if (program_) return;
    program_ = std::make_unique<RecordingProgram>(
        std::vector<std::string>{"text/plain", "inode/directory", "application/x-zerosize"});
    std::filesystem::create_directories(std::filesystem::path(log_path()).parent_path());
    start_application();
    std::string problem;
    ASSERT_TRUE(answer_finder_events(&problem)) << problem;
    ASSERT_TRUE(load_plug_in(DELVIO_BUNDLE, &problem)) << problem;
}

Desk::Desk() : pool_([NSAutoreleasePool new]), window_([FileWindow new]), steps_(new Steps) {
    program_->forget();
}

Desk::~Desk() {
    input_.let_go();
    [window_ release];
    [pool_ release];
}

void Desk::right_click() {
    input_.move(300, 350);
    input_.click(3);
}

void Desk::pop_up(const std::function<void(Steps&)>& within) {
    const int before = [window_ popups];
    steps_ = std::make_unique<Steps>();
    steps_->when(
        "the window", [] { return true; }, [this] { right_click(); });
    within(*steps_);
    steps_->when("the menu's end", [this, before] { return [window_ popups] > before; });
    steps_->run();
}

void Desk::hover_along(Steps& steps, const Titles& path) {
    for (size_t level = 0; level < path.size(); level++) {
        steps.when(
            "the level of " + path[level], [this, level] { return is_open(level); },
            [this, title = path[level]] { hover(title); });
    }
}

Desk::Titles Desk::walk(const Titles& path) {
    Titles shown;
    pop_up([&](Steps& steps) {
        hover_along(steps, path);
        steps.when(
            "the last level", [&] { return is_open(path.size()); },
            [&] {
                shown = titles(path.size());
                escape();
            });
    });
    return shown;
}

void Desk::pick(const Titles& path) {
    pop_up([&](Steps& steps) {
        hover_along(steps, {path.begin(), path.end() - 1});
        steps.when(
            "the level of " + path.back(), [&] { return is_open(path.size() - 1); },
            [&] { click(path.back()); });
    });
}

bool Desk::is_open(size_t level) const {
    const MenuLevel* shown = shown_level(level);
    return shown && !rows_of(shown).empty();
}

Desk::Titles Desk::titles(size_t level) const {
    Titles names;
    if (const MenuLevel* shown = shown_level(level)) {
        for (const auto& row : rows_of(shown)) names.push_back(title_of(row.item));
    }
    return names;
}

std::string Desk::highlighted(size_t level) const {
    const MenuLevel* shown = shown_level(level);
    if (!shown) return "";
    return title_of([[MenuSession current] highlightedItemOfMenu:shown->menu()]);
}

namespace {

// The row with this title, in the deepest level that shows it.
bool find_row(const std::string& title, NSMenuItem** item, Area* area) {
    MenuRun* run = MenuRun::current();
    for (size_t level = run ? run->levels().size() : 0; level-- > 0;) {
        const MenuLevel* shown = shown_level(level);
        const auto& rows = shown ? rows_of(shown) : std::vector<MenuRow>();
        for (size_t row = 0; row < rows.size(); row++) {
            if (title_of(rows[row].item) != title) continue;
            *item = rows[row].item;
            *area = shown->row_area(static_cast<int>(row));
            return true;
        }
    }
    ADD_FAILURE() << "no row shows " << title;
    return false;
}

}  // namespace

NSMenuItem* Desk::item(const std::string& title) const {
    NSMenuItem* item = nil;
    Area area = {};
    find_row(title, &item, &area);
    return item;
}

bool Desk::is_on_screen(const std::string& title) const {
    NSMenuItem* item = nil;
    Area area = {};
    const NSRect screen = [[NSScreen mainScreen] frame];
    return find_row(title, &item, &area) && area.top >= 0 && area.bottom() <= NSHeight(screen);
}

void Desk::hover(const std::string& title) {
    NSMenuItem* item = nil;
    Area area = {};
    if (find_row(title, &item, &area)) {
        input_.move(area.left + area.width / 2, area.top + area.height / 2);
    }
}

void Desk::click(const std::string& title) {
    hover(title);
    input_.click(1);
}

int Desk::count_messages(const std::string& message) const {
    const auto& all = messages();
    return static_cast<int>(std::count(all.begin(), all.end(), message));
}

void Desk::set_preference(const std::string& key, const std::string& value) {
    const pid_t child = fork();
    if (child == 0) {
        execlp("defaults", "defaults", "write", domain.c_str(), key.c_str(), value.c_str(),
               static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0) << "defaults write " << key;
}

Desk::Titles Desk::log_lines(const std::string& beginning) {
    fflush(nullptr);
    Titles lines;
    std::istringstream log(read_file(log_path()));
    for (std::string line; std::getline(log, line);) {
        if (line.compare(0, beginning.size(), beginning) == 0) lines.push_back(line);
    }
    return lines;
}

}  // namespace test
