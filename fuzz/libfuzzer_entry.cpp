// The function that libFuzzer calls. There is one program for each target; TRV_FUZZ_TARGET is its
// name.

#include <fuzz/targets.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr const trv::fuzz::Target* target = trv::fuzz::findTarget(TRV_FUZZ_TARGET);
    static_assert(target != nullptr);
    target->check({reinterpret_cast<const char*>(data), size});
    return 0;
}
