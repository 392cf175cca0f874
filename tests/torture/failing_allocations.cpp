#include <tests/torture/failing_allocations.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace trv::testing {
namespace {

// Allocations before any constructor and after every destructor read these variables.
std::atomic<bool> isArmed = false;
AllocationKind kindThatFails = AllocationKind::any;
int firstToFail = 0;
bool failsForEver = false;
std::atomic<int> allocations = 0;
std::atomic<int> failed = 0;
constexpr int maxStackSize = 64;
void* stackFrames[maxStackSize];
std::atomic<int> stackSize = 0;

bool strikes(AllocationKind kind) {
    if (!isArmed || kind != kindThatFails) return false;
    const int number = ++allocations;
    if (number != firstToFail && !(failsForEver && number > firstToFail)) return false;
    ++failed;
    isArmed = false;
    stackSize = ::backtrace(stackFrames, maxStackSize);
    isArmed = true;
    return true;
}

// The heap of the next library in the search order.
template <class Function>
Function* below(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void* allocate(std::size_t size) {
    static const auto next = below<void*(std::size_t)>("malloc");
    return next(size);
}

void* allocateOrThrow(std::size_t size) {
    void* const block = strikes(AllocationKind::any) ? nullptr : allocate(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void* allocateOrNot(std::size_t size) noexcept {
    return strikes(AllocationKind::any) ? nullptr : allocate(size == 0 ? 1 : size);
}

}  // namespace

FailingAllocations::FailingAllocations(AllocationKind kind, int first, bool forEver) {
    // The first call of backtrace() allocates memory.
    void* frame = nullptr;
    ::backtrace(&frame, 1);
    kindThatFails = kind;
    firstToFail = first;
    failsForEver = forEver;
    allocations = 0;
    failed = 0;
    stackSize = 0;
}

void FailingAllocations::arm() {
    isArmed = !isOver_;
}

void FailingAllocations::disarm() {
    isArmed = false;
}

int FailingAllocations::failures() {
    return failed;
}

std::string FailingAllocations::stackOfFailure() {
    isArmed = false;
    std::string names;
    for (int i = 0; i < stackSize; ++i) {
        Dl_info about = {};
        if (::dladdr(stackFrames[i], &about) == 0 || about.dli_sname == nullptr) continue;
        int status = 0;
        char* const readable = abi::__cxa_demangle(about.dli_sname, nullptr, nullptr, &status);
        names += readable == nullptr ? about.dli_sname : readable;
        names += '\n';
        std::free(readable);
    }
    return names;
}

}  // namespace trv::testing

using trv::testing::AllocationKind;

namespace {

// The result of malloc() if there is no memory.
void* refused() {
    errno = ENOMEM;
    return nullptr;
}

}  // namespace

// The definitions of the program have precedence over those of every library.

extern "C" {

void* malloc(std::size_t size) {
    return trv::testing::strikes(AllocationKind::any) ? refused() : trv::testing::allocate(size);
}

void* calloc(std::size_t count, std::size_t size) {
    static const auto next = trv::testing::below<void*(std::size_t, std::size_t)>("calloc");
    return trv::testing::strikes(AllocationKind::any) ? refused() : next(count, size);
}

void* realloc(void* block, std::size_t size) {
    static const auto next = trv::testing::below<void*(void*, std::size_t)>("realloc");
    return trv::testing::strikes(AllocationKind::any) ? refused() : next(block, size);
}

// The linker redirects the calls of the program's own objects to these functions. Of these objects
// only the checked heap makes such calls while a fault is armed.

void* __wrap_malloc(std::size_t size) {
    return trv::testing::strikes(AllocationKind::ofCheckedHeap) ? refused() : malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return trv::testing::strikes(AllocationKind::ofCheckedHeap) ? refused() : calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size) {
    return trv::testing::strikes(AllocationKind::ofCheckedHeap) ? refused() : realloc(block, size);
}

}  // extern "C"

void* operator new(std::size_t size) {
    return trv::testing::allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return trv::testing::allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return trv::testing::allocateOrNot(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return trv::testing::allocateOrNot(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
