// process_fork.h: what a forked child must not inherit.
#pragma once

namespace pim_store {

// Counts the forks that lie between this process and the one that loaded the library. SQLite connections, shared memory
// and locks belong to the process that made them: who keeps some beside this number abandons them, unclosed and
// untouched, when the number has changed.
unsigned fork_generation();

} // namespace pim_store
