#include <host/text.h>

#include <dlfcn.h>
#include <libintl.h>
#include <limits.h>
#include <locale.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace {

constexpr const char* domain = "delvio";
// How far above the programs and libraries the folder "share" is at most.
constexpr int most_steps = 5;

// The folder of the catalogues: "share/locale" in a folder above this library or program, in an
// installation as in a build.
std::string catalogue_folder() {
    Dl_info own;
    if (!dladdr(reinterpret_cast<const void*>(&catalogue_folder), &own)) return {};
    char real[PATH_MAX];
    if (!realpath(own.dli_fname, real) && !realpath("/proc/self/exe", real)) return {};
    std::string folder = real;
    for (int step = 0; step < most_steps && !folder.empty(); step++) {
        folder.resize(folder.rfind('/'));
        const std::string found = folder + "/share/locale";
        if (access((found + "/de/LC_MESSAGES/delvio.mo").c_str(), R_OK) == 0) return found;
    }
    return {};
}

// The user's locale for messages alone, null when the system does not have it. It belongs to this
// file and is used for one call at a time: programs that load Delvio keep their own.
locale_t message_locale() {
    static const locale_t locale = [] {
        const std::string folder = catalogue_folder();
        if (!folder.empty()) bindtextdomain(domain, folder.c_str());
        bind_textdomain_codeset(domain, "UTF-8");
        return newlocale(LC_CTYPE_MASK | LC_MESSAGES_MASK, "", nullptr);
    }();
    return locale;
}

class InMessageLocale {
  public:
    InMessageLocale() : before_(message_locale() ? uselocale(message_locale()) : nullptr) {}
    ~InMessageLocale() {
        if (before_) uselocale(before_);
    }
    InMessageLocale(const InMessageLocale&) = delete;
    InMessageLocale& operator=(const InMessageLocale&) = delete;

  private:
    const locale_t before_;
};

// Reads the directive after a percent sign: "s" or "2$s". Returns its length, or 0.
size_t read_directive(const char* at, size_t* number) {
    const size_t digits = strspn(at, "0123456789");
    if (digits == 0) return *at == 's' ? 1 : 0;
    if (digits > 2 || at[digits] != '$' || at[digits + 1] != 's') return 0;
    *number = strtoul(at, nullptr, 10) - 1;
    return digits + 2;
}

}  // namespace

const char* translated(const char* english) {
    const InMessageLocale here;
    return dgettext(domain, english);
}

const char* translated_count(const char* one, const char* many, unsigned long number) {
    const InMessageLocale here;
    return dngettext(domain, one, many, number);
}

std::string filled(const char* format, std::initializer_list<std::string> words) {
    std::string text;
    size_t next = 0;
    while (const char* percent = strchr(format, '%')) {
        text.append(format, percent);
        format = percent + 1;
        size_t number = next;
        const size_t length = read_directive(format, &number);
        if (length > 0 && number < words.size()) {
            text += words.begin()[number];
            next = number + 1;
            format += length;
        } else {
            text += '%';
            if (*format == '%') format++;
        }
    }
    return text + format;
}

std::string translated(const char* english, std::initializer_list<std::string> words) {
    return filled(translated(english), words);
}

std::string translated_count(const char* one, const char* many, unsigned long number,
                             std::initializer_list<std::string> words) {
    return filled(translated_count(one, many, number), words);
}

std::string error_text(int error) {
    const locale_t locale = message_locale();
    return locale ? strerror_l(error, locale) : strerror(error);
}

bool text_is_mirrored() {
    // Translators: "right-to-left" for a script that runs so, such as Arabic. Nobody reads this.
    static const bool mirrored = strcmp(translated("left-to-right"), "right-to-left") == 0;
    return mirrored;
}
