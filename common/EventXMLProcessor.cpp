#include "common/EventXMLProcessor.h"

#include <cstring>
#include <new>

#include "common/CPWStringBuffer.h"
#include "common/Guard.h"
#include "common/MallocText.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/Logging.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom {
namespace {

using Accessor = CPComPtr<IXMLSimpleAccessor>;

constexpr char kDelimiter[] = ";";
constexpr std::size_t kAnswerSize = 4096;  // in characters

HRESULT Load(Accessor& accessor, BSTR document) noexcept {
    const HRESULT status = accessor.CreateInstance(kProgIdXMLSimpleAccessor);
    if (FAILED(status)) return status;
    // A creation may succeed with nothing.
    return accessor ? Guarded([&] { return accessor->LoadXML(document); }) : E_FAIL;
}

HRESULT SetDelimiter(const Accessor& accessor) noexcept {
    const Bstr delimiter(OLESTR(";"));
    return Guarded([&] { return delimiter ? accessor->SetDelimiter(delimiter.get()) : E_OUTOFMEMORY; });
}

// An unanswered query is no failure; it leaves the answer empty.
HRESULT Ask(const Accessor& accessor, const OLECHAR* query, CPBstrBuffer& answer) noexcept {
    const Bstr text(query);
    const HRESULT status =
        Guarded([&] { return text ? accessor->GetXML(text.get(), 0, answer.put()) : E_OUTOFMEMORY; });
    // A text that comes with "no match" does not count.
    if (status == S_FALSE) answer.Free();
    return status;
}

// The next piece between delimiters that is not empty, cut off in place; null at the end.
char* NextPiece(char*& rest) noexcept {
    char* piece = rest + std::strspn(rest, kDelimiter);
    if (*piece == 0) return nullptr;
    rest = piece + std::strcspn(piece, kDelimiter);
    if (*rest != 0) *rest++ = 0;
    return piece;
}

// 0 for null.
std::size_t CountPieces(const char* text) noexcept {
    const MallocText<char> copy(_strdup(text));
    char* rest = copy.get();
    std::size_t count = 0;
    while (rest && NextPiece(rest)) ++count;
    return count;
}

// Into every second place.
void StorePieces(char* text, char** places) noexcept {
    while (char* piece = NextPiece(text)) {
        *places = piece;
        places += 2;
    }
}

}  // namespace

char** EventXMLProcessor::getSubContent(BSTR document) noexcept {
    mSubContent.reset();
    Accessor accessor;
    if (FAILED(Load(accessor, document))) {
        WNCOM_LOG(1, "EventXMLProcessor::getSubContent(), unable to load XML");
        return nullptr;
    }
    if (FAILED(SetDelimiter(accessor))) {
        WNCOM_LOG(1, "EventXMLProcessor::getSubContent(), unable to set delimiter");
        return nullptr;
    }
    CPBstrBuffer answers[] = {CPBstrBuffer(kAnswerSize), CPBstrBuffer(kAnswerSize), CPBstrBuffer(kAnswerSize)};
    mSubContent.reset(new (std::nothrow) char*[3]());
    HRESULT status = S_OK;
    if (!mSubContent) {
        WNCOM_LOG(1, "EventXMLProcessor::getSubContent(), unable to allocate strings");
        status = E_FAIL;
    }
    // Once one has failed the rest are not asked for, but each says so.
    const auto obtain = [&](int index, const OLECHAR* query) noexcept {
        if (SUCCEEDED(status) && FAILED(Ask(accessor, query, answers[index]))) status = E_FAIL;
        if (SUCCEEDED(status)) mSubContent[static_cast<std::size_t>(index)] = _strdup(answers[index].GetMultiByte());
        return SUCCEEDED(status);
    };
    if (!obtain(0, OLESTR("./EventName"))) {
        WNCOM_LOG(1, "EventXMLProcessor::getSubContent(), unable to get event name");
    }
    if (!obtain(1, OLESTR("./ReliabilityOption"))) {
        WNCOM_LOG(1, "EventXMLProcessor::getSubContent(), unable to get reliability options");
    }
    if (!obtain(2, OLESTR("./ClientCookie"))) {
        WNCOM_LOG(1, "EventXMLProcessor::getSubContent(), unable to get cookie");
    }
    return SUCCEEDED(status) ? mSubContent.get() : nullptr;
}

char** EventXMLProcessor::getFilterContent(BSTR document) noexcept {
    mFilterContent.reset();
    Accessor accessor;
    if (FAILED(Load(accessor, document))) {
        WNCOM_LOG(1, "EventXMLProcessor::getFilterContent(), unable to load XML");
        return nullptr;
    }
    if (FAILED(SetDelimiter(accessor))) {
        WNCOM_LOG(1, "EventXMLProcessor::getFilterContent(), unable to set delimiter");
        return nullptr;
    }
    CPBstrBuffer names(kAnswerSize);
    if (FAILED(Ask(accessor, OLESTR("./FilterOn/Name"), names))) {
        WNCOM_LOG(1, "EventXMLProcessor::getFilterContent(), unable to get name");
        return nullptr;
    }
    CPBstrBuffer values(kAnswerSize);
    if (FAILED(Ask(accessor, OLESTR("./FilterOn/Value"), values))) {
        WNCOM_LOG(1, "EventXMLProcessor::getFilterContent(), unable to get values");
        return nullptr;
    }
    const char* narrowNames = names.GetMultiByte();
    const std::size_t count = CountPieces(narrowNames);
    const char* narrowValues = count == 0 ? nullptr : values.GetMultiByte();
    if (count == 0 || count != CountPieces(narrowValues)) {
        WNCOM_LOG(1, "EventXMLProcessor::getFilterContent(), number of names and values don't match!");
        return nullptr;
    }
    mFilterContent.reset(new (std::nothrow) char*[2 * count + 3]());
    if (!mFilterContent) return nullptr;
    mFilterContent[0] = _strdup(narrowNames);
    mFilterContent[1] = _strdup(narrowValues);
    char** pairs = mFilterContent.get() + 2;
    if (mFilterContent[0] && mFilterContent[1]) {
        StorePieces(mFilterContent[0], pairs);
        StorePieces(mFilterContent[1], pairs + 1);
    }
    return pairs;
}

}  // namespace wncom
