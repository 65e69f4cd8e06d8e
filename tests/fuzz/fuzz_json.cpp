#include "round_trip.h"

#include "app/notation/text_file.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const std::string text = zvp::decode_text({reinterpret_cast<const char*>(data), size});
        fuzz::check_round_trip(*zvp::parse_json_text(text));
    } catch (const zvp::ParseException&) {
        // What isn't a value must be told as a parse failure, and in no other way.
    }
    return 0;
}
