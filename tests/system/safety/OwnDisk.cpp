#include "system/safety/OwnDisk.h"

#include <string>

namespace sonavex {
namespace {

// bash -c kScript NAME FOLDER ROOM PROGRAM...; ROOM: free blocks, or "ro".
constexpr const char* kScript = R"script(
set -eu -o pipefail
folder="$1" room="$2"
shift 2
copy="$(mktemp -d)"
trap 'rm -rf "$copy"' EXIT
cp -a "$folder/." "$copy"
mount -t tmpfs -o size=1m,mode=700 disk "$folder"
cp -a "$copy/." "$folder"
if [[ $room == ro ]]; then
    mount -o remount,ro "$folder"
else
    rest=$(($(stat --file-system --format=%a "$folder") - room))
    fallocate --length "$((rest * 4096))" "$folder/filler"
fi
status=0
"$@" || status=$?
[[ $room == ro ]] || rm "$folder/filler"
find "$copy" -mindepth 1 -delete
cp -a "$folder/." "$copy"
umount "$folder"
find "$folder" -mindepth 1 -delete
cp -a "$copy/." "$folder"
exit "$status"
)script";

Arguments OnDisk(const std::filesystem::path& folder, const std::string& room, const Arguments& command) {
    Arguments line{"unshare", "--map-root-user", "--mount", "bash", "-c", kScript, "disk", folder, room};
    line.insert(line.end(), command.begin(), command.end());
    return line;
}

}  // namespace

Arguments OnDiskWithRoom(const std::filesystem::path& folder, std::uint32_t freeBlocks,
                         const Arguments& command) {
    return OnDisk(folder, std::to_string(freeBlocks), command);
}

Arguments OnReadOnlyDisk(const std::filesystem::path& folder, const Arguments& command) {
    return OnDisk(folder, "ro", command);
}

}  // namespace sonavex
