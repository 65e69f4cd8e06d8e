#include "numbers/transforms/transform_helper.h"

#include "app/failure/exceptions.h"
#include "multiply/contract/check_buffers.h"
#include "multiply/tables/algorithm_table.h"

namespace zvp {

TransformHelper::TransformHelper(const MultiplyParameters& pars, std::uint64_t length, std::size_t forms)
    : first(pars.M), inner(pars) {
    static constexpr const char* function = "TransformHelper::TransformHelper()";
    const Transform& tr = algorithm_table<wtype>().get_algorithm(length).params(object, length, pars.tds);
    check_tables(function, tr, pars.tables, pars.M);
    const std::uint64_t form_bytes = forms * tr.transform_bytes;
    if (pars.ML < form_bytes + tr.scratch_bytes)
        throw BufferTooSmallException(function, pars.ML, form_bytes + tr.scratch_bytes);
    DryRun::reach(pars.M + form_bytes + tr.scratch_bytes);
    inner.M += form_bytes;
    inner.ML -= form_bytes;
    inner.status = nullptr;
}

} // namespace zvp
