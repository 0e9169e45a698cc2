// What a subscriber needs of an event subscription document.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace wncom {

// Reads subscription documents through the XML simple accessor, which must be registered; COM must be initialised on
// the calling thread. A document is what the accessor's LoadXML takes: the XML text or the path of a file.
//
// Results are narrow texts in the C locale, owned by the processor; they live until the next call of the same
// operation or the processor's end. A failure is logged and gives null; nothing is thrown. A processor is used by one
// thread at a time.
class EventXMLProcessor {
public:
    EventXMLProcessor() = default;
    EventXMLProcessor(const EventXMLProcessor&) = delete;
    EventXMLProcessor& operator=(const EventXMLProcessor&) = delete;

    // Three texts: the event's name, the reliability option, the client cookie. A text is null when the document has
    // no such element, or an empty one, or one that the C locale cannot say.
    char** getSubContent(BSTR document) noexcept;
    // The filters as name, value, name, value, ..., null. A document without filters, and one whose names and values
    // do not pair up, is a failure. A ";" in a name or value separates two.
    char** getFilterContent(BSTR document) noexcept;

private:
    // An array whose first texts, so many, are owned.
    template <std::size_t Owned>
    struct FreeTexts {
        void operator()(char** texts) const noexcept {
            for (std::size_t i = 0; i < Owned; ++i) std::free(texts[i]);
            delete[] texts;
        }
    };

    // As handed out.
    std::unique_ptr<char*[], FreeTexts<3>> mSubContent;
    // All names as one text, cut into pieces, all values likewise, then what is handed out.
    std::unique_ptr<char*[], FreeTexts<2>> mFilterContent;
};

}  // namespace wncom
