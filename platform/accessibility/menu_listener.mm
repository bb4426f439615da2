// Follows the open menus and panels, and shows them to assistive technology where some is active.
// Without it, a menu costs two questions to the X server; nothing is loaded, and nothing stays
// connected.
#include <dlfcn.h>

#include <filesystem>
#include <memory>

#include "accessibility/bridge_module.h"
#include "accessibility/reader_bus.h"
#include "accessibility/reader_question.h"
#include "accessibility/served_context.h"
#include "accessibility/shown_menus.h"
#include "menus/menu_presenter.h"
#include "menus/menu_run.h"
#include "panels/shown_panel.h"

namespace {

// The library is beside this one. It stays loaded, as other menus need it again.
void* bridge_library() {
    static void* const library = [] {
        Dl_info here;
        if (!dladdr(reinterpret_cast<const void*>(&bridge_library), &here)) return (void*)nullptr;
        std::error_code error;
        const auto folder = std::filesystem::canonical(here.dli_fname, error).parent_path();
        return dlopen((folder / "libdelvio-accessibility.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    }();
    return library;
}

class MenuListener {
  public:
    void follow() {
        const bool is_open = menus_.levels() > 0;
        if (is_open && !was_open_) look_for_readers();
        was_open_ = is_open;
        if (bridge_) bridge_->menus_changed();
    }

  private:
    void look_for_readers() {
        if (!reader_bus_is_there()) return bridge_.reset();
        if (is_asking_) return;
        is_asking_ = true;
        const ContextScope scope(served_context());
        ask_for_readers([this](const std::string& address) { take_answer(address); });
    }

    void take_answer(const std::string& address) {
        is_asking_ = false;
        if (address.empty()) return bridge_.reset();
        if (bridge_ && !bridge_->is_closed()) return;
        bridge_.reset();
        void* const library = bridge_library();
        if (!library) return;
        const auto open =
            reinterpret_cast<OpenReaderBridge>(dlsym(library, open_reader_bridge_name));
        if (open) bridge_.reset(open(menus_, address, served_context()));
    }

    ShownMenus menus_;
    std::unique_ptr<ReaderBridge> bridge_;
    bool was_open_ = false, is_asking_ = false;
};

}  // namespace

@interface MenuListenerInstaller : NSObject
@end

@implementation MenuListenerInstaller

+ (void)load {
    // It lives as long as the process: its connection may still be in use while the process ends.
    static MenuListener* const listener = new MenuListener;
    add_open_levels_listener([] { listener->follow(); });
    add_panel_listener([] { listener->follow(); });
}

@end
