// sonavex-plot: draws a stored run as a picture, without a display.

#include <QApplication>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/run/StoredRun.h"
#include "core/run/display/RunTexts.h"
#include "platform/plain/UserFolders.h"
#include "platform/sndfile/SndfileFiles.h"
#include "ui/RunPicture.h"

namespace {

using namespace sonavex;

constexpr std::streamsize kMostBytes = 64'000'000;

std::string TextOf(std::istream& stream, const std::string& name) {
    std::string text(std::istreambuf_iterator<char>(stream), {});
    if (stream.bad()) throw std::runtime_error(name + " cannot be read.");
    return text;
}

std::string RunText(int argc, char** argv) {
    if (argc == 2) return TextOf(std::cin, "The run");
    std::ifstream file(argv[2], std::ios::binary | std::ios::ate);
    if (!file) throw std::runtime_error(std::string(argv[2]) + " cannot be opened.");
    if (file.tellg() > kMostBytes) throw std::runtime_error(std::string(argv[2]) + " is too long.");
    file.seekg(0);
    return TextOf(file, argv[2]);
}

ExportKind KindOf(std::string_view path) {
    if (path.ends_with(".png")) return ExportKind::kLargePicture;
    if (path.ends_with(".pdf")) return ExportKind::kPdf;
    throw std::runtime_error("The name of the picture ends with neither .png nor .pdf.");
}

void Draw(int argc, char** argv) {
    const ExportKind kind = KindOf(argv[1]);
    const MeasuredRun run = ParseStoredRun(RunText(argc, argv));
    SndfileFiles().WriteText(argv[1],
                             ui::RunPicture(kind, run, RunPageLines(run, "Sonavex " SONAVEX_VERSION)));
}

}  // namespace

int main(int argc, char** argv) {
    KeepFilesFromEverybody();
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        std::puts("sonavex-plot " SONAVEX_VERSION);
        return 0;
    }
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: sonavex-plot PICTURE [RUN]\n"
                     "Draws RUN, or the run on standard input, as PICTURE (.png or .pdf).\n";
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    try {
        Draw(argc, argv);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "sonavex-plot: " << error.what() << '\n';
        return 1;
    }
}
