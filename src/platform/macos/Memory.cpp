#include "Memory.h"

#include <malloc/malloc.h>

namespace murmeli::memory {

void giveBack() { malloc_zone_pressure_relief(nullptr, 0); }

void rest() { giveBack(); } // clean pages are the system's to drop

void readAhead() {} // what is in the bundle was read when it was checked

} // namespace murmeli::memory
