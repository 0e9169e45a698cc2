#include "bridge/RemoteList.h"

#include <cstdlib>
#include <new>
#include <string>

#include "common/CodePageText.h"
#include "common/MallocText.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

LONG LengthOf(const RemoteArray* remote) noexcept {
    if (!remote) {
        Log(3, "%s in .\\OrbStuff @ line 460.\n", "RemoteArray->GetLength unexpected exception");
        return 0;
    }
    // The library that filled the list may have got its count wrong.
    return remote->GetElements() && remote->GetLength() > 0 ? remote->GetLength() : 0;
}

// Through UTF-16 and back, so that the agent gets only bytes that mean something in the code page.
MallocText<char> CopyElement(const CString& element) {
    const std::string text = Narrow(CP_ACP, Widen(CP_ACP, element));
    MallocText<char> copy(_strdup(text.c_str()));
    if (!copy) throw std::bad_alloc();
    return copy;
}

}  // namespace

void FreePCharArray(char** list) noexcept {
    if (!list) return;
    for (char** text = list; *text; ++text) std::free(*text);
    std::free(list);
}

LONG RemoteArrayPtrToPCharArray(const RemoteArray* remote, PCharArray* slot) noexcept {
    const TraceScope trace("RemoteArrayPtrToPCharArray", ".\\OrbStuff");
    const LONG length = LengthOf(remote);
    if (length == 0) return 0;
    PCharArray list(static_cast<char**>(std::calloc(static_cast<std::size_t>(length) + 1, sizeof(char*))));
    if (!list) return 0;
    try {
        for (LONG i = 0; i < length; ++i) {
            MallocText<char> copy = CopyElement(remote->GetElements()[i]);
            Log(3, "Element is %s\n", copy.get());
            char* const entry = copy.release();
            list[static_cast<std::size_t>(i)] = entry;
            Log(3, "Item %u: %s\n", static_cast<ULONG>(i), entry);
        }
    } catch (...) {
        return 0;
    }
    *slot = std::move(list);
    return length;
}

}  // namespace wncom
