#include "system/safety/Confined.h"

#include <linux/audit.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <iostream>
#include <string>

#include "support/Files.h"

namespace sonavex {
namespace {

constexpr const char* kConfinedCommand = "--confined";
constexpr int kFirstWord = 5;  // first word of the program's own command line
constexpr int kCannot = 126;

bool LimitFiles(unsigned long bytes) {
    if (bytes == 0) return true;
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

bool GiveUpPower() {
    if (geteuid() != 0) return true;
    for (const int power : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER})
        if (prctl(PR_CAPBSET_READ, power, 0, 0, 0) == 1 && prctl(PR_CAPBSET_DROP, power, 0, 0, 0) != 0)
            return false;
    return true;
}

bool ForbidInternet() {
    const auto load = [](std::size_t offset) {
        return sock_filter{BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<__u32>(offset)};
    };
    // Jumps `yes` instructions if equal, else `no`.
    const auto equal = [](__u32 value, __u8 yes, __u8 no) {
        return sock_filter{BPF_JMP | BPF_JEQ | BPF_K, yes, no, value};
    };
    const auto result = [](__u32 value) { return sock_filter{BPF_RET | BPF_K, 0, 0, value}; };
    std::array filter{load(offsetof(seccomp_data, nr)),
                      equal(SYS_socket, 0, 4),
                      load(offsetof(seccomp_data, args[0])),
                      equal(AF_INET, 1, 0),
                      equal(AF_INET6, 0, 1),
                      result(SECCOMP_RET_KILL_PROCESS),
                      result(SECCOMP_RET_ALLOW)};
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace

Arguments Confined(const Confinement& confinement, const Arguments& command) {
    Arguments line{ThisProgram(), kConfinedCommand, std::to_string(confinement.fileBytes),
                   std::to_string(confinement.mask), confinement.noInternet ? "1" : "0"};
    line.insert(line.end(), command.begin(), command.end());
    return line;
}

std::optional<int> RunConfined(int argc, char** argv) {
    if (argc <= kFirstWord || argv[1] != std::string(kConfinedCommand)) return std::nullopt;
    umask(static_cast<mode_t>(std::stoul(argv[3])));
    const bool confined =
        LimitFiles(std::stoul(argv[2])) && GiveUpPower() && (argv[4] == std::string("0") || ForbidInternet());
    if (!confined) {
        std::cerr << "cannot be confined\n";
        return kCannot;
    }
    execvp(argv[kFirstWord], argv + kFirstWord);
    std::cerr << "cannot run " << argv[kFirstWord] << '\n';
    return kCannot;
}

}  // namespace sonavex
