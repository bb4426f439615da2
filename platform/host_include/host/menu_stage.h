// For a host without windows: where the pointer is in a Wayland session, and what the next menu of
// this process needs there. Not a Mac interface. Main thread.
#pragma once

#ifdef __cplusplus

// While an object of this class lives, it keeps the compositor's answers for the menu that pops up
// next; that menu takes them over. In an X session it does nothing. Made before the toolkit starts,
// it costs no time: the compositor answers meanwhile.
class PreparedMenuStage {
  public:
    PreparedMenuStage();
    ~PreparedMenuStage();
    PreparedMenuStage(const PreparedMenuStage&) = delete;
    PreparedMenuStage& operator=(const PreparedMenuStage&) = delete;

    // The pointer's place in pixels from the screen's upper left. False where the X server's own
    // answer is the best there is. Waits for the compositor, for a moment at most.
    bool pointer(int* x, int* y) const;
};

#endif
