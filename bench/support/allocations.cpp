#include "support/allocations.hpp"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t calls = 0;

void* counted(std::size_t size) noexcept {
    ++calls;
    return std::malloc(size == 0 ? 1 : size);
}

void* countedOrThrow(std::size_t size) {
    if (auto* const memory = counted(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

} // namespace

// All forms without an alignment, since the sanitizer's own ones don't stand on each other as the library's do.
void* operator new(std::size_t size) {
    return countedOrThrow(size);
}

void* operator new[](std::size_t size) {
    return countedOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return counted(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return counted(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
    std::free(memory);
}

namespace quorvale::bench {

std::size_t allocations() {
    return calls;
}

} // namespace quorvale::bench
