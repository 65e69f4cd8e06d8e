#pragma once
// One computation of one constant, from its settings to its digits. It knows nothing of any constant's mathematics: it asks
// a constant for a plan.

#include "app/console/event_log.h"
#include "app/console/status.h"
#include "app/failure/exceptions.h"
#include "constants/catalog/computation_size.h"
#include "session/computation_times.h"
#include "session/constant_settings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zvp {

/// Why settings can't run: an exception that making the plan raised, a part that this version hasn't, or more memory than the
/// machine has.
struct Obstacle {
    std::string reason;                     // as a screen shows it
    std::shared_ptr<const Exception> cause; // may be null
    std::string unbuilt;                    // for stop_unbuilt(); may be empty
};

/// For print_unbuilt() and stop_unbuilt(): there is no session for far memory yet.
inline constexpr std::string_view swap_mode_name = "Swap Mode";

/// A mode as options and configurations name it, "ram" or "swap". Another word raises InvalidParametersException with
/// "Invalid Mode: " and the word, far memory with the words of what isn't built.
void check_mode(std::string_view mode);

/// What the sessions of both modes have in common. The settings are shared with the menus and with the other session;
/// whoever changes them calls update().
class NormalFloatSession {
public:
    explicit NormalFloatSession(std::shared_ptr<ConstantSettings> settings_);
    virtual ~NormalFloatSession() = default;
    NormalFloatSession(const NormalFloatSession&) = delete;
    NormalFloatSession& operator=(const NormalFloatSession&) = delete;

    /// Computes, prints and writes. Without a sink it makes one for the console. At most once per object. Throws what
    /// the computation throws; a result that known digits contradict raises AlgorithmFailedException at the very end.
    virtual void run(StatusSink* sink = nullptr) = 0;

    /// Prints the settings as the rows of the menu and, if they can't run, why; returns whether they can.
    virtual bool print() const = 0;

    /// Makes every size anew from the settings. Never throws for settings that can't run: print() and check() tell it.
    virtual void update() = 0;

    /// The object "CustomCompute" of a configuration.
    virtual Object to_config() const = 0;

    /// What a client shows: rows of "Value" and "DisplayText", warnings and errors.
    virtual Object to_status() const = 0;

    /// Lets the user edit the settings, until they are to run or, with `offer_start` unset, are finished. A change of the
    /// mode leaves by ModeChangeException.
    virtual void menu(bool offer_start) = 0;

    /// Reads what to_config() gives, and updates. Nothing is changed if it throws KeyNotFoundException, ParseException or
    /// InvalidParametersException.
    virtual void load(const Object& object) = 0;

    /// Ends with the obstacle's exception, or its one line, if the settings can't run; the second one only with the line.
    void check() const;
    void check_built() const;

    /// Takes what both modes have from another session of the same holder. Raises InvalidParametersException for one
    /// with another seed.
    void set(const NormalFloatSession& other);

    std::shared_ptr<ConstantSettings> settings;
    std::string name_short;
    std::string name_long;
    ComputationSize working_size;
    char display_color = 'w';
    ComputationTimes times;
    std::unique_ptr<EventLog> event_log; // a run makes one if there is none
    std::uint64_t seed;
    std::unique_ptr<const Obstacle> obstacle; // null for settings that can run

protected:
    /// Names, colour and working size from the settings.
    void refresh();
};

} // namespace zvp
