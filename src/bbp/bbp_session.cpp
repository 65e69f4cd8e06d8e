#include "bbp/bbp_session.h"

#include "app/console/linear_console_status.h"
#include "app/console/number_forms.h"
#include "app/console/run_watch.h"
#include "app/failure/exceptions.h"
#include "bbp/bbp_kernels.h"
#include "bbp/bbp_report.h"
#include "bbp/summation_mode.h"
#include "bbp/threaded_sum.h"
#include "platform/clock.h"
#include "platform/kernel_set.h"
#include "platform/threads.h"

#include <algorithm>

namespace zorvane {

BBPSession::BBPSession()
    : threads(
        std::clamp<std::uint32_t>(static_cast<std::uint32_t>(zvp::platform::usable_cores().size()), 1, max_threads)) {
    update_settings();
}

void BBPSession::update_settings() {
    constexpr std::uint32_t guard_digits = 16;
    precision_digits = digits + guard_digits;
    words = (digits + guard_digits + 7) / 8;
    if (algorithm != 0 && algorithm != 1)
        throw zvp::InvalidParametersException("BBPSession::update_settings()", "Invalid Algorithm");
    const BBPv2::TermCount count = BBPv2::terms_needed(formula(), offset, precision_digits);
    terms = count.terms;
    largest_divisor = count.largest_divisor;

    limit_name = "0";
    limit = 0;
    for (const auto& [enabled, bits] : {std::pair{mode_a, BBPv2::mode_a_bits}, std::pair{mode_b, BBPv2::mode_b_bits}}) {
        if (!enabled) continue;
        limit_name = "2^" + std::to_string(bits) + " - 1";
        limit = (std::uint64_t{1} << bits) - 1;
    }
    mode_c = false;
}

/// Whether the last index of every record is below what the modes take. They leave the index of the limit itself to a
/// next one, which the largest divisor of all records doesn't show.
bool BBPSession::within_modes() const {
    const std::vector<BBPv2::TermRecord> records = BBPv2::term_records(formula(), offset);
    return std::all_of(records.begin(), records.end(),
                       [&](const auto& record) { return terms <= (limit - record.b) / record.a; });
}

bool BBPSession::can_start(std::string& reason) const {
    reason.clear();
    if (!mode_a && !mode_b) {
        reason = "No modes enabled.";
    } else if (largest_divisor > limit) {
        reason = "Divisor exceeds limit of " + limit_name + ".";
    } else if (!within_modes()) {
        reason = "No mode is able to handle this range.";
    }
    return reason.empty();
}

BBPv2::FractionFloat BBPSession::sum_records() const {
    const BBPv2::BBPKernels& kernels = BBPv2::bbp_kernels(zvp::platform::active_kernel_set());
    const BBPv2::ModeA a(kernels);
    const BBPv2::ModeB b(kernels);
    std::vector<const BBPv2::SummationMode*> modes;
    if (mode_a) modes.push_back(&a);
    if (mode_b) modes.push_back(&b);

    zvp::LinearConsoleRoot root;
    BBPv2::FractionFloat total(words);
    for (const BBPv2::TermRecord& record : BBPv2::term_records(formula(), offset)) {
        const zvp::StatusTask task(root, BBPv2::record_text(record));
        zvp::StatusNode& node = task.node.make_node({'w', "Summing...  "});
        node.push_cell({'G', ""});
        node.update(true);
        const auto progress = [&](std::uint64_t done) {
            node.pop_frame({{}, 1});
            const double percent = 100.0 * static_cast<double>(done) / static_cast<double>(terms);
            node.push_cell({'G', zvp::format_fixed(percent, 6) + " %"});
            node.update();
        };
        const BBPv2::FractionFloat sum = BBPv2::sum_record(record, terms, words, modes, {threads, pin}, progress);
        record.positive ? total += sum : total -= sum;
    }
    return total;
}

void BBPSession::run() const {
    BBPv2::print_run_header(*this);
    const zvp::RunWatch watch("BBP Digit Extractor");
    const std::uint64_t began = zvp::platform::performance_counter();
    const zvp::platform::ProcessTimes before = zvp::platform::process_times();
    const BBPv2::FractionFloat total = sum_records();
    const double seconds = static_cast<double>(zvp::platform::performance_counter() - began) * 1e-9;
    const zvp::platform::ProcessTimes after = zvp::platform::process_times();
    BBPv2::print_run_times(seconds, after.user_seconds - before.user_seconds,
                           after.kernel_seconds - before.kernel_seconds);
    BBPv2::print_digits(total, offset, digits);
}

void bbp_menu() {
    BBPSession session;
    session.menu();
    session.run();
}

} // namespace zorvane
