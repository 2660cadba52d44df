#pragma once

namespace tavimodel::sqlite {

/// Gives SQLite its memory from pools of blocks. To read a schema takes it thousands of small ones,
/// most for a moment, and the general allocator was a sixth of what a short command costs; a tenth
/// were page faults in memory that came a page at a time. To be called before anything else of
/// SQLite's. Under the sanitizers it does nothing, so that they see each block.
void useMemoryPools();

}  // namespace tavimodel::sqlite
