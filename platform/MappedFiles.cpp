#include "platform/MappedFiles.h"

#include <unistd.h>

#include <fstream>

namespace Tarnex::Platform {
namespace {

bool IsFile(const std::string& path) {
    return !path.starts_with("/dev/") && access(path.c_str(), F_OK) == 0;
}

}  // namespace

std::set<std::string> ListMappedFiles(pid_t process) {
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    std::set<std::string> files;
    std::string last;
    for (std::string line; std::getline(maps, line);) {
        const std::size_t at = line.find('/');
        if (at == std::string::npos || line.compare(at, line.npos, last) == 0) {
            continue;
        }
        last = line.substr(at);
        if (!files.contains(last) && IsFile(last)) {
            files.insert(last);
        }
    }
    return files;
}

}  // namespace Tarnex::Platform
