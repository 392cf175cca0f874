// What libFuzzer calls: one program a target, which TRV_FUZZ_TARGET names.

#include <fuzz/targets.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr const trv::fuzz::Target* target = trv::fuzz::findTarget(TRV_FUZZ_TARGET);
    static_assert(target != nullptr);
    target->check({reinterpret_cast<const char*>(data), size});
    return 0;
}
