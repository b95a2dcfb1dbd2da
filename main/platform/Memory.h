#pragma once

namespace memory {

// Hands the allocator's free pages back to the system. After a large part of the app has gone (the
// panel's window, scene and engine), glibc keeps what they freed, scattered among live blocks, as
// the process's own until asked.
void returnFreePages();

} // namespace memory
