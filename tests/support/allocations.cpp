#include "support/allocations.hpp"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t calls = 0;

} // namespace

void* operator new(std::size_t size) {
    ++calls;
    if (auto* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace quorvale::tests {

std::size_t allocations() {
    return calls;
}

} // namespace quorvale::tests
