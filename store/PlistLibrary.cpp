// SPDX-License-Identifier: MIT
#include "PlistLibrary.h"

#include <dlfcn.h>
#include <memory>

namespace {

// Finds functions and notes whether all were there.
struct Finder {
    template <typename Function> void operator()(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(library, name));
        isComplete = isComplete && function;
    }
    void* library;
    bool isComplete = true;
};

std::unique_ptr<const PlistLibrary> load() {
    void* const library = dlopen(PLIST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library) return nullptr;
    auto loaded = std::make_unique<PlistLibrary>();
    PlistLibrary& plist = *loaded;
    Finder find = {library};
    find(plist.dictGetItem, "plist_dict_get_item");
    find(plist.dictRemoveItem, "plist_dict_remove_item");
    find(plist.dictSetItem, "plist_dict_set_item");
    find(plist.free, "plist_free");
    find(plist.fromXml, "plist_from_xml");
    find(plist.getBool, "plist_get_bool_val");
    find(plist.getData, "plist_get_data_ptr");
    find(plist.getType, "plist_get_node_type");
    find(plist.getReal, "plist_get_real_val");
    find(plist.getUint, "plist_get_uint_val");
    find(plist.newData, "plist_new_data");
    find(plist.newDict, "plist_new_dict");
#ifdef PLIST_UINT
    find(plist.newInt, "plist_new_int");
#else
    find(plist.newUint, "plist_new_uint");
#endif
    find(plist.toXml, "plist_to_xml");
    find(plist.toXmlFree, "plist_to_xml_free");
    if (!find.isComplete) return nullptr;
    return loaded;
}

} // namespace

const PlistLibrary* PlistLibrary::Get() {
    static const std::unique_ptr<const PlistLibrary> plist = load();
    return plist.get();
}
