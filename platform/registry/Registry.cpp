#include "platform/registry/Registry.h"

#include "platform/registry/RegistryHandles.h"
#include "platform/text/Texts.h"

namespace wnplatform {

std::optional<std::string> ReadRegistryText(HKEY root, std::string_view path, std::string_view valueName) {
    const RegistryView view = ViewRegistry();
    if (view.status != ERROR_SUCCESS) return std::nullopt;
    const OpenedKey opened = ResolveKey(view, root);
    if (opened.status != ERROR_SUCCESS) return std::nullopt;
    const RegistryKey* const key = opened.key->Descend(path);
    const RegistryValue* const value = key ? key->Value(valueName) : nullptr;
    if (!value || !value->isPlainText) return std::nullopt;
    return value->data;
}

std::uint64_t RegistryVersion() { return ViewRegistry().version; }

RegistryName::RegistryName(LPCSTR narrow) {
    if (!narrow) return;
    m_text = narrow;
    if (IsAscii(m_text)) return;
    m_converted = Utf8FromNarrow(m_text);
    m_text = m_converted;
}

}  // namespace wnplatform
