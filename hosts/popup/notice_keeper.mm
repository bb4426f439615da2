#include "popup/notice_keeper.h"

#include <host/glib_owners.h>
#include <host/text.h>

#include <AppKit/AppKit.h>
#include <gio/gio.h>

#include "command/command_line.h"
#include "command/home_folder.h"
#include "command/private_display.h"
#include "finderkit/session_bus.h"
#include "offers/notification.h"
#include "offers/shown_undo.h"
#include "operations/engine.h"
#include "operations_ui/operation_window.h"
#include "popup/application.h"

namespace {

// A desktop that keeps notices for ever does not keep this program for ever.
constexpr unsigned most_seconds = 600;

class Quiet : public operations::Observer {
    void ended(const operations::Report&) override {}
};

// Listens for what becomes of the notice. It sleeps until the bus has something to say.
class NoticeWatch {
  public:
    explicit NoticeWatch(GDBusConnection* bus) : bus_(bus) {
        for (const char* signal : {"ActionInvoked", "NotificationClosed"}) {
            g_dbus_connection_signal_subscribe(bus, notifications_name, notifications_name, signal,
                                               notifications_object, nullptr,
                                               G_DBUS_SIGNAL_FLAGS_NONE, heard, this, nullptr);
        }
        g_signal_connect_swapped(bus, "closed", G_CALLBACK(g_main_loop_quit), loop_);
    }

    // Whether the button of this notice was pressed before the notice has gone.
    bool is_pressed(uint32_t number) {
        number_ = number;
        // By now the bus has started the service.
        g_bus_watch_name_on_connection(bus_, notifications_name, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                       nullptr, vanished, this, nullptr);
        g_timeout_add_seconds(most_seconds, overdue, this);
        g_main_loop_run(loop_);
        return is_pressed_;
    }

  private:
    static void heard(GDBusConnection*, const char*, const char*, const char*, const char* signal,
                      GVariant* arguments, gpointer self) {
        static_cast<NoticeWatch*>(self)->hear(signal, arguments);
    }
    static void vanished(GDBusConnection*, const char*, gpointer self) {
        g_main_loop_quit(static_cast<NoticeWatch*>(self)->loop_);
    }
    static gboolean overdue(gpointer self) {
        const auto watch = static_cast<NoticeWatch*>(self);
        close_notification(watch->bus_, watch->number_);
        g_main_loop_quit(watch->loop_);
        return G_SOURCE_REMOVE;
    }
    void hear(const char* signal, GVariant* arguments) {
        const bool is_action = g_str_equal(signal, "ActionInvoked");
        const char* const type = is_action ? "(us)" : "(uu)";
        if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE(type))) return;
        uint32_t number = 0;
        g_variant_get_child(arguments, 0, "u", &number);
        if (number != number_) return;
        if (is_action) {
            const char* action = nullptr;
            g_variant_get_child(arguments, 1, "&s", &action);
            is_pressed_ = g_str_equal(action, undo_action);
        }
        if (is_pressed_ || !is_action) g_main_loop_quit(loop_);
    }

    GDBusConnection* bus_;
    GMainLoop* loop_ = g_main_loop_new(nullptr, FALSE);  // as long as the program
    uint32_t number_ = 0;
    bool is_pressed_ = false;
};

// Without a display there are no windows.
int undo_quietly(const std::string& operation) {
    Quiet observer;
    const UndoLines lines = lines_of(operations::undo_operation(operation, observer));
    const bool is_done = lines.problems.empty();
    show_notification({translated(is_done ? "Undone" : "This cannot be undone."),
                       message_of(is_done ? lines.done : lines.problems), ""});
    return is_done ? exit_done : exit_failed;
}

int undo(char* program, const std::string& operation) {
    std::string problem;
    if (!ensure_home_folder(&problem) || !display_answers(&problem)) return undo_quietly(operation);
    @autoreleasepool {
        prepare_toolkit(program);
        start_application();
        int status = exit_done;
        // Who has pressed a button of a notice looks for the answer in another one.
        const auto ended = [&](const UndoLines& lines) {
            if (lines.problems.empty()) return true;
            status = exit_failed;
            return !show_notification(
                {translated("This cannot be undone."), message_of(lines.problems), ""});
        };
        undo_with_windows({operation, {}, ended});
        operations::run_until_operations_end();
        return status;
    }
}

}  // namespace

int run_notice_keeper(char* program, const NoticeWords& words) {
    // The connection lives as long as the program.
    const files::ObjectOwner<GDBusConnection> bus = connect_to_session_bus();
    if (!bus) return exit_failed;
    NoticeWatch watch(bus.get());
    const uint32_t number =
        show_notification(bus.get(), {words.summary, words.body, translated("Undo")});
    if (number == 0) return exit_failed;
    return watch.is_pressed(number) ? undo(program, words.operation) : exit_done;
}
