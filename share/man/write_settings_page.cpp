// Writes the manual page of the settings from their table: write_settings_page FILE
#include <fstream>
#include <iostream>

#include "settings/settings_table.h"

namespace {

const char* const head = R"(.TH DELVIO 5 "" "Delvio" "File Formats"
.SH NAME
delvio \- the settings of Delvio
.SH DESCRIPTION
The settings are kept in the defaults domain
.B org.delvio.Delvio
of GNUstep. They are read before each menu, so a change takes effect with the next one.
.PP
.nf
\fBdelvio settings list\fR
\fBdelvio settings set\fR \fIKEY VALUE\fR...
\fBdelvio settings add\fR | \fBremove\fR \fIKEY VALUE\fR...
\fBdelvio settings reset\fR \fIKEY\fR...
.fi
.PP
\fBdelvio menu \-\-setting\fR \fIKEY=VALUE\fR overrides a setting for one run.
A flag is 0 or 1; on, off, yes, no, true and false are taken too.
.SH SETTINGS
)";

const char* const foot = R"(.SH FILES
.TP
.I ~/GNUstep/Defaults/org.delvio.Delvio.plist
The settings that are not at their defaults.
.SH EXAMPLES
.TP
.B delvio settings set sort_order 1
One alphabetical list, from the next menu on.
.TP
.B delvio settings add folders ~/Documents
A folder that is in every menu.
.SH "SEE ALSO"
.BR delvio (1)
)";

// A text in which troff sees nothing of its own.
std::string plain(const std::string& text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '\\') {
            result += "\\e";
        } else {
            result += byte == '-' ? "\\-" : std::string(1, byte);
        }
    }
    return result;
}

std::string default_of(const Setting& setting) {
    if (setting.type == SettingType::word) return setting.words.front();
    return is_numeric(setting) ? std::to_string(setting.standard) : "none";
}

void write(std::ostream& out, const Setting& setting) {
    out << ".TP\n.B " << plain(setting.key) << "\n"
        << plain(setting.meaning) << ".\n.br\nTakes " << plain(describe_bounds(setting))
        << "; by default " << default_of(setting) << ".\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: write_settings_page FILE\n";
        return 2;
    }
    std::ofstream out(argv[1]);
    out << head;
    for (const Setting& setting : settings_table()) write(out, setting);
    out << foot;
    return out.flush() ? 0 : 1;
}
