#include "finderkit/settings_file.h"

#include <host/text.h>

#include "corefoundation/defaults_file.h"

std::string settings_problem() {
    DefaultsFile file(@(settings_domain));
    return file.refresh() ? "" : translated("the settings in %s cannot be read", {file.path()});
}

std::string settings_folder() {
    const std::string path = DefaultsFile(@(settings_domain)).path();
    return path.substr(0, path.rfind('/'));
}
