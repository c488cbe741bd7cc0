#pragma once

#include "formats/lists/PropertyListForms.h"
#include "fuzzers/Target.h"

namespace dubrix::fuzz {

/// What must hold of any bytes that are taken for a property list, and of what a form's reader
/// makes of them: each writer's output is read again as the same value, as far as the form can hold
/// it, and is written again byte by byte.
void requireSound(std::string_view bytes, const std::optional<PropertyListNode>& read);

/// The tree with one value somewhere in it changed, taken away, doubled or put one level lower.
void changeTree(PropertyListNode& root, Random& random);

/// Values that between them have every type and what is special about each.
std::vector<PropertyListNode> sampleTrees();

} // namespace dubrix::fuzz
