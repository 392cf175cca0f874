#include <trvfiles/environment/string_format.h>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// More than callers' buffers hold, so a text in an unknown format does not fit.
constexpr std::int64_t space_of_unknown_format = 65535;

}  // namespace

std::int64_t expansion_space(std::size_t length, std::uint32_t format) {
    const auto characters = static_cast<std::int64_t>(length);
    switch (format) {
        case STRING_FORMAT_F:
            return characters;
        case STRING_FORMAT_C:
            return characters + 1;
        default:
            return space_of_unknown_format;
    }
}

const char* string_format_name(std::uint32_t format) {
    switch (format) {
        case STRING_FORMAT_F:
            return "F";
        case STRING_FORMAT_C:
            return "C";
        default:
            return "<UnknownStringFormat>";
    }
}

}  // namespace trv
