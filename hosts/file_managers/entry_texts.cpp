#include "file_managers/entry_texts.h"

namespace {

const char* const comment = "Browse in a menu";

std::string with_percents_doubled(const std::string& text) {
    std::string result;
    for (const char byte : text) result += byte == '%' ? "%%" : std::string(1, byte);
    return result;
}

// A value of a desktop entry, in which a backslash begins an escape.
std::string entry_value(const std::string& text) {
    std::string result;
    for (const char byte : text) result += byte == '\\' ? "\\\\" : std::string(1, byte);
    return result;
}

bool is_plain(const std::string& text) {
    return text.find_first_not_of(
               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
               "/._+-") == std::string::npos;
}

// The command as a word of a desktop entry's Exec line.
std::string exec_word(const std::string& text) {
    if (is_plain(text)) return text;
    std::string quoted = "\"";
    for (const char byte : text) {
        if (std::string("\"`$\\").find(byte) != std::string::npos) quoted += '\\';
        quoted += byte;
    }
    return quoted + "\"";
}

// The command with the code for the files, as an Exec line has it.
std::string exec_line(const Invocation& invocation, const std::string& code) {
    const std::string command = exec_word(with_percents_doubled(invocation.command));
    return entry_value(command + " menu -- " + code);
}

std::string nemo_text(const Invocation& invocation, const std::string& line,
                      const std::string& selection, const std::string& code) {
    return "# " + line + "\n[Nemo Action]\nActive=true\nName=Delvio\nComment=" + comment +
           "\nExec=" + exec_line(invocation, code) + "\nIcon-Name=" + invocation.icon +
           "\nSelection=" + selection + "\nExtensions=any;\nQuote=double\n";
}

}  // namespace

std::string shell_word(const std::string& text) {
    if (is_plain(text)) return text;
    std::string quoted = "'";
    for (const char byte : text) quoted += byte == '\'' ? "'\\''" : std::string(1, byte);
    return quoted + "'";
}

std::string script_text(const Invocation& invocation, const std::string& line) {
    return "#!/bin/sh\n# " + line +
           "\n# The file managers leave what looks like a code, such as %F, out of the arguments, "
           "so\n"
           "# the paths count, unless a name has a line break.\n"
           "count=$#\n[ $count -gt 0 ] || set -- \"$PWD\"\nbrowse() { exec " +
           shell_word(invocation.command) +
           " menu -- \"$@\"; }\n"
           "take_paths() { [ $count -eq 0 ] || [ $# -ne $count ] || browse \"$@\"; }\n"
           "set -f\nIFS='\n'\n"
           "take_paths ${CAJA_SCRIPT_SELECTED_FILE_PATHS:-$NAUTILUS_SCRIPT_SELECTED_FILE_PATHS}\n"
           "browse \"$@\"\n";
}

std::string nemo_files_text(const Invocation& invocation, const std::string& line) {
    return nemo_text(invocation, line, "notnone", "%F");
}

std::string nemo_folder_text(const Invocation& invocation, const std::string& line) {
    return nemo_text(invocation, line, "none", "%P");
}

std::string action_entry_text(const Invocation& invocation, const std::string& line) {
    return "# " + line + "\n[Desktop Entry]\nType=Action\nName=Delvio" +
           "\nIcon=" + invocation.icon +
           "\nTargetContext=true\nTargetLocation=true\nProfiles=files;\n\n"
           "[X-Action-Profile files]\nMimeTypes=all/all;\nExec=" +
           exec_line(invocation, "%F") + "\n";
}

std::string service_menu_text(const Invocation& invocation, const std::string& line) {
    return "# " + line +
           "\n[Desktop Entry]\nType=Service\nServiceTypes=KonqPopupMenu/Plugin\n"
           "X-KDE-ServiceTypes=KonqPopupMenu/Plugin\nMimeType=all/all;inode/directory;\n"
           "X-KDE-Priority=TopLevel\nActions=delvio;\n\n[Desktop Action delvio]\nName=Delvio\n"
           "Icon=" +
           invocation.icon + "\nExec=" + exec_line(invocation, "%F") + "\n";
}
