// What the compositor of a Wayland session must be asked for so that a menu made of X windows works
// there: the pointer's place before any X window has it, the keys, the pointer's events, and drags
// to programs that are not the X server's. One object serves one menu. Main thread, except for
// stage_symbols().
#pragma once

#include <stdint.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Pixels of the X screen.
struct StagePlace {
    int x, y;
};

// One event that the compositor gave to the stage and not to the menu's X windows.
struct StageEvent {
    enum Kind { key_down, key_up, pointer_moved, button_down, button_up, wheel_turned };
    Kind kind = key_down;
    StagePlace at = {};     // of the pointer
    int button = 0;         // 1 left, 2 middle, 3 right; of a motion, one that is held, or 0
    double steps = 0;       // of the wheel, upwards
    uint32_t symbol = 0;    // the X key symbol
    std::string text = {};  // what the key types
    bool repeats = false;   // because the key is held
};

// Files on their way out of a menu.
struct StageDrag {
    std::string uri_list;  // lines that end in CR LF
    int width = 0, height = 0;
    std::vector<uint32_t> pixels = {};  // of the picture: premultiplied ARGB, from the upper left
    StagePlace held_at = {};            // the pointer's place in the picture
};

class MenuStage {
  public:
    virtual ~MenuStage() = default;
    MenuStage(const MenuStage&) = delete;
    MenuStage& operator=(const MenuStage&) = delete;

    // Readable when read() has something to do.
    virtual int descriptor() const = 0;
    // Takes what has arrived, without waiting. False once the compositor has gone.
    virtual bool read() = 0;
    // The next event that read() has taken. Those from before the menu are kept for it.
    virtual std::optional<StageEvent> next_event() = 0;
    // The pointer's place as far as the compositor has told it.
    virtual std::optional<StagePlace> pointer() const = 0;
    // The menu's windows are shown, and the toolkit has given them the X server's keyboard.
    virtual void menu_is_open() {}
    // Whether the compositor gives the pointer to the stage now, so that the X server does not know
    // where it is.
    virtual bool has_pointer() const { return false; }
    // The buttons that were pressed on the stage and are held, as XQueryPointer tells them.
    virtual unsigned buttons() const { return 0; }

    // Makes the held button drag this, through the compositor, and uncovers the screens. False when
    // the compositor does not do so; the X server's own drags are left then.
    virtual bool begin_drag(const StageDrag& drag) {
        (void)drag;
        return false;
    }
    // `dropped` on a program that has asked for nothing since; `fetched` by one that has, and has
    // not said that it is done, which some never say.
    enum DragState { no_drag, carried, dropped, fetched, taken, given_up };
    virtual DragState drag_state() const { return no_drag; }

    // How many seconds a menu waits for the pointer's place. A compositor answers within a few
    // milliseconds, a busy one within some frames.
    virtual double longest_wait() const { return 0.5; }
    // Waits for the pointer's place, `seconds` at most.
    std::optional<StagePlace> wait_for_pointer(double seconds);

  protected:
    MenuStage() = default;
};

// Opens a stage on the compositor that the environment names and covers its screens. Null where the
// X server is not part of a Wayland session: nothing is loaded then.
std::unique_ptr<MenuStage> open_menu_stage();

// The symbols of the keys that the open stage knows to be held: X programs do not see these keys.
// Any thread.
std::vector<uint32_t> stage_symbols();
// For stages: an empty list when the stage closes.
void set_stage_symbols(std::vector<uint32_t> symbols);
