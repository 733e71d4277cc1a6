#include "collect/Bundle.h"

#include <lv2/core/lv2.h>
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
constexpr std::string_view SEE_ALSO = "http://www.w3.org/2000/01/rdf-schema#seeAlso";

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
            throw Exception(byte == '\0' ? "holds a NUL byte" : "is nested too deeply");
        }
    }
}

// Returns a URI that isn't a file's unchanged. As a path, it lies in no bundle.
fs::path ToPath(const std::string& uri) {
    const std::unique_ptr<std::uint8_t, decltype(&serd_free)> parsed(
        serd_file_uri_parse(Bytes(uri), nullptr), &serd_free);
    const fs::path path = parsed == nullptr ? uri : reinterpret_cast<const char*>(parsed.get());
    return path.is_absolute() ? path.lexically_normal() : path;
}

class TurtleReader {
public:
    explicit TurtleReader(const fs::path& path)
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
            throw Exception("isn't Turtle: " + error);
        }
    }

    std::map<std::string, Statements> subjects;

private:
    static TurtleReader& Self(void* handle) { return *static_cast<TurtleReader*>(handle); }

    static SerdStatus OnBase(void* handle, const SerdNode* base) {
        return serd_env_set_base_uri(Self(handle).env.get(), base);
    }

    static SerdStatus OnPrefix(void* handle, const SerdNode* name, const SerdNode* prefix) {
        return serd_env_set_prefix(Self(handle).env.get(), name, prefix);
    }

    static SerdStatus OnStatement(void* handle, SerdStatementFlags, const SerdNode*,
                                  const SerdNode* subject, const SerdNode* predicate,
                                  const SerdNode* object, const SerdNode*, const SerdNode*) {
        TurtleReader& self = Self(handle);
        const std::string what = self.Expand(predicate);
        if (what == LV2_CORE__binary) {
            self.subjects[self.Expand(subject)].binaries.insert(ToPath(self.Expand(object)));
        } else if (what == SEE_ALSO) {
            self.subjects[self.Expand(subject)].seeAlso.insert(ToPath(self.Expand(object)));
        } else if (what == TYPE && self.Expand(object) == LV2_CORE__Plugin) {
            self.subjects[self.Expand(subject)].isPlugin = true;
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

std::string ReadText(const fs::path& path) {
    boost::system::error_code ignored;
    fs::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!fs::is_regular_file(path, ignored) || !file) {
        throw Exception("can't be read");
    }
    return text;
}

// What a cache keeps of statements: texts that begin with what they are.
constexpr char PLUGIN = 'p';
constexpr char SUBJECT = 's';
constexpr char BINARY = 'b';
constexpr char FILE_MORE = 'f';

/// Of plugins whose binaries the manifest doesn't name, the files that may.
Texts ReadPlugins(const fs::path& manifest) {
    Texts texts;
    for (const auto& [uri, statements] : ReadTurtle(ReadText(manifest), manifest)) {
        if (statements.isPlugin) {
            const bool isNamed = !statements.binaries.empty();
            texts.push_back(PLUGIN + uri);
            for (const fs::path& path : isNamed ? statements.binaries : statements.seeAlso) {
                texts.push_back((isNamed ? BINARY : FILE_MORE) + path.native());
            }
        }
    }
    return texts;
}

Texts ReadBinaries(const fs::path& file) {
    Texts texts;
    for (const auto& [uri, statements] : ReadTurtle(ReadText(file), file)) {
        for (const fs::path& binary : statements.binaries) {
            texts.push_back(SUBJECT + uri);
            texts.push_back(BINARY + binary.native());
        }
    }
    return texts;
}

class BundleReader {
public:
    explicit BundleReader(ReadingCache& cache) : cache(cache) {}

    Bundle Read(const Texts& plugins) {
        for (const std::string& text : plugins) {
            if (text.front() == PLUGIN) {
                Close();
                plugin = text.substr(1);
                isFound = false;
            } else if (text.front() == BINARY) {
                Add(text.substr(1));
            } else {
                ReadFile(text.substr(1));
            }
        }
        Close();
        return std::move(bundle);
    }

private:
    void Add(const fs::path& binary) {
        bundle.binaries.insert(binary);
        isFound = true;
    }

    void ReadFile(const fs::path& file) {
        try {
            const Reading& reading = cache.Get('d', file, [&] { return ReadBinaries(file); });
            if (!reading.problem.empty()) {
                throw Exception(reading.problem);
            }
            for (std::size_t i = 0; i + 1 < reading.texts.size(); i += 2) {
                if (reading.texts[i].compare(1, std::string::npos, plugin) == 0) {
                    Add(reading.texts[i + 1].substr(1));
                }
            }
        } catch (const Exception& error) {
            bundle.problems.push_back("its " + file.filename().string() + " " + error.what());
            isFound = true;  // That is told already.
        }
    }

    void Close() {
        if (!isFound) {
            bundle.problems.push_back("no binary is named for its plugin " + plugin);
        }
    }

    ReadingCache& cache;
    Bundle bundle;
    std::string plugin;
    bool isFound = true;
};

}  // namespace

bool IsBundle(const fs::path& folder) {
    boost::system::error_code ignored;
    return folder.native().ends_with(".lv2") || fs::exists(folder / MANIFEST.data(), ignored);
}

Bundle ReadBundle(const fs::path& folder, ReadingCache& cache) {
    const fs::path manifest = folder / MANIFEST.data();
    boost::system::error_code error;
    if (!fs::is_regular_file(manifest, error)) {
        throw Exception("the bundle has no manifest.ttl");
    }
    const Reading& reading = cache.Get('m', manifest, [&] { return ReadPlugins(manifest); });
    if (!reading.problem.empty()) {
        throw Exception("its manifest.ttl " + reading.problem);
    }
    return BundleReader(cache).Read(reading.texts);
}

std::map<std::string, Statements> ReadTurtle(const std::string& text, const fs::path& file) {
    TurtleReader reader(file);
    reader.Read(text);
    return std::move(reader.subjects);
}

}  // namespace Tarnex::Collect
