#include "search_path/Module.h"

namespace PathManagement {

void initializeFcn() {}

void terminateFcn() {}

} // namespace PathManagement
