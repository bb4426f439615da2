// About how wide titles are, from the widths of single characters. Laying out a title costs a
// hundred times as much. Main thread.
#pragma once

#include "look/menu_look.h"

@class NSString;

class TitleWidths {
  public:
    explicit TitleWidths(const MenuLook& look);
    // The widths for this look; valid until the next call.
    static const TitleWidths& of(const MenuLook& look);

    // In pixels. A few percent off for Latin letters without accents, more for others.
    double estimate(NSString* title) const;

  private:
    static constexpr unsigned characters = 0x80;

    bool is_for(const MenuLook& look) const;
    double width(unsigned character) const;

    MenuLook look_;
    double widths_[characters] = {};  // of ASCII characters
};
