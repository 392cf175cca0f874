#include <cli/element_text.h>

#include <cstddef>
#include <string_view>

namespace trv::cli {

std::streamsize ElementText::xsputn(const char* text, std::streamsize length) {
    std::string_view rest(text, static_cast<std::size_t>(length));
    const auto pass = [&](std::size_t count) {
        out_.write(rest.data(), static_cast<std::streamsize>(count));
        rest.remove_prefix(count);
    };
    for (std::size_t place = 0; (place = rest.find('<')) != std::string_view::npos;) {
        pass(place);
        out_ << "\\u003c";
        rest.remove_prefix(1);
    }
    pass(rest.size());
    return length;
}

ElementText::int_type ElementText::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::eof();
    const char text = traits_type::to_char_type(character);
    return xsputn(&text, 1) == 1 ? character : traits_type::eof();
}

}  // namespace trv::cli
