// Holds a description's parts against each other and fills in what follows from them.
#pragma once

#include <map>
#include <set>
#include <string>

#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

// Checks one library and resolves its names: bases, types, identifiers of members, slots and derived flags. The
// standard library is null for a description that brings in none. Throws DescriptionError.
class Checker {
public:
    Checker(Library& library, const Library* standard) : m_library(library), m_standard(standard) {}

    void Check();

private:
    struct NoCase {
        bool operator()(const std::string& a, const std::string& b) const noexcept;
    };

    void CollectNames();
    void CheckIdentity(const Entry& entry);
    void CheckInterface(Interface& interface_);
    void ResolveBase(Interface& interface_);
    void CheckMethod(const Interface& interface_, Method& method);
    void CheckResult(const Interface& interface_, const Method& method);
    void CheckParameters(const Interface& interface_, Method& method);
    void CheckAccessor(const Method& method);
    void CheckUnique(const Interface& owner, const Method& method, const Interface& other);
    void ResolveType(Type& type);
    void CheckClass(CoClass& coclass);

    Library& m_library;
    const Library* m_standard;
    std::map<std::string, const Interface*> m_interfaces;
    std::set<const Interface*> m_defined;
    std::set<std::string, NoCase> m_names;
    std::set<std::string> m_guids;
};

}  // namespace wnplatform::typelib
