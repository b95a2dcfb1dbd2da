#include "Memory.h"

#include <cstdlib> // says which C library this is

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace memory {

void returnFreePages()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace memory
