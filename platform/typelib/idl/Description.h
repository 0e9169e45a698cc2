// Interface descriptions, as the build tool reads them.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/typelib/Tables.h"

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

// The library that the text describes, behind the one of IUnknown and IDispatch. Throws DescriptionError for whatever
// it does not understand or accept.
Tables Read(std::string_view text);

}  // namespace wnplatform::typelib
