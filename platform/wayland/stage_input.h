// Hands what the compositor of a Wayland session tells to the popup as events, like the X server's.
// Without a stage it does nothing. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <memory>

#include "wayland/menu_stage.h"

@class StageWatcher;

class StageInput {
  public:
    // Serves the stage in this mode of the run loop. Events beside the popup get its root window.
    StageInput(std::unique_ptr<MenuStage> stage, NSString* mode);
    ~StageInput();
    StageInput(const StageInput&) = delete;
    StageInput& operator=(const StageInput&) = delete;

    // Puts what has come in the application's queue, once the root level's window is known.
    void begin(NSWindow* root);
    // The pointer's place in the server's pixels, as far as the stage knows it.
    std::optional<StagePlace> pointer() const;
    // Whether a button is held whose press was on the stage or on a window that stands on it.
    bool has_button() const;
    // Gives the keyboard and the screens back.
    void end();
    // The same, but only once a drag has begun with the button that is held, or none begins: see
    // kept_stage.h. Until then the menu's windows stay, too.
    void end_after_drag(NSArray* windows);

    // Called by the watcher.
    void take_events();

  private:
    void post(const StageEvent& event) const;

    std::unique_ptr<MenuStage> stage_;
    StageWatcher* watcher_ = nil;  // retained
    NSWindow* root_ = nil;         // retained
};
