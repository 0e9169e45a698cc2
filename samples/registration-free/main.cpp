// A client of modules that nobody has registered: its manifest tells Windows where their classes are. It takes an
// agent of a service, which needs the classes of both modules, and submits a job: wnRegistrationFreeClient ADDRESS.
// The address may hold ASCII only. Where the catalogue and the transport libraries lie the library reads in the
// registry here too ("wn directories").
#include <exception>
#include <iostream>
#include <string>

#include "samples/client/Client.h"

namespace {

void Run(std::string_view address) {
    const std::basic_string<OLECHAR> wide(address.begin(), address.end());
    sample::ShowSubmission(sample::NewAgent(OLESTR("sample-device"), wide.c_str()), std::cout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: wnRegistrationFreeClient ADDRESS\n";
        return 2;
    }
    int status = 0;
    try {
        sample::Check(CoInitialize(nullptr), "CoInitialize");
        Run(argv[1]);
    } catch (const std::exception& failure) {
        std::cerr << "wnRegistrationFreeClient: " << failure.what() << "\n";
        status = 1;
    }
    CoUninitialize();
    return status;
}
