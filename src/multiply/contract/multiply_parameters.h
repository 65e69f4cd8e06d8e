#pragma once
// What every multiplication is handed.

#include "parallel/tasks/parallel_framework.h"

#include <cstddef>

namespace zvp {

class MultiplyTables;
class StatusNode;

/// The context, the shared tables and the working memory of one multiplication. Copied freely; owns nothing.
struct MultiplyParameters : ParallelContext {
    StatusNode* status = nullptr;           // null but in the single outermost call
    const MultiplyTables* tables = nullptr; // built for the largest product that will come
    std::byte* M = nullptr;                 // scratch, aligned to 64 bytes
    std::size_t ML = 0;                     // its size in bytes
};

} // namespace zvp
