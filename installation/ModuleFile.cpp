#include "installation/ModuleFile.h"

#include <fcntl.h>
#include <gelf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <set>
#include <string>

#include "core/support/Exception.h"

namespace Tarnex::Installations {
namespace {

class OpenFile {
public:
    // Doesn't wait for a writer if the path is a pipe's.
    explicit OpenFile(const char* path) : fd(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (fd < 0) {
            throw Exception(std::strerror(errno));
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { close(fd); }

    FileId GetId() const {
        struct stat info {};
        if (fstat(fd, &info) != 0) {
            throw Exception(std::strerror(errno));
        }
        if (!S_ISREG(info.st_mode)) {
            throw Exception("not a regular file");
        }
        return {info.st_dev, info.st_ino};
    }

    const int fd;
};

using ElfHandle = std::unique_ptr<Elf, decltype(&elf_end)>;

ElfHandle OpenElf(const OpenFile& file) {
    static_cast<void>(elf_version(EV_CURRENT));
    // Reads instead of mapping: a mapped file that shrinks meanwhile would kill the process.
    ElfHandle elf(elf_begin(file.fd, ELF_C_READ, nullptr), &elf_end);
    if (elf == nullptr || elf_kind(elf.get()) != ELF_K_ELF) {
        throw Exception("not an ELF file");
    }
    return elf;
}

GElf_Ehdr ReadHeader(Elf* elf) {
    GElf_Ehdr header;
    if (gelf_getehdr(elf, &header) == nullptr) {
        throw Exception(std::string("a damaged ELF file: ") + elf_errmsg(-1));
    }
    return header;
}

const GElf_Ehdr& GetOwnHeader() {
    static const GElf_Ehdr header = [] {
        const OpenFile self("/proc/self/exe");
        return ReadHeader(OpenElf(self).get());
    }();
    return header;
}

void RequireLoadable(const GElf_Ehdr& header) {
    const GElf_Ehdr& own = GetOwnHeader();
    if (header.e_machine != own.e_machine || header.e_ident[EI_CLASS] != own.e_ident[EI_CLASS] ||
        header.e_ident[EI_DATA] != own.e_ident[EI_DATA]) {
        throw Exception("an ELF file for another machine");
    }
    if (header.e_type != ET_DYN) {
        throw Exception("an ELF file, but not a shared object");
    }
}

bool IsExported(const GElf_Sym& symbol) {
    const auto binding = GELF_ST_BIND(symbol.st_info);
    return symbol.st_shndx != SHN_UNDEF && (binding == STB_GLOBAL || binding == STB_WEAK);
}

void AddExports(Elf* elf, Elf_Scn* section, const GElf_Shdr& header, std::set<std::string>& names) {
    Elf_Data* data = elf_getdata(section, nullptr);
    if (data == nullptr) {
        throw Exception(std::string("a damaged symbol table: ") + elf_errmsg(-1));
    }
    GElf_Sym symbol;
    for (int i = 0; gelf_getsym(data, i, &symbol) != nullptr; ++i) {
        const char* name = elf_strptr(elf, header.sh_link, symbol.st_name);
        if (name != nullptr && IsExported(symbol)) {
            names.insert(name);
        }
    }
}

std::set<std::string> ReadExports(Elf* elf) {
    std::set<std::string> names;
    for (Elf_Scn* section = nullptr; (section = elf_nextscn(elf, section)) != nullptr;) {
        GElf_Shdr header;
        if (gelf_getshdr(section, &header) != nullptr && header.sh_type == SHT_DYNSYM) {
            AddExports(elf, section, header, names);
        }
    }
    return names;
}

std::string ToHex(const unsigned char* bytes, std::size_t size) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

// Empty if there is no such note.
std::string FindBuildId(const Elf_Data& notes) {
    const auto* bytes = static_cast<const unsigned char*>(notes.d_buf);
    GElf_Nhdr note;
    std::size_t name = 0;
    std::size_t content = 0;
    for (std::size_t at = 0;
         (at = gelf_getnote(const_cast<Elf_Data*>(&notes), at, &note, &name, &content)) > 0;) {
        if (note.n_type == NT_GNU_BUILD_ID && note.n_namesz == sizeof(ELF_NOTE_GNU) &&
            std::memcmp(bytes + name, ELF_NOTE_GNU, sizeof(ELF_NOTE_GNU)) == 0) {
            return ToHex(bytes + content, note.n_descsz);
        }
    }
    return "";
}

std::string FindBuildId(Elf* elf) {
    for (Elf_Scn* section = nullptr; (section = elf_nextscn(elf, section)) != nullptr;) {
        GElf_Shdr header;
        Elf_Data* data = nullptr;
        if (gelf_getshdr(section, &header) != nullptr && header.sh_type == SHT_NOTE &&
            (data = elf_getdata(section, nullptr)) != nullptr) {
            if (std::string id = FindBuildId(*data); !id.empty()) {
                return id;
            }
        }
    }
    return "";
}

}  // namespace

std::string ReadBuildId(const boost::filesystem::path& path) {
    try {
        const OpenFile file(path.c_str());
        return FindBuildId(OpenElf(file).get());
    } catch (const Exception&) {
        return "";
    }
}

ModuleFile ReadModuleFile(const boost::filesystem::path& path) {
    const OpenFile file(path.c_str());
    ModuleFile module{file.GetId(), {}, false};
    const ElfHandle elf = OpenElf(file);
    RequireLoadable(ReadHeader(elf.get()));
    const std::set<std::string> exports = ReadExports(elf.get());
    for (const InterfaceTraits& traits : INTERFACES) {
        if (std::ranges::any_of(traits.entryPoints, [&](std::string_view name) {
                return !name.empty() && exports.contains(std::string(name));
            })) {
            module.interfaces.push_back(traits.interface);
        }
    }
    module.isUserInterface = exports.contains("lv2ui_descriptor");
    return module;
}

}  // namespace Tarnex::Installations
