#include "finderkit/settings_file.h"

#include "corefoundation/defaults_file.h"

std::string settings_problem() {
    DefaultsFile file(@(settings_domain));
    return file.refresh() ? "" : "the settings in " + file.path() + " cannot be read";
}
