#include "file_steps/request.h"

namespace operations {

void Observer::progressed(const Progress&) {}

Answer Observer::ask(const Conflict&) { return {}; }

bool Observer::is_cancelled() { return false; }

}  // namespace operations
