// The stage of a menu that has closed while a button was held whose press the menu did not take. A
// drag out of the menu begins with that button. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <memory>

#include "wayland/menu_stage.h"

// A stage and the windows that stand on it. Destroyed, it closes them.
struct KeptStage {
    std::unique_ptr<MenuStage> stage;
    NSArray* windows = nil;  // retained

    KeptStage() = default;
    KeptStage(std::unique_ptr<MenuStage> stage, NSArray* windows);
    ~KeptStage();
    void close_windows();
    KeptStage(const KeptStage&) = delete;
    KeptStage& operator=(const KeptStage&) = delete;
};

// Keeps the stage until it is taken or the button is up, a few seconds at most.
void keep_stage(std::unique_ptr<MenuStage> stage, NSArray* windows);
// Null without one, or when the button is up.
std::unique_ptr<KeptStage> take_kept_stage();
// Tells what the stage knows of the pointer to all who ask where it is.
void tell_pointer_of(const MenuStage& stage);
