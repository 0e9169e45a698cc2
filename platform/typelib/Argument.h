// One argument on its way from a late-bound caller's variant to a method's parameter.
#pragma once

#include <cstdint>

#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

// Owns what was made for the call: a converted value, or the value that the method writes.
class Argument {
public:
    Argument() noexcept;
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;
    ~Argument();

    // Converts the caller's variant to what the parameter wants: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW and the like.
    HRESULT Prepare(const Parameter& parameter, VARIANT& given) noexcept;
    // Room for what the method returns through its [retval] parameter.
    HRESULT PrepareResult(const Parameter& parameter) noexcept;

    // As it is passed in the call.
    std::uintptr_t Word() const noexcept { return m_word; }

    // After the call: hands over what the method returned.
    void MoveTo(VARIANT& destination) noexcept;

private:
    HRESULT PrepareByReference(const Parameter& parameter, VARTYPE type, VARIANT& given) noexcept;
    HRESULT Convert(const Type& type, VARTYPE wanted, const VARIANT& given) noexcept;
    void PassPlace(VARTYPE type) noexcept;
    void PassValue() noexcept;

    VARIANT m_value;
    std::uintptr_t m_word = 0;
};

}  // namespace wnplatform::typelib
