// wndevice: a device service on loopback, for trying and testing transports.
#include <libxml/parser.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tools/wndevice/DeviceService.h"
#include "tools/wndevice/server/Faults.h"

namespace {

struct Options {
    int port = 0;
    std::filesystem::path store;
    std::filesystem::path portFile;
    std::string name = "wndevice";
    std::vector<std::string> faults;
    bool quiet = false;
};

volatile std::sig_atomic_t g_stop = 0;

extern "C" void HandleStop(int) { g_stop = 1; }

// Whoever waits for the file never reads half of it.
void WritePortFile(const std::filesystem::path& path, const std::string& address) {
    std::filesystem::path incoming = path;
    incoming += ".new";
    std::ofstream file(incoming, std::ios::trunc);
    file << address << '\n';
    file.close();
    if (!file) throw std::runtime_error("cannot write " + incoming.string());
    std::filesystem::rename(incoming, path);
}

void Serve(const Options& options) {
    xmlInitParser();  // not by two threads at once
    wndevice::Faults faults;
    for (const std::string& fault : options.faults) faults.Add(fault);
    wndevice::DeviceService service(options.name, options.store, faults, options.quiet);
    std::signal(SIGTERM, &HandleStop);
    std::signal(SIGINT, &HandleStop);

    const std::string address = service.Bind(options.port);
    if (!options.portFile.empty()) WritePortFile(options.portFile, address);
    std::printf("%s\n", address.c_str());
    std::fflush(stdout);

    std::thread server([&] { service.Run(); });
    // A handler may do no more than set a flag, and to ask for it now and then works on every host.
    while (g_stop == 0 && !service.HasEnded()) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    service.Stop();
    server.join();
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app(
        "A device service on loopback: takes sessions, intent tickets and job data over HTTP, keeps device data and "
        "sends events. It prints its service address and ends on SIGTERM or Ctrl-C.",
        "wndevice");
    app.add_option("--port", options.port, "Port of 127.0.0.1; 0 takes any free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--store", options.store, "Folder for the jobs and the device data, made when absent")->required();
    app.add_option("--port-file", options.portFile, "File that receives the service address");
    app.add_option("--name", options.name, "Device name in the capabilities ticket")->capture_default_str();
    app.add_option("--fault", options.faults, "A fault, such as submit:status=500; may be given again");
    app.add_flag("--quiet", options.quiet, "Log no requests");
    app.footer(wndevice::Faults::Help());
    CLI11_PARSE(app, argc, argv);
    try {
        Serve(options);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "wndevice: %s\n", failure.what());
        return 1;
    }
    return 0;
}
