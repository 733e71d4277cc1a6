#pragma once

#include <lilv/lilv.h>

#include <memory>
#include <string>
#include <vector>

namespace Tarnex::Exercise {

struct FreeNode {
    void operator()(LilvNode* node) const { lilv_node_free(node); }
};
using Node = std::unique_ptr<LilvNode, FreeNode>;

/// What is known of one bundle. Reads the bundle's manifest at once, and a plugin's own data once
/// they are asked for. No other bundle is read.
class Bundle {
public:
    /// `folder` is the bundle's path. Each bundle is read once, for all its modules, and never
    /// freed. Throws `Failure` if it has no manifest.
    static const Bundle& Open(const std::string& folder);

    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    LilvWorld* GetWorld() const { return world; }
    const std::string& GetFolder() const { return folder; }

    Node MakeUri(const char* uri) const { return Node(lilv_new_uri(world, uri)); }

    /// All plugins that the bundle describes.
    std::vector<const LilvPlugin*> GetPlugins() const;

    /// The path of the module that holds the plugin; empty if the data name none.
    std::string GetBinary(const LilvPlugin* plugin) const;

private:
    explicit Bundle(const std::string& folder);

    std::string folder;  // ends with a separator
    LilvWorld* world;
};

/// The paths of the modules that the bundle names.
std::vector<std::string> FindLv2Binaries(const std::string& folder);

}  // namespace Tarnex::Exercise
