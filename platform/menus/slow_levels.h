// Submenus of folders whose disks may not answer. The delegate fills a level in one call that waits
// for the disk, so that call is made only after the folder has answered on another thread. Until
// then a level with one disabled row stands in the submenu's place. Main thread.
#pragma once

#include <memory>

#include "corefoundation/folder_question.h"
#include "events/deadline.h"
#include "menus/menu_session.h"

class SlowLevels {
  public:
    explicit SlowLevels(MenuSession* session) : session_(session) {}
    ~SlowLevels();
    SlowLevels(const SlowLevels&) = delete;
    SlowLevels& operator=(const SlowLevels&) = delete;

    // Whether the item's submenu can be opened now. Otherwise it is opened when its folder answers,
    // if the item is still highlighted then.
    bool may_open(NSMenuItem* item);

    double due() const { return timer_.due; }
    // Called when due() has come.
    void run_timer();

  private:
    bool is_awaited() const;
    void show_stand_in();
    void open();
    void forget();

    MenuSession* session_;    // not retained
    NSMenuItem* item_ = nil;  // retained, as is the stand-in
    NSMenu* stand_in_ = nil;
    std::shared_ptr<files::FolderQuestion> question_;
    double asked_ = 0;
    int looks_ = 0;  // for the answer
    bool is_allowed_ = false;
    Deadline timer_;
};
