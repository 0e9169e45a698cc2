// wndevice: a device service on loopback, for trying and testing transports.
#include <curl/curl.h>
#include <libxml/parser.h>
#include <pthread.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tools/wndevice/DeviceService.h"
#include "tools/wndevice/Faults.h"

namespace {

struct Options {
    int port = 0;
    std::filesystem::path store;
    std::filesystem::path portFile;
    std::string name = "wndevice";
    std::vector<std::string> faults;
    bool quiet = false;
};

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
    // Neither library may be started by two threads at once.
    xmlInitParser();
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) throw std::runtime_error("libcurl does not start");

    wndevice::Faults faults;
    for (const std::string& fault : options.faults) faults.Add(fault);
    wndevice::DeviceService service(options.name, options.store, faults, options.quiet);

    // Blocked here, before the service makes threads, so that only the waiting thread hears of them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    service.Bind(options.port);
    if (!options.portFile.empty()) WritePortFile(options.portFile, service.Address());
    std::printf("%s\n", service.Address().c_str());
    std::fflush(stdout);

    std::thread server([&] {
        service.Run();
        kill(getpid(), SIGTERM);  // a service that ends by itself ends the program too
    });
    int signal = 0;
    sigwait(&signals, &signal);
    service.Stop();
    server.join();
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app(
        "A device service on loopback: takes sessions, intent tickets and job data over HTTP, keeps device data and "
        "sends events. It prints its service address and ends on SIGTERM or SIGINT.",
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
