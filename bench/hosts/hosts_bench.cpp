// What operations cost on this host: prints a line "nanoseconds name" for each. The same program runs on every host,
// so that what the layer costs can be held against a Windows.
#include <windows.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "bench/PairedRatio.h"
#include "bench/Require.h"
#include "bench/road/Road.h"
#include "common/logging/LoggingInternals.h"
#include "tests/support/Com.h"
#include "tests/support/Host.h"
#include "tests/support/TestHome.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom::test {

const std::string& HomePath() {
    static const std::string path = MakeHome();
    return path;
}

}  // namespace wncom::test

namespace wncom::bench {
namespace {

using namespace wncom::test;

constexpr std::size_t kSlices = 5;
constexpr const char* kKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";

// The median of some slices of a number of operations each, after one that warms up.
void Measure(const char* name, std::size_t operations, const std::function<void()>& operation) {
    std::vector<double> times;
    for (std::size_t slice = 0; slice <= kSlices; ++slice) {
        const auto run = [&] {
            for (std::size_t i = 0; i < operations; ++i) operation();
        };
        const double time = TimeOf(run);
        if (slice != 0) times.push_back(time / static_cast<double>(operations));
    }
    std::printf("%.0f %s\n", Quantile(times, 0.5), name);
}

void MeasureSubmissions(const char* name, const Road& road) {
    const Bstr ticket = Text("<ticket>" + std::string(1007, 't') + "</ticket>");
    Measure(name, 200, [&] {
        CPComPtr<IUnknown> answer;
        Require(road.agent().SendIntentTicket(ticket.get(), answer.put()) == S_OK, "a submission failed");
    });
}

void MeasureRoad() {
    {
        const Road road("none");
        MeasureSubmissions("a submission of 1 KB, logging off", road);
        Measure("an agent's creation and end", 200, [] { Road::MakeAgent(); });
    }
    const Road road("file," + HomePath() + "/road.log,3");
    MeasureSubmissions("a submission of 1 KB, level 3 to a file", road);
}

void MeasureLogger() {
    Require(InitLogging(3, LogDestination::File, (HomePath() + "/line.log").c_str(), 0) == 3, "no log");
    Measure("a log line of level 3 to a file", 2000,
            [] { Log(3, "calling %s on mJobControl for the service at %s\n", "SubmitJob", "http://127.0.0.1"); });
    CloseLogging();
}

void MeasureMutex() {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, "wnCOM bench");
    Require(mutex != nullptr, "no mutex");
    Measure("WaitForSingleObject and ReleaseMutex", 5000, [&] {
        WaitForSingleObject(mutex, INFINITE);
        ReleaseMutex(mutex);
    });
    CloseHandle(mutex);
}

void MeasureCom() {
    const LoadedModule components(ProgramFolder() + "/wnComponents.dll");
    const Apartment apartment;
    const auto kept = Create<IXMLSimpleAccessor>(kProgIdXMLSimpleAccessor);
    CLSID clsid = {};
    Measure("CLSIDFromProgID", 1000,
            [&] { Require(SUCCEEDED(CLSIDFromProgID(kProgIdXMLSimpleAccessor, &clsid)), "no class"); });
    Measure("CoCreateInstance of a component and its end", 1000, [&] {
        CPComPtr<IXMLSimpleAccessor> object;
        CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IXMLSimpleAccessor::kIid, object.put_void());
        Require(object.get() != nullptr, "no component");
    });
    Measure("DllRegisterServer of the components", 1,
            [&] { Require(SUCCEEDED(components.Call("DllRegisterServer")), "no registration"); });
}

void MeasureRegistry() {
    Measure("RegOpenKeyExA, RegQueryValueExA and RegCloseKey", 2000,
            [] { Require(RegistryValue(HKEY_LOCAL_MACHINE, kKey, "builddllpath") != "(absent)", "no value"); });
    Measure("RegOpenKeyExA of an absent key", 2000,
            [] { Require(!RegistryKeyExists(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\absent"), "a key"); });
    std::size_t count = 0;
    Measure("RegCreateKeyExA, RegSetValueExA and RegCloseKey", 20,
            [&] { SetRegistryValue(kKey, "bench", std::to_string(++count)); });
}

void MeasureFiles() {
    const std::string settings = HomePath() + "/bench.ini";
    WriteWholeFile(settings, "[Cache]\nCapTicket=7\n");
    Measure("GetPrivateProfileIntA", 1000,
            [&] { Require(GetPrivateProfileIntA("Cache", "CapTicket", 0, settings.c_str()) == 7, "no setting"); });
    Measure("LoadLibraryA and FreeLibrary", 50,
            [] { const LoadedModule module(ProgramFolder() + "/wnSampleTransport.dll"); });
}

}  // namespace
}  // namespace wncom::bench

int main() {
    using namespace wncom;
    const std::string& home = test::HomePath();
    int result = 0;
    try {
        bench::MeasureRoad();
        bench::MeasureLogger();
        bench::MeasureMutex();
        bench::MeasureCom();
        bench::MeasureRegistry();
        bench::MeasureFiles();
    } catch (const std::exception& failure) {
        std::printf("failed: %s\n", failure.what());
        result = 1;
    }
    test::RemoveHome(home, false);
    return result;
}
