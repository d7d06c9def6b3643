// SPDX-License-Identifier: MIT
//
// Any bytes as the settings file.
#include "SettingsFile.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = Input(data, size).Rest();
    KeptSettings kept;
    if (!readSettings(bytes, kept)) kept = defaultSettings();
    const std::string saved = settingsText(kept, bytes);
    KeptSettings again;
    require(readSettings(saved, again), "what is saved can be read", saved);
    require(kept.numbers == again.numbers, "numbers are kept", saved);
    for (const auto& [key, text] : kept.texts) {
        if (!text.empty()) requireSame(text, again.texts[key], "texts are kept");
    }
    requireSame(saved, settingsText(again, saved), "saved, loaded and saved again it is the same file");
    return 0;
}
