#include "functions/iteration_status.h"

#include "app/console/number_forms.h"
#include "multiply/words/word_types.h"

namespace zvp {

void IterationStatus::show(const char* label, std::size_t words) {
    if (!node) return;
    clear();
    node->push_cell({'w', label});
    node->push_cell({'w', format_bytes(words * sizeof(wtype))});
    cells = 2;
    node->update();
}

void IterationStatus::clear() {
    if (cells > 0) node->pop_frame({{}, cells});
    cells = 0;
}

} // namespace zvp
