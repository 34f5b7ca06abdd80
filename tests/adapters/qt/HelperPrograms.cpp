#include "adapters/qt/HelperPrograms.h"

#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtSettingsStore.h"

namespace sonavex {
namespace {

constexpr const char* kThisProgram = "/proc/self/exe";
constexpr const char* kCounting = "--helper-count-settings";
constexpr const char* kRewriting = "--helper-rewrite-settings";
constexpr const char* kInstance = "--helper-instance";

int Count(const std::string& settings, const std::string& key, int count) {
    QtSettingsStore store(settings);
    for (int number = 1; number <= count; ++number) {
        store.Save("Counter", key, std::to_string(number));
        if (!store.Write()) return 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return 0;
}

int Rewrite(const std::string& settings) {
    QtSettingsStore store(settings);
    int number = std::stoi(store.Get("Signal Generator", RewrittenKey(0), "0"));
    while (true) {
        ++number;
        store.DeleteSection("Signal Generator");
        for (int i = 0; i < kRewrittenKeys; ++i)
            store.Save("Signal Generator", RewrittenKey(i), std::to_string(number));
        if (!store.Write()) return 1;
    }
}

int Stay(const std::string& instanceName) {
    QtDesktop desktop(instanceName);
    std::cout << (desktop.AnotherInstanceRunning() ? "another" : "alone") << std::endl;
    pause();
    return 0;
}

}  // namespace

std::string RewrittenKey(int index) {
    return "Memory Signal Start " + std::to_string(index);
}

Arguments CountingProgram(const std::filesystem::path& settings, const std::string& key, int count) {
    return {kThisProgram, kCounting, settings, key, std::to_string(count)};
}

Arguments RewritingProgram(const std::filesystem::path& settings) {
    return {kThisProgram, kRewriting, settings};
}

Arguments InstanceProgram(const std::string& instanceName) {
    return {kThisProgram, kInstance, instanceName};
}

std::optional<int> RunHelperProgram(int argc, char** argv) {
    const Arguments commandLine(argv, argv + argc);
    if (argc < 3 || commandLine[1].rfind("--helper-", 0) != 0) return std::nullopt;
    const QCoreApplication application(argc, argv);
    if (commandLine[1] == kCounting && commandLine.size() == 5)
        return Count(commandLine[2], commandLine[3], std::stoi(commandLine[4]));
    if (commandLine[1] == kRewriting) return Rewrite(commandLine[2]);
    if (commandLine[1] == kInstance) return Stay(commandLine[2]);
    return std::nullopt;
}

}  // namespace sonavex
