// Controls mouse and keyboard with real X events through XTest, on its own connection, so that the
// program under test gets them as from a user. Coordinates are pixels from the upper left.
#pragma once

#include <string>
#include <vector>

struct _XDisplay;

namespace test {

class XInput {
  public:
    XInput();
    ~XInput();
    XInput(const XInput&) = delete;
    XInput& operator=(const XInput&) = delete;

    void move(int x, int y);
    // Button 1 left, 2 middle, 3 right, 4 and 5 the wheel.
    void press(int button);
    void release(int button);
    // Press and release reach the server together: however busy the machine is, it is a quick
    // click.
    void click(int button);
    // The server itself waits before the release; the call does not.
    void click_of(int button, unsigned milliseconds);
    // Keys by X name, for example "Shift_L", "Escape", "a"; or by their position.
    void key_down(const std::string& name);
    void key_up(const std::string& name);
    void key(const std::string& name);
    // Sends a window the press of a key by its number, which no key need have.
    void send_key(unsigned long window, unsigned number);
    // Tells a window that it has this size, which it does not.
    void send_size(unsigned long window, int width, int height);
    // A name for the key that has this name now, valid in any other layout.
    std::string place_of(const std::string& name);
    // Puts a key of this name where the keyboard has none yet, and returns its place.
    std::string new_key(const std::string& name);
    // Releases every key and button that is still held.
    void let_go();

    // Whether another program could grab the pointer now; false while a menu holds it.
    bool pointer_is_free();
    bool keyboard_is_free();
    // Gives a window the keyboard, as a click on it can.
    void focus(unsigned long window);
    unsigned long focused() const;
    // A window of another program, shown, until this object dies.
    unsigned long new_window();
    // A number that identifies the cursor that is shown.
    unsigned long cursor();
    // The colour of a pixel of the screen, 0xRRGGBB.
    unsigned long pixel(int x, int y);
    // The colours of an area, row after row, in one question to the server.
    std::vector<unsigned long> pixels(int x, int y, int width, int height);

  private:
    unsigned code(const std::string& name);
    void fake_key(const std::string& name, bool down);
    void fake_button(int button, bool down, unsigned long delay = 0);
    _XDisplay* display_;
    std::string held_keys_;
    unsigned held_buttons_ = 0;
};

}  // namespace test
