#include "appkit/file_details.h"

#include <host/glib_owners.h>
#include <gio/gio.h>
#include <locale.h>
#include <sys/stat.h>

#include <memory>

#include "corefoundation/patient_stat.h"

namespace {

// A disk that has fallen silent since the picture was made does not hold up the menu.
const double patience = 0.2;

// While it lives, this thread writes numbers and dates as the user's locale does. The program,
// which is not ours, keeps its own.
class InUsersLocale {
  public:
    InUsersLocale() : before_(locale() ? uselocale(locale()) : nullptr) {}
    ~InUsersLocale() {
        if (before_) uselocale(before_);
    }
    InUsersLocale(const InUsersLocale&) = delete;
    InUsersLocale& operator=(const InUsersLocale&) = delete;

  private:
    // Null when the system does not have it.
    static locale_t locale() {
        static const locale_t users = newlocale(LC_ALL_MASK, "", nullptr);
        return users;
    }

    const locale_t before_;
};

std::string kind_of(const std::string& path) {
    const std::string type = files::taken_text(
        g_content_type_guess(path.substr(path.rfind('/') + 1).c_str(), nullptr, 0, nullptr));
    return files::taken_text(g_content_type_get_description(type.c_str()));
}

std::string date_text(time_t when) {
    const std::unique_ptr<GDateTime, files::Release<g_date_time_unref>> time(
        g_date_time_new_from_unix_local(when));
    return time ? files::taken_text(g_date_time_format(time.get(), "%-e %b %Y, %H:%M")) : "";
}

}  // namespace

FileDetails details_of_file(const std::string& path) {
    FileDetails details = {files::taken_text(g_filename_display_basename(path.c_str())), {}};
    const std::optional<struct stat> status = files::patient_stat(path, patience);
    if (!status) return details;
    const InUsersLocale here;
    const auto size = static_cast<guint64>(status->st_size);
    details.rest = {kind_of(path), files::taken_text(g_format_size(size)),
                    date_text(status->st_mtime)};
    return details;
}

std::vector<std::string> rest_that_fits(
    std::vector<std::string> rest,
    const std::function<bool(const std::vector<std::string>&)>& fits) {
    while (!rest.empty() && !fits(rest)) rest.pop_back();
    return rest;
}
