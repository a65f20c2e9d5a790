// How the program keeps memory it has freed.
#pragma once

namespace zolt {

// Keeps up to a few tens of megabytes of freed memory in the process for the next document
// instead of handing it back to the system at once: every transform needs fresh arrays, and
// memory returned and asked for again costs a page fault every 4 KB, about half of a 1-D
// transform's time. Called once at the start of each program.
void keepFreedMemoryForReuse();

}  // namespace zolt
