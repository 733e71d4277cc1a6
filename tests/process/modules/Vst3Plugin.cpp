// A VST3 module of two classes that misbehaves as its file name says. The first class is a plugin's
// user interface, the second the plugin.

#include <travesty/factory.h>

#include <cstring>

#include "tests/process/modules/Behaviour.h"
#include "tests/process/modules/Faults.h"

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace {

struct Factory {
    const v3_plugin_factory_cpp* functions;
};

bool Is(const char* behaviour) {
    return Behaviour() == behaviour;
}

v3_result FindVersion(void* self, const v3_tuid id, void** found) {
    const bool isOther =
        v3_tuid_match(id, v3_plugin_factory_2_iid) || v3_tuid_match(id, v3_plugin_factory_3_iid);
    *found = Is("null-version") ? nullptr : self;
    return isOther && !Is("one-version") ? V3_OK : V3_NO_INTERFACE;
}

std::int32_t CountClasses(void*) {
    return Is("below-zero") ? -1 : Is("millions") ? 5'000'000 : Is("no-classes") ? 0 : 2;
}

template <class Info>
v3_result Describe(std::int32_t index, Info* info, bool isLast) {
    const bool isPlugin = index == 1 && !Is("no-plugin");
    std::strcpy(info->category, isPlugin ? "Audio Module Class" : "Component Controller Class");
    const bool fails = (index == 1 && Is("failing-class")) || (Is("only-utf-16") && !isLast);
    return fails ? V3_FALSE : V3_OK;
}

v3_result DescribeFirst(void*, std::int32_t index, v3_class_info* info) {
    return Describe(index, info, false);
}

v3_result DescribeSecond(void*, std::int32_t index, v3_class_info_2* info) {
    return Describe(index, info, false);
}

v3_result DescribeThird(void*, std::int32_t index, v3_class_info_3* info) {
    return Describe(index, info, true);
}

v3_result Create(void*, const v3_tuid, const v3_tuid, void**) {
    return V3_NOT_IMPLEMENTED;
}

v3_plugin_factory_cpp MakeFunctions() {
    v3_plugin_factory_cpp functions{};
    functions.query_interface = FindVersion;
    functions.v1.num_classes = CountClasses;
    functions.v1.get_class_info = Is("no-describer") ? nullptr : DescribeFirst;
    functions.v1.create_instance = Create;
    functions.v2.get_class_info_2 = DescribeSecond;
    functions.v3.get_class_info_utf16 = DescribeThird;
    return functions;
}

}  // namespace

EXPORT void* GetPluginFactory() {
    static const v3_plugin_factory_cpp functions = MakeFunctions();
    static Factory factory{Is("no-functions") ? nullptr : &functions};
    return Is("no-factory") ? nullptr : &factory;
}

EXPORT bool ModuleEntry(void* library) {
    Faults::Make(Behaviour());
    const bool isOwn = library != nullptr && dlsym(library, "GetPluginFactory") ==
                                                 reinterpret_cast<void*>(GetPluginFactory);
    return isOwn && !Is("refuses");
}

EXPORT bool ModuleExit() {
    std::abort();  // the program never unloads a module
}
