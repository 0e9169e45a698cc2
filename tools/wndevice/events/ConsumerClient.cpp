#include "tools/wndevice/events/ConsumerClient.h"

#include <chrono>

#include "tools/wndevice/server/Connection.h"

namespace wndevice {
namespace {

constexpr std::size_t kLongestHead = 65536;  // bytes
constexpr std::chrono::seconds kSilence{2};
constexpr std::chrono::seconds kWholeTime{4};

// Brackets belong to addresses, not to hosts.
std::string Bare(const std::string& host) { return host.front() == '[' ? host.substr(1, host.size() - 2) : host; }

}  // namespace

ConsumerClient::ConsumerClient(const wncom::http::HttpAddress& consumer)
    : ClientImpl(Bare(consumer.host), static_cast<int>(consumer.port)),
      m_path(consumer.path.substr(0, consumer.path.find('#'))) {
    set_connection_timeout(kSilence);
    set_read_timeout(kSilence);
    set_write_timeout(kSilence);
    set_tcp_nodelay(true);
    set_url_encode(false);
}

bool ConsumerClient::Post(const std::string& document) {
    httplib::Request request;
    request.method = "POST";
    request.path = m_path;
    request.headers = {{"Content-Type", "application/xml; charset=utf-8"}, {"User-Agent", "wndevice"}};
    request.body = document;
    int status = 0;
    request.response_handler = [&](const httplib::Response& answer) {
        status = answer.status;
        return false;
    };
    httplib::Response answer;
    httplib::Error error{};
    send(request, answer, error);
    return status >= 200 && status <= 299;
}

bool ConsumerClient::process_socket(const Socket& socket, std::function<bool(httplib::Stream&)> exchange) {
    Connection connection(socket.sock);
    connection.LimitHead(kWholeTime, kLongestHead);
    return exchange(connection);
}

}  // namespace wndevice
