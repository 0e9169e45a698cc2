// Reading request bodies to their end, whatever the answer will be: an unread rest would be taken for the
// connection's next request.
#pragma once

#include <httplib.h>

#include <cstddef>
#include <functional>
#include <string>

namespace wndevice {

// Sets an answer of one sentence.
void Tell(httplib::Response& answer, int status, const std::string& sentence);

// Sets an answer that is an XML document.
void TellXml(httplib::Response& answer, int status, const std::string& document);

// Hands the body to the sink in pieces; a sink that throws does not stop the reading, its failure comes at the end.
// False when there is no body to be had (no length given, a form, or cut off): the answer then says so.
bool ReadBody(const httplib::Request& request, httplib::Response& answer, const httplib::ContentReader& reader,
              const std::function<void(const char*, std::size_t)>& sink);

// The whole body as a text; false as above, and with 413 when it is longer than the limit in bytes.
bool ReadText(const httplib::Request& request, httplib::Response& answer, const httplib::ContentReader& reader,
              std::size_t limit, std::string& text);

// Reads the body, if there is one, and forgets it.
void SkipBody(const httplib::Request& request, const httplib::ContentReader& reader);

}  // namespace wndevice
