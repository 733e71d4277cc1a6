#include "collect/Bundle.h"

#include <lv2/core/lv2.h>
#include <lv2/ui/ui.h>
#include <serd/serd.h>

#include <array>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

constexpr std::string_view MANIFEST = "manifest.ttl";
constexpr std::string_view TYPE = "http://www.w3.org/1999/02/22-rdf-syntax-ns#type";

using EnvHandle = std::unique_ptr<SerdEnv, decltype(&serd_env_free)>;
using ReaderHandle = std::unique_ptr<SerdReader, decltype(&serd_reader_free)>;

class Node {
public:
    explicit Node(SerdNode node) : node(node) {}
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() { serd_node_free(&node); }

    const SerdNode* Get() const { return &node; }
    std::string ToText() const { return {reinterpret_cast<const char*>(node.buf), node.n_bytes}; }

private:
    SerdNode node;
};

const std::uint8_t* Bytes(const std::string& text) {
    return reinterpret_cast<const std::uint8_t*>(text.c_str());
}

/// What a manifest says of one subject: a plugin, a user interface or a preset.
struct Subject {
    std::set<std::string> binaries;  ///< as URIs
    bool isUserInterface = false;
};

// The library stops at a NUL byte and parses nested text recursively. The limit counts brackets in
// strings and comments too, but is far above what manifests contain.
void RequireReadable(const std::string& text) {
    constexpr int MAX_DEPTH = 1000;
    int depth = 0;
    for (const char byte : text) {
        depth += byte == '[' || byte == '('                  ? 1
                 : (byte == ']' || byte == ')') && depth > 0 ? -1
                                                             : 0;
        if (byte == '\0' || depth > MAX_DEPTH) {
            throw Exception(byte == '\0' ? "its manifest.ttl holds a NUL byte"
                                         : "its manifest.ttl is nested too deeply");
        }
    }
}

class ManifestReader {
public:
    explicit ManifestReader(const fs::path& path)
        : uri(serd_node_new_file_uri(Bytes(path.string()), nullptr, nullptr, true)),
          env(serd_env_new(uri.Get()), &serd_env_free),
          reader(
              serd_reader_new(SERD_TURTLE, this, nullptr, OnBase, OnPrefix, OnStatement, nullptr),
              &serd_reader_free) {
        serd_reader_set_error_sink(reader.get(), OnError, this);
    }

    void Read(const std::string& text) {
        RequireReadable(text);
        const SerdStatus status = serd_reader_read_string(reader.get(), Bytes(text));
        if (status != SERD_SUCCESS && error.empty()) {
            error = reinterpret_cast<const char*>(serd_strerror(status));
        }
        if (!error.empty()) {
            throw Exception("its manifest.ttl isn't Turtle: " + error);
        }
    }

    std::map<std::string, Subject> subjects;

private:
    static ManifestReader& Self(void* handle) { return *static_cast<ManifestReader*>(handle); }

    static SerdStatus OnBase(void* handle, const SerdNode* base) {
        return serd_env_set_base_uri(Self(handle).env.get(), base);
    }

    static SerdStatus OnPrefix(void* handle, const SerdNode* name, const SerdNode* prefix) {
        return serd_env_set_prefix(Self(handle).env.get(), name, prefix);
    }

    static SerdStatus OnStatement(void* handle, SerdStatementFlags, const SerdNode*,
                                  const SerdNode* subject, const SerdNode* predicate,
                                  const SerdNode* object, const SerdNode*, const SerdNode*) {
        ManifestReader& self = Self(handle);
        const std::string what = self.Expand(predicate);
        if (what == LV2_CORE__binary) {
            self.subjects[self.Expand(subject)].binaries.insert(self.Expand(object));
        } else if (what == TYPE && self.Expand(object).starts_with(LV2_UI_PREFIX)) {
            self.subjects[self.Expand(subject)].isUserInterface = true;
        }
        return SERD_SUCCESS;
    }

    static SerdStatus OnError(void* handle, const SerdError* problem) {
        std::array<char, 200> words{};
        std::vsnprintf(words.data(), words.size(), problem->fmt, *problem->args);
        Self(handle).Remember("line " + std::to_string(problem->line) + ": " + words.data());
        return SERD_SUCCESS;
    }

    /// Keeps only the first problem: it is the cause of those that follow.
    void Remember(const std::string& problem) {
        if (error.empty()) {
            error = problem.substr(0, problem.find('\n'));
        }
    }

    /// The whole URI. Returns any other kind of node unchanged.
    std::string Expand(const SerdNode* node) {
        const Node expanded(serd_env_expand_node(env.get(), node));
        if (expanded.Get()->buf != nullptr) {
            return expanded.ToText();
        }
        std::string text = Node(serd_node_copy(node)).ToText();
        if (node->type == SERD_CURIE) {
            Remember("undefined prefix of " + text);
        }
        return text;
    }

    Node uri;
    EnvHandle env;
    ReaderHandle reader;
    std::string error;
};

// Returns a URI that isn't a file's unchanged. As a path, it lies in no bundle.
fs::path ToPath(const std::string& uri) {
    const std::unique_ptr<std::uint8_t, decltype(&serd_free)> parsed(
        serd_file_uri_parse(Bytes(uri), nullptr), &serd_free);
    const fs::path path = parsed == nullptr ? uri : reinterpret_cast<const char*>(parsed.get());
    return path.is_absolute() ? path.lexically_normal() : path;
}

}  // namespace

bool IsBundle(const fs::path& folder) {
    boost::system::error_code ignored;
    return folder.extension() == ".lv2" || fs::exists(folder / MANIFEST.data(), ignored);
}

std::set<fs::path> ReadBundle(const fs::path& bundle) {
    const fs::path path = bundle / MANIFEST.data();
    boost::system::error_code error;
    if (!fs::is_regular_file(path, error)) {
        throw Exception("the bundle has no manifest.ttl");
    }
    fs::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        throw Exception("its manifest.ttl can't be read");
    }
    return ReadManifest(text, bundle);
}

std::set<fs::path> ReadManifest(const std::string& text, const fs::path& bundle) {
    ManifestReader reader(bundle / MANIFEST.data());
    reader.Read(text);
    std::set<fs::path> files;
    for (const auto& [name, subject] : reader.subjects) {
        for (const std::string& binary : subject.binaries) {
            if (!subject.isUserInterface) {
                files.insert(ToPath(binary));
            }
        }
    }
    return files;
}

}  // namespace Tarnex::Collect
