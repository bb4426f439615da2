// The address sanitizer's library asks for a translated message before it is ready. The C library's
// lock for translations is then released once too often, and the first new text domain would wait
// for ever.
extern "C" {

char* bindtextdomain(const char*, const char* folder) { return const_cast<char*>(folder); }

char* bind_textdomain_codeset(const char*, const char* codeset) {
    return const_cast<char*>(codeset);
}
}
