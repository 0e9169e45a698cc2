#include "tools/wndevice/server/Faults.h"

#include <httplib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace wndevice {
namespace {

enum class Value { None, Number, Text, File };

struct Kind {
    std::string_view name;
    Value value;
    const char* help;
};

constexpr std::array<std::string_view, 15> kOperations = {"session",
                                                          "end",
                                                          "capabilities",
                                                          "submit",
                                                          "data",
                                                          "job",
                                                          "read",
                                                          "write",
                                                          "events",
                                                          "properties",
                                                          "event-capabilities",
                                                          "subscribe",
                                                          "subscribe-ticket",
                                                          "renew",
                                                          "cancel"};
constexpr std::array<Kind, 8> kKinds = {{
    {"status", Value::Number, "status=CODE      answers with this HTTP status and a text"},
    {"close", Value::None, "close            closes the connection without an answer"},
    {"lost-answer", Value::None, "lost-answer      does the work, then closes the connection, the first time only"},
    {"hang", Value::Number, "hang=SECONDS     waits before it does the work"},
    {"cut", Value::Number, "cut=BYTES        promises one byte more than it sends"},
    {"size", Value::Number, "size=BYTES       answers with a body of this size"},
    {"body", Value::File, "body=FILE        answers with the file as its body"},
    {"type", Value::Text, "type=TYPE        answers with another content type"},
}};

void FillTo(httplib::Response& answer, std::size_t promised, std::size_t sent) {
    answer.status = 200;
    answer.set_content_provider(
        promised, "application/xml", [sent](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
            const std::size_t count = std::min({length, sent - std::min(sent, offset), std::size_t{65536}});
            return count != 0 && sink.write(std::string(count, ' ').data(), count);
        });
}

std::string WholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::invalid_argument("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

void Faults::Add(const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::size_t equals = text.find('=');
    const std::string operation = text.substr(0, colon);
    if (colon == std::string::npos ||
        std::find(kOperations.begin(), kOperations.end(), operation) == kOperations.end()) {
        throw std::invalid_argument("fault \"" + text + "\" names an unknown operation");
    }
    Fault fault;
    fault.kind = text.substr(colon + 1, equals == std::string::npos ? equals : equals - colon - 1);
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& k) { return k.name == fault.kind; });
    if (kind == kKinds.end()) throw std::invalid_argument("fault \"" + text + "\" is of an unknown kind");
    if ((kind->value == Value::None) != (equals == std::string::npos)) {
        throw std::invalid_argument("fault \"" + text + "\" needs a value, or takes none");
    }
    if (equals != std::string::npos) fault.text = text.substr(equals + 1);
    if (kind->value == Value::Number) {
        const char* const end = fault.text.data() + fault.text.size();
        const auto read = std::from_chars(fault.text.data(), end, fault.number);
        if (read.ec != std::errc() || read.ptr != end) {
            throw std::invalid_argument("the value of fault \"" + text + "\" is not a number");
        }
    }
    if (kind->value == Value::File) fault.text = WholeFile(fault.text);
    m_faults.emplace(operation, std::move(fault));
}

bool Faults::Before(const std::string& operation, httplib::Response& answer) {
    if (const Fault* hang = Find(operation, "hang")) {
        std::unique_lock guard(m_lock);
        m_change.wait_for(guard, std::chrono::seconds(hang->number), [&] { return m_ending; });
    }
    if (const Fault* status = Find(operation, "status")) {
        answer.status = static_cast<int>(status->number);
        answer.set_content("a fault on request\n", "text/plain; charset=utf-8");
        return true;
    }
    if (const Fault* cut = Find(operation, "cut")) {
        FillTo(answer, cut->number + 1, cut->number);
        return true;
    }
    if (const Fault* size = Find(operation, "size")) {
        FillTo(answer, size->number, size->number);
        return true;
    }
    return false;
}

void Faults::After(const std::string& operation, httplib::Response& answer) const {
    if (const Fault* body = Find(operation, "body")) answer.body = body->text;
    if (const Fault* type = Find(operation, "type")) {
        answer.headers.erase("Content-Type");
        answer.set_header("Content-Type", type->text);
    }
}

void Faults::EndWaits() {
    const std::lock_guard guard(m_lock);
    m_ending = true;
    m_change.notify_all();
}

std::string Faults::Help() {
    std::string help = "Faults for tests, written OPERATION:KIND. Operations:";
    for (const std::string_view operation : kOperations) help.append(" ").append(operation);
    help += ". Kinds:\n";
    for (const Kind& kind : kKinds) help.append("  ").append(kind.help).append("\n");
    return help;
}

const Faults::Fault* Faults::Find(const std::string& operation, const char* kind) const {
    const auto [first, last] = m_faults.equal_range(operation);
    const auto found = std::find_if(first, last, [&](const auto& entry) { return entry.second.kind == kind; });
    return found == last ? nullptr : &found->second;
}

bool Faults::LosesAnswer(const std::string& operation) {
    const std::lock_guard guard(m_lock);
    return Find(operation, "lost-answer") && m_lost.insert(operation).second;
}

}  // namespace wndevice
