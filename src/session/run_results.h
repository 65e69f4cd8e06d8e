#pragma once
// What a finished run tells a client that wants more than text.

#include "app/console/status.h"
#include "digits/writer/digit_result.h"
#include "session/computation_times.h"

#include <cstdint>

namespace zvp {

class ComputationOutput final : public ReportObject {
public:
    std::string get_name() const override { return "ComputationOutput"; }
    Object to_object() const override;

    std::string start_date;
    std::string end_date;
    std::int64_t compute_milliseconds = 0;
    std::int64_t wall_milliseconds = 0;
    const DigitResult* decimal = nullptr; // null if there is none
    const DigitResult* hexadecimal = nullptr;
};

class ComputationDiagnostics final : public ReportObject {
public:
    std::string get_name() const override { return "ComputationDiagnostics"; }
    Object to_object() const override;

    std::uint32_t max_concurrency = 1; // logical cores
    double seconds = 0;                // of the computation
    platform::ProcessTimes processor{};
    std::int64_t spot_check = 0; // see spot_check()
    bool contiguous = true;      // no restart happened
};

} // namespace zvp
