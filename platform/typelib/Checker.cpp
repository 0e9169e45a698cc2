#include "platform/typelib/Checker.h"

#include <algorithm>

namespace wnplatform::typelib {
namespace {

// The interface itself travels in a register each time, and calls pass ten words at most.
constexpr std::size_t kMostParameters = 9;
// A table's offset is a signed 16-bit number of bytes.
constexpr unsigned kMostSlots = 0x7FFF / sizeof(void*);
constexpr unsigned kMostBases = 16;
constexpr MEMBERID kFirstAssignedId = 0x60000000;

[[noreturn]] void Fail(Position where, const std::string& sentence) { throw DescriptionError(where, sentence); }

bool CanBeMarshalled(const Type& type) noexcept {
    const unsigned own = type.vt == VT_USERDEFINED ? 1 : 0;
    return type.vt != VT_LPWSTR && type.vt != VT_VOID && type.pointers <= own + 1;
}

}  // namespace

bool Checker::NoCase::operator()(const std::string& a, const std::string& b) const noexcept {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char x, char y) { return lower(x) < lower(y); });
}

void Checker::Check() {
    CollectNames();
    for (Library::TypeEntry& entry : m_library.types) {
        if (entry.interface_) {
            CheckInterface(*entry.interface_);
        } else {
            CheckClass(*entry.coclass);
        }
    }
}

void Checker::CollectNames() {
    if (!m_library.hasGuid) Fail(m_library.where, "The library '" + m_library.name + "' has no uuid.");
    m_names.insert(m_library.name);
    m_guids.insert(GuidText(m_library.guid));
    if (m_standard) {
        for (const Library::TypeEntry& entry : m_standard->types) {
            CheckIdentity(entry.Common());
            m_interfaces[entry.Common().name] = entry.interface_.get();
            m_defined.insert(entry.interface_.get());
        }
    }
    UINT index = 0;
    for (Library::TypeEntry& entry : m_library.types) {
        CheckIdentity(entry.Common());
        if (entry.interface_) {
            entry.interface_->index = index;
            m_interfaces[entry.interface_->name] = entry.interface_.get();
        } else {
            entry.coclass->index = index;
        }
        ++index;
    }
}

void Checker::CheckIdentity(const Entry& entry) {
    if (!m_names.insert(entry.name).second) Fail(entry.where, "The name '" + entry.name + "' is taken.");
    if (!entry.hasGuid) Fail(entry.where, "'" + entry.name + "' has no uuid.");
    if (!m_guids.insert(GuidText(entry.guid)).second) {
        Fail(entry.where, "The uuid of '" + entry.name + "' is taken.");
    }
}

void Checker::ResolveBase(Interface& interface_) {
    if (interface_.baseName.empty()) {
        // Every table begins with the same three methods; only they themselves stand on nothing.
        if (interface_.name != "IUnknown") Fail(interface_.where, "'" + interface_.name + "' has no base interface.");
        return;
    }
    const auto found = m_interfaces.find(interface_.baseName);
    if (found == m_interfaces.end() || m_defined.count(found->second) == 0) {
        Fail(interface_.baseWhere,
             "The base interface '" + interface_.baseName + "' is not defined before this place.");
    }
    interface_.base = found->second;
    if (interface_.Level() > kMostBases) Fail(interface_.where, "'" + interface_.name + "' has too many bases.");
    if (interface_.baseName == "IDispatch" || interface_.base->IsDispatch()) {
        interface_.flags |= TYPEFLAG_FDISPATCHABLE;
    }
}

void Checker::CheckInterface(Interface& interface_) {
    ResolveBase(interface_);
    if (interface_.Slots() > kMostSlots) Fail(interface_.where, "'" + interface_.name + "' has too many methods.");
    unsigned index = 0;
    for (Method& method : interface_.methods) {
        if (!method.hasId) {
            method.id = kFirstAssignedId | static_cast<MEMBERID>(interface_.Level() << 16 | index);
        }
        method.slot = interface_.Slots() - static_cast<unsigned>(interface_.methods.size()) + index;
        ++index;
        CheckMethod(interface_, method);
    }
    m_defined.insert(&interface_);
}

void Checker::CheckMethod(const Interface& interface_, Method& method) {
    CheckResult(interface_, method);
    CheckParameters(interface_, method);
    CheckAccessor(method);
    for (const Interface* other = &interface_; other; other = other->base) CheckUnique(interface_, method, *other);
}

void Checker::CheckResult(const Interface& interface_, const Method& method) {
    const bool root = !interface_.base && method.result.vt == VT_UI4;
    if ((method.result.vt != VT_HRESULT && !root) || method.result.pointers != 0) {
        Fail(method.result.where, "The method '" + method.name + "' does not return HRESULT.");
    }
}

void Checker::ResolveType(Type& type) {
    if (type.vt == VT_HRESULT) Fail(type.where, "HRESULT is the type of a method's result only.");
    if (type.vt != VT_USERDEFINED) {
        if (type.pointers == 0 && (type.vt == VT_VOID || type.vt == VT_VARIANT)) {
            Fail(type.where, "'" + type.name + "' is passed by pointer only.");
        }
        if (type.pointers > 2) Fail(type.where, "A type has two pointers at most.");
        return;
    }
    if (type.pointers == 0) Fail(type.where, "The interface '" + type.name + "' is passed by pointer only.");
    if (type.pointers > 2) Fail(type.where, "A type has two pointers at most.");
    const auto found = m_interfaces.find(type.name);
    if (found == m_interfaces.end()) {
        Fail(type.where, "The interface '" + type.name + "' is declared and never defined.");
    }
    if (type.name == "IUnknown" || type.name == "IDispatch") {
        type.vt = type.name == "IUnknown" ? VT_UNKNOWN : VT_DISPATCH;
        --type.pointers;
    } else {
        type.target = found->second;
    }
}

void Checker::CheckParameters(const Interface& interface_, Method& method) {
    if (method.parameters.size() > kMostParameters) {
        Fail(method.where, "The method '" + method.name + "' has more than nine parameters.");
    }
    std::set<std::string, NoCase> names;
    for (Parameter& parameter : method.parameters) {
        if (!names.insert(parameter.name).second) {
            Fail(parameter.where, "The parameter name '" + parameter.name + "' is taken.");
        }
        ResolveType(parameter.type);
        if (interface_.automation && !CanBeMarshalled(parameter.type)) {
            Fail(parameter.type.where, "The system cannot marshal the type '" + TypeText(parameter.type) +
                                           "', which an oleautomation interface needs.");
        }
        const unsigned own = parameter.type.vt == VT_USERDEFINED ? 1 : 0;
        if ((parameter.flags & PARAMFLAG_FOUT) != 0 && parameter.type.pointers <= own) {
            Fail(parameter.where, "The [out] parameter '" + parameter.name + "' has no pointer to write through.");
        }
        if ((parameter.flags & PARAMFLAG_FRETVAL) == 0) continue;
        if (&parameter != &method.parameters.back() ||
            (parameter.flags & (PARAMFLAG_FIN | PARAMFLAG_FOUT)) != PARAMFLAG_FOUT) {
            Fail(parameter.where, "The [retval] parameter '" + parameter.name + "' is not the last one, [out] only.");
        }
    }
}

void Checker::CheckAccessor(const Method& method) {
    if (method.kind == INVOKE_FUNC) return;
    const bool returns = !method.parameters.empty() && (method.parameters.back().flags & PARAMFLAG_FRETVAL) != 0;
    if (method.kind == INVOKE_PROPERTYGET && !returns) {
        Fail(method.where, "The propget method '" + method.name + "' has no [retval] parameter.");
    }
    if (method.kind != INVOKE_PROPERTYGET && (method.parameters.empty() || returns)) {
        Fail(method.where, "The method '" + method.name + "' has no last parameter that takes the property's value.");
    }
    if (!method.hasId) Fail(method.where, "The property '" + method.name + "' has no id for its methods to share.");
}

void Checker::CheckUnique(const Interface& owner, const Method& method, const Interface& other) {
    for (const Method& earlier : other.methods) {
        if (&earlier == &method) return;
        const bool sameName = SameName(earlier.name, method.name);
        const bool sameId = earlier.id == method.id;
        if (!sameName && !sameId) continue;
        // The methods of one property share both.
        const bool property = &other == &owner && sameName && sameId && earlier.kind != INVOKE_FUNC &&
                              method.kind != INVOKE_FUNC && earlier.kind != method.kind;
        if (property) continue;
        if (sameName) Fail(method.where, "The method name '" + method.name + "' is taken.");
        Fail(method.where, "The id of the method '" + method.name + "' is that of '" + earlier.name + "'.");
    }
}

void Checker::CheckClass(CoClass& coclass) {
    std::set<const Interface*> seen;
    int defaults = 0;
    int sourceDefaults = 0;
    for (Implemented& implemented : coclass.interfaces) {
        const auto found = m_interfaces.find(implemented.name);
        if (found == m_interfaces.end()) {
            Fail(implemented.where, "The interface '" + implemented.name + "' is not known.");
        }
        implemented.interface_ = found->second;
        if (!seen.insert(found->second).second) {
            Fail(implemented.where, "The interface '" + implemented.name + "' stands twice in the coclass.");
        }
        if ((implemented.flags & IMPLTYPEFLAG_FDEFAULT) == 0) continue;
        int& count = (implemented.flags & IMPLTYPEFLAG_FSOURCE) != 0 ? sourceDefaults : defaults;
        if (++count > 1) Fail(implemented.where, "The coclass has another default interface already.");
    }
    if (defaults == 0) Fail(coclass.where, "The coclass '" + coclass.name + "' has no default interface.");
}

}  // namespace wnplatform::typelib
