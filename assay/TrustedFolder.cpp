#include "assay/TrustedFolder.h"

#include <fmt/format.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <map>
#include <set>

#include "collect/Bundle.h"
#include "collect/ModuleKinds.h"
#include "core/support/Exception.h"
#include "platform/TerminalText.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Installations::Interface;
using Reports::TrustedModule;

using Links = std::map<std::string, fs::path>;  // what each name leads to

/// Two folders may have modules of the same name.
void AddLink(Links& links, const fs::path& target) {
    std::string name = target.filename().string();
    for (int number = 2; links.contains(name) && links[name] != target; ++number) {
        name = fmt::format("{}-{}{}", target.stem().string(), number, target.extension().string());
    }
    links[name] = target;
}

bool HasOnlyTrusted(const fs::path& bundle, const std::set<std::string>& trusted) {
    try {
        Collect::ReadingCache nothing{{}};
        for (const fs::path& binary : Collect::ReadBundle(bundle, nothing).binaries) {
            boost::system::error_code error;
            const fs::path file = fs::canonical(binary, error);
            if (!error && !trusted.contains(file.native())) {
                return false;
            }
        }
        return true;
    } catch (const Exception&) {
        return false;
    }
}

/// The first bundle of a name hides the others from hosts.
Links FindBundles(const std::set<std::string>& trusted) {
    Links links;
    std::set<std::string> seen;
    for (const auto& [folder, kind] : Collect::GetUsualFolders()) {
        boost::system::error_code error;
        for (fs::directory_iterator entry(folder, error), end;
             kind == &Collect::LV2 && !error && entry != end; entry.increment(error)) {
            const fs::path bundle = entry->path();
            if (fs::is_directory(bundle, error) && Collect::IsBundle(bundle) &&
                seen.insert(bundle.filename().string()).second && HasOnlyTrusted(bundle, trusted)) {
                links[bundle.filename().string()] = fs::absolute(bundle);
            }
        }
    }
    return links;
}

/// A folder that this command made, or a new one.
void Claim(const fs::path& folder) {
    fs::create_directories(folder);
    if (!fs::exists(folder / Collect::TRUSTED_MARK) && !fs::is_empty(folder)) {
        throw Exception(folder.string() + " holds other files; name a folder of its own");
    }
    std::ofstream mark((folder / Collect::TRUSTED_MARK).native(), std::ios::app);
    if (!mark) {
        throw Exception("can't write " + (folder / Collect::TRUSTED_MARK).string());
    }
}

void Fill(const fs::path& folder, const Links& links) {
    Claim(folder);
    for (const auto& entry : fs::directory_iterator(folder)) {
        const auto wanted = links.find(entry.path().filename().string());
        boost::system::error_code ignored;
        const bool stays =
            wanted != links.end() && fs::read_symlink(entry.path(), ignored) == wanted->second;
        if (fs::is_symlink(entry.symlink_status()) && !stays) {
            fs::remove(entry.path());
        }
    }
    for (const auto& [name, target] : links) {
        if (!fs::exists(fs::symlink_status(folder / name))) {
            fs::create_symlink(target, folder / name);
        }
    }
}

/// CLAP's variable adds folders to the usual ones, VST3 has none.
std::string DescribeVariable(const Collect::ModuleKind& kind, const fs::path& folder) {
    const std::string quoted = Platform::QuoteForShell({folder.string()});
    if (kind.interface == Interface::Clap) {
        return fmt::format("# CLAP_PATH={} only adds to the usual folders", quoted);
    }
    return kind.interface == Interface::Vst3
               ? fmt::format("# no variable makes hosts look for VST3 in {}", quoted)
               : fmt::format("export {}={}", kind.variable, quoted);
}

}  // namespace

std::vector<std::string> MakeTrustedFolder(const fs::path& folder, const Reports::Trust& trust) {
    const fs::path root = fs::absolute(folder).lexically_normal();
    std::set<std::string> files;
    std::map<std::string, Links> byInterface;
    for (const TrustedModule& module : trust.trusted) {
        files.insert(module.file);
        AddLink(byInterface[module.interface], module.path);
    }
    std::vector<std::string> lines;
    for (const Collect::ModuleKind& kind : Collect::MODULE_KINDS) {
        const std::string name(Installations::TraitsOf(kind.interface).name);
        const fs::path own = root / std::string(kind.libFolder);
        Fill(own, kind.interface == Interface::Lv2 ? FindBundles(files) : byInterface[name]);
        lines.push_back(DescribeVariable(kind, own));
    }
    return lines;
}

}  // namespace Tarnex::Assay
