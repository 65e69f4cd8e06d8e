#include "session/digit_checks.h"

#include "app/console/console.h"
#include "app/console/number_forms.h"
#include "app/console/value_parsers.h"
#include "app/failure/file_exceptions.h"
#include "app/notation/text_file.h"
#include "parallel/memory/aligned_malloc.h"
#include "platform/file.h"

#include <algorithm>
#include <array>
#include <memory>

namespace zvp {

namespace {

constexpr std::uint64_t check_digits = 10;

void skip_blanks(std::string_view& text) { text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size())); }

/// A number of digits and commas at the front of `text`, which is advanced behind it.
std::optional<std::uint64_t> take_number(std::string_view& text) {
    skip_blanks(text);
    const std::string_view number = text.substr(0, std::min(text.find_first_not_of("0123456789,"), text.size()));
    text.remove_prefix(number.size());
    if (number.find_first_not_of(',') == std::string_view::npos) return std::nullopt;
    return parse_commas(number);
}

void take_line(DigitChecks& checks, std::string_view line) {
    const std::optional<std::uint64_t> position = take_number(line);
    skip_blanks(line);
    if (!position || line.empty() || line.front() != '|') return;
    line.remove_prefix(1);
    const std::optional<std::uint64_t> value = take_number(line);
    if (!value || *position < check_digits) return;
    if (!checks.emplace(*position, *value).second) {
        print_line("Error parsing digit file: Duplicate entries.", 'R');
        set_color('w');
    }
}

/// The reader's buffer for a few digits.
class ReadBuffer {
public:
    DigitViewer2::DigitBuffer buffer() const { return {block.get(), bytes}; }

private:
    static constexpr std::size_t bytes = 16 << 10;
    struct Free {
        void operator()(void* p) const { aligned_free(p); }
    };
    const std::unique_ptr<void, Free> block{aligned_malloc(bytes, 4096)};
};

/// The ten digits that end at `position`, as a number.
std::uint64_t digits_at(DigitViewer2::BasicDigitReader& source, std::uint64_t position, const ReadBuffer& memory) {
    std::array<std::uint8_t, check_digits> digits{};
    source.load_digits(digits.data(), nullptr, position - check_digits, check_digits, memory.buffer(), {});
    std::uint64_t value = 0;
    for (const std::uint8_t digit : digits) value = value * 10 + digit;
    return value;
}

std::int64_t told_unavailable(std::string_view reason) {
    print_labelc("Spot Check", "Unavailable - " + std::string(reason));
    print_line();
    return 0;
}

} // namespace

DigitChecks parse_digit_checks(std::string_view text) {
    DigitChecks checks;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        take_line(checks, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return checks;
}

std::optional<DigitChecks> load_digit_checks(const std::string& program_folder, const std::string& key_name) {
    for (const char* folder : {"Binaries/Digits/", "Digits/", "../../Digits/", "../../../Digits/"}) {
        const std::string path = program_folder + folder + key_name + ".txt";
        if (!platform::file_exists(path)) continue;
        try {
            return parse_digit_checks(load_text_file(path));
        } catch (const FileIO::FileException&) {
            continue; // one that can't be opened isn't there
        } catch (const ParseException&) {
            return DigitChecks{}; // no text that this program can read
        }
    }
    return std::nullopt;
}

std::int64_t spot_check(const std::string& program_folder, DigitViewer2::BasicDigitReader& source, std::uint64_t digits,
                        const std::string& key_name) {
    const std::optional<DigitChecks> checks = load_digit_checks(program_folder, key_name);
    if (!checks) return told_unavailable("Digit file not found.");
    if (checks->empty() || checks->begin()->first > digits) return told_unavailable("No suitable spot check entry.");
    print("Spot Check: ", 'w');
    const ReadBuffer memory;
    std::uint64_t good = 0;
    for (const auto& [position, value] : *checks) {
        if (position > digits) break;
        if (digits_at(source, position, memory) != value) {
            print_line("Mismatch at " + format_number(position, NumberForm::commas), 'R');
            set_color('w');
            return -static_cast<std::int64_t>(position);
        }
        good = position;
    }
    print_line("Good through " + format_number(good, NumberForm::commas), 'G');
    set_color('w');
    return static_cast<std::int64_t>(good);
}

} // namespace zvp
