// Runs the instrument on the stepped card for days of sound, with all kinds of faults.

#include <CLI/CLI.hpp>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <random>

#include "system/endurance/Soak.h"

namespace {

using sonavex::Soak;

constexpr double kBlocksADay = 86400.0 * 48000.0 / 2048.0;

void Print(const Soak::Report& report, double seconds) {
    std::cout << std::setprecision(4) << report.blocks << " blocks, " << report.soundSeconds / 86400.0
              << " days of sound, in " << seconds << " s\n";
    for (std::size_t i = 0; i < Soak::kEvents; ++i)
        std::cout << "  " << report.events[i] << ' ' << Soak::Name(static_cast<Soak::Event>(i)) << '\n';
    std::cout << "  " << report.programStarts << " program starts, " << report.messages << " messages, "
              << report.losses << " losses reported, " << report.overruns << " overruns, "
              << report.segmentsLost << " segments lost\n  " << report.mostFrames
              << " frames captured by one start at most\n  " << report.checks
              << " checks of readings, largest errors " << report.worstPercent << " points and "
              << report.worstDb << " dB\n  heap in use " << report.warmBytes << " bytes at first, "
              << report.mostBytes << " at most\n"
              << std::flush;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Soak test of the instrument on the stepped simulated card"};
    double days = 30.0;
    std::uint64_t seed = std::random_device{}();
    std::uint64_t checkEvery = 20000;
    app.add_option("--days", days, "days of sound at 48000 Hz (30)");
    app.add_option("--seed", seed, "of everything that happens (default: a new one)");
    app.add_option("--check-every", checkEvery, "blocks between the checks of readings (20000)");
    double blocksPerEvent = 700.0;
    app.add_option("--blocks-per-event", blocksPerEvent, "on average (700)");
    bool leaveRunning = false;
    app.add_flag("--leave-running", leaveRunning, "no restarts of the program, so that its counts grow");
    CLI11_PARSE(app, argc, argv);
    std::cout << "seed " << seed << std::endl;

    const auto begin = std::chrono::steady_clock::now();
    const auto seconds = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    try {
        Soak soak(seed, blocksPerEvent);
        if (leaveRunning) soak.LeaveRunning();
        double nextPrint = 60.0;
        soak.OnCheck = [&] {
            if (seconds() < nextPrint) return;
            Print(soak.Result(), seconds());
            nextPrint = seconds() + 60.0;
        };
        soak.Run(static_cast<std::uint64_t>(days * kBlocksADay), checkEvery);
        Print(soak.Result(), seconds());
    } catch (const std::exception& error) {
        std::cout << "FAILED: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
