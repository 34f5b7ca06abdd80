#include "support/PrintServer.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kServerLimit = 20s;
constexpr const char* kPrograms = "/usr/lib/cups";

constexpr const char* kConfiguration = R"(LogLevel warn
Listen @/sock
Browsing Off
WebInterface No
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
<Location /admin>
  Order allow,deny
  Allow all
</Location>
<Policy default>
  JobPrivateAccess all
  JobPrivateValues none
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
)";

constexpr const char* kFiles = R"(ServerBin @/bin
ServerRoot @/root
CacheDir @/cache
StateDir @/state
RequestRoot @/spool
TempDir @/spool/temp
AccessLog @/log/access
ErrorLog @/log/error
PageLog @/log/page
SystemGroup root
FileDevice Yes
)";

// Arguments of a backend: job, user, title, copies, options and the file, unless it is on standard input.
// Writes one file per copy.
constexpr const char* kBackend = R"sh(#!/bin/sh
[ $# -eq 0 ] && { echo 'file tofile "Unknown" "Test file printer"'; exit 0; }
out="${DEVICE_URI#tofile:}/$(printf '%05d' "$1")"
cat ${6:+"$6"} > "$out.part"
n=1
while [ "$n" -le "$4" ]; do cp "$out.part" "$out-$n.pdf"; n=$((n + 1)); done
rm "$out.part"
)sh";

void Write(const std::filesystem::path& file, std::string text, const std::string& folder) {
    for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos; at += folder.size())
        text.replace(at, 1, folder);
    std::ofstream(file) << text;
}

}  // namespace

PrintServer::PrintServer(const std::vector<std::string>& printers) {
    setenv("CUPS_SERVER", Socket().c_str(), 1);
    setenv("CUPS_SERVERROOT", (folder_.Path() / "root").c_str(), 1);
    for (const char* name : {"bin", "root", "cache", "state", "spool", "spool/temp", "log"})
        std::filesystem::create_directory(folder_.Path() / name);
    WriteConfiguration();
    WriteBackend();
    process_ =
        std::make_unique<ChildProcess>(Arguments{"/usr/sbin/cupsd", "-f", "-c", folder_.Path() / "cupsd.conf",
                                                 "-s", folder_.Path() / "cups-files.conf"},
                                       Environment{}, folder_.Path() / "output");
    WaitUntilReady();
    for (const std::string& printer : printers) {
        const auto jobs = folder_.Path() / printer;
        std::filesystem::create_directory(jobs);
        Control({"lpadmin", "-p", printer, "-E", "-v", "tofile:" + jobs.string()});
    }
}

PrintServer::~PrintServer() {
    process_.reset();
    unsetenv("CUPS_SERVER");
    unsetenv("CUPS_SERVERROOT");
}

void PrintServer::WriteConfiguration() const {
    Write(folder_.Path() / "cupsd.conf", kConfiguration, folder_.Path());
    Write(folder_.Path() / "cups-files.conf", kFiles, folder_.Path());
}

void PrintServer::WriteBackend() const {
    const auto bin = folder_.Path() / "bin";
    for (const char* name : {"filter", "driver", "daemon", "notifier", "cgi-bin", "monitor"})
        std::filesystem::create_directory_symlink(std::filesystem::path(kPrograms) / name, bin / name);
    std::filesystem::create_directory(bin / "backend");
    Write(bin / "backend" / "tofile", kBackend, "@");
    std::filesystem::permissions(bin / "backend" / "tofile", std::filesystem::perms::owner_all);
}

void PrintServer::WaitUntilReady() const {
    const auto answers = [this] {
        try {
            return Control({"lpstat", "-r"}) == "scheduler is running\n";
        } catch (const std::runtime_error&) {
            return false;
        }
    };
    if (WaitUntil(answers, kServerLimit)) return;
    std::ostringstream output;
    output << std::ifstream(folder_.Path() / "output").rdbuf();
    throw std::runtime_error("The print server does not get ready: " + output.str());
}

std::string PrintServer::Control(const Arguments& command) const {
    return RunProgram(command, {{"LC_ALL", "C"}}, kServerLimit);
}

std::vector<std::filesystem::path> PrintServer::Jobs(const std::string& printer, std::size_t count) const {
    std::vector<std::filesystem::path> files;
    const auto complete = [&] {
        files.clear();
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / printer))
            if (entry.path().extension() == ".pdf") files.push_back(entry.path());
        // A job that is still being printed would not be counted.
        return files.size() >= count && Control({"lpstat", "-o"}).empty();
    };
    if (!WaitUntil(complete, kServerLimit)) throw std::runtime_error("The print jobs do not come");
    std::sort(files.begin(), files.end());
    return files;
}

void PrintServer::Pause() {
    process_->Send(SIGSTOP);
}

void PrintServer::Continue() {
    process_->Send(SIGCONT);
}

}  // namespace sonavex
