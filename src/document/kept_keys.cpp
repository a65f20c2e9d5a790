#include "document/kept_keys.h"

namespace zolt {

std::shared_ptr<const KeptKeys> keepKeys(plist::Value* root) {
    auto kept = std::make_shared<KeptKeys>();
    kept->root = plist::Shared(plist::retain(root));
    return kept;
}

void addKeptKeys(plist::Value* built, const plist::Value* kept, FilledKey filled) {
    if (!built || !kept || built->kind != plist::Kind::Dictionary ||
        kept->kind != plist::Kind::Dictionary)
        return;
    for (size_t i = 0; i < kept->keys.size() && i < kept->items.size(); ++i)
        if (kept->items[i] && !filled(kept->keys[i]))
            plist::addToDictionary(built, kept->keys[i], plist::retain(kept->items[i]));
}

const plist::Value* keptEntry(const SpectrumDocument& doc, std::string_view key) {
    const plist::Value* root = doc.keptKeys ? doc.keptKeys->root.get() : nullptr;
    return root && root->kind == plist::Kind::Dictionary ? plist::lookUp(root, key) : nullptr;
}

}  // namespace zolt
