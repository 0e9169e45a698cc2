// Runs the examples against a service: wnSampleClient ADDRESS. The address may hold ASCII only; the modules are
// registered and the directories set beforehand ("wn register", "wn directories").
#include <exception>
#include <iostream>

#include "samples/client/Client.h"

namespace {

// COM on this thread; every object is gone before it ends.
class Apartment {
public:
    Apartment() { sample::Check(CoInitialize(nullptr), "CoInitialize"); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

void Run(std::string_view address) {
    const Apartment apartment;
    const std::basic_string<OLECHAR> wide(address.begin(), address.end());
    const auto agent = sample::NewAgent(OLESTR("sample-device"), wide.c_str());
    sample::ShowSubmission(agent, std::cout);
    sample::ShowJobs(agent, std::cout);
    sample::ShowSessions(agent, std::cout);
    sample::ShowDeviceData(agent, std::cout);
    sample::ShowEvents(agent, std::cout);
    sample::ShowEventTickets(agent, std::cout);
    sample::ShowSessions(sample::NewAgentByHand(OLESTR("sample-device"), wide.c_str()), std::cout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: wnSampleClient ADDRESS\n";
        return 2;
    }
    try {
        Run(argv[1]);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "wnSampleClient: " << failure.what() << "\n";
        return 1;
    }
}
