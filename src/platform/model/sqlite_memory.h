#pragma once

namespace tavimodel::sqlite {

/// Gives SQLite its memory from pools of small blocks. To read a schema takes it thousands of them,
/// most for a moment, and the general allocator was a sixth of what a short command costs. To be
/// called before anything else of SQLite's. Under the sanitizers it does nothing, so that they see
/// each block.
void useMemoryPools();

}  // namespace tavimodel::sqlite
