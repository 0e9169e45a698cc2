// Finds the two addresses in a service's answer to a job submission.
#pragma once

#include <windows.h>

#include <string_view>

#include "wncom/Bstr.h"

namespace wncom {

using WideView = std::basic_string_view<WCHAR>;

// Where a job's data is to go, as the transport description takes it.
struct DataAddress {
    Bstr address;  // null when the answer names none
    LONG addressType = -1;
    LONG deliveryMethod = -1;
};

// Looks for the value that a keyword introduces: the text of the element that the keyword opens or, when an
// attribute is given, that attribute's quoted value; with an absent keyword, the first such attribute of the first
// tag. The answer is scanned as text and need not be well-formed XML. Null when nothing is found, and for an
// answer without data. Throws std::bad_alloc.
Bstr ParseSubmitResponse(WideView response, const WCHAR* keyword, const WCHAR* attribute);

// The data address, under "PostURI" or else "sinkURI".
DataAddress ParseSubmitResponse4URI(WideView response);

// The job's own address, under "JobUri"; null when the answer names none.
Bstr ParseSubmitResponse4JobURI(WideView response);

}  // namespace wncom
