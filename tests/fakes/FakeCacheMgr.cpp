#include "tests/fakes/FakeCacheMgr.h"

namespace wncom::test {
namespace {

// Out of memory must not look like another key.
std::string Utf8(LPCOLESTR text) {
    const Bstr copy(text);
    if (text && !copy) throw std::bad_alloc();
    return ToUtf8(copy.get());
}

std::string AnswerName(LPCOLESTR key) { return "XMLCacheMgr.FetchXML " + Utf8(key); }

}  // namespace

HRESULT FakeCacheMgr::PutXML(LPCOLESTR key, BSTR ticket, LONG seconds, LONG flags) {
    const std::string text = ToUtf8(ticket);
    return Do("XMLCacheMgr.PutXML", {Utf8(key), text, std::to_string(seconds), std::to_string(flags)}, [&] {
        Script().Answer(AnswerName(key), text);
        return S_OK;
    });
}

HRESULT FakeCacheMgr::FetchXML(LPCOLESTR key, LONG flags, BSTR* ticket) {
    *ticket = nullptr;
    return Do("XMLCacheMgr.FetchXML", {Utf8(key), std::to_string(flags)}, [&] {
        const std::optional<std::string> text = Script().AnswerOf(AnswerName(key));
        if (!text) return S_FALSE;
        *ticket = ToBstr(*text).detach();
        return S_OK;
    });
}

HRESULT FakeCacheMgr::RemoveXML(LPCOLESTR key) { return Do("XMLCacheMgr.RemoveXML", {Utf8(key)}); }

}  // namespace wncom::test
