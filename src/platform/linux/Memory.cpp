#include "Memory.h"

#include <malloc.h>

namespace murmeli::memory {

void giveBack() { malloc_trim(0); }

} // namespace murmeli::memory
