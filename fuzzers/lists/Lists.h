#pragma once

#include "formats/lists/PropertyListForms.h"
#include "fuzzers/Mutation.h"

namespace dubrix::fuzz {

/// What must hold of every value that a reader has accepted: each writer's output is read again as
/// the same value, as far as the form can hold it, and is written again byte by byte.
void requireRoundTrips(const PropertyListNode& value);

/// What must hold of any bytes that are taken for a property list, whatever their form.
void requireListIsUsable(std::string_view bytes);

/// The tree with one value somewhere in it changed, taken away, doubled or put one level lower.
void changeTree(PropertyListNode& root, Random& random);

/// Values that between them have every type and what is special about each.
std::vector<PropertyListNode> sampleTrees();

} // namespace dubrix::fuzz
