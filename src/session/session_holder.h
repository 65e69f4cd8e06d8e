#pragma once
// The sessions of one screen or one configuration file.

#include "session/normal_float_session_b.h"

#include <memory>
#include <string_view>

namespace zvp {

class NormalFloatSessionHolder {
public:
    /// All defaults, in memory.
    NormalFloatSessionHolder();

    /// Reads the object "CustomCompute" of a configuration. Raises KeyNotFoundException, ParseException and
    /// InvalidParametersException.
    explicit NormalFloatSessionHolder(const Object& object);

    NormalFloatSession& active() { return *in_memory; }
    NormalFloatSessionB& memory_session() { return *in_memory; }

    /// Selects the session; raises what check_mode() raises for a word that is no mode. Far memory stops the program.
    void set_mode(std::string_view mode);

    /// Lets the user edit the settings of the active session; runs it if `offer_start` is set.
    void menu(bool offer_start);

private:
    std::shared_ptr<ConstantSettings> settings = std::make_shared<ConstantSettings>();
    std::shared_ptr<ParallelizationSettings> framework = std::make_shared<ParallelizationSettings>();
    std::shared_ptr<AllocatorHolder> allocator = std::make_shared<AllocatorHolder>();
    std::unique_ptr<NormalFloatSessionB> in_memory;
    const std::uint64_t seed;
};

} // namespace zvp
