// What a type library says: its classes, interfaces, methods and their types, as read from an interface description.
//
// Everything here stands on the C++ library and constants only, because the build tool is made from it too.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "oaidl.h"

namespace wnplatform::typelib {

// A place in a description, both counted from 1.
struct Position {
    unsigned line = 1;
    unsigned column = 1;
};

// What is wrong with a description, as one sentence, and where.
class DescriptionError : public std::runtime_error {
public:
    DescriptionError(Position where, const std::string& sentence) : std::runtime_error(sentence), m_where(where) {}
    Position Where() const noexcept { return m_where; }

private:
    Position m_where;
};

struct Interface;

// A type is a base type behind some pointers. An object pointer (IUnknown*, IDispatch*) is one base type without a
// pointer, as type information has it; a pointer to an interface of a library is VT_USERDEFINED behind one.
struct Type {
    VARTYPE vt = VT_EMPTY;
    unsigned pointers = 0;
    std::string name;  // of the base type, as it is written
    Position where;
    const Interface* target = nullptr;  // of VT_USERDEFINED, once checked
};

struct Parameter {
    std::string name;
    Type type;
    USHORT flags = PARAMFLAG_NONE;
    Position where;
};

struct Method {
    std::string name;
    std::string help;
    Type result;
    std::vector<Parameter> parameters;
    INVOKEKIND kind = INVOKE_FUNC;
    WORD flags = 0;  // FUNCFLAG_
    bool hasId = false;
    MEMBERID id = MEMBERID_NIL;  // the one that counts, once checked, whether written or not
    unsigned slot = 0;           // in the table of functions, once checked
    Position where;
};

enum class PointerDefault { kNone, kUnique, kRef, kPtr };

// What interfaces and classes have in common. The index is the place among the library's types.
struct Entry {
    std::string name;
    std::string help;
    GUID guid{};
    bool hasGuid = false;
    WORD flags = 0;  // TYPEFLAG_
    WORD majorVersion = 0;
    WORD minorVersion = 0;
    UINT index = 0;
    Position where;
};

struct Interface : Entry {
    std::string baseName;
    Position baseWhere;
    const Interface* base = nullptr;  // once checked; null for IUnknown only
    bool imported = false;            // one of the standard library's, seen from another
    PointerDefault pointerDefault = PointerDefault::kNone;
    bool object = false;
    bool automation = false;  // written with oleautomation: its types must be such that the system can marshal them
    std::vector<Method> methods;

    // Both once checked. The slots of the whole table, and how many interfaces it derives from.
    unsigned Slots() const noexcept { return (base ? base->Slots() : 0) + static_cast<unsigned>(methods.size()); }
    unsigned Level() const noexcept { return base ? base->Level() + 1 : 0; }
    bool IsDual() const noexcept { return (flags & TYPEFLAG_FDUAL) != 0; }
    bool IsDispatch() const noexcept { return (flags & TYPEFLAG_FDISPATCHABLE) != 0; }
};

struct Implemented {
    std::string name;
    INT flags = 0;                          // IMPLTYPEFLAG_
    const Interface* interface_ = nullptr;  // once checked
    Position where;
};

struct CoClass : Entry {
    std::vector<Implemented> interfaces;
};

struct Library {
    std::string name;
    std::string help;
    GUID guid{};
    bool hasGuid = false;
    WORD majorVersion = 0;
    WORD minorVersion = 0;
    LCID lcid = 0;
    Position where;
    bool importsStandard = false;
    // Types point at each other, so they stay where they are. Either pointer is null in each entry.
    struct TypeEntry {
        std::unique_ptr<Interface> interface_;
        std::unique_ptr<CoClass> coclass;

        const Entry& Common() const noexcept {
            return interface_ ? static_cast<const Entry&>(*interface_) : static_cast<const Entry&>(*coclass);
        }
    };
    std::vector<TypeEntry> types;
};

// Reads and checks a whole description. Throws DescriptionError for whatever it does not understand or accept.
std::unique_ptr<const Library> Read(std::string_view text);

// The description without comments and layout: what Read gives the same library for.
std::string Canonical(const Library& library);

// The library of IUnknown and IDispatch, which importlib("stdole2.tlb") brings in. Never ends.
const Library& Standard();

// "BSTR*" and the like, as a description would write it.
std::string TypeText(const Type& type);
// "8B2E860F-324B-4F38-B0BE-9D642317C24B".
std::string GuidText(const GUID& guid);

bool SameName(std::string_view a, std::string_view b) noexcept;  // without regard to case

}  // namespace wnplatform::typelib
