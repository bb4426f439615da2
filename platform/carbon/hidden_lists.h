// The `.hidden` list that a folder may hold: names, one a line, that file managers do not show.
#pragma once

namespace files {

struct File;

// Whether the file's folder lists its name. The list of one folder is kept while all questions are
// about that folder, but no longer than a moment. Only a plain file of reasonable size is read.
bool is_listed_hidden(const File& file);

}  // namespace files
