// The desktop's list of recently used documents, "recently-used.xbel". Main thread.
#pragma once

#include <string>
#include <vector>

namespace files {

// The newest files that an application has opened, newest first, as "file:" addresses. `identifier`
// is the name of the application's desktop entry, or the identifier of its bundle. The list knows
// an application by the name and command that it has registered with. A list that is damaged, or
// larger than 8 MiB, has no documents.
std::vector<std::string> recent_documents(const std::string& identifier, size_t most);

}  // namespace files
