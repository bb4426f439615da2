// Owners of GLib's texts and objects: the one way in which the platform and its hosts free them.
#pragma once

#include <glib-object.h>

#include <memory>
#include <string>

namespace files {

template <auto release>
struct Release {
    template <typename Thing>
    void operator()(Thing* thing) const {
        release(thing);
    }
};

using TextOwner = std::unique_ptr<char, Release<g_free>>;
using TextsOwner = std::unique_ptr<char*, Release<g_strfreev>>;
using ErrorOwner = std::unique_ptr<GError, Release<g_error_free>>;
using KeyFileOwner = std::unique_ptr<GKeyFile, Release<g_key_file_free>>;
using VariantOwner = std::unique_ptr<GVariant, Release<g_variant_unref>>;
template <typename Object>
using ObjectOwner = std::unique_ptr<Object, Release<g_object_unref>>;

// Copies GLib's text and frees it; empty for null.
inline std::string taken_text(char* text) {
    const TextOwner owner(text);
    return owner ? owner.get() : "";
}

// The place where a call leaves its error. place() clears it for each call.
class ErrorPlace {
  public:
    ErrorPlace() = default;
    ~ErrorPlace() { g_clear_error(&error_); }
    ErrorPlace(const ErrorPlace&) = delete;
    ErrorPlace& operator=(const ErrorPlace&) = delete;

    GError** place() {
        g_clear_error(&error_);
        return &error_;
    }
    GError* get() const { return error_; }

  private:
    GError* error_ = nullptr;
};

}  // namespace files
