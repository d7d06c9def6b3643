// SPDX-License-Identifier: MIT
//
// The library for property lists. It is loaded when it is first needed: linked to the terminal's program it
// would take a third of the time in which that starts, and scripts hardly ever need it.
#pragma once

#include <plist/plist.h>

struct PlistLibrary {
    // Null when it cannot be loaded.
    static const PlistLibrary* Get();

    decltype(&::plist_dict_get_item) dictGetItem = nullptr;
    decltype(&::plist_dict_remove_item) dictRemoveItem = nullptr;
    decltype(&::plist_dict_set_item) dictSetItem = nullptr;
    decltype(&::plist_free) free = nullptr;
    decltype(&::plist_from_xml) fromXml = nullptr;
    decltype(&::plist_get_bool_val) getBool = nullptr;
    decltype(&::plist_get_data_ptr) getData = nullptr;
    decltype(&::plist_get_node_type) getType = nullptr;
    decltype(&::plist_get_real_val) getReal = nullptr;
    decltype(&::plist_get_uint_val) getUint = nullptr;
    decltype(&::plist_new_data) newData = nullptr;
    decltype(&::plist_new_dict) newDict = nullptr;
#ifdef PLIST_UINT // newer versions of the library tell negative numbers from large ones
    decltype(&::plist_new_int) newInt = nullptr;
#else
    decltype(&::plist_new_uint) newUint = nullptr;
#endif
    decltype(&::plist_to_xml) toXml = nullptr;
    decltype(&::plist_to_xml_free) toXmlFree = nullptr;
};
