// The function of the library in `bridge` that the platform calls, by its name.
#pragma once

#include <functional>
#include <string>

#include "accessibility/open_menus.h"

typedef struct _GMainContext GMainContext;

// Shows the open menus to assistive technology, from the moment at which its bus has answered.
class ReaderBridge {
  public:
    virtual ~ReaderBridge() = default;
    // The open menus may have changed.
    virtual void menus_changed() = 0;
    // Whether its bus has gone, so that another bridge is needed.
    virtual bool is_closed() const = 0;
};

// Connects to the bus at this address without waiting for it. All work is done in `context`, which
// the main thread serves.
using OpenReaderBridge = ReaderBridge* (*)(OpenMenus& menus, const std::string& address,
                                           GMainContext* context);
constexpr const char* open_reader_bridge_name = "delvio_open_reader_bridge";
