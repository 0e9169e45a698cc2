// One argument on its way from a late-bound caller's variant to a method's parameter.
#pragma once

#include <cstdint>

#include "oleauto.h"
#include "platform/typelib/Tables.h"

namespace wnplatform::typelib {

// Owns what was made for the call: a converted value, or the value that the method writes.
class Argument {
public:
    Argument() = default;
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;
    ~Argument() { VariantClear(&m_value); }

    // Converts the caller's variant to what the parameter wants: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW and the like.
    HRESULT Prepare(const Tables& tables, const ParameterRow& parameter, const VARIANT& given) noexcept;
    // Room for what the method returns through its [retval] parameter.
    HRESULT PrepareResult(const Tables& tables, const ParameterRow& parameter) noexcept;

    // As it is passed in the call.
    std::uintptr_t Word() const noexcept { return m_word; }

    // After the call: hands over what the method returned.
    void MoveTo(VARIANT& destination) noexcept;

private:
    HRESULT Convert(const Tables& tables, const ParameterRow& parameter, VARTYPE type, const VARIANT& given) noexcept;
    void PassPlace(VARTYPE type) noexcept;

    VARIANT m_value{};
    std::uintptr_t m_word = 0;
};

}  // namespace wnplatform::typelib
