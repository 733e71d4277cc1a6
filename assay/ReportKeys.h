#pragma once

#include "parent/Item.h"

/// The keys that reading and writing share.
namespace Tarnex::Assay {

inline constexpr int SCHEMA = 1;

inline const char* GetKindName(Parent::ItemKind kind) {
    return kind == Parent::ItemKind::Plugin ? "plugin" : "codec";
}

/// Calls `visit(key, text)` for each text of an item; `AnyItem` may be const.
template <class AnyItem, class Visitor>
void VisitTexts(AnyItem& item, Visitor visit) {
    visit("name", item.name);
    visit("factory", item.factory);
    visit("coder", item.coder);
    visit("implementation", item.implementation);
    visit("codec", item.codec);
    visit("input", item.input);
    visit("reason", item.reason);
    visit("text", item.text);
    visit("phase", item.phase);
}

/// The same for each list of texts.
template <class AnyItem, class Visitor>
void VisitLists(AnyItem& item, Visitor visit) {
    visit("company", item.company);
    visit("spoils", item.spoils);
    visit("repro", item.repro);
}

}  // namespace Tarnex::Assay
