// A checked type library as constant tables: the build tool writes them, the layer reads them. Rows hold numbers
// alone (places in other tables), so they mean the same wherever they are loaded.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oaidl.h"

namespace wnplatform::typelib {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;
// The object itself travels in a register each time, and calls pass ten words at most.
inline constexpr unsigned kMostParameters = 9;
// A method's place in its table is told as a signed 16-bit number of bytes.
inline constexpr unsigned kMostSlots = 0x7FFF / sizeof(void*);

// Where a text begins among the texts; each ends with a zero.
using TextPlace = std::uint32_t;

// A library's types end where the next library's begin. The last library is the one described; the one before it
// holds what it imports.
struct LibraryRow {
    GUID guid;
    LCID lcid;
    WORD majorVersion;
    WORD minorVersion;
    TextPlace name;
    TextPlace help;
    std::uint32_t firstType;
};

struct TypeRow {
    GUID guid;
    TextPlace name;
    TextPlace help;
    std::uint32_t isClass;
    std::uint32_t base;   // the type that an interface derives from, which stands before it; kNone for IUnknown
    std::uint32_t first;  // of an interface's own methods, or of the interfaces that a class implements
    std::uint32_t count;
    WORD flags;  // TYPEFLAG_
    WORD slots;  // in an interface's whole table of functions

    bool IsDual() const noexcept { return (flags & TYPEFLAG_FDUAL) != 0; }
    bool IsDispatch() const noexcept { return (flags & TYPEFLAG_FDISPATCHABLE) != 0; }
};

struct MethodRow {
    TextPlace name;
    TextPlace help;
    MEMBERID id;
    std::uint32_t firstParameter;
    std::uint32_t parameterCount;
    VARTYPE result;
    WORD kind;   // INVOKEKIND
    WORD flags;  // FUNCFLAG_
    WORD slot;
};

// An object pointer (IUnknown*, IDispatch*) is one type without a pointer, as type information has it; a pointer to
// another interface is VT_USERDEFINED behind one.
struct ParameterRow {
    TextPlace name;
    std::uint32_t target;  // the interface of VT_USERDEFINED, else kNone
    VARTYPE vt;
    WORD pointers;
    WORD flags;  // PARAMFLAG_
    WORD unused;

    // The pointers to a value beyond the one that any object has.
    unsigned Depth() const noexcept { return pointers - (vt == VT_USERDEFINED ? 1U : 0U); }
    bool IsResult() const noexcept { return (flags & PARAMFLAG_FRETVAL) != 0; }
};

struct ImplementedRow {
    std::uint32_t type;
    INT flags;  // IMPLTYPEFLAG_
};

struct Tables {
    std::vector<LibraryRow> libraries;
    std::vector<TypeRow> types;
    std::vector<MethodRow> methods;
    std::vector<ParameterRow> parameters;
    std::vector<ImplementedRow> implemented;
    std::string texts{'\0'};

    std::string Blob() const;
    // Nothing for what Blob() of this version cannot have written. Whatever is given is safe to use: each place lies
    // in its table, bases lead to IUnknown, slots fit, results can be written through. Throws when memory runs out.
    static std::optional<Tables> FromBlob(std::string_view blob);

    TextPlace Add(std::string_view text);
    std::string_view Text(TextPlace place) const noexcept { return texts.data() + place; }
    const ParameterRow* ParametersOf(const MethodRow& method) const noexcept {
        return parameters.data() + method.firstParameter;
    }
    bool HasResult(const MethodRow& method) const noexcept {
        return method.parameterCount > 0 && ParametersOf(method)[method.parameterCount - 1].IsResult();
    }
};

}  // namespace wnplatform::typelib
