// Owners of what GLib hands out.
#pragma once

#include <glib-object.h>

#include <memory>

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
template <typename Object>
using ObjectOwner = std::unique_ptr<Object, Release<g_object_unref>>;

}  // namespace files
