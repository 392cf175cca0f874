#include <trvfiles/environment/name_hash.h>
#include <trvfiles/support/wide_product.h>

#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <random>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

template <class Clock>
std::uint64_t ticks_of() {
    return static_cast<std::uint64_t>(Clock::now().time_since_epoch().count());
}

// For a system without random numbers. The system chooses the addresses of the stack and of the
// program at random, and the clocks count ticks since times that are not visible from outside.
hash_key key_of_clocks_and_addresses() {
    constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15;
    hash_key key = {};
    std::uint64_t mixed = golden_ratio;
    const auto mix = [&](std::uint64_t source) {
        mixed = folded_product(mixed ^ source, golden_ratio);
        return mixed;
    };
    mix(ticks_of<std::chrono::system_clock>());
    key.start = mix(reinterpret_cast<std::uintptr_t>(&key));
    key.block = mix(reinterpret_cast<std::uintptr_t>(&hash_place));
    key.end = mix(ticks_of<std::chrono::steady_clock>());
    return key;
}

// Initialised exactly once, also if several threads ask at the same moment.
const hash_key& process_key() {
    static const hash_key key = draw_hash_key([] { return std::random_device()(); });
    return key;
}

// A copy, because names begin at any address. The byte order of the machine does not matter: hashes
// never leave the process.
template <class Word>
std::uint64_t read(const char* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Up to 16 characters in two words. With fewer than 16 characters the words overlap, which reads no
// byte outside of the name and needs no loop.
struct block {
    std::uint64_t first;
    std::uint64_t last;
};

block read_block(const char* bytes, std::size_t size) {
    if (size >= sizeof(std::uint64_t)) {
        return {read<std::uint64_t>(bytes), read<std::uint64_t>(bytes + size - 8)};
    }
    if (size >= sizeof(std::uint32_t)) {
        return {read<std::uint32_t>(bytes), read<std::uint32_t>(bytes + size - 4)};
    }
    if (size == 0) return {0, 0};
    const std::uint64_t middle = read<std::uint8_t>(bytes + size / 2);
    return {read<std::uint8_t>(bytes) | middle << 8, read<std::uint8_t>(bytes + size - 1)};
}

// A hash by folded multiplication, which reads 16 characters for each product of 64 bits.
//
// Multiplies the halves of each block, as `fold` leaves them. The key hides one factor and the hash
// before the block hides the other one, so nobody can compute which blocks give the same product.
// The length enters last and not together with the characters, which could compensate for it.
template <class Fold>
std::uint32_t hash_of(std::string_view name, Fold fold) {
    constexpr std::size_t block_size = 16;
    const hash_key& key = process_key();
    const std::size_t length = name.size();
    std::uint64_t hash = key.start;
    const auto take = [&](const block& characters) {
        hash = folded_product(fold(characters.first) ^ key.block, fold(characters.last) ^ hash);
    };
    for (; name.size() > block_size; name.remove_prefix(block_size))
        take(read_block(name.data(), block_size));
    take(read_block(name.data(), name.size()));
    return static_cast<std::uint32_t>(folded_product(hash, key.end ^ length));
}

// Makes the lower-case ASCII letters among eight characters upper-case letters, without a branch
// for each character. A sum sets the highest bit of each character that is large enough; no sum
// carries into the next character, because the highest bits are cleared before. The last line
// shifts that bit, 0x80, to 0x20, by which a lower-case letter differs from its upper-case letter.
std::uint64_t upper_case(std::uint64_t characters) {
    constexpr std::uint64_t each = 0x0101010101010101;
    const std::uint64_t ascii = characters & each * 0x7F;
    const std::uint64_t from_a = ascii + each * (0x80 - 'a');
    const std::uint64_t above_z = ascii + each * (0x7F - 'z');
    const std::uint64_t lower_case = from_a & ~above_z & ~characters & each * 0x80;
    return characters ^ lower_case >> 2;
}

}  // namespace

std::uint32_t hash_name(std::string_view name) {
    return hash_of(name, [](std::uint64_t characters) { return characters; });
}

std::uint32_t hash_name_ignoring_case(std::string_view name) {
    return hash_of(name, upper_case);
}

std::uint32_t hash_place(std::uint32_t place) {
    const hash_key& key = process_key();
    return static_cast<std::uint32_t>(folded_product(place ^ key.block, key.end));
}

hash_key draw_hash_key(const std::function<std::uint32_t()>& random) {
    const auto word = [&] { return std::uint64_t{random()} << 32 | random(); };
    try {
        return {word(), word(), word()};
    } catch (const std::exception&) {
        return key_of_clocks_and_addresses();
    }
}

}  // namespace trv
