// With the address sanitizer, whose library asks for a translated message before it is ready, the
// C library's lock of translations is let go once too often, and the first new text domain would
// wait for ever.
extern "C" {

char* bindtextdomain(const char*, const char* folder) { return const_cast<char*>(folder); }

char* bind_textdomain_codeset(const char*, const char* codeset) {
    return const_cast<char*>(codeset);
}
}
