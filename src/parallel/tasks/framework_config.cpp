#include "parallel/tasks/framework_config.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/prompts.h"
#include "app/failure/exceptions.h"
#include "parallel/tasks/push_pool.h"
#include "parallel/tasks/range_dispatch.h"
#include "parallel/tasks/setting_rows.h"
#include "parallel/tasks/simple_frameworks.h"
#include "parallel/tasks/task_queue.h"
#include "parallel/topology/thread_placement.h"
#include "platform/threads.h"
#include "platform/topology.h"

#include <algorithm>
#include <limits>

namespace zvp {

namespace {

/// Places worker i in the groups behind that of the thread that made this object.
class WorkerPlacement {
public:
    /// The maps of the machine are built, and printed, here.
    std::function<void(std::uint32_t)> start_function() const {
        const std::size_t rank = topology().groups.rank(group);
        return [rank](std::uint32_t worker) { assign_thread_to_group(worker + rank + 1); };
    }

private:
    const std::uint16_t group = platform::current_processor().group;
};

/// One setting of a framework: how it is saved, shown and changed.
class Setting {
public:
    virtual ~Setting() = default;
    virtual void load(const Object& object) = 0;
    virtual void save(Object& object, bool full) const = 0;
    virtual std::string_view row_label() const = 0;
    virtual std::string shown_value() const = 0;
    virtual void select() = 0;
};

class SequentialDispatch final : public Setting {
public:
    void load(const Object& object) override {
        constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
        value = static_cast<std::uint32_t>(
            std::clamp<std::int64_t>(object.get_integer("MaxSequentialDispatch"), min_sequential_dispatch, most));
    }
    void save(Object& object, bool full) const override {
        if (!full) return object.add_integer("MaxSequentialDispatch", value);
        Object shown;
        shown.add_integer("Value", value);
        shown.add_string("DisplayText", shown_value());
        object.add_object("MaxSequentialDispatch", std::move(shown));
    }
    std::string_view row_label() const override { return "    Max Sequential Dispatch:    "; }
    std::string shown_value() const override { return format_number(value, NumberForm::commas); }
    void select() override {
        print_line("    This parameter puts a limit on the maximum number of tasks that can be\n"
                   "issued sequentially before a recursive fan-out is required. This controls the\n"
                   "exponential fan-out of tasks onto threads.\n"
                   "\n"
                   "Smaller values have shorter critical paths, but require more recursive dispatch\n"
                   "generations to reach full utilization.\n"
                   "\n"
                   "Larger values have longer critical paths in each generation, but require fewer\n"
                   "recursive dispatch generations.\n");
        value = std::max(min_sequential_dispatch,
                         prompt_int("Value = ", 0, std::numeric_limits<std::uint32_t>::max(), 'T'));
    }

    std::uint32_t value = default_sequential_dispatch;
};

class WorkerThreads final : public Setting {
public:
    void load(const Object& object) override {
        value = static_cast<std::uint32_t>(
            std::clamp<std::int64_t>(object.get_integer("WorkerThreads"), 0, max_worker_threads));
    }
    void save(Object& object, bool) const override { object.add_integer("WorkerThreads", value); }
    std::string_view row_label() const override { return "    Worker Threads:"; }
    std::string shown_value() const override { return value == 0 ? "Unlimited" : std::to_string(value); }
    void select() override {
        const std::uint32_t typed =
            prompt_int("Threads (0 for unlimited threads): ", 0, std::numeric_limits<std::uint32_t>::max(), 'T');
        value = std::min(typed, max_worker_threads);
    }

    std::uint32_t value = 0;
};

/// A setting that is on or off.
class Toggle final : public Setting {
public:
    Toggle(const char* key_, std::string_view label_, const char* on_, const char* off_)
        : key(key_), label(label_), on(on_), off(off_) {}

    void load(const Object& object) override { value = object.get_boolean(key); }
    void save(Object& object, bool) const override { object.add_boolean(key, value); }
    std::string_view row_label() const override { return label; }
    std::string shown_value() const override { return value ? on : off; }
    void select() override { value = !value; }

    bool value = true;

private:
    const char* const key;
    const std::string_view label;
    const char* const on;
    const char* const off;
};

/// What the configurations have in common: a key, a name and a list of settings.
class ConfigWithSettings : public ParallelFrameworkConfig {
public:
    ConfigWithSettings(std::string_view key_, std::string_view name_) : own_key(key_), name(name_) {}

    std::string_view key() const override { return own_key; }
    std::string_view display_name() const override { return name; }
    Object to_config_object() const override { return saved(false); }
    Object to_config_object_full() const override { return saved(true); }

    std::string summary(std::uint32_t task_count) const override {
        return std::string(name) + "  ->  " + std::to_string(task_count) + " / " + worker_text() + note();
    }
    void print_with_tag() const override { print(name, 'G'); }

    std::uint32_t print_menu_rows(std::uint32_t first_row) const override {
        for (const Setting* setting : settings)
            print_setting_row(first_row++, setting->row_label(), setting->shown_value());
        return first_row;
    }
    void menu_select(std::uint32_t row) override {
        if (row < settings.size()) settings[row]->select();
    }

    void load(const Object& object) {
        for (Setting* setting : settings) setting->load(object);
    }

protected:
    virtual std::string worker_text() const { return "?"; }
    virtual std::string note() const { return ""; }

    std::vector<Setting*> settings; // members of the derived class, in the order of their keys and rows

private:
    Object saved(bool full) const {
        Object object;
        object.add_string("Framework", std::string(own_key));
        for (const Setting* setting : settings) setting->save(object, full);
        return object;
    }

    const std::string_view own_key;
    const std::string_view name;
};

class NoConfig final : public ConfigWithSettings {
public:
    NoConfig() : ConfigWithSettings("none", "None (No Multi-threading)") {}
    std::unique_ptr<ParallelFramework> make_framework() const override { return std::make_unique<NoFramework>(); }
};

class AsyncConfig final : public ConfigWithSettings {
public:
    AsyncConfig() : ConfigWithSettings("cppasync", "C++ std::async()") { settings = {&async_only, &dispatch}; }
    std::unique_ptr<ParallelFramework> make_framework() const override {
        return std::make_unique<AsyncFramework>(async_only.value, dispatch.value);
    }

private:
    std::string note() const override { return async_only.value ? "  (async only)" : "  (async | deferred)"; }

    Toggle async_only{"AsyncOnly", "    Launch Policy:", "std::launch::async",
                      "std::launch::async | std::launch::deferred"};
    SequentialDispatch dispatch;
};

class SpawnConfig final : public ConfigWithSettings {
public:
    SpawnConfig() : ConfigWithSettings("spawn", "Thread Spawn (1 Thread/Task)") { settings = {&dispatch}; }
    std::unique_ptr<ParallelFramework> make_framework() const override {
        return std::make_unique<SpawnFramework>(dispatch.value);
    }

private:
    SequentialDispatch dispatch;
};

class TaskQueueConfig final : public ConfigWithSettings {
public:
    TaskQueueConfig() : ConfigWithSettings("taskqueue", "Central Dispatch Queue") { settings = {&workers}; }
    std::unique_ptr<ParallelFramework> make_framework() const override {
        return std::make_unique<TaskQueue>(workers.value, placement.start_function());
    }

private:
    std::string worker_text() const override { return std::to_string(workers.value); }

    const WorkerPlacement placement;
    WorkerThreads workers;
};

class PushPoolConfig final : public ConfigWithSettings {
public:
    PushPoolConfig() : ConfigWithSettings("pushpool", "Push Pool") { settings = {&workers, &randomization, &dispatch}; }
    std::unique_ptr<ParallelFramework> make_framework() const override {
        return std::make_unique<PushPool>(PushPool::Settings{workers.value, randomization.value, dispatch.value},
                                          placement.start_function());
    }

private:
    std::string worker_text() const override { return std::to_string(workers.value); }
    std::string note() const override { return randomization.value ? "  (randomization on)" : "  (randomization off)"; }

    const WorkerPlacement placement;
    WorkerThreads workers;
    Toggle randomization{"Randomization", "    Thread Randomization:", "Enabled", "Disabled"};
    SequentialDispatch dispatch;
};

class WorkQueueConfig final : public ConfigWithSettings {
public:
    WorkQueueConfig() : ConfigWithSettings("winpool", "System Work Queue") { settings = {&dispatch}; }
    std::unique_ptr<ParallelFramework> make_framework() const override {
        return std::make_unique<WorkQueueFramework>(dispatch.value);
    }

private:
    SequentialDispatch dispatch;
};

template <class Config>
std::pair<std::string, ParallelFrameworkType> row_of() {
    const Config config;
    return {std::string(config.key()),
            {config.display_name(),
             []() -> std::unique_ptr<ParallelFrameworkConfig> { return std::make_unique<Config>(); },
             [](const Object& object) -> std::unique_ptr<ParallelFrameworkConfig> {
                 auto loaded = std::make_unique<Config>();
                 loaded->load(object);
                 return loaded;
             }}};
}

} // namespace

const Registry<ParallelFrameworkType>& framework_registry() {
    static const Registry<ParallelFrameworkType> registry(
        "Duplicate Framework Type", {row_of<NoConfig>(), row_of<AsyncConfig>(), row_of<SpawnConfig>(),
                                     row_of<TaskQueueConfig>(), row_of<PushPoolConfig>(), row_of<WorkQueueConfig>()});
    return registry;
}

std::unique_ptr<ParallelFrameworkConfig> make_framework_config(std::string_view key) {
    const ParallelFrameworkType* type = framework_registry().find(key);
    if (!type) throw InvalidParametersException("", "Invalid Parallel Framework: " + std::string(key));
    return type->make_default();
}

std::unique_ptr<ParallelFrameworkConfig> default_framework_config(std::uint32_t logical_cores) {
    return make_framework_config(logical_cores >= 16 && platform::machine_topology().groups.size() == 1 ? "winpool"
                                                                                                        : "pushpool");
}

} // namespace zvp
