#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace trv::fuzz {

/// Reads values from the front of an input. After its end all numbers are 0 and all texts empty, so
/// every input is valid.
class InputReader {
public:
    explicit InputReader(std::string_view input) : rest_(input) {}

    bool isAtEnd() const { return rest_.empty(); }

    unsigned byte() {
        if (rest_.empty()) return 0;
        const auto value = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }

    /// A number from 0 to `below` - 1, which is at most 65536.
    int number(int below) {
        const unsigned high = below > 256 ? byte() : 0;
        return static_cast<int>((high * 256 + byte()) % static_cast<unsigned>(below));
    }

    /// Any double, from its eight bytes.
    double real() {
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i)
            bits = bits << 8 | byte();
        double value = 0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    /// The text before the next separator, which is a byte that no UTF-8 text contains.
    std::string_view piece() {
        constexpr char separator = '\xFF';
        const std::size_t end = rest_.find(separator);
        const std::string_view piece = rest_.substr(0, end);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        return piece;
    }

    /// The same, cut before its first zero byte.
    std::string text() { return std::string(std::string(piece()).c_str()); }

    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

}  // namespace trv::fuzz
