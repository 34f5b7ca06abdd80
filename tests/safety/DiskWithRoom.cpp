#include "safety/DiskWithRoom.h"

#include <chrono>
#include <string>

namespace sonavex {
namespace {

// bash -c kScript NAME FOLDER BLOCKS PROGRAM...
constexpr const char* kScript = R"script(
set -eu -o pipefail
folder="$1" blocks="$2"
shift 2
copy="$(mktemp -d)"
trap 'rm -rf "$copy"' EXIT
cp -a "$folder/." "$copy"
mount -t tmpfs -o size=1m,mode=700 disk "$folder"
cp -a "$copy/." "$folder"
rest=$(($(stat --file-system --format=%a "$folder") - blocks))
fallocate --length "$((rest * 4096))" "$folder/filler"
status=0
"$@" || status=$?
rm "$folder/filler"
find "$copy" -mindepth 1 -delete
cp -a "$folder/." "$copy"
umount "$folder"
find "$folder" -mindepth 1 -delete
cp -a "$copy/." "$folder"
exit "$status"
)script";

}  // namespace

Arguments OnDiskWithRoom(const std::filesystem::path& folder, std::uint32_t freeBlocks,
                         const Arguments& command) {
    Arguments line{"unshare", "--map-root-user",         "--mount", "bash", "-c", kScript, "disk",
                   folder,    std::to_string(freeBlocks)};
    line.insert(line.end(), command.begin(), command.end());
    return line;
}

bool DisksCanBeMounted() {
    static const bool can = [] {
        const PrivateFolder folder;
        ChildProcess process(OnDiskWithRoom(folder.Path(), 0, {"true"}), {}, "/dev/null");
        return process.WaitForEnd(std::chrono::seconds(20)) && process.Status() == 0;
    }();
    return can;
}

}  // namespace sonavex
