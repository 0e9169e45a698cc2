#include "agent/Array2XML.h"

#include <cstdio>
#include <cstring>

#include "wncom/Logging.h"

namespace wncom {
namespace {

constexpr const char* kDocumentHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<%s>\n";
constexpr const char* kItemLine = "  <%s>%s</%s>\n";
constexpr const char* kDocumentEnd = "</%s>\n";
constexpr std::size_t kItemOverhead = 15;      // bytes beside the item and its element's two names
constexpr std::size_t kDocumentOverhead = 53;  // bytes beside the items and the root's two names

}  // namespace

MallocText<char> Array2XML(const char* const* list, const char* root, const char* element) noexcept {
    const std::size_t overhead = 2 * std::strlen(element) + kItemOverhead;
    std::size_t room = 2 * std::strlen(root) + kDocumentOverhead;
    for (const char* const* item = list; item && *item; ++item) room += std::strlen(*item) + overhead;

    MallocText<char> document(static_cast<char*>(std::malloc(room)));
    if (!document) {
        Log(1, "Array2XML malloc() failed\n");
        return nullptr;
    }
    // Each piece is written behind the one before it, so that the cost of an item does not grow with the list.
    std::size_t used = 0;
    const auto append = [&](const char* format, auto... names) {
        used += static_cast<std::size_t>(std::snprintf(document.get() + used, room - used, format, names...));
    };
    append(kDocumentHead, root);
    for (const char* const* item = list; item && *item; ++item) append(kItemLine, element, *item, element);
    append(kDocumentEnd, root);
    return document;
}

}  // namespace wncom
