// A descriptor of the host with one owner.
#pragma once

#include <unistd.h>

#include <utility>

namespace wnplatform {

class Descriptor {
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Descriptor() {
        if (m_descriptor >= 0) close(m_descriptor);
    }

    explicit operator bool() const noexcept { return m_descriptor >= 0; }
    int Get() const noexcept { return m_descriptor; }
    // The caller owns the descriptor from here on.
    int Detach() noexcept { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor = -1;
};

}  // namespace wnplatform
