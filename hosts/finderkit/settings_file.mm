#include "finderkit/settings_file.h"

#include <host/text.h>

#include "corefoundation/defaults_file.h"

std::string settings_problem() {
    DefaultsFile file(@(settings_domain));
    return file.refresh() ? "" : translated("the settings in %s cannot be read", {file.path()});
}
