#include "Memory.h"

#include <malloc/malloc.h>

namespace murmeli::memory {

void giveBack() { malloc_zone_pressure_relief(nullptr, 0); }

} // namespace murmeli::memory
