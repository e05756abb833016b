#pragma once

#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace PathManagement {

/// Calls `body(i)` for each i below `count`, by several threads, and returns when all is done. The calling thread is
/// given no other work meanwhile: a host may call from a task of its own, with a lock that its other tasks want.
template <class Index, class Body>
void ForEachSideBySide(Index count, const Body& body) {
    tbb::this_task_arena::isolate([&] { tbb::parallel_for(Index{0}, count, body); });
}

} // namespace PathManagement
