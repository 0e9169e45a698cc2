#include "tools/wn/core/Address.h"

#include <CLI/CLI.hpp>
#include <stdexcept>

#include "libraries/http/shared/HttpAddress.h"

namespace wn {
namespace {

// The part between "://", where there is one, and the path: [user[:password]@]host[:port].
std::string Authority(const std::string& address) {
    const std::size_t scheme = address.find("://");
    const std::size_t start = scheme == std::string::npos ? 0 : scheme + 3;
    return address.substr(start, address.find_first_of("/\\?#", start) - start);
}

}  // namespace

CLI::Validator ServiceAddress() {
    return {[](const std::string& address) -> std::string {
                if (address.empty()) return "must not be empty";
                if (Authority(address).find('@') == std::string::npos) return {};
                return "must not hold a user or a password: addresses are written to logs";
            },
            ""};
}

CLI::Validator HttpAddress() {
    return {[](const std::string& address) -> std::string {
                try {
                    wncom::http::ParseHttpAddress(address);
                    return {};
                } catch (const std::invalid_argument& problem) {
                    return problem.what();
                }
            },
            ""};
}

}  // namespace wn
